// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/config/IBusConfig.h"
#include "vesk/system/collections/Dictionary.h"

namespace Vesk::Modules::DPVM::Config {

/// A bus configuration, immutable once its builder has made it.
class BusConfig : public IBusConfig {
public:
    class Builder;

    unsigned int Checksum() const override;
    std::shared_ptr<IMasterRecord> Master() const override;
    std::shared_ptr<System::Collections::Generic::ReadOnlyCollection<unsigned char>>
    SlaveAddresses() const override;
    std::shared_ptr<ISlaveRecord> Slave(unsigned char address) const override;

    /// The checksum in hexadecimal, the master and the slaves.
    System::String ToString() const override;

protected:
    /// The slaves by station address, in the order in which they were added.
    using SlaveTable = System::Collections::Generic::Dictionary<unsigned char, std::shared_ptr<ISlaveRecord>>;

    BusConfig(unsigned int checksum, std::shared_ptr<IMasterRecord> master,
              std::shared_ptr<SlaveTable> slaves);

private:
    unsigned int _checksum;
    std::shared_ptr<IMasterRecord> _master;
    std::shared_ptr<SlaveTable> _slaves;
};

/// Puts a bus configuration together and computes its checksum.
class BusConfig::Builder : public System::Object, public std::enable_shared_from_this<Builder> {
public:
    static std::shared_ptr<Builder> Create();

    /// Sets or replaces the master.
    std::shared_ptr<Builder> Master(std::shared_ptr<IMasterRecord> record);

    /// Adds a slave; the checksum depends on the order. ArgumentNullException without a record,
    /// ArgumentException "Key already exists" for an address that is taken.
    std::shared_ptr<Builder> Slave(unsigned char address, std::shared_ptr<ISlaveRecord> record);

    /// The configuration of what has been set so far; later changes to the builder do not reach it.
    /// ArgumentNullException "master" without a master.
    std::shared_ptr<IBusConfig> Build();

protected:
    Builder() = default;

private:
    std::shared_ptr<IMasterRecord> _master;
    std::shared_ptr<SlaveTable> _slaves = SlaveTable::Create();
};

} // namespace Vesk::Modules::DPVM::Config
