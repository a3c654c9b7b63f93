// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace VirtualModule {

/// Every fault that the module can be given; Faults.cpp has the table that says what each of them is.
enum class FaultId : std::uint8_t {
    BOOT_SILENT,
    BOOT_LATE,
    RESET_IRQ_STUCK,
    BOOT_EMPTY,
    BOOT_NO_POWER_ON,
    BOOT_EXTRA_BITS,
    BOOT_FATAL,
    WRONG_MODULE_TYPE,
    WRONG_FIELDBUS_TYPE,
    WRONG_VENDOR_ID,
    BOOT_HANDSHAKE,
    BOOTLOADER_MAJOR,

    REBOOT,
    FATAL,
    DEAD,
    IRQ_STUCK,
    IRQ_BOUNCE,
    INDICATION_RESERVED,
    AREA_RESERVED,
    STATUS_RESERVED,
    CHANGE_RESERVED,
    OFFLINE_AND_ONLINE,
    DOUBLE_ONLINE,
    DOUBLE_OFFLINE,
    INVALID_MODE,

    MAILBOX_NO_ACK,
    MAILBOX_DOUBLE_ACK,
    MAILBOX_NO_ANSWER,
    ANSWER_LATE,
    ANSWER_BEFORE_ACK,
    ANSWER_WRONG_ID,
    ANSWER_WRONG_TYPE,
    ANSWER_WRONG_COMMAND,
    ANSWER_UNDEFINED_TYPE,
    ANSWER_DATA_SIZE,
    ANSWER_ERROR,
    ANSWER_TWICE,
    ANSWER_UNASKED,
    HEADER_BIT,

    DATABASE_NONE,
    DATABASE_CHECKSUM,
    DATABASE_LENGTH,
    DATABASE_NOT_HEX,
    DATABASE_READ_BACK,
    DATABASE_ERROR,
    DATABASE_POWER_CUT,

    FIRMWARE_ERROR,
    FIRMWARE_SILENT,
    FIRMWARE_POWER_CUT,
    FIRMWARE_CRC,

    DPRAM_ONES,
    DPRAM_ZEROS,
    DPRAM_RANDOM,
    DPRAM_WRITES_IGNORED,
    DPRAM_BIT_HIGH,
    DPRAM_BIT_LOW,
    DPRAM_FLICKER,
};

/// One thing that goes wrong with a module: what, from which step on, how often.
struct Fault {
    FaultId id{};
    unsigned step = 1;  // the first event that it strikes; from 1, since the module was made
    unsigned count = 0; // how many events in a row; 0: from then on
    unsigned value = 0; // what it means is the fault's own affair

    /// Reads NAME[@STEP][xCOUNT][=VALUE], for example "answer-late@4x1=250". Numbers are decimal; VALUE may
    /// be hexadecimal with 0x. What is left out is as the table says. std::invalid_argument says what is
    /// wrong: a name that is none, with those that come close; a number that is none; a VALUE out of range.
    static Fault Parse(std::string_view text);
    /// Reads NAME[=VALUE], for a fault whose STEP and COUNT are said elsewhere; std::invalid_argument as
    /// above.
    static Fault ParseWithoutStep(std::string_view text);
    /// The whole text form.
    std::string Text() const;
};

} // namespace VirtualModule
