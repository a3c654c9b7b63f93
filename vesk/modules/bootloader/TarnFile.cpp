// SPDX-License-Identifier: MIT
#include "vesk/modules/bootloader/TarnFile.h"

#include "vesk/core/FormatArray.h"
#include "vesk/core/TextOf.h"
#include "vesk/modules/bootloader/FirmwareHeader.h"
#include "vesk/system/Convert.h"
#include "vesk/system/Exception.h"
#include "vesk/system/io/BinaryReader.h"
#include "vesk/system/io/FileStream.h"
#include "vesk/system/io/IOException.h"
#include "vesk/system/text/StringBuilder.h"

#include <algorithm>
#include <limits>
#include <span>
#include <vector>

namespace Vesk::Modules::Bootloader {

using System::Array;
using System::FormatException;
using System::IArray;
using System::String;
using System::IO::BinaryReader;
using System::IO::EndOfStreamException;
using System::IO::Stream;
using System::Text::StringBuilder;

namespace {

/// Reads the header of a firmware file, from the start of the stream.
class HeaderReader {
public:
    explicit HeaderReader(std::shared_ptr<Stream> stream)
        : _reader(BinaryReader::Create(stream, true)), _stream(std::move(stream)) {}

    /// Up to its first zero; what is behind that does not count.
    void Text(std::span<char> text) {
        for (char& character : text)
            if ((character = static_cast<char>(_reader->ReadUInt8())) == 0)
                break;
        _stream->Seek(static_cast<std::int64_t>(text.size()), System::IO::SeekOrigin::BEGIN);
    }

    void Magic(unsigned short expected) {
        const unsigned short magic = _reader->ReadUInt16();
        if (magic != expected)
            System::_env_throw(FormatException::Create(System::Convert::ToString(magic, 16)));
    }

    void Type(FirmwareType_e& type) {
        type = static_cast<FirmwareType_e>(_reader->ReadUInt16());
        switch (type) {
        case FirmwareType_e::BOOTLOADER_FIRMWARE:
        case FirmwareType_e::APPLICATION_FIRMWARE:
        case FirmwareType_e::CONFIGURATION_FIRMWARE:
            return;
        }
        System::_env_throw(FormatException::Create(TarnFile::FirmwareTypeToString(type)));
    }

    void Number(unsigned char& value) { value = _reader->ReadUInt8(); }

    void Number(unsigned short& value) { value = _reader->ReadUInt16(); }

    void Number(unsigned int& value) { value = _reader->ReadUInt32(); }

    void Zero(int index) {
        const unsigned char value = _reader->ReadUInt8();
        if (value != 0)
            System::_env_throw(FormatException::Create("Unknown data in reserved[" + std::to_string(index) +
                                                       "]: " + std::to_string(value) + "\n"));
    }

private:
    std::shared_ptr<BinaryReader> _reader;
    std::shared_ptr<Stream> _stream;
};

} // namespace

/// Nothing is allocated before the stream is known to hold it: a damaged length must not cost 2 GiB.
static std::shared_ptr<IArray<unsigned char>> ReadProgram(Stream& stream, unsigned int length) {
    if (length > static_cast<unsigned int>(std::numeric_limits<int>::max()))
        System::_throw_not_less_exception(static_cast<int>(length), 0, "size", "zero");
    const std::int64_t available = stream.Length() - stream.Position();
    if (length > available)
        System::_env_throw(EndOfStreamException::Create("Stream holds " + std::to_string(available) + " of " +
                                                        std::to_string(length) + " program bytes"));
    const int count = static_cast<int>(length);
    const auto program = Array<unsigned char>::Create(count);
    const int got = stream.Read(program, 0, count);
    if (got != count)
        System::_env_throw(EndOfStreamException::Create("Stream ends after " + std::to_string(got) + " of " +
                                                        std::to_string(count) + " program bytes"));
    return program;
}

std::shared_ptr<TarnFile> TarnFile::FromPath(const String& path) {
    return FromStream(
        System::IO::FileStream::Create(path, System::IO::FileMode::OPEN, System::IO::FileAccess::READ));
}

std::shared_ptr<TarnFile> TarnFile::FromStream(const std::shared_ptr<Stream>& stream) {
    FirmwareHeader header;
    HeaderReader reader(stream);
    header.Pass(reader);
    const auto& text = header.description;
    const auto& counts = header.eraseSegmentsCount;
    return System::MakeShared<TarnFile>(
        std::string(text.begin(), std::find(text.begin(), text.end(), '\0')), header.type, header.moduleId,
        header.eraseSegments, header.addressBurnStart, header.crcStart, header.crcLength, header.crc,
        header.oldestMajor, header.oldestMinor,
        Array<unsigned char>::Create(std::vector<unsigned char>(counts.begin(), counts.end())),
        ReadProgram(*stream, header.programLength));
}

TarnFile::TarnFile(String description, FirmwareType_e firmwareType, unsigned short moduleId,
                   unsigned short eraseSegments, unsigned int addressBurnStart, unsigned int crcStart,
                   unsigned int crcLength, unsigned short crc, unsigned char oldestMajor,
                   unsigned char oldestMinor, std::shared_ptr<IArray<unsigned char>> eraseSegmentsCount,
                   std::shared_ptr<IArray<unsigned char>> programData)
    : Description(std::move(description)),
      FirmwareType(firmwareType),
      ModuleId(moduleId),
      EraseSegments(eraseSegments),
      AddressBurnStart(addressBurnStart),
      CrcStart(crcStart),
      CrcLength(crcLength),
      Crc(crc),
      OldestMajor(oldestMajor),
      OldestMinor(oldestMinor),
      EraseSegmentsCount(std::move(eraseSegmentsCount)),
      ProgramData(std::move(programData)) {}

String TarnFile::FirmwareTypeToString(FirmwareType_e type) {
    switch (type) {
    case FirmwareType_e::BOOTLOADER_FIRMWARE:
        return "BOOTLOADER_FIRMWARE";
    case FirmwareType_e::APPLICATION_FIRMWARE:
        return "APPLICATION_FIRMWARE";
    case FirmwareType_e::CONFIGURATION_FIRMWARE:
        return "CONFIGURATION_FIRMWARE";
    }
    return TextOf("UNKNOWN: ", InHex{static_cast<unsigned short>(type)});
}

String TarnFile::ToString() const {
    StringBuilder text;
    const auto hex = [&text](const char* name, std::uint64_t value) {
        text.Append(name).Append(": 0x").AppendHex(value).AppendLine();
    };
    text.Append("Description: ").AppendLine(Description);
    text.Append("Firmware Type: ").AppendLine(FirmwareTypeToString(FirmwareType));
    hex("Module ID", ModuleId);
    hex("Erase Segments", EraseSegments);
    hex("Address burn start", AddressBurnStart);
    hex("Program length", static_cast<unsigned int>(ProgramData->Count()));
    hex("CRC Start", CrcStart);
    hex("CRC Length", CrcLength);
    hex("CRC", Crc);
    text.Append("Oldest major: ").Append(OldestMajor).AppendLine();
    text.Append("Oldest minor: ").Append(OldestMinor).AppendLine();
    text.Append("Erase segments count: ")
        .AppendLine(FormatArray(EraseSegmentsCount, 0, EraseSegmentsCount->Count(), nullptr, 2, 16));
    return text.ToString();
}

} // namespace Vesk::Modules::Bootloader
