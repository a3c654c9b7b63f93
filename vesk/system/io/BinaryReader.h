// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/io/Stream.h"

namespace System::IO {

/// Reads unsigned numbers from a stream, in the byte order that it was made for. Every read that the stream
/// cannot fill is an EndOfStreamException.
class BinaryReader : public Object {
public:
    /// ArgumentNullException without a stream.
    static std::shared_ptr<BinaryReader> Create(std::shared_ptr<Stream> stream, bool bigEndian);

    unsigned char ReadUInt8();
    unsigned short ReadUInt16();
    unsigned int ReadUInt32();

protected:
    BinaryReader(std::shared_ptr<Stream> stream, bool bigEndian);

    const std::shared_ptr<Stream> _stream;

private:
    unsigned int Read(int bytes);

    bool _bigEndian;
};

} // namespace System::IO
