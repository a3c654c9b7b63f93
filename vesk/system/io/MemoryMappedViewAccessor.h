// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Array.h"

#include <algorithm>
#include <cstdint>
#include <memory>

namespace System::IO {

/// Byte access to a mapping. The other side is hardware, so every byte is one access of its own through a
/// volatile pointer, in ascending order; nothing is cached, merged or repeated.
class MemoryMappedViewAccessor : public Object {
public:
    int Capacity() const { return _capacity; }

    /// The byte at `offset`. ArgumentOutOfRangeException outside 0 .. Capacity() - 1.
    unsigned char ReadByte(int offset) const {
        Check(offset);
        return _bytes[offset];
    }

    /// Writes the byte at `offset`. ArgumentOutOfRangeException outside 0 .. Capacity() - 1.
    void WriteByte(int offset, unsigned char value) {
        Check(offset);
        _bytes[offset] = value;
    }

    /// Copies up to `count` bytes from `offset` on into `array` from `arrayOffset` on; bytes beyond the end
    /// of the view are left out. `offset` may be Capacity(). ArgumentNullException without an array,
    /// ArgumentOutOfRangeException for a range outside the view or the array.
    void ReadArray(int offset, const std::shared_ptr<IArray<unsigned char>>& array, int arrayOffset,
                   int count) const;

    /// The opposite of ReadArray, with the same bounds.
    void WriteArray(int offset, const std::shared_ptr<IArray<unsigned char>>& array, int arrayOffset,
                    int count);

    /// Ends the view: every later access is a NullReferenceException.
    void Dispose() { _bytes = nullptr; }

protected:
    MemoryMappedViewAccessor(volatile unsigned char* bytes, int capacity)
        : _bytes(bytes), _capacity(capacity) {}

private:
    void Check(int offset) const {
        if (!_bytes || offset < 0 || offset >= _capacity)
            ThrowBadAccess(offset);
    }

    /// How many bytes of the block lie inside the view.
    int CheckBlock(int offset, const IArray<unsigned char>* array, int arrayOffset, int count) const {
        if (!_bytes || offset < 0 || offset > _capacity || !array || arrayOffset < 0 || count < 0 ||
            static_cast<std::int64_t>(arrayOffset) + count > array->Count())
            ThrowBadBlock(offset, array, arrayOffset, count);
        return std::min(count, _capacity - offset);
    }

    [[noreturn]] void ThrowBadAccess(int offset) const;
    [[noreturn]] void ThrowBadBlock(int offset, const IArray<unsigned char>* array, int arrayOffset,
                                    int count) const;

    volatile unsigned char* _bytes; // null once disposed
    int _capacity;
};

} // namespace System::IO
