// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/io/Stream.h"

#include <vector>

namespace System::IO {

/// A stream in memory: one that grows as it is written, or one over an array that keeps its length.
class MemoryStream : public Stream {
public:
    /// An empty stream that grows.
    static std::shared_ptr<MemoryStream> Create();
    /// A stream over all of `array`, at position 0; a write beyond its end is an IOException.
    static std::shared_ptr<MemoryStream> Create(std::shared_ptr<IArray<unsigned char>> array);

    std::int64_t Length() override;
    std::int64_t Position() override;
    void Seek(std::int64_t offset, SeekOrigin origin) override;
    int Read(const std::shared_ptr<IArray<unsigned char>>& array, int offset, int count) override;
    int ReadByte() override;
    void Write(const std::shared_ptr<IArray<unsigned char>>& array, int offset, int count) override;
    void WriteByte(unsigned char value) override;

    /// A copy of everything in the stream.
    std::shared_ptr<IArray<unsigned char>> ToArray();

protected:
    explicit MemoryStream(std::shared_ptr<IArray<unsigned char>> array);

private:
    void Reserve(std::int64_t end) {
        if (end > _length)
            Grow(end);
    }

    void Grow(std::int64_t end);

    std::shared_ptr<IArray<unsigned char>> _array; // null for a stream that grows
    std::vector<unsigned char> _grown;
    unsigned char* _bytes = nullptr; // of the one or the other
    std::int64_t _length = 0;
    std::int64_t _position = 0;
};

} // namespace System::IO
