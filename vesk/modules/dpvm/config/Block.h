// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/io/BinaryReader.h"
#include "vesk/system/io/BinaryWriter.h"
#include "vesk/system/text/StringBuilder.h"

/// What all configuration records have in common: a block that begins with its own length, 16 bits, most
/// significant byte first like every number in it. Each record names its fields once, in the order of the
/// bytes, and hands them to a BlockReader, a BlockWriter or a BlockText.
namespace Vesk::Modules::DPVM::Config {

/// Fills `count` bytes of `array` from `offset` on from the stream. EndOfStreamException where it has fewer.
void ReadExactly(const std::shared_ptr<System::IO::Stream>& stream,
                 const std::shared_ptr<System::IArray<unsigned char>>& array, int offset, int count);

/// The lengths that a kind of block may have, in bytes.
class BlockLength {
public:
    static constexpr BlockLength Exactly(unsigned int length) { return {length, length, true}; }

    static constexpr BlockLength Between(unsigned int low, unsigned int high) { return {low, high, false}; }

    /// ConfigException for a length that the block may not have.
    void Check(const char* name, unsigned int length) const;

private:
    constexpr BlockLength(unsigned int low, unsigned int high, bool fixed)
        : _low(low), _high(high), _fixed(fixed) {}

    unsigned int _low;
    unsigned int _high;
    bool _fixed;
};

/// Reads the fields of one block from the stream's position on.
class BlockReader : public System::IO::BinaryReader {
public:
    /// Reads the block's length and checks it. ArgumentNullException without a stream.
    BlockReader(const std::shared_ptr<System::IO::Stream>& stream, BlockLength limits);

    void Field(const char* label, unsigned char& value);
    void Field(const char* label, unsigned short& value);
    void Field(const char* label, unsigned int& value);
    /// `width` characters, the zero bytes that pad the text included.
    void Text(const char* label, System::String& text, int width);
    /// Skips bytes without looking at them.
    void Reserved(int count);
    /// The rest of the block. If the stream has less, Finish tells.
    void Bytes(const char* label, std::shared_ptr<System::IArray<unsigned char>>& bytes);
    /// The rest of the block. EndOfStreamException if the stream has less.
    void EveryByte(const char* label, std::shared_ptr<System::IArray<unsigned char>>& bytes);
    std::shared_ptr<System::IArray<unsigned short>> Words(int count);

    template <class Record, class Interface>
    void Nested(const char*, std::shared_ptr<Interface>& record) {
        record = Record::FromStream(_stream);
    }

    /// Skips the byte that brings the next block to an even place; the block's length does not count it.
    void Pad();
    /// Checks that the block was as long as it said.
    void Finish();

private:
    std::int64_t Taken() const { return _stream->Position() - _start; }

    std::shared_ptr<System::IArray<unsigned char>> Rest() const;

    std::int64_t _start;
    int _pads = 0;
    unsigned int _length;
};

/// Writes the fields of one block to the stream's position on.
class BlockWriter : public System::IO::BinaryWriter {
public:
    /// Leaves room for the length. ArgumentNullException without a stream.
    BlockWriter(const std::shared_ptr<System::IO::Stream>& stream, BlockLength limits);

    void Field(const char* label, unsigned char value);
    void Field(const char* label, unsigned short value);
    void Field(const char* label, unsigned int value);
    /// The text's bytes, then zero bytes up to `width`; a longer text is written whole.
    void Text(const char* label, const System::String& text, int width);
    /// Writes zero bytes.
    void Reserved(int count);
    void Bytes(const char* label, const std::shared_ptr<System::IArray<unsigned char>>& bytes);
    void Words(const std::shared_ptr<System::IArray<unsigned short>>& words);

    template <class Record, class Interface>
    void Nested(const char*, const std::shared_ptr<Interface>& record) {
        record->ToStream(_stream);
    }

    /// Writes the byte that brings the next block to an even place; the block's length does not count it.
    void Pad();
    /// Checks the length that came about and writes it to its place.
    void Finish();

private:
    std::int64_t _start;
    int _pads = 0;
    BlockLength _limits;
};

/// Prints the fields of one block, a line each.
class BlockText {
public:
    void Field(const char* label, unsigned int value);
    void Text(const char* label, const System::String& text, int width);
    void Bytes(const char* label, const std::shared_ptr<System::IArray<unsigned char>>& bytes);
    void Words(const char* label, const std::shared_ptr<System::IArray<unsigned short>>& words);

    template <class Record, class Interface>
    void Nested(const char* label, const std::shared_ptr<Interface>& record) {
        _text.AppendLine().Append(label).AppendLine("{").Append(record->ToString()).AppendLine("}");
    }

    void Reserved(int) {}

    void Pad() {}

    System::String ToString() const { return _text.ToString(); }

private:
    System::Text::StringBuilder _text;
};

} // namespace Vesk::Modules::DPVM::Config
