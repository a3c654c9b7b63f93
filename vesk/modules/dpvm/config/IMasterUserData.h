// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/io/Stream.h"

namespace Vesk::Modules::DPVM::Config {

/// The user data of the master's parameter set. Codes and times go to the module as they are; the module and
/// the PROFIBUS standard give them their meaning.
class IMasterUserData : public System::Object {
public:
    /// The name of the Class 2 master: 32 characters, the zero characters that pad it included.
    virtual System::String Class2Name() const = 0;
    virtual unsigned short IdleTime1() const = 0;
    virtual unsigned short IdleTime2() const = 0;
    virtual unsigned int DeltaT_TR() const = 0;
    virtual unsigned short Repeater() const = 0;
    /// The groups used for Sync, a bit each.
    virtual unsigned char GroupSync() const = 0;
    /// The groups used for Freeze, a bit each.
    virtual unsigned char GroupFreeze() const = 0;
    virtual unsigned short IdentNr() const = 0;
    virtual unsigned char AddressingMode() const = 0;
    virtual unsigned char StorageFormat() const = 0;
    virtual unsigned int T_CT() const = 0;
    virtual unsigned char MaxT_SH() const = 0;

    /// Writes the block, 64 bytes, at the position of a stream that can seek, and leaves the stream behind
    /// it. ConfigException when another length came about; the block's length field is 0 then.
    virtual void ToStream(const std::shared_ptr<System::IO::Stream>& stream) const = 0;
};

} // namespace Vesk::Modules::DPVM::Config
