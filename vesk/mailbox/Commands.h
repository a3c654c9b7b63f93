// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/MessageType.h"

namespace Vesk::Mailbox {

/// What a request can ask the module for: who handles it, the number in the header, and the name for logs.
struct MailboxCommand {
    const std::shared_ptr<MessageType>& type;
    unsigned short number;
    const char* name;
};

/// Every command that the library knows. Hidden: each program has them from this header.
#pragma GCC visibility push(hidden)

namespace Commands {

inline constexpr MailboxCommand START_INIT{MessageType::APPLICATION, 0x01, "StartInit"};
inline constexpr MailboxCommand VELMO_INIT{MessageType::APPLICATION, 0x02, "VelmoInit"};
inline constexpr MailboxCommand END_INIT{MessageType::APPLICATION, 0x03, "EndInit"};

inline constexpr MailboxCommand SET_OPERATION_MODE{MessageType::FIELDBUS, 0x02, "SetOperationMode"};
inline constexpr MailboxCommand GET_SLAVE_DIAG{MessageType::FIELDBUS, 0x04, "GetSlaveDiag"};
inline constexpr MailboxCommand GET_SLAVE_CONFIG{MessageType::FIELDBUS, 0x05, "GetSlaveConfig"};
inline constexpr MailboxCommand SET_SLAVE_ADDRESS{MessageType::FIELDBUS, 0x06, "SetSlaveAddress"};
inline constexpr MailboxCommand READ_SLAVE_INPUT{MessageType::FIELDBUS, 0x09, "ReadSlaveInput"};
inline constexpr MailboxCommand READ_SLAVE_OUTPUT{MessageType::FIELDBUS, 0x0A, "ReadSlaveOutput"};
inline constexpr MailboxCommand START_SLAVE{MessageType::FIELDBUS, 0x0B, "StartSlave"};
inline constexpr MailboxCommand STOP_SLAVE{MessageType::FIELDBUS, 0x0C, "StopSlave"};
inline constexpr MailboxCommand START_DATABASE_DOWNLOAD{MessageType::FIELDBUS, 0x10, "StartDatabaseDownload"};
inline constexpr MailboxCommand END_DATABASE_DOWNLOAD{MessageType::FIELDBUS, 0x11, "EndDatabaseDownload"};
inline constexpr MailboxCommand MASTER_RECORD_DOWNLOAD{MessageType::FIELDBUS, 0x12, "MasterRecordDownload"};
inline constexpr MailboxCommand SLAVE_RECORD_DOWNLOAD{MessageType::FIELDBUS, 0x14, "SlaveRecordDownload"};
inline constexpr MailboxCommand DELETE_DATABASE{MessageType::FIELDBUS, 0x16, "DeleteDatabase"};
inline constexpr MailboxCommand GET_DATABASE_INFO{MessageType::FIELDBUS, 0x17, "GetDatabaseInfo"};
inline constexpr MailboxCommand GET_LIVE_LIST{MessageType::FIELDBUS, 0x18, "GetLiveList"};
inline constexpr MailboxCommand CLASS1_READ{MessageType::FIELDBUS, 0x20, "Class1Read"};
inline constexpr MailboxCommand CLASS1_WRITE{MessageType::FIELDBUS, 0x21, "Class1Write"};
inline constexpr MailboxCommand CLASS2_INITIATE_NORMAL{MessageType::FIELDBUS, 0x25, "Class2InitiateNormal"};
inline constexpr MailboxCommand CLASS2_ABORT{MessageType::FIELDBUS, 0x26, "Class2Abort"};
inline constexpr MailboxCommand CLASS2_READ{MessageType::FIELDBUS, 0x27, "Class2Read"};
inline constexpr MailboxCommand CLASS2_WRITE{MessageType::FIELDBUS, 0x28, "Class2Write"};

inline constexpr MailboxCommand FW_DOWNLOAD_INIT{MessageType::BOOTLOADER, 1, "FwDownloadInit"};
inline constexpr MailboxCommand FW_DOWNLOAD_DATA{MessageType::BOOTLOADER, 2, "FwDownloadData"};
inline constexpr MailboxCommand FW_DOWNLOAD_LAST{MessageType::BOOTLOADER, 3, "FwDownloadLast"};
inline constexpr MailboxCommand BL_DOWNLOAD_INIT{MessageType::BOOTLOADER, 4, "BlDownloadInit"};
inline constexpr MailboxCommand BL_DOWNLOAD_DATA{MessageType::BOOTLOADER, 5, "BlDownloadData"};
inline constexpr MailboxCommand BL_DOWNLOAD_LAST{MessageType::BOOTLOADER, 6, "BlDownloadLast"};

inline constexpr MailboxCommand ENABLE{MessageType::PRODUCTION, 1, "Enable"};
inline constexpr MailboxCommand FLASH_WRITE_ENABLE{MessageType::PRODUCTION, 2, "FlashWriteEnable"};
inline constexpr MailboxCommand FLASH_ERASE{MessageType::PRODUCTION, 3, "FlashErase"};

} // namespace Commands

#pragma GCC visibility pop

} // namespace Vesk::Mailbox
