// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/bootloader/FirmwareHeader.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace VeskTool {

using Program = std::vector<unsigned char>;

/// What fits into one download: 65535 frames of 256 bytes.
inline constexpr std::size_t MAX_PROGRAM_SIZE = std::size_t{65535} * 256;

/// The bytes of the firmware file: the header, whose length and checksum follow from the program and are not
/// taken from `header`, and the program. Failure when the range under the checksum is not inside the program.
std::vector<unsigned char> EncodeFirmwareFile(Vesk::Modules::Bootloader::FirmwareHeader header,
                                              const Program& program);

/// Ends the program in the seal that the bootloader of the virtual module checks: a mark and the CRC-16 of
/// everything before it.
void Seal(Program& program);

/// A firmware file as it was read from `path`, or from standard input for "-". Failure, which names the file
/// and says what is wrong with it and where, when it cannot be read or is none.
class FirmwareFile {
public:
    explicit FirmwareFile(const std::string& path);

    std::shared_ptr<Vesk::Modules::Bootloader::TarnFile> Content() const;

    /// Lets it be a file of that type from now on.
    void SetType(Vesk::Modules::Bootloader::FirmwareType_e type);

private:
    std::string _path;
    std::vector<unsigned char> _bytes;
};

/// Reads a program image of 1 to MAX_PROGRAM_SIZE bytes; Failure like FirmwareFile.
Program LoadProgram(const std::string& path);

/// The CRC-16 of those program bytes that the file's checksum is said to cover; nothing when the range is not
/// inside the program.
std::optional<unsigned short> CoveredChecksum(const Vesk::Modules::Bootloader::TarnFile& file);

/// In words for people: `covered` is not the checksum that the file at `path` says it has.
std::string Damage(const std::string& path, const Vesk::Modules::Bootloader::TarnFile& file,
                   unsigned short covered);

} // namespace VeskTool
