// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/gsd/Device.h"

#include <ostream>
#include <string>

namespace VeskTool {

/// Writes what a device description file says, for people.
void WriteText(std::ostream& out, const BusDescription::Gsd::Device& device);

/// "1 module", "3 modules".
std::string Counted(std::size_t count, const std::string& what);

} // namespace VeskTool
