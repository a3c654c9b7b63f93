// SPDX-License-Identifier: MIT
#pragma once

#include <span>

namespace VeskTool {

/// The bytes of examples/plant.toml, which the build puts into the program.
extern const std::span<const unsigned char> PLANT_FILE;

} // namespace VeskTool
