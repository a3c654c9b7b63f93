// SPDX-License-Identifier: MIT
#pragma once

#include "dbus/Facts.h"

#include "failures/Problem.h"

#include <string>

namespace Vesk::DBus {

/// "OFFLINE", "STOP", "CLEAR" or "OPERATE".
std::string ModeName(Modules::DPVM::OperationMode_e mode);

/// The first thing that is not right, as `vesk status` says it; three empty texts where everything is.
/// `checksum` is that of the configuration, or empty.
Failures::Problem ProblemIn(const Facts& facts, const std::string& checksum);

} // namespace Vesk::DBus
