// SPDX-License-Identifier: MIT
#include "tools/vesk/files/FirmwareFile.h"

#include "tools/vesk/files/FileBytes.h"
#include "tools/vesk/text/Text.h"
#include "vesk/modules/bootloader/CRC16.h"
#include "vesk/system/io/MemoryStream.h"
#include "virtualmodule/flash/Firmware.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace VeskTool {

using Vesk::Modules::Bootloader::CRC16;
using Vesk::Modules::Bootloader::FirmwareHeader;
using Vesk::Modules::Bootloader::FirmwareType_e;
using Vesk::Modules::Bootloader::TarnFile;

using Byte = unsigned char;

namespace {

/// Writes the header of a firmware file.
struct HeaderWriter {
    void Text(std::span<const char> text) { bytes.insert(bytes.end(), text.begin(), text.end()); }

    void Magic(unsigned short value) { Number(value); }

    void Type(FirmwareType_e type) { Number(static_cast<unsigned short>(type)); }

    template <class Value>
    void Number(Value value) {
        for (std::size_t size = sizeof value; size-- > 0;)
            bytes.push_back(static_cast<Byte>(value >> 8 * size & 0xFF));
    }

    void Zero(int) { bytes.push_back(0); }

    std::vector<Byte> bytes;
};

} // namespace

/// Where a range of flash addresses lies in a program of `size` bytes that is burnt to `address`; nothing
/// when it is not inside.
static std::optional<std::size_t> PlaceInProgram(std::uint64_t start, std::uint64_t length,
                                                 std::uint64_t address, std::uint64_t size) {
    if (length == 0 || start < address || start + length > address + size)
        return std::nullopt;
    return static_cast<std::size_t>(start - address);
}

static unsigned short Checksum(const Byte* bytes, std::size_t count) {
    const auto crc = CRC16::Create();
    std::for_each(bytes, bytes + count, [&](Byte byte) { crc->Digest(byte); });
    return crc->Value;
}

std::vector<Byte> EncodeFirmwareFile(FirmwareHeader header, const Program& program) {
    const auto place =
        PlaceInProgram(header.crcStart, header.crcLength, header.addressBurnStart, program.size());
    if (!place)
        throw Failure("The checksum's range, " + std::to_string(header.crcLength) + " bytes from " +
                      Hex(header.crcStart) + " on, is not inside the program, " +
                      std::to_string(program.size()) + " bytes from " + Hex(header.addressBurnStart) + " on");
    header.programLength = static_cast<unsigned int>(program.size());
    header.crc = Checksum(program.data() + *place, header.crcLength);
    HeaderWriter writer;
    header.Pass(writer);
    writer.bytes.insert(writer.bytes.end(), program.begin(), program.end());
    return writer.bytes;
}

void Seal(Program& program) {
    HeaderWriter writer{std::move(program)};
    writer.Text(VirtualModule::SEAL_MARK);
    writer.Number(Checksum(writer.bytes.data(), writer.bytes.size()));
    program = std::move(writer.bytes);
}

namespace {

// Places in the header.
constexpr std::size_t MAGIC = 64;
constexpr std::size_t TYPE = 66;
constexpr std::size_t LENGTH = 76;
constexpr std::size_t RESERVED = 114;

std::uint32_t NumberAt(const std::vector<Byte>& bytes, std::size_t at, std::size_t size) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < size; ++i)
        number = number << 8 | bytes[at + i];
    return number;
}

/// How the form of a firmware file does not hold; or nothing.
std::string WrongFirmware(const std::vector<Byte>& bytes) {
    constexpr std::size_t header = FirmwareHeader::SIZE;
    if (bytes.size() >= MAGIC + 2 && NumberAt(bytes, MAGIC, 2) != FirmwareHeader::MAGIC)
        return "bytes 64 and 65 are " + Hex(NumberAt(bytes, MAGIC, 2)) +
               ", where a firmware file has 0xa55a" + LooksLike(bytes);
    if (bytes.size() < header)
        return "ends at byte " + std::to_string(bytes.size()) +
               ", in the header of a firmware file, which has " + std::to_string(header) + LooksLike(bytes);
    if (const auto type = NumberAt(bytes, TYPE, 2); type < 1 || type > 3)
        return "bytes 66 and 67 are the type " + Hex(type) +
               ", where a firmware file has 1 (bootloader), 2 (application) or 3 (configuration)";
    for (std::size_t at = RESERVED; at < header; ++at)
        if (bytes[at] != 0)
            return "byte " + std::to_string(at) + " is " + ByteText(bytes[at]) +
                   ", where the header of a firmware file has zero";
    const std::uint32_t length = NumberAt(bytes, LENGTH, 4);
    if (length > MAX_PROGRAM_SIZE)
        return "its header says a program of " + std::to_string(length) + " bytes, and a program has up to " +
               std::to_string(MAX_PROGRAM_SIZE);
    if (length > bytes.size() - header)
        return "ends at byte " + std::to_string(bytes.size()) + ", and its header says a program of " +
               std::to_string(length) + " bytes from byte " + std::to_string(header) + " on";
    return "";
}

} // namespace

FirmwareFile::FirmwareFile(const std::string& path)
    : _path(path), _bytes(ReadFile(path, FirmwareHeader::SIZE + MAX_PROGRAM_SIZE)) {}

std::shared_ptr<TarnFile> FirmwareFile::Content() const {
    if (const std::string wrong = WrongFirmware(_bytes); !wrong.empty())
        throw Failure(_path + ": " + wrong);
    try {
        return TarnFile::FromStream(
            System::IO::MemoryStream::Create(System::Array<unsigned char>::Create(_bytes)));
    } catch (const std::exception& exception) {
        throw FileFailure(_path, "", exception);
    }
}

void FirmwareFile::SetType(FirmwareType_e type) {
    _bytes.at(TYPE) = static_cast<Byte>(static_cast<unsigned int>(type) >> 8);
    _bytes.at(TYPE + 1) = static_cast<Byte>(static_cast<unsigned int>(type) & 0xFF);
}

Program LoadProgram(const std::string& path) {
    Program program = ReadFile(path, MAX_PROGRAM_SIZE);
    if (program.empty())
        throw Failure(path + ": is empty, and a program has 1 to " + std::to_string(MAX_PROGRAM_SIZE) +
                      " bytes");
    if (program.size() > MAX_PROGRAM_SIZE)
        throw Failure(path + ": has more than " + std::to_string(MAX_PROGRAM_SIZE) +
                      " bytes, the most that a program can have");
    return program;
}

std::optional<unsigned short> CoveredChecksum(const TarnFile& file) {
    System::IArray<Byte>& program = *file.ProgramData;
    const auto place = PlaceInProgram(file.CrcStart, file.CrcLength, file.AddressBurnStart,
                                      static_cast<std::uint64_t>(program.Count()));
    if (!place)
        return std::nullopt;
    return Checksum(program.Data() + *place, file.CrcLength);
}

std::string Damage(const std::string& path, const TarnFile& file, unsigned short covered) {
    return path + ": its checksum is " + Hex(file.Crc) + " and that of its program " + Hex(covered) +
           ", so it is damaged";
}

} // namespace VeskTool
