// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/config/ISlaveBlocks.h"

namespace Vesk::Modules::DPVM::Config {

/// One slave's parameter set: a header and five blocks. Flags and times go to the module as they are; the
/// module and the PROFIBUS standard give them their meaning.
class ISlaveRecord : public System::Object {
public:
    virtual unsigned char SlaveFlags() const = 0;
    virtual unsigned char SlaveType() const = 0;
    /// The most diagnostic bytes that the slave sends.
    virtual unsigned char MaxDiagnosticDataLength() const = 0;
    /// The most bytes of one acyclic service.
    virtual unsigned char MaxChannelDataLength() const = 0;
    virtual unsigned char DiagUpdDelay() const = 0;
    virtual unsigned char AlarmMode() const = 0;
    virtual unsigned char AdditionalSlaveFlags() const = 0;
    /// The time-out of acyclic Class 1 services.
    virtual unsigned short MSAC1Timeout() const = 0;

    virtual std::shared_ptr<ISlaveAddressTable> AddressTable() const = 0;
    virtual std::shared_ptr<ISlaveConfigurationData> ConfigurationData() const = 0;
    virtual std::shared_ptr<ISlaveExtendedUserParameterData> ExtendedUserParameterData() const = 0;
    virtual std::shared_ptr<ISlaveParameterData> ParameterData() const = 0;
    virtual std::shared_ptr<ISlaveUserData> UserData() const = 0;

    /// Writes the record at the position of a stream that can seek, and leaves the stream behind it: 44 to
    /// 1740 bytes, and a pad byte after each odd block but the last, which the length does not count.
    /// ConfigException when another length came about; the record's length field is 0 then.
    virtual void ToStream(const std::shared_ptr<System::IO::Stream>& stream) const = 0;
};

} // namespace Vesk::Modules::DPVM::Config
