// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/gsd/Device.h"

#include <nlohmann/json.hpp>

namespace VeskTool {

/// All that a device description file says, with the names that docs/json.md has.
nlohmann::ordered_json DeviceToJson(const BusDescription::Gsd::Device& device);

} // namespace VeskTool
