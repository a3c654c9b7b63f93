// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/records/RecordFields.h"
#include "vesk/modules/dpvm/config/IBusConfig.h"

#include <optional>
#include <string>

namespace VeskTool {

/// A configuration for people: each field of its records, and what its value means.
std::string ConfigText(Vesk::Modules::DPVM::Config::IBusConfig& config);

/// A field of the record of the slave at that address, or without one of the master's, and what it means:
/// "6 (1.5 Mbit/s)". The record has that field.
std::string FieldText(Vesk::Modules::DPVM::Config::IBusConfig& config, std::optional<unsigned char> slave,
                      const std::string& field);

/// What a slave's identifier bytes stand for: "4 words to the bus, 4 words from the bus, 1 byte from the
/// bus".
std::string IdentifiersText(const BusDescription::Bytes& bytes);

} // namespace VeskTool
