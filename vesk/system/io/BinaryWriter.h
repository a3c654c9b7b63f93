// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/io/Stream.h"

namespace System::IO {

/// Writes unsigned numbers to a stream, most significant byte first.
class BinaryWriter : public Object {
public:
    /// ArgumentNullException without a stream.
    static std::shared_ptr<BinaryWriter> Create(std::shared_ptr<Stream> stream);

    void WriteUInt8(unsigned char value);
    void WriteUInt16(unsigned short value);
    void WriteUInt32(unsigned int value);

protected:
    explicit BinaryWriter(std::shared_ptr<Stream> stream);

    const std::shared_ptr<Stream> _stream;
};

} // namespace System::IO
