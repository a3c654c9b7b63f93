// SPDX-License-Identifier: MIT
#include "tools/vesk/files/FirmwareFile.h"

#include "tools/vesk/files/FileBytes.h"
#include "tools/vesk/text/Text.h"
#include "vesk/modules/bootloader/CRC16.h"
#include "vesk/system/io/FileStream.h"
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

std::shared_ptr<TarnFile> LoadFirmwareFile(const std::string& path) {
    static constexpr auto* HINT = " (a firmware file has a header of 128 bytes, with the number 0xa55a at "
                                  "byte 64, and then its program; this is something else or damaged)";
    try {
        const auto file =
            System::IO::FileStream::Create(path, System::IO::FileMode::OPEN, System::IO::FileAccess::READ);
        const auto limit = static_cast<std::int64_t>(FirmwareHeader::SIZE + MAX_PROGRAM_SIZE);
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
