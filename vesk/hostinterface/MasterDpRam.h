// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/hostinterface/MailboxDpRam.h"

#include <array>

/// The dual-port RAM of the module while it runs as the DP-V1 master. Offsets are bytes from the start of
/// the DPRAM, the fields of a block are counted from the block's OFFSET; sizes are bytes; every multi-byte
/// value is big-endian.
namespace Vesk::HostInterface::MasterDpRam {

inline constexpr int SIZE = 0x2000;

/// What the module is; written by the module before its power-on indication.
namespace Identity {
inline constexpr unsigned short OFFSET = 0x0000;
inline constexpr unsigned short BOOTLOADER_VERSION = 0; // 16 bits: major, minor
inline constexpr unsigned short UNUSED_1 = 2;           // 16 bits, not interpreted
inline constexpr unsigned short UNUSED_2 = 4;           // 16 bits, not interpreted
inline constexpr unsigned short SERIAL = 6;             // 32 bits
inline constexpr unsigned short MODULE_TYPE = 10;       // 16 bits
inline constexpr unsigned short VENDOR_ID = 12;         // 16 bits
inline constexpr unsigned short FIELDBUS_TYPE = 14;     // 16 bits
inline constexpr unsigned short SOFTWARE_VERSION = 16;  // 16 bits: major, minor
inline constexpr unsigned short SOFTWARE_BUILD = 18;    // 8 bits
inline constexpr unsigned short BLOCK_SIZE = 19;
} // namespace Identity

/// Why the module stopped; valid once the fatal bit of its indication is set.
namespace FatalEvent {
inline constexpr unsigned short OFFSET = 0x0014;
inline constexpr unsigned short ERROR_CODE = 0;       // 16 bits
inline constexpr unsigned short ERROR_CAUSE = 2;      // 16 bits
inline constexpr unsigned short TASK_ID = 4;          // 16 bits
inline constexpr unsigned short TIME_STAMP_HIGH = 6;  // 32 bits; the stamp counts milliseconds
inline constexpr unsigned short TIME_STAMP_LOW = 10;  // 32 bits
inline constexpr unsigned short ADDITIONAL_INFO = 14; // 24 bytes
inline constexpr unsigned short SOURCE_LINE = 38;     // 16 bits
inline constexpr unsigned short SOURCE_FILE = 40;     // 26 bytes of ASCII
inline constexpr int ADDITIONAL_INFO_SIZE = 24;
inline constexpr int SOURCE_FILE_SIZE = 26;
inline constexpr unsigned short BLOCK_SIZE = 66;
} // namespace FatalEvent

inline constexpr unsigned short MAILBOX_IN = 0x0056;
inline constexpr unsigned short MAILBOX_OUT = MAILBOX_IN + MailboxDpRam::AREA_SIZE;

/// Process data towards the bus, written by the host.
inline constexpr unsigned short INPUT_AREA = 0x0296;
inline constexpr unsigned short INPUT_AREA_SIZE = 0x0DAC;

/// What changed when the module hands the output area to the host.
namespace OutArea {
inline constexpr unsigned short OFFSET = 0x1042;
inline constexpr unsigned short INDICATION = 0;      // 16 bits, OutAreaIndication_t
inline constexpr unsigned short MODULE_STATUS = 2;   // 16 bits, ModuleStatus_t
inline constexpr unsigned short FIELDBUS_STATUS = 4; // the fieldbus status section
inline constexpr unsigned short OUTPUT_AREA = 0x54;  // the output process data
} // namespace OutArea

/// The bus as the master sees it: four bit lists of 128 stations and the master's own status.
namespace FieldbusStatus {
inline constexpr unsigned short OFFSET = OutArea::OFFSET + OutArea::FIELDBUS_STATUS;
inline constexpr unsigned short CHANGE = 0;                 // 16 bits, FieldbusChange_t
inline constexpr unsigned short SLAVE_CONFIGURED_LIST = 2;  // 16 bytes
inline constexpr unsigned short DATA_TRANSFER_LIST = 18;    // 16 bytes
inline constexpr unsigned short SLAVE_DIAGNOSTIC_LIST = 34; // 16 bytes
inline constexpr unsigned short MASTER_STATUS = 50;         // 14 bytes, first the operation mode
inline constexpr unsigned short DPV1_CONNECTION_LIST = 64;  // 16 bytes
inline constexpr int LIST_SIZE = 16;
inline constexpr int MASTER_STATUS_SIZE = 14;
} // namespace FieldbusStatus

/// Process data from the bus, written by the module.
inline constexpr unsigned short OUTPUT_AREA = OutArea::OFFSET + OutArea::OUTPUT_AREA;
inline constexpr unsigned short OUTPUT_AREA_SIZE = 0x0DAC;

inline constexpr unsigned short APPLICATION_INDICATION = 0x1FFA; // 8 bits, ApplicationIndication_t
inline constexpr unsigned short VELMO_INDICATION = 0x1FFB;       // 8 bits, VelmoIndication_t
inline constexpr unsigned short APPLICATION_INDICATION_COMPANION =
    0x1FFC;                                                          // 8 bits, written after the register
inline constexpr unsigned short VELMO_INDICATION_COMPANION = 0x1FFE; // 8 bits, read after the register

static_assert(Identity::OFFSET + Identity::BLOCK_SIZE < FatalEvent::OFFSET);
static_assert(FatalEvent::SOURCE_FILE + FatalEvent::SOURCE_FILE_SIZE == FatalEvent::BLOCK_SIZE);
static_assert(FatalEvent::OFFSET + FatalEvent::BLOCK_SIZE == MAILBOX_IN);
static_assert(MAILBOX_OUT + MailboxDpRam::AREA_SIZE == INPUT_AREA);
static_assert(INPUT_AREA + INPUT_AREA_SIZE == OutArea::OFFSET);
static_assert(FieldbusStatus::OFFSET + FieldbusStatus::DPV1_CONNECTION_LIST + FieldbusStatus::LIST_SIZE ==
              OUTPUT_AREA);
static_assert(OUTPUT_AREA == 0x1096 && OUTPUT_AREA + OUTPUT_AREA_SIZE == 0x1E42);

} // namespace Vesk::HostInterface::MasterDpRam

namespace Vesk::Modules::DPVM {

/// Module indication register of the master, one byte, written by the module.
struct Vt22VelmoIndication_t {
    static constexpr unsigned char OUT = 0x01;      // the output area is handed to the host
    static constexpr unsigned char IN = 0x02;       // the input area is handed to the host
    static constexpr unsigned char M_OUT = 0x04;    // mailbox-out holds a new message
    static constexpr unsigned char M_IN = 0x08;     // the message in mailbox-in was taken
    static constexpr unsigned char POWER_ON = 0x10; // the module has booted
    static constexpr unsigned char FATAL = 0x20;    // the fatal-event block says why the module stopped
    static constexpr unsigned char LOG = 0x40;      // the module has log data
    static constexpr unsigned char RESERVED = 0x80;
    static constexpr std::array LABELS{"out", "in", "mOut", "mIn", "powerOn", "fatal", "log", "reserved"};

    unsigned char value = 0;
};

/// Application indication register of the master, one byte, written by the host.
struct Vt22ApplicationIndication_t {
    static constexpr unsigned char OUT = 0x01;   // the output area goes back to the module
    static constexpr unsigned char IN = 0x02;    // the input area goes back to the module
    static constexpr unsigned char M_OUT = 0x04; // the message in mailbox-out was taken
    static constexpr unsigned char M_IN = 0x08;  // mailbox-in holds a new message
    static constexpr unsigned char LOG = 0x10;   // the log area goes back to the module
    static constexpr unsigned char RESERVED = 0xE0;
    static constexpr std::array LABELS{"out", "in", "mOut", "mIn", "log"};

    unsigned char value = 0;
};

/// Out-area indication register, one word: what the module changed before it handed the area over.
struct OutAreaIndication_t {
    static constexpr unsigned short MODULE_STATUS = 0x0001;
    static constexpr unsigned short FIELDBUS_STATUS = 0x0002;
    static constexpr unsigned short OUTPUT_DATA = 0x0004;
    static constexpr unsigned short RESERVED = 0xFFF8;
    static constexpr std::array LABELS{"moduleStatus", "fieldbusStatus", "outputData"};

    unsigned short value = 0;
};

/// Module status register, one word: how the module stands on the bus.
struct ModuleStatus_t {
    static constexpr unsigned short OFFLINE = 0x0001;
    static constexpr unsigned short ONLINE = 0x0002;
    static constexpr unsigned short RESERVED = 0xFFFC;
    static constexpr std::array LABELS{"offline", "online"};

    unsigned short value = 0;
};

/// Change register of the fieldbus status section, one word: which lists are new.
struct FieldbusChange_t {
    static constexpr unsigned short SLAVE_CONFIGURED_LIST = 0x0001;
    static constexpr unsigned short DATA_TRANSFER_LIST = 0x0002;
    static constexpr unsigned short SLAVE_DIAGNOSTIC_LIST = 0x0004;
    static constexpr unsigned short MASTER_STATUS = 0x0008;
    static constexpr unsigned short DPV1_CONNECTION_LIST = 0x0010;
    static constexpr unsigned short RESERVED = 0xFFE0;
    static constexpr std::array LABELS{"slaveConfigured", "dataTransfer", "slaveDiagnostic", "masterStatus",
                                       "dpv1Connection"};

    unsigned short value = 0;
};

static_assert(sizeof(Vt22VelmoIndication_t) == 1 && sizeof(Vt22ApplicationIndication_t) == 1);
static_assert(sizeof(OutAreaIndication_t) == 2 && sizeof(ModuleStatus_t) == 2 &&
              sizeof(FieldbusChange_t) == 2);

} // namespace Vesk::Modules::DPVM
