// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/bootloader/TarnFile.h"

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace VeskTool {

using Program = std::vector<unsigned char>;

/// What fits into one download: 65535 frames of 256 bytes.
inline constexpr std::size_t MAX_PROGRAM_SIZE = std::size_t{65535} * 256;

/// What a firmware file says about its program. The checksum is not part of it: it follows from the program.
struct FirmwareFacts {
    static constexpr std::size_t MAX_DESCRIPTION = 64;

    std::string description; // up to MAX_DESCRIPTION characters
    Vesk::Modules::Bootloader::FirmwareType_e type =
        Vesk::Modules::Bootloader::FirmwareType_e::APPLICATION_FIRMWARE;
    unsigned short moduleId = 0;
    unsigned short eraseSegments = 0;
    unsigned int address = 0;   // flash address of the first program byte
    unsigned int crcStart = 0;  // flash address of the first byte under the checksum
    unsigned int crcLength = 0; // bytes under the checksum
    unsigned char oldestMajor = 0;
    unsigned char oldestMinor = 0;
    std::array<unsigned char, 22> eraseSegmentsCount{};
};

/// The bytes of the firmware file: the header with the checksum over the range that `facts` names, and the
/// program. Failure when the range is not inside the program.
std::vector<unsigned char> EncodeFirmwareFile(const FirmwareFacts& facts, const Program& program);

/// Ends the program in the seal that the bootloader of the virtual module checks: a mark and the CRC-16 of
/// everything before it.
void Seal(Program& program);

/// Reads the firmware file at `path`. Failure, which names the file and says what is wrong with it, when it
/// cannot be read.
std::shared_ptr<Vesk::Modules::Bootloader::TarnFile> LoadFirmwareFile(const std::string& path);

/// Reads a program image of 1 to MAX_PROGRAM_SIZE bytes; Failure like LoadFirmwareFile.
Program LoadProgram(const std::string& path);

/// The CRC-16 of those program bytes that the file's checksum is said to cover; nothing when the range is not
/// inside the program.
std::optional<unsigned short> CoveredChecksum(const Vesk::Modules::Bootloader::TarnFile& file);

/// In words for people: `covered` is not the checksum that the file at `path` says it has.
std::string Damage(const std::string& path, const Vesk::Modules::Bootloader::TarnFile& file,
                   unsigned short covered);

} // namespace VeskTool
