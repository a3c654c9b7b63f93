// SPDX-License-Identifier: MIT
#include "vesk/system/io/BinaryWriter.h"

namespace System::IO {

std::shared_ptr<BinaryWriter> BinaryWriter::Create(std::shared_ptr<Stream> stream) {
    if (!stream)
        _throw_argument_null_exception("stream");
    return MakeShared<BinaryWriter>(std::move(stream));
}

BinaryWriter::BinaryWriter(std::shared_ptr<Stream> stream) : _stream(std::move(stream)) {}

void BinaryWriter::WriteUInt8(unsigned char value) {
    _stream->WriteByte(value);
}

void BinaryWriter::WriteUInt16(unsigned short value) {
    WriteUInt8(static_cast<unsigned char>(value >> 8));
    WriteUInt8(static_cast<unsigned char>(value & 0xFF));
}

void BinaryWriter::WriteUInt32(unsigned int value) {
    WriteUInt16(static_cast<unsigned short>(value >> 16));
    WriteUInt16(static_cast<unsigned short>(value & 0xFFFF));
}

} // namespace System::IO
