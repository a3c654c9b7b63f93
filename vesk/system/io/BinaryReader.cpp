// SPDX-License-Identifier: MIT
#include "vesk/system/io/BinaryReader.h"

#include "vesk/system/io/IOException.h"

namespace System::IO {

std::shared_ptr<BinaryReader> BinaryReader::Create(std::shared_ptr<Stream> stream, bool bigEndian) {
    if (!stream)
        _throw_argument_null_exception("stream");
    return MakeShared<BinaryReader>(std::move(stream), bigEndian);
}

BinaryReader::BinaryReader(std::shared_ptr<Stream> stream, bool bigEndian)
    : _stream(std::move(stream)), _bigEndian(bigEndian) {}

unsigned char BinaryReader::ReadUInt8() {
    return static_cast<unsigned char>(Read(1));
}

unsigned short BinaryReader::ReadUInt16() {
    return static_cast<unsigned short>(Read(2));
}

unsigned int BinaryReader::ReadUInt32() {
    return Read(4);
}

unsigned int BinaryReader::Read(int bytes) {
    unsigned int value = 0;
    for (int i = 0; i < bytes; ++i) {
        const int byte = _stream->ReadByte();
        if (byte < 0)
            _env_throw(
                EndOfStreamException::Create("Stream ends at byte " + std::to_string(_stream->Position())));
        const int shift = 8 * (_bigEndian ? bytes - 1 - i : i);
        value |= static_cast<unsigned int>(byte) << shift;
    }
    return value;
}

} // namespace System::IO
