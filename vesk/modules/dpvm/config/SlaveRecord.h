// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/config/ISlaveRecord.h"
#include "vesk/modules/dpvm/config/SlaveBlocks.h"

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

    /// Gives `block` every field with its name, in the order of the bytes.
    template <class Block>
    void ShowFields(Block& block) const {
        Layout(block, *this);
    }

protected:
    explicit SlaveRecord(const std::shared_ptr<System::IO::Stream>& stream);

    /// Takes every field from `block`, which gets their names, in the order of the bytes.
    template <class Block>
    explicit SlaveRecord(Block& block) {
        Layout(block, *this);
    }

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

template <class Block, class Self>
void SlaveRecord::Layout(Block& block, Self& self) {
    block.Field("slaveFlags", self._slaveFlags);
    block.Field("slaveType", self._slaveType);
    block.Field("maxDiagnosticDataLength", self._maxDiagnosticDataLength);
    block.Reserved(1);
    block.Field("maxChannelDataLength", self._maxChannelDataLength);
    block.Field("diagUpdDelay", self._diagUpdDelay);
    block.Field("alarmMode", self._alarmMode);
    block.Field("additionalSlaveFlags", self._additionalSlaveFlags);
    block.Field("mSAC1Timeout", self._mSAC1Timeout);
    block.Reserved(4);
    block.template Nested<SlaveParameterData>("Parameter data", self._parameterData);
    block.Pad();
    block.template Nested<SlaveConfigurationData>("Configuration data", self._configurationData);
    block.Pad();
    // The other blocks are never odd.
    block.template Nested<SlaveAddressTable>("Address table", self._addressTable);
    block.template Nested<SlaveUserData>("User data", self._userData);
    block.template Nested<SlaveExtendedUserParameterData>("Extended user data",
                                                          self._extendedUserParameterData);
}

} // namespace Vesk::Modules::DPVM::Config
