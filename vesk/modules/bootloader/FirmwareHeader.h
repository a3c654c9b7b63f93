// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/bootloader/TarnFile.h"

#include <array>

namespace Vesk::Modules::Bootloader {

/// The header of a firmware file, before its program. Every number is big-endian.
struct FirmwareHeader {
    static constexpr int SIZE = 128;
    static constexpr unsigned short MAGIC = 0xA55A;
    static constexpr int RESERVED_SIZE = 14;

    std::array<char, 64> description{}; // ASCII, filled up with zeros
    FirmwareType_e type = FirmwareType_e::APPLICATION_FIRMWARE;
    unsigned short moduleId = 0;
    unsigned short eraseSegments = 0;
    unsigned int addressBurnStart = 0; // flash address of the first program byte
    unsigned int programLength = 0;
    unsigned int crcStart = 0;  // flash address of the first byte under the checksum
    unsigned int crcLength = 0; // bytes under the checksum
    unsigned short crc = 0;     // CRC-16
    unsigned char oldestMajor = 0;
    unsigned char oldestMinor = 0;
    std::array<unsigned char, 22> eraseSegmentsCount{};

    /// Takes `form`, which reads or writes, through the fields in the order of their bytes. Its operations
    /// get the field, or the value that must be there.
    template <class Form>
    constexpr void Pass(Form& form) {
        form.Text(description);
        form.Magic(MAGIC);
        form.Type(type);
        form.Number(moduleId);
        form.Number(eraseSegments);
        form.Number(addressBurnStart);
        form.Number(programLength);
        form.Number(crcStart);
        form.Number(crcLength);
        form.Number(crc);
        form.Number(oldestMajor);
        form.Number(oldestMinor);
        for (unsigned char& count : eraseSegmentsCount)
            form.Number(count);
        for (int i = 0; i < RESERVED_SIZE; ++i)
            form.Zero(i);
    }
};

/// The form that counts the bytes.
struct FirmwareHeaderSize {
    constexpr void Text(const auto& field) { size += sizeof(field); }

    constexpr void Magic(const auto& field) { size += sizeof(field); }

    constexpr void Type(const auto& field) { size += sizeof(field); }

    constexpr void Number(const auto& field) { size += sizeof(field); }

    constexpr void Zero(int) { ++size; }

    std::size_t size = 0;

    static constexpr std::size_t Of(FirmwareHeader header) {
        FirmwareHeaderSize form;
        header.Pass(form);
        return form.size;
    }
};

static_assert(FirmwareHeaderSize::Of({}) == FirmwareHeader::SIZE);

} // namespace Vesk::Modules::Bootloader
