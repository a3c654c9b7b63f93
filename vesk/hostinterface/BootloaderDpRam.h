// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/hostinterface/MailboxDpRam.h"

#include <array>

/// The dual-port RAM of the module while it runs its bootloader. Offsets are bytes from the start of the
/// DPRAM, sizes are bytes, every multi-byte value is big-endian.
namespace Vesk::HostInterface::BootloaderDpRam {

inline constexpr int SIZE = 0x2000;

inline constexpr unsigned short MAILBOX_IN = 0x1BFE;
inline constexpr unsigned short MAILBOX_OUT = MAILBOX_IN + MailboxDpRam::AREA_SIZE;

/// What the module is; written by the bootloader before its first interrupt.
namespace Ctrl {
inline constexpr unsigned short OFFSET = 0x1FBE;
inline constexpr unsigned short BOOTLOADER_MAJOR = 0; // 8 bits
inline constexpr unsigned short BOOTLOADER_MINOR = 1; // 8 bits
inline constexpr unsigned short SERIAL = 6;           // 32 bits
inline constexpr unsigned short VENDOR_ID = 10;       // 16 bits
inline constexpr unsigned short FIELDBUS_TYPE = 12;   // 16 bits
inline constexpr unsigned short MODULE_TYPE = 32;     // 16 bits
inline constexpr unsigned short BLOCK_SIZE = 62;
} // namespace Ctrl

inline constexpr unsigned short APPLICATION_INDICATION = 0x1FFD; // 8 bits, ApplicationIndication_t
inline constexpr unsigned short VELMO_INDICATION = 0x1FFF;       // 8 bits, VelmoIndication_t

static_assert(MAILBOX_OUT == 0x1D1E && MAILBOX_OUT + MailboxDpRam::AREA_SIZE <= Ctrl::OFFSET);
static_assert(Ctrl::OFFSET + Ctrl::BLOCK_SIZE < APPLICATION_INDICATION);

} // namespace Vesk::HostInterface::BootloaderDpRam

namespace Vesk::Handshake {

/// Module indication register of the bootloader, one byte, written by the module. Level bits are a state;
/// a toggle bit reports an event with each change of its value.
struct VelmoIndication_t {
    static constexpr unsigned char FBCTRL = 0x01;  // level: the fieldbus-control area is granted to the host
    static constexpr unsigned char OUT = 0x02;     // level: the output area is granted to the host
    static constexpr unsigned char IN = 0x04;      // level: the input area is granted to the host
    static constexpr unsigned char UPDATED = 0x08; // level: no event
    static constexpr unsigned char INIT = 0x10;    // level: the module is initialised; it never falls back
    static constexpr unsigned char EVENT = 0x20;   // toggle: the module reports an event
    static constexpr unsigned char M_OUT = 0x40;   // toggle: mailbox-out holds a new message
    static constexpr unsigned char M_IN = 0x80;    // toggle: the message in mailbox-in was taken
    static constexpr std::array LABELS{"fbctrl", "out", "in", "updated", "init", "event", "mOut", "mIn"};

    unsigned char value = 0;
};

/// Application indication register of the bootloader, one byte, written by the host.
struct ApplicationIndication_t {
    static constexpr unsigned char FBCTRL = 0x01; // operand of an area command
    static constexpr unsigned char OUT = 0x02;    // operand of an area command
    static constexpr unsigned char IN = 0x04;     // operand of an area command
    static constexpr unsigned char LOCK = 0x08;   // set in every write that carries an area command
    static constexpr unsigned char ACTION = 0x10; // with LOCK: 1 requests the areas, 0 releases them
    static constexpr unsigned char EVENT = 0x20;  // toggle: the module's event was seen
    static constexpr unsigned char M_OUT = 0x40;  // toggle: the message in mailbox-out was taken
    static constexpr unsigned char M_IN = 0x80;   // toggle: mailbox-in holds a new message
    static constexpr std::array LABELS{"fbctrl", "out", "in", "lock", "action", "event", "mOut", "mIn"};

    unsigned char value = 0;
};

static_assert(sizeof(VelmoIndication_t) == 1 && sizeof(ApplicationIndication_t) == 1);

} // namespace Vesk::Handshake
