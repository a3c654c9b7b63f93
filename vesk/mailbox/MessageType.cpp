// SPDX-License-Identifier: MIT
#include "vesk/mailbox/MessageType.h"

namespace Vesk::Mailbox {

const std::shared_ptr<MessageType> MessageType::APPLICATION = Create(1, "Application");
const std::shared_ptr<MessageType> MessageType::FIELDBUS = Create(2, "Fieldbus");
const std::shared_ptr<MessageType> MessageType::MEMORY = Create(3, "Memory");
const std::shared_ptr<MessageType> MessageType::BOOTLOADER = Create(4, "Bootloader");
const std::shared_ptr<MessageType> MessageType::RESET = Create(5, "Reset");
const std::shared_ptr<MessageType> MessageType::PRODUCTION = Create(6, "Production");

System::Lazy<MessageType::List> MessageType::VALUES(CreateList);

std::shared_ptr<MessageType::List> MessageType::CreateList() {
    return ListOf({APPLICATION, FIELDBUS, MEMORY, BOOTLOADER, RESET, PRODUCTION});
}

} // namespace Vesk::Mailbox
