// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/hostinterface/MailboxDpRam.h"
#include "virtualmodule/wires/Bytes.h"

#include <array>

namespace VirtualModule {

enum class MessageType : std::uint8_t {
    APPLICATION = 1,
    FIELDBUS = 2,
    MEMORY = 3,
    BOOTLOADER = 4,
    RESET = 5,
    PRODUCTION = 6,
};

/// How a request ended. On the wire an error is one flag and the low four bits.
enum class ErrorCode : std::uint8_t {
    NO_ERROR = 0x00,
    MESSAGE_ID = 0x80,
    MESSAGE_TYPE = 0x81,
    COMMAND = 0x82,
    DATA_SIZE = 0x83,
    TOTAL_FRAME_COUNT = 0x84,
    FRAME_NUMBER = 0x85,
    OFFSET = 0x86,
    ADDRESS = 0x87,
    RESPONSE = 0x88,
    FLASH_CONFIG_ERROR = 0x89,
    INVALID_OTHER = 0x8F,
};

using ExtendedWords = std::array<std::uint16_t, Vesk::HostInterface::MailboxDpRam::EXTENDED_WORDS>;

/// One mailbox message, request or answer. What a host sends is kept as it came: `type` may be no
/// MessageType, and `dataSize` may promise more than the area holds.
struct Message {
    std::uint16_t id = 0;
    std::uint8_t type = 0;
    std::uint8_t error = 0;
    bool isRequest = false;
    std::uint16_t command = 0;
    std::uint16_t dataSize = 0;
    std::uint16_t totalFrameCount = 1;
    std::uint16_t frameNumber = 1;
    std::uint32_t offset = 0;
    ExtendedWords extended{};
    Bytes data;

    /// Reads a whole mailbox area (AREA_SIZE bytes); `data` is cut to what the area holds.
    static Message Decode(ByteView area);
    /// The header and the data, at most AREA_SIZE bytes.
    Bytes Encode() const;
};

} // namespace VirtualModule
