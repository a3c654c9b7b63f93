// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/OperationMode_e.h"

#include <string>

namespace VeskTool {

/// "OPERATE" and so on; the value in hexadecimal for what is no mode.
std::string ModeName(Vesk::Modules::DPVM::OperationMode_e mode);

} // namespace VeskTool
