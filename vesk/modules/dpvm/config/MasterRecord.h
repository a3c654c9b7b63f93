// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/config/IMasterRecord.h"
#include "vesk/modules/dpvm/config/MasterUserData.h"

namespace Vesk::Modules::DPVM::Config {

/// A master record as read from its binary form, 96 bytes.
class MasterRecord : public IMasterRecord {
public:
    /// Reads the block at the stream's position and leaves the stream behind it. ConfigException for a length
    /// that is not right, EndOfStreamException where the stream ends early.
    static std::shared_ptr<IMasterRecord> FromStream(const std::shared_ptr<System::IO::Stream>& stream);

    unsigned char StationAddress() const override { return _stationAddress; }

    unsigned char DataRate() const override { return _dataRate; }

    unsigned short SlotTime() const override { return _slotTime; }

    unsigned short MinStationDelayTime() const override { return _minStationDelayTime; }

    unsigned short MaxStationDelayTime() const override { return _maxStationDelayTime; }

    unsigned char QuietTime() const override { return _quietTime; }

    unsigned char SetupTime() const override { return _setupTime; }

    unsigned int TargetRotationTime() const override { return _targetRotationTime; }

    unsigned char GapUpdateFactor() const override { return _gapUpdateFactor; }

    unsigned char HighestStationAddress() const override { return _highestStationAddress; }

    unsigned char MaxRetryLimit() const override { return _maxRetryLimit; }

    unsigned char BpFlag() const override { return _bpFlag; }

    unsigned short MinSlaveInterval() const override { return _minSlaveInterval; }

    unsigned short PollTimeout() const override { return _pollTimeout; }

    unsigned short DataControlTime() const override { return _dataControlTime; }

    unsigned char AlarmMax() const override { return _alarmMax; }

    unsigned char MaxUserGlobalControl() const override { return _maxUserGlobalControl; }

    std::shared_ptr<IMasterUserData> UserData() const override { return _userData; }

    void ToStream(const std::shared_ptr<System::IO::Stream>& stream) const override;
    /// A line for each field.
    System::String ToString() const override;

    /// Gives `block` every field with its name, in the order of the bytes.
    template <class Block>
    void ShowFields(Block& block) const {
        Layout(block, *this);
    }

protected:
    explicit MasterRecord(const std::shared_ptr<System::IO::Stream>& stream);

    /// Takes every field from `block`, which gets their names, in the order of the bytes.
    template <class Block>
    explicit MasterRecord(Block& block) {
        Layout(block, *this);
    }

private:
    /// The fields in the order of the bytes, for reading, writing and printing.
    template <class Block, class Self>
    static void Layout(Block& block, Self& self);

    unsigned char _stationAddress;
    unsigned char _dataRate;
    unsigned short _slotTime;
    unsigned short _minStationDelayTime;
    unsigned short _maxStationDelayTime;
    unsigned char _quietTime;
    unsigned char _setupTime;
    unsigned int _targetRotationTime;
    unsigned char _gapUpdateFactor;
    unsigned char _highestStationAddress;
    unsigned char _maxRetryLimit;
    unsigned char _bpFlag;
    unsigned short _minSlaveInterval;
    unsigned short _pollTimeout;
    unsigned short _dataControlTime;
    unsigned char _alarmMax;
    unsigned char _maxUserGlobalControl;
    std::shared_ptr<IMasterUserData> _userData;
};

template <class Block, class Self>
void MasterRecord::Layout(Block& block, Self& self) {
    block.Field("stationAddress", self._stationAddress);
    block.Field("dataRate", self._dataRate);
    block.Field("slotTime", self._slotTime);
    block.Field("minStationDelayTime", self._minStationDelayTime);
    block.Field("maxStationDelayTime", self._maxStationDelayTime);
    block.Field("quietTime", self._quietTime);
    block.Field("setupTime", self._setupTime);
    block.Field("targetRotationTime", self._targetRotationTime);
    block.Field("gapUpdateFactor", self._gapUpdateFactor);
    block.Field("highestStationAddress", self._highestStationAddress);
    block.Field("maxRetryLimit", self._maxRetryLimit);
    block.Field("bpFlag", self._bpFlag);
    block.Field("minSlaveInterval", self._minSlaveInterval);
    block.Field("pollTimeout", self._pollTimeout);
    block.Field("dataControlTime", self._dataControlTime);
    block.Field("alarmMax", self._alarmMax);
    block.Field("maxUserGlobalControl", self._maxUserGlobalControl);
    block.Reserved(4);
    block.template Nested<MasterUserData>("User data", self._userData);
}

} // namespace Vesk::Modules::DPVM::Config
