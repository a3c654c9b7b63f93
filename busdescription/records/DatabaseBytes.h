// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/records/RecordFields.h"
#include "vesk/modules/dpvm/config/IBusConfig.h"

namespace BusDescription {

/// The content of the database file of a configuration, as DdbParser reads it: its checksum, then the
/// messages that download its records. The same configuration has always the same bytes.
Bytes DatabaseBytes(Vesk::Modules::DPVM::Config::IBusConfig& config);

} // namespace BusDescription
