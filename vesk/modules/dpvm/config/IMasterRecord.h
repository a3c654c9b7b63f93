// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/config/IMasterUserData.h"

namespace Vesk::Modules::DPVM::Config {

/// The master's own parameter set. Codes and times go to the module as they are; the module and the PROFIBUS
/// standard give them their meaning.
class IMasterRecord : public System::Object {
public:
    /// The master's own station address.
    virtual unsigned char StationAddress() const = 0;
    /// The code of the baud rate.
    virtual unsigned char DataRate() const = 0;
    virtual unsigned short SlotTime() const = 0;
    virtual unsigned short MinStationDelayTime() const = 0;
    virtual unsigned short MaxStationDelayTime() const = 0;
    virtual unsigned char QuietTime() const = 0;
    virtual unsigned char SetupTime() const = 0;
    virtual unsigned int TargetRotationTime() const = 0;
    virtual unsigned char GapUpdateFactor() const = 0;
    virtual unsigned char HighestStationAddress() const = 0;
    virtual unsigned char MaxRetryLimit() const = 0;
    /// The bus parameter flags.
    virtual unsigned char BpFlag() const = 0;
    virtual unsigned short MinSlaveInterval() const = 0;
    virtual unsigned short PollTimeout() const = 0;
    virtual unsigned short DataControlTime() const = 0;
    /// The maximum number of alarms.
    virtual unsigned char AlarmMax() const = 0;
    virtual unsigned char MaxUserGlobalControl() const = 0;

    virtual std::shared_ptr<IMasterUserData> UserData() const = 0;

    /// Writes the block, 96 bytes with the user data, at the position of a stream that can seek, and leaves
    /// the stream behind it. ConfigException when another length came about; the block's length field is 0
    /// then.
    virtual void ToStream(const std::shared_ptr<System::IO::Stream>& stream) const = 0;
};

} // namespace Vesk::Modules::DPVM::Config
