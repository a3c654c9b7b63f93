// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Array.h"
#include "vesk/system/Object.h"

#include <cstdint>
#include <memory>

namespace System::IO {

enum class SeekOrigin : int { BEGIN = 0, CURRENT = 1 };

/// A sequence of bytes with a position. Positions and lengths are bytes from the start.
class Stream : public Object {
public:
    virtual std::int64_t Length() = 0;
    virtual std::int64_t Position() = 0;
    /// Moves the position. IOException for a place before the start.
    virtual void Seek(std::int64_t offset, SeekOrigin origin) = 0;

    /// Reads up to `count` bytes into `array` from `offset` on and returns how many it got: fewer only at the
    /// end of the stream. ArgumentOutOfRangeException for a range outside the array.
    virtual int Read(const std::shared_ptr<IArray<unsigned char>>& array, int offset, int count) = 0;
    /// The next byte, or -1 at the end of the stream.
    virtual int ReadByte() = 0;

    /// Writes `count` bytes of `array` from `offset` on. IOException where the stream cannot take them.
    virtual void Write(const std::shared_ptr<IArray<unsigned char>>& array, int offset, int count) = 0;
    virtual void WriteByte(unsigned char value) = 0;
};

} // namespace System::IO
