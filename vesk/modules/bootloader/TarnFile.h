// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Array.h"
#include "vesk/system/io/Stream.h"

#include <memory>

namespace Vesk::Modules::Bootloader {

/// What a firmware file holds.
enum class FirmwareType_e : unsigned short {
    BOOTLOADER_FIRMWARE = 1,
    APPLICATION_FIRMWARE = 2,
    CONFIGURATION_FIRMWARE = 3
};

/// A firmware file: a 128-byte header that describes a program image, and the image. All of it is in memory
/// and never changes. The checksum and the versions that the file states are not checked here; the module's
/// bootloader does that at the end of a download.
class TarnFile : public System::Object {
public:
    /// Reads the file at `path`. FileNotFoundException or IOException when it cannot be read, otherwise like
    /// FromStream.
    static std::shared_ptr<TarnFile> FromPath(const System::String& path);

    /// Reads a firmware file from `stream`, which stands at its start. FormatException for an unknown magic
    /// or firmware type and for reserved bytes that are not 0, ArgumentOutOfRangeException for a program of
    /// 2^31 bytes or more, EndOfStreamException when the stream ends before the header or the program does.
    static std::shared_ptr<TarnFile> FromStream(const std::shared_ptr<System::IO::Stream>& stream);

    /// The constant's name, or "UNKNOWN: " and the value in hexadecimal.
    static System::String FirmwareTypeToString(FirmwareType_e type);

    /// One line per field of the header.
    System::String ToString() const override;

    const System::String Description; // up to 64 characters
    const FirmwareType_e FirmwareType;
    const unsigned short ModuleId;
    const unsigned short EraseSegments;
    const unsigned int AddressBurnStart; // flash address of the first program byte
    const unsigned int CrcStart;         // flash address of the first byte under the checksum
    const unsigned int CrcLength;        // bytes under the checksum
    const unsigned short Crc;
    const unsigned char OldestMajor; // oldest version that the image is compatible with
    const unsigned char OldestMinor;
    const std::shared_ptr<System::IArray<unsigned char>> EraseSegmentsCount; // 22 bytes
    const std::shared_ptr<System::IArray<unsigned char>> ProgramData;

protected:
    TarnFile(System::String description, FirmwareType_e firmwareType, unsigned short moduleId,
             unsigned short eraseSegments, unsigned int addressBurnStart, unsigned int crcStart,
             unsigned int crcLength, unsigned short crc, unsigned char oldestMajor, unsigned char oldestMinor,
             std::shared_ptr<System::IArray<unsigned char>> eraseSegmentsCount,
             std::shared_ptr<System::IArray<unsigned char>> programData);
};

} // namespace Vesk::Modules::Bootloader
