// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/config/IBusConfig.h"

#include <nlohmann/json.hpp>

namespace VeskTool {

/// The bus configuration with all its fields, under the names that the records' text gives them. Byte arrays
/// are text of hexadecimal digits, and so is the checksum, as the database file has it.
nlohmann::ordered_json ToJson(const Vesk::Modules::DPVM::Config::IBusConfig& config);

} // namespace VeskTool
