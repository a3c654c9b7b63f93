// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/config/IBusConfig.h"

#include <string>

namespace VeskTool {

/// A configuration for people: each field of its records, and what its value means.
std::string ConfigText(Vesk::Modules::DPVM::Config::IBusConfig& config);

} // namespace VeskTool
