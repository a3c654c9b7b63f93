// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace VeskTool {

/// The time now, as the clocks here show it: "2026-03-01 13:00:00.250".
std::string LocalTime();
/// The same everywhere: "2026-03-01T12:00:00.250Z".
std::string UniversalTime();

} // namespace VeskTool
