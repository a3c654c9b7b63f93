// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/config/IMasterRecord.h"
#include "vesk/modules/dpvm/config/ISlaveRecord.h"
#include "vesk/system/collections/List.h"

namespace Vesk::Modules::DPVM::Config {

/// What a configured master module needs to know about its bus: the master's parameter set, one for each
/// slave, and a checksum over all of them.
class IBusConfig : public System::Object {
public:
    /// The checksum over all records and station addresses, in order.
    virtual unsigned int Checksum() const = 0;

    virtual std::shared_ptr<IMasterRecord> Master() const = 0;

    /// The station addresses of the slaves, in the order in which they were added.
    virtual std::shared_ptr<System::Collections::Generic::ReadOnlyCollection<unsigned char>>
    SlaveAddresses() const = 0;

    /// The slave with that station address. KeyNotFoundException, the address in decimal, if there is none.
    virtual std::shared_ptr<ISlaveRecord> Slave(unsigned char address) const = 0;
};

} // namespace Vesk::Modules::DPVM::Config
