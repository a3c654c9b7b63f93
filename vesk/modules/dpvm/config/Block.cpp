// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/config/Block.h"

#include "vesk/core/ErrorStrings.h"
#include "vesk/core/FormatArray.h"
#include "vesk/core/VeskException.h"
#include "vesk/system/io/IOException.h"
#include "vesk/system/text/Encoding.h"

namespace Vesk::Modules::DPVM::Config {

using System::Array;
using System::IArray;
using System::String;
using System::IO::SeekOrigin;
using System::IO::Stream;

void ReadExactly(const std::shared_ptr<Stream>& stream, const std::shared_ptr<IArray<unsigned char>>& array,
                 int offset, int count) {
    if (stream->Read(array, offset, count) != count)
        System::_env_throw(System::IO::EndOfStreamException::Create("Stream ends at byte " +
                                                                    std::to_string(stream->Position())));
}

void BlockLength::Check(const char* name, unsigned int length) const {
    if (length >= _low && length <= _high)
        return;
    System::_env_throw(ConfigException::Create(_fixed ? ErrorStrings::NotEqual(name, length, "expected", _low)
                                                      : ErrorStrings::NotInRange(name, length, _low, _high)));
}

// Reading

/// The stream, once it is sure that there is one.
static const std::shared_ptr<Stream>& Checked(const std::shared_ptr<Stream>& stream) {
    if (!stream)
        System::_throw_argument_null_exception("stream");
    return stream;
}

BlockReader::BlockReader(const std::shared_ptr<Stream>& stream, BlockLength limits)
    : BinaryReader(Checked(stream), true), _start(stream->Position()), _length(ReadUInt16()) {
    limits.Check("block length", _length);
}

void BlockReader::Field(const char*, unsigned char& value) {
    value = ReadUInt8();
}

void BlockReader::Field(const char*, unsigned short& value) {
    value = ReadUInt16();
}

void BlockReader::Field(const char*, unsigned int& value) {
    value = ReadUInt32();
}

void BlockReader::Text(const char*, String& text, int width) {
    const auto characters = Array<unsigned char>::Create(width);
    ReadExactly(_stream, characters, 0, width);
    text = System::Text::Encoding::ASCII::GetString(characters, 0, width);
}

void BlockReader::Reserved(int count) {
    _stream->Seek(count, SeekOrigin::CURRENT);
}

void BlockReader::Bytes(const char*, std::shared_ptr<IArray<unsigned char>>& bytes) {
    bytes = Rest();
    _stream->Read(bytes, 0, bytes->Count());
}

void BlockReader::EveryByte(const char*, std::shared_ptr<IArray<unsigned char>>& bytes) {
    bytes = Rest();
    ReadExactly(_stream, bytes, 0, bytes->Count());
}

std::shared_ptr<IArray<unsigned char>> BlockReader::Rest() const {
    return Array<unsigned char>::Create(static_cast<int>(_length - Taken()));
}

std::shared_ptr<IArray<unsigned short>> BlockReader::Words(int count) {
    const auto bytes = Array<unsigned char>::Create(2 * count);
    ReadExactly(_stream, bytes, 0, bytes->Count());
    const auto words = Array<unsigned short>::Create(count);
    const unsigned char* const byte = bytes->Data();
    unsigned short* const word = words->Data();
    for (int i = 0; i < count; ++i)
        word[i] = static_cast<unsigned short>(byte[2 * i] << 8 | byte[2 * i + 1]);
    return words;
}

void BlockReader::Pad() {
    if (Taken() % 2 == 0)
        return;
    _stream->Seek(1, SeekOrigin::CURRENT);
    ++_pads;
}

void BlockReader::Finish() {
    const auto length = static_cast<unsigned int>(Taken() - _pads);
    if (length != _length)
        System::_env_throw(
            ConfigException::Create(ErrorStrings::NotEqual("read length", length, "block length", _length)));
}

// Writing

BlockWriter::BlockWriter(const std::shared_ptr<Stream>& stream, BlockLength limits)
    : BinaryWriter(Checked(stream)), _start(stream->Position()), _limits(limits) {
    WriteUInt16(0);
}

void BlockWriter::Field(const char*, unsigned char value) {
    WriteUInt8(value);
}

void BlockWriter::Field(const char*, unsigned short value) {
    WriteUInt16(value);
}

void BlockWriter::Field(const char*, unsigned int value) {
    WriteUInt32(value);
}

void BlockWriter::Text(const char* label, const String& text, int width) {
    const auto characters = System::Text::Encoding::ASCII::GetBytes(text);
    Bytes(label, characters);
    Reserved(width - characters->Count());
}

void BlockWriter::Reserved(int count) {
    for (int i = 0; i < count; ++i)
        WriteUInt8(0);
}

void BlockWriter::Bytes(const char*, const std::shared_ptr<IArray<unsigned char>>& bytes) {
    _stream->Write(bytes, 0, bytes->Count());
}

void BlockWriter::Words(const std::shared_ptr<IArray<unsigned short>>& words) {
    const int count = words->Count();
    const auto bytes = Array<unsigned char>::Create(2 * count);
    unsigned char* const byte = bytes->Data();
    const unsigned short* const word = words->Data();
    for (int i = 0; i < count; ++i) {
        byte[2 * i] = static_cast<unsigned char>(word[i] >> 8);
        byte[2 * i + 1] = static_cast<unsigned char>(word[i] & 0xFF);
    }
    _stream->Write(bytes, 0, bytes->Count());
}

void BlockWriter::Pad() {
    if ((_stream->Position() - _start) % 2 == 0)
        return;
    WriteUInt8(0);
    ++_pads;
}

void BlockWriter::Finish() {
    const std::int64_t end = _stream->Position();
    const auto length = static_cast<unsigned int>(end - _start - _pads);
    _limits.Check("written length", length);
    _stream->Seek(_start, SeekOrigin::BEGIN);
    WriteUInt16(static_cast<unsigned short>(length));
    _stream->Seek(end, SeekOrigin::BEGIN);
}

// Printing

void BlockText::Field(const char* label, unsigned int value) {
    _text.Append(label).Append(": ").Append(value).AppendLine();
}

void BlockText::Text(const char* label, const String& text, int) {
    _text.Append(label).Append(": ").AppendLine(text);
}

void BlockText::Bytes(const char* label, const std::shared_ptr<IArray<unsigned char>>& bytes) {
    _text.Append(label).Append(": ").AppendLine(FormatArray(bytes, 0, bytes->Count(), nullptr, 2, 16));
}

void BlockText::Words(const char* label, const std::shared_ptr<IArray<unsigned short>>& words) {
    _text.Append(label).Append(": ").AppendLine(FormatArray(words, 0, words->Count(), nullptr, 4, 16));
}

} // namespace Vesk::Modules::DPVM::Config
