// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/io/Stream.h"

/// The five blocks of a slave record. ToStream writes a block at the position of a stream that can seek, and
/// leaves the stream behind it; a length that the block may not have is a ConfigException, and the block's
/// length field is 0 then.
namespace Vesk::Modules::DPVM::Config {

/// The data of the slave's parameterisation telegram; 9 to 246 bytes.
class ISlaveParameterData : public System::Object {
public:
    /// The station status octet.
    virtual unsigned char StationStatus() const = 0;
    virtual unsigned char WatchdogFactor1() const = 0;
    virtual unsigned char WatchdogFactor2() const = 0;
    virtual unsigned char MinStationDelayTimeResponder() const = 0;
    /// The ident number of the slave.
    virtual unsigned short IdentNr() const = 0;
    virtual unsigned char GroupIdent() const = 0;
    /// 0 to 237 bytes.
    virtual std::shared_ptr<System::IArray<unsigned char>> UserParameters() const = 0;

    virtual void ToStream(const std::shared_ptr<System::IO::Stream>& stream) const = 0;
};

/// The identifiers of the slave's configuration telegram; 3 to 246 bytes.
class ISlaveConfigurationData : public System::Object {
public:
    /// 1 to 244 bytes.
    virtual std::shared_ptr<System::IArray<unsigned char>> IdentifierBytes() const = 0;

    virtual void ToStream(const std::shared_ptr<System::IO::Stream>& stream) const = 0;
};

/// Where the slave's process data lies in the master's areas, an offset in bytes for each data byte; 6 to 980
/// bytes. Input is what goes to the bus.
class ISlaveAddressTable : public System::Object {
public:
    /// 0 to 244 offsets.
    virtual std::shared_ptr<System::IArray<unsigned short>> InputOffsetTable() const = 0;
    /// 0 to 244 offsets.
    virtual std::shared_ptr<System::IArray<unsigned short>> OutputOffsetTable() const = 0;

    virtual void ToStream(const std::shared_ptr<System::IO::Stream>& stream) const = 0;
};

/// How much process data the slave exchanges, in bytes; 6 bytes.
class ISlaveUserData : public System::Object {
public:
    virtual unsigned char InputDataLength() const = 0;
    virtual unsigned char OutputDataLength() const = 0;

    virtual void ToStream(const std::shared_ptr<System::IO::Stream>& stream) const = 0;
};

/// The slave's extended user parameters; 2 to 246 bytes.
class ISlaveExtendedUserParameterData : public System::Object {
public:
    /// 0 to 244 bytes.
    virtual std::shared_ptr<System::IArray<unsigned char>> ExtUsrPrmData() const = 0;

    virtual void ToStream(const std::shared_ptr<System::IO::Stream>& stream) const = 0;
};

} // namespace Vesk::Modules::DPVM::Config
