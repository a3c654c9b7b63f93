// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/config/ISlaveRecord.h"

namespace Vesk::Modules::DPVM::Config {

/// A slave record as read from its binary form, 44 to 1740 bytes and its pad bytes.
class SlaveRecord : public ISlaveRecord {
public:
    /// Reads the record at the stream's position and leaves the stream behind it. ConfigException for a
    /// length that is not right, EndOfStreamException where the stream ends early.
    static std::shared_ptr<ISlaveRecord> FromStream(const std::shared_ptr<System::IO::Stream>& stream);

    unsigned char SlaveFlags() const override { return _slaveFlags; }

    unsigned char SlaveType() const override { return _slaveType; }

    unsigned char MaxDiagnosticDataLength() const override { return _maxDiagnosticDataLength; }

    unsigned char MaxChannelDataLength() const override { return _maxChannelDataLength; }

    unsigned char DiagUpdDelay() const override { return _diagUpdDelay; }

    unsigned char AlarmMode() const override { return _alarmMode; }

    unsigned char AdditionalSlaveFlags() const override { return _additionalSlaveFlags; }

    unsigned short MSAC1Timeout() const override { return _mSAC1Timeout; }

    std::shared_ptr<ISlaveAddressTable> AddressTable() const override { return _addressTable; }

    std::shared_ptr<ISlaveConfigurationData> ConfigurationData() const override { return _configurationData; }

    std::shared_ptr<ISlaveExtendedUserParameterData> ExtendedUserParameterData() const override {
        return _extendedUserParameterData;
    }

    std::shared_ptr<ISlaveParameterData> ParameterData() const override { return _parameterData; }

    std::shared_ptr<ISlaveUserData> UserData() const override { return _userData; }

    void ToStream(const std::shared_ptr<System::IO::Stream>& stream) const override;
    /// A line for each field.
    System::String ToString() const override;

protected:
    explicit SlaveRecord(const std::shared_ptr<System::IO::Stream>& stream);

private:
    /// The fields in the order of the bytes, for reading, writing and printing.
    template <class Block, class Self>
    static void Layout(Block& block, Self& self);

    unsigned char _slaveFlags;
    unsigned char _slaveType;
    unsigned char _maxDiagnosticDataLength;
    unsigned char _maxChannelDataLength;
    unsigned char _diagUpdDelay;
    unsigned char _alarmMode;
    unsigned char _additionalSlaveFlags;
    unsigned short _mSAC1Timeout;
    std::shared_ptr<ISlaveParameterData> _parameterData;
    std::shared_ptr<ISlaveConfigurationData> _configurationData;
    std::shared_ptr<ISlaveAddressTable> _addressTable;
    std::shared_ptr<ISlaveUserData> _userData;
    std::shared_ptr<ISlaveExtendedUserParameterData> _extendedUserParameterData;
};

} // namespace Vesk::Modules::DPVM::Config
