// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/wires/Bytes.h"

#include <string_view>

namespace VirtualModule {

/// What a firmware calls itself.
struct Version {
    std::uint8_t major = 0;
    std::uint8_t minor = 0;
    std::uint8_t build = 0;

    bool operator==(const Version&) const = default;
};

/// A program image carries its version behind this stamp, as three bytes: major, minor, build. The stamp
/// begins anywhere in the image's first STAMP_RANGE bytes.
inline constexpr std::string_view VERSION_STAMP = "VT22-VERSION:";
inline constexpr std::size_t STAMP_RANGE = 1024;

/// The version that `image` carries. An image without a stamp keeps the major number of the firmware that it
/// replaces, and its checksum serves as minor (high byte) and build (low byte), so that two different images
/// can be told apart.
Version VersionOf(ByteView image, std::uint8_t replacedMajor);

/// A program image may end in a seal: this mark and the CRC-16 of everything before it and of the mark
/// itself, high byte first.
inline constexpr std::string_view SEAL_MARK = "VT22-CRC:";

/// False for an image whose seal does not fit, so that it is not what was once sealed. An image without a
/// seal is taken as it is; a mark with up to two wrong bytes is still one, because damage to the mark must
/// not pass for a missing seal.
bool SealHolds(ByteView image);

/// CRC-16/MODBUS.
std::uint16_t Crc16(ByteView bytes);

} // namespace VirtualModule
