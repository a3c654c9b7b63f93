// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Array.h"

#include <memory>

namespace Vesk::HostInterface {

/// The only way to the module: byte-addressed access to its DPRAM and the three control lines.
///
/// Offsets are bytes from the start of the DPRAM; no alignment is required. 16-bit and 32-bit values are
/// big-endian and moved as single bytes in ascending order. Every access goes to the DPRAM at once: nothing
/// is cached, merged or repeated.
class IHostInterface : public System::Object {
public:
    /// Copies `count` bytes from DPRAM `offset` on into `array` from `arrayOffset` on; what lies beyond the
    /// end of the DPRAM is left out. `offset` may be Size(). ArgumentNullException without an array,
    /// ArgumentOutOfRangeException for a range outside the DPRAM or the array.
    virtual void Read(int offset, const std::shared_ptr<System::IArray<unsigned char>>& array,
                      int arrayOffset, int count) = 0;

    /// The value at `offset`. ArgumentOutOfRangeException at the first byte outside the DPRAM.
    virtual unsigned char ReadUInt8(int offset) = 0;
    virtual unsigned short ReadUInt16(int offset) = 0;
    virtual unsigned int ReadUInt32(int offset) = 0;

    /// The opposite of Read, with the same bounds.
    virtual void Write(int offset, const std::shared_ptr<System::IArray<unsigned char>>& array,
                       int arrayOffset, int count) = 0;

    /// Writes the value to `offset`. ArgumentOutOfRangeException at the first byte outside the DPRAM; the
    /// bytes before it are written.
    virtual void WriteUInt8(int offset, unsigned char value) = 0;
    virtual void WriteUInt16(int offset, unsigned short value) = 0;
    virtual void WriteUInt32(int offset, unsigned int value) = 0;

    /// Bytes of the DPRAM.
    virtual int Size() = 0;

    /// True while the module asserts its interrupt line.
    virtual bool VelmoIRQ() = 0;

    /// The module's next boot ends in its bootloader.
    virtual void BootloaderEnable() = 0;
    /// The module's next boot ends in its firmware.
    virtual void BootloaderDisable() = 0;

    /// Holds the module in reset.
    virtual void PowerOff() = 0;
    /// Releases the module from reset. Neither of the two waits.
    virtual void PowerOn() = 0;
};

} // namespace Vesk::HostInterface
