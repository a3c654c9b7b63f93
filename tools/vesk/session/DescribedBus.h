// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/description/Description.h"
#include "vesk/modules/dpvm/config/IBusConfig.h"

#include <memory>
#include <string>

namespace VeskTool {

/// A configuration, and where it comes from a bus description the names in that.
struct DescribedBus {
    std::string file;   // for people
    std::string folder; // that paths in the description begin from
    std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> config;
    BusDescription::Description description; // without slaves for a database, which has no names

    /// The slave of that name. Failure, which names the nearest one, where there is none.
    const BusDescription::SlaveDescription& SlaveNamed(const std::string& name) const;

    /// The signal "slave.signal". Failure, which names the nearest one, where there is none.
    const BusDescription::Signal& SignalNamed(const std::string& name) const;

    /// Where a device description file of the text is.
    std::string PathOf(const std::string& gsd) const;

    /// The slave at `address`; null where the description has none.
    const BusDescription::SlaveDescription* SlaveAt(unsigned int address) const;
};

} // namespace VeskTool
