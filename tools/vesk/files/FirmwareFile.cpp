// SPDX-License-Identifier: MIT
#include "tools/vesk/files/FirmwareFile.h"

#include "tools/vesk/files/FileBytes.h"
#include "tools/vesk/text/Text.h"
#include "vesk/modules/bootloader/CRC16.h"
#include "vesk/system/io/FileStream.h"
#include "virtualmodule/flash/Firmware.h"

#include <algorithm>
#include <cstdint>

namespace VeskTool {

using System::Array;
using Vesk::Modules::Bootloader::CRC16;
using Vesk::Modules::Bootloader::TarnFile;

static constexpr std::size_t HEADER_SIZE = 128;
static constexpr unsigned short MAGIC = 0xA55A;
static constexpr std::size_t RESERVED_SIZE = 14;

using Byte = unsigned char;

static void Append(std::vector<Byte>& to, std::uint32_t value, int size) {
    while (size-- > 0)
        to.push_back(static_cast<Byte>(value >> 8 * size & 0xFF));
}

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
    return crc->Value();
}

std::vector<Byte> EncodeFirmwareFile(const FirmwareFacts& facts, const Program& program) {
    const auto place = PlaceInProgram(facts.crcStart, facts.crcLength, facts.address, program.size());
    if (!place)
        throw Failure("The checksum's range, " + std::to_string(facts.crcLength) + " bytes from " +
                      Hex(facts.crcStart) + " on, is not inside the program, " +
                      std::to_string(program.size()) + " bytes from " + Hex(facts.address) + " on");
    std::vector<Byte> bytes(facts.description.begin(), facts.description.end());
    bytes.resize(FirmwareFacts::MAX_DESCRIPTION);
    Append(bytes, MAGIC, 2);
    Append(bytes, static_cast<std::uint16_t>(facts.type), 2);
    Append(bytes, facts.moduleId, 2);
    Append(bytes, facts.eraseSegments, 2);
    Append(bytes, facts.address, 4);
    Append(bytes, static_cast<std::uint32_t>(program.size()), 4);
    Append(bytes, facts.crcStart, 4);
    Append(bytes, facts.crcLength, 4);
    Append(bytes, Checksum(program.data() + *place, facts.crcLength), 2);
    Append(bytes, facts.oldestMajor, 1);
    Append(bytes, facts.oldestMinor, 1);
    bytes.insert(bytes.end(), facts.eraseSegmentsCount.begin(), facts.eraseSegmentsCount.end());
    bytes.resize(bytes.size() + RESERVED_SIZE);
    bytes.insert(bytes.end(), program.begin(), program.end());
    return bytes;
}

void Seal(Program& program) {
    program.insert(program.end(), VirtualModule::SEAL_MARK.begin(), VirtualModule::SEAL_MARK.end());
    Append(program, Checksum(program.data(), program.size()), 2);
}

std::shared_ptr<TarnFile> LoadFirmwareFile(const std::string& path) {
    static constexpr auto* HINT = " (a firmware file has a header of 128 bytes, with the number 0xa55a at "
                                  "byte 64, and then its program; this is something else or damaged)";
    try {
        const auto file =
            System::IO::FileStream::Create(path, System::IO::FileMode::OPEN, System::IO::FileAccess::READ);
        const auto limit = static_cast<std::int64_t>(HEADER_SIZE + MAX_PROGRAM_SIZE);
        if (file->Length() > limit)
            throw Failure(path + ": " + std::to_string(file->Length()) +
                          " bytes; a firmware file has up to " + std::to_string(limit));
        return TarnFile::FromStream(file);
    } catch (const Failure&) {
        throw;
    } catch (const std::exception& exception) {
        throw FileFailure(path, exception, [] { return HINT; });
    }
}

Program LoadProgram(const std::string& path) {
    const auto check = [&path](std::int64_t length) {
        if (length < 1 || length > static_cast<std::int64_t>(MAX_PROGRAM_SIZE))
            throw Failure(path + ": " + std::to_string(length) + " bytes; a program has 1 to " +
                          std::to_string(MAX_PROGRAM_SIZE));
    };
    try {
        return ReadFile(path, check);
    } catch (const Failure&) {
        throw;
    } catch (const std::exception& exception) {
        throw FileFailure(path, exception, [] { return ""; });
    }
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
