// SPDX-License-Identifier: MIT
// Everything that can go wrong on request, and what the library then says.
#include "virtualmodule/faults/Faults.h"

#include <algorithm>
#include <stdexcept>

namespace VirtualModule {

namespace {

using OutcomeList = std::vector<const Outcome*>;

/// Where any byte may change there is nothing that could not happen.
OutcomeList Any(const Outcome& usual) {
    OutcomeList outcomes = AllOutcomes();
    outcomes.insert(outcomes.begin(), &usual);
    return outcomes;
}

} // namespace

const std::vector<FaultKind>& Faults() {
    using enum FaultId;
    using enum Counts;
    using namespace Outcomes;
    constexpr auto FIRMWARE = FaultKind::Life::FIRMWARE;
    constexpr unsigned ever = 0;
    constexpr unsigned once = 1;
    constexpr unsigned word = 0xFFFF;
    constexpr FaultKind::Values none;

    // ID, name, what STEP counts, STEP, COUNT, VALUE (name, usual, least, most), what goes wrong,
    //     how it ends
    // clang-format off
    static const std::vector<FaultKind> faults{
        // ---- boot
        {BOOT_SILENT, "boot-silent", BOOTS, 1, ever, none, "the module never interrupts",
            {&NO_INTERRUPT}},
        {BOOT_LATE, "boot-late", BOOTS, 1, ever, {"MS", 900, 1, 1900}, "the first interrupt comes late",
            {&SAME_DATA, &NO_INTERRUPT}},
        {BOOT_LATE, "boot-late", BOOTS, 1, ever, {"MS", 2500, 2000, 600'000},
            "the first interrupt comes too late",
            {&NO_INTERRUPT, &SAME_DATA}},
        {RESET_IRQ_STUCK, "reset-irq-stuck", BOOTS, 1, ever, none, "reset does not clear the interrupt",
            {&INTERRUPT_IN_RESET}},
        {BOOT_EMPTY, "boot-empty", BOOTS, 1, ever, none, "the first indication is empty",
            {&EMPTY}},
        {BOOT_NO_POWER_ON, "boot-no-power-on", BOOTS, 1, ever, {"BITS", 0x04, 1, 0x0F},
            "the first indication has these bits instead of power-on",
            {&NO_POWER_ON}},
        {BOOT_EXTRA_BITS, "boot-extra-bits", BOOTS, 1, ever, {"BITS", 0x04, 1, 0x0F},
            "the first indication has these bits beside power-on",
            {&MORE_THAN_POWER_ON}},
        {BOOT_FATAL, "boot-fatal", BOOTS, 1, ever, {"CODE", 0x0102, 0, word},
            "the first indication is a fatal event with this error code",
            {&FATAL_EVENT}},
        {WRONG_MODULE_TYPE, "wrong-module-type", BOOTS, 1, ever, {"TYPE", 0x0202, 0x0202, word},
            "the module says that it is of another type",
            {&MODULE_TYPE}},
        {WRONG_FIELDBUS_TYPE, "wrong-fieldbus-type", BOOTS, 1, ever, {"TYPE", 6, 6, word},
            "the module says that it is for another bus",
            {&FIELDBUS_TYPE}},
        {WRONG_VENDOR_ID, "wrong-vendor-id", BOOTS, 1, ever, {"ID", 2, 2, word},
            "the module says that it is of another vendor",
            {&VENDOR_ID}},
        {BOOT_HANDSHAKE, "boot-handshake", BOOTS, 1, ever, {"BITS", 0x40, 1, 0xFF},
            "the bootloader boots with these bits in its register",
            {&HANDSHAKE}, FIRMWARE},
        {BOOTLOADER_MAJOR, "bootloader-major", BOOTS, 1, ever, {"VERSION", 1, 0, 1},
            "the bootloader has this major version",
            {&OLD_BOOTLOADER}, FIRMWARE},

        // ---- running
        {REBOOT, "reboot", INTERRUPTS, 3, ever, none, "the master boots by itself instead of interrupting",
            {&POWER_ON_AGAIN}},
        {FATAL, "fatal", INTERRUPTS, 3, ever, {"CODE", 0x0102, 0, word},
            "the master stops with a fatal event of this error code",
            {&FATAL_EVENT}},
        {DEAD, "dead", INTERRUPTS, 3, ever, none, "the module stops dead instead of interrupting",
            {&TIMEOUT, &NO_INTERRUPT, &NO_ANSWER}},
        {IRQ_STUCK, "irq-stuck", INTERRUPTS, 1, ever, none, "the interrupt line stays low after an interrupt",
            {&POWER_ON_AGAIN, &NOT_LOCKED, &ACKNOWLEDGED_TWICE,
             &WRONG_ID, &NOBODY_ASKED, &TIMEOUT, &NO_ANSWER, &SAME_DATA}},
        {IRQ_BOUNCE, "irq-bounce", INTERRUPTS, 1, ever, {"TIMES", 1, 1, 1000},
            "each interrupt comes so many times more",
            {&POWER_ON_AGAIN, &NOT_LOCKED, &ACKNOWLEDGED_TWICE,
             &WRONG_ID, &NOBODY_ASKED, &TIMEOUT, &NO_ANSWER, &SAME_DATA}},
        {INDICATION_RESERVED, "indication-reserved", INTERRUPTS, 1, ever, none,
            "the reserved bit of the master's indication register is set",
            {&SAME_DATA}},
        {AREA_RESERVED, "area-reserved", OUTPUT_TURNS, 1, ever, {"BITS", 0x8000, 0x0008, word},
            "the out-area indication register has bits that mean nothing",
            {&RESERVED_CHANGE}},
        {STATUS_RESERVED, "status-reserved", OUTPUT_TURNS, 1, ever, {"BITS", 0x8000, 0x0004, word},
            "the module status register has bits that mean nothing",
            {&RESERVED_STATUS}},
        {CHANGE_RESERVED, "change-reserved", OUTPUT_TURNS, 1, ever, {"BITS", 0x8000, 0x0020, word},
            "the change register of the fieldbus status has bits that mean nothing",
            {&RESERVED_CHANGE}},
        {OFFLINE_AND_ONLINE, "offline-and-online", OUTPUT_TURNS, 1, ever, none,
            "the module says offline and online",
            {&BOTH_LINES}},
        {DOUBLE_ONLINE, "double-online", OUTPUT_TURNS, 2, ever, none, "the module says online again",
            {&ONLINE_TWICE, &SAME_DATA}},
        {DOUBLE_OFFLINE, "double-offline", OUTPUT_TURNS, 1, ever, none,
            "the module says offline time after time",
            {&OFFLINE_TWICE, &NO_ANSWER, &SAME_DATA}},
        {INVALID_MODE, "invalid-mode", OUTPUT_TURNS, 1, ever, {"MODE", 0x20, 0x01, 0x3F},
            "the module says that it works in this mode",
            {&MODE}},

        // ---- mailbox
        {MAILBOX_NO_ACK, "mailbox-no-ack", REQUESTS, 1, ever, none,
            "requests are answered, but not acknowledged",
            {&DOWNLOAD_TIMEOUT, &INIT_TIMEOUT, &NO_ANSWER, &SAME_DATA}},
        {MAILBOX_DOUBLE_ACK, "mailbox-double-ack", REQUESTS, 1, ever, none, "requests are acknowledged twice",
            {&ACKNOWLEDGED_TWICE, &SAME_DATA}},
        {MAILBOX_NO_ANSWER, "mailbox-no-answer", REQUESTS, 1, ever, none, "requests are not answered",
            {&TIMEOUT}},
        {ANSWER_LATE, "answer-late", REQUESTS, 1, ever, {"MS", 20, 1, 900}, "answers come late",
            {&SAME_DATA, &DOWNLOAD_TIMEOUT, &INIT_TIMEOUT}},
        {ANSWER_LATE, "answer-late", REQUESTS, 1, ever, {"MS", 11'000, 11'000, 600'000},
            "answers come too late",
            {&TIMEOUT}},
        {ANSWER_BEFORE_ACK, "answer-before-ack", REQUESTS, 1, ever, none,
            "requests are answered before they are acknowledged",
            {&SAME_DATA}},
        {ANSWER_WRONG_ID, "answer-wrong-id", REQUESTS, 1, ever, none, "answers have another message id",
            {&WRONG_ID}},
        {ANSWER_WRONG_TYPE, "answer-wrong-type", REQUESTS, 1, ever, none, "answers have another message type",
            {&WRONG_TYPE}},
        {ANSWER_WRONG_COMMAND, "answer-wrong-command", REQUESTS, 1, ever, none,
            "answers have another command",
            {&WRONG_COMMAND}},
        {ANSWER_UNDEFINED_TYPE, "answer-undefined-type", REQUESTS, 1, ever, {"TYPE", 7, 7, 0xFF},
            "answers have a message type that does not exist",
            {&UNDEFINED}},
        {ANSWER_ERROR, "answer-error", REQUESTS, 1, ever, {"CODE", 0x88, 0x80, 0x89},
            "requests are refused with this error",
            {&REFUSED}},
        {ANSWER_ERROR, "answer-error", REQUESTS, 1, ever, {"CODE", 0x8A, 0x8A, 0x8E},
            "requests are refused with an error that does not exist",
            {&UNDEFINED}},
        {ANSWER_ERROR, "answer-error", REQUESTS, 1, ever, {"CODE", 0x8F, 0x8F, 0x8F},
            "requests are refused without a reason",
            {&REFUSED}},
        {ANSWER_DATA_SIZE, "answer-data-size", REQUESTS, 1, ever, {"SIZE", 257, 257, word},
            "answers say that they have more data than fits",
            {&TOO_LONG}},
        {ANSWER_TWICE, "answer-twice", REQUESTS, 1, ever, none, "requests are answered twice",
            {&WRONG_ID, &NOBODY_ASKED, &SAME_DATA}},
        {ANSWER_UNASKED, "answer-unasked", INTERRUPTS, 2, ever, none,
            "an answer comes while there is no request",
            {&NOBODY_ASKED, &WRONG_ID}},
        {HEADER_BIT, "header-bit", REQUESTS, 2, once, {"BIT", 0, 0, 15},
            "one bit of an answer's header (8 x byte + bit) is flipped: message id",
            {&WRONG_ID}},
        {HEADER_BIT, "header-bit", REQUESTS, 2, once, {"BIT", 16, 16, 19}, "the same: error code",
            {&UNDEFINED, &REFUSED}},
        {HEADER_BIT, "header-bit", REQUESTS, 2, once, {"BIT", 22, 20, 22},
            "the same: request flag, unused bits",
            {&SAME_DATA}},
        {HEADER_BIT, "header-bit", REQUESTS, 2, once, {"BIT", 23, 23, 23}, "the same: error flag",
            {&REFUSED, &UNDEFINED}},
        {HEADER_BIT, "header-bit", REQUESTS, 2, once, {"BIT", 24, 24, 31}, "the same: message type",
            {&WRONG_TYPE, &UNDEFINED}},
        {HEADER_BIT, "header-bit", REQUESTS, 2, once, {"BIT", 32, 32, 47}, "the same: command",
            {&WRONG_COMMAND}},
        {HEADER_BIT, "header-bit", REQUESTS, 2, once, {"BIT", 49, 48, 55}, "the same: data size, high byte",
            {&TOO_LONG, &OTHER_DATA, &SAME_DATA}},
        {HEADER_BIT, "header-bit", REQUESTS, 2, once, {"BIT", 61, 56, 63}, "the same: data size, low byte",
            {&SAME_DATA, &OTHER_DATA, &READ_BACK}},
        {HEADER_BIT, "header-bit", REQUESTS, 2, once, {"BIT", 64, 64, 127}, "the same: frames and offset",
            {&SAME_DATA}},
        {HEADER_BIT, "header-bit", REQUESTS, 2, once, {"BIT", 128, 128, 255}, "the same: extended words",
            {&SAME_DATA, &OTHER_DATA, &REFUSED, &MORE_INPUT, &MORE_OUTPUT, &INPUT_OUTSIDE, &OUTPUT_OUTSIDE}},

        // ---- database
        {DATABASE_NONE, "database-none", DATABASE_INFOS, 1, once, none,
            "the module says that it has no database (for ever: it is downloaded for ever)",
            {&SAME_DATA, &NO_ANSWER}},
        {DATABASE_CHECKSUM, "database-checksum", DATABASE_INFOS, 1, ever, none,
            "the database has another checksum",
            {&READ_BACK}},
        {DATABASE_LENGTH, "database-length", DATABASE_INFOS, 1, ever, {"LENGTH", 7, 0, 7},
            "the database's description is shorter than a checksum",
            {&READ_BACK}},
        {DATABASE_LENGTH, "database-length", DATABASE_INFOS, 1, ever, {"LENGTH", 9, 9, 32},
            "the database's description is longer than a checksum",
            {&READ_BACK}},
        {DATABASE_NOT_HEX, "database-not-hex", DATABASE_INFOS, 1, ever, none,
            "the database's description is not hexadecimal",
            {&READ_BACK}},
        {DATABASE_READ_BACK, "database-read-back", DATABASE_COMMANDS, 1, ever, none,
            "the flash keeps another description than the one that was written",
            {&READ_BACK}},
        {DATABASE_ERROR, "database-error", DATABASE_COMMANDS, 1, ever, {"CODE", 0x89, 0x80, 0x89},
            "a download of the database is refused with this error",
            {&REFUSED}},
        {DATABASE_POWER_CUT, "database-power-cut", DATABASE_COMMANDS, 1, ever, {"AFTER", 0, 0, 1},
            "power fails in a download of the database, before (0) or after (1) the command is carried out",
            {&TIMEOUT}},

        // ---- firmware
        {FIRMWARE_ERROR, "firmware-error", FIRMWARE_REQUESTS, 1, ever, {"CODE", 0x89, 0x80, 0x89},
            "the bootloader refuses requests with this error",
            {&REFUSED}, FIRMWARE},
        {FIRMWARE_SILENT, "firmware-silent", FIRMWARE_REQUESTS, 1, ever, none,
            "the bootloader does not answer",
            {&TIMEOUT}, FIRMWARE},
        {FIRMWARE_POWER_CUT, "firmware-power-cut", FIRMWARE_REQUESTS, 1, ever, {"AFTER", 0, 0, 1},
            "power fails in the bootloader, before (0) or after (1) the request is carried out",
            {&TIMEOUT}, FIRMWARE},
        {FIRMWARE_CRC, "firmware-crc", FIRMWARE_REQUESTS, 1, ever, none,
            "the program changes on its way into the flash, so that its checksum differs",
            {&REFUSED, &SAME_DATA}, FIRMWARE},

        // ---- DPRAM, as the host sees it from one step of the module to the next
        {DPRAM_ONES, "dpram-ones", INTERRUPTS, 1, ever, none, "every byte reads as 0xFF",
            {&FATAL_EVENT, &HANDSHAKE, &NOT_INITIALISED, &ACKNOWLEDGED_TWICE, &UNDEFINED, &TIMEOUT}},
        {DPRAM_ZEROS, "dpram-zeros", INTERRUPTS, 1, ever, none, "every byte reads as 0x00",
            {&EMPTY, &MODULE_TYPE, &ACKNOWLEDGED_TWICE, &UNDEFINED, &TIMEOUT, &NO_ANSWER, &SAME_DATA}},
        {DPRAM_RANDOM, "dpram-random", INTERRUPTS, 1, ever, {"SEED", 1, 0, word},
            "every byte reads as anything, another thing at each interrupt",
            Any(MORE_THAN_POWER_ON)},
        {DPRAM_WRITES_IGNORED, "dpram-writes-ignored", INTERRUPTS, 1, ever, none,
            "what the host writes does not reach the module",
            {&TIMEOUT, &NO_ANSWER, &SAME_DATA}},
        {DPRAM_BIT_HIGH, "dpram-bit-high", INTERRUPTS, 1, ever, {"BIT", 89, 0, word},
            "one bit (8 x offset + bit) reads as 1; the usual one is in the module type",
            Any(MODULE_TYPE)},
        {DPRAM_BIT_LOW, "dpram-bit-low", INTERRUPTS, 1, ever, {"BIT", 65'500, 0, word},
            "one bit (8 x offset + bit) reads as 0; the usual one is the power-on indication",
            Any(EMPTY)},
        {DPRAM_FLICKER, "dpram-flicker", INTERRUPTS, 1, ever, {"OFFSET", 0x0177, 0, 0x1FFF},
            "one byte reads as it is and inverted in turn; the usual one is in the message id",
            Any(WRONG_ID)},
    };
    // clang-format on
    return faults;
}

const FaultKind& KindOf(FaultId id) {
    const auto& faults = Faults();
    return *std::find_if(faults.begin(), faults.end(), [id](const FaultKind& kind) { return kind.id == id; });
}

const FaultKind& KindOf(FaultId id, unsigned value) {
    for (const FaultKind& kind : Faults())
        if (kind.id == id && kind.Takes(value))
            return kind;
    throw std::invalid_argument(std::string(KindOf(id).name) + " has no VALUE " + std::to_string(value));
}

bool FaultKind::Takes(unsigned value) const {
    return values.name.empty() ? value == 0 : value >= values.least && value <= values.most;
}

std::string FaultKind::Usage() const {
    return std::string(name) + (values.name.empty() ? "" : "[=" + std::string(values.name) + "]");
}

std::string_view Name(Counts counts) {
    switch (counts) {
    case Counts::BOOTS:
        return "boots";
    case Counts::INTERRUPTS:
        return "interrupts";
    case Counts::OUTPUT_TURNS:
        return "output turns";
    case Counts::REQUESTS:
        return "requests";
    case Counts::DATABASE_INFOS:
        return "database infos";
    case Counts::DATABASE_COMMANDS:
        return "database commands";
    case Counts::FIRMWARE_REQUESTS:
        return "firmware requests";
    }
    return "";
}

} // namespace VirtualModule
