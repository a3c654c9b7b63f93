// SPDX-License-Identifier: MIT
#include "vesk/modules/bootloader/TarnFile.h"

#include "vesk/core/FormatArray.h"
#include "vesk/system/Convert.h"
#include "vesk/system/Exception.h"
#include "vesk/system/io/BinaryReader.h"
#include "vesk/system/io/FileStream.h"
#include "vesk/system/io/IOException.h"
#include "vesk/system/text/StringBuilder.h"

#include <limits>

namespace Vesk::Modules::Bootloader {

using System::Array;
using System::FormatException;
using System::IArray;
using System::String;
using System::IO::BinaryReader;
using System::IO::EndOfStreamException;
using System::IO::Stream;
using System::Text::StringBuilder;

static constexpr int DESCRIPTION_SIZE = 64;
static constexpr unsigned short MAGIC = 0xA55A;
static constexpr int ERASE_SEGMENTS_COUNT_SIZE = 22;
static constexpr int RESERVED_SIZE = 14;

static String ReadDescription(BinaryReader& reader) {
    std::string text;
    while (text.size() < DESCRIPTION_SIZE) {
        const unsigned char character = reader.ReadUInt8();
        if (character == 0)
            break;
        text += static_cast<char>(character);
    }
    return text;
}

static void ReadMagic(BinaryReader& reader) {
    const unsigned short magic = reader.ReadUInt16();
    if (magic != MAGIC)
        System::_env_throw(FormatException::Create(System::Convert::ToString(magic, 16)));
}

static FirmwareType_e ReadFirmwareType(BinaryReader& reader) {
    const auto type = static_cast<FirmwareType_e>(reader.ReadUInt16());
    switch (type) {
    case FirmwareType_e::BOOTLOADER_FIRMWARE:
    case FirmwareType_e::APPLICATION_FIRMWARE:
    case FirmwareType_e::CONFIGURATION_FIRMWARE:
        return type;
    }
    System::_env_throw(FormatException::Create(TarnFile::FirmwareTypeToString(type)));
}

static std::shared_ptr<IArray<unsigned char>> ReadEraseSegmentsCount(BinaryReader& reader) {
    const auto counts = Array<unsigned char>::Create(ERASE_SEGMENTS_COUNT_SIZE);
    for (int i = 0; i < ERASE_SEGMENTS_COUNT_SIZE; ++i)
        counts->Set(i, reader.ReadUInt8());
    return counts;
}

static void ReadReserved(BinaryReader& reader) {
    for (int i = 0; i < RESERVED_SIZE; ++i) {
        const unsigned char value = reader.ReadUInt8();
        if (value != 0)
            System::_env_throw(FormatException::Create(StringBuilder()
                                                           .Append("Unknown data in reserved[")
                                                           .Append(i)
                                                           .Append("]: ")
                                                           .Append(value)
                                                           .AppendLine()
                                                           .ToString()));
    }
}

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
    const auto reader = BinaryReader::Create(stream, true);
    const String description = ReadDescription(*reader);
    stream->Seek(DESCRIPTION_SIZE, System::IO::SeekOrigin::BEGIN);
    ReadMagic(*reader);
    const FirmwareType_e firmwareType = ReadFirmwareType(*reader);
    const unsigned short moduleId = reader->ReadUInt16();
    const unsigned short eraseSegments = reader->ReadUInt16();
    const unsigned int addressBurnStart = reader->ReadUInt32();
    const unsigned int programLength = reader->ReadUInt32();
    const unsigned int crcStart = reader->ReadUInt32();
    const unsigned int crcLength = reader->ReadUInt32();
    const unsigned short crc = reader->ReadUInt16();
    const unsigned char oldestMajor = reader->ReadUInt8();
    const unsigned char oldestMinor = reader->ReadUInt8();
    const auto eraseSegmentsCount = ReadEraseSegmentsCount(*reader);
    ReadReserved(*reader);
    return System::MakeShared<TarnFile>(description, firmwareType, moduleId, eraseSegments, addressBurnStart,
                                        crcStart, crcLength, crc, oldestMajor, oldestMinor,
                                        eraseSegmentsCount, ReadProgram(*stream, programLength));
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
    return StringBuilder().Append("UNKNOWN: ").AppendHex(static_cast<unsigned short>(type)).ToString();
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
