// SPDX-License-Identifier: MIT
#include "vesk/mailbox/MessageType.h"

#include "vesk/system/Statics.h"

namespace Vesk::Mailbox {

const std::shared_ptr<MessageType> MessageType::APPLICATION [[gnu::init_priority(System::OUTLIVES_STATICS)]] =
    Create(1, "Application");
const std::shared_ptr<MessageType> MessageType::FIELDBUS [[gnu::init_priority(System::OUTLIVES_STATICS)]] =
    Create(2, "Fieldbus");
const std::shared_ptr<MessageType> MessageType::MEMORY [[gnu::init_priority(System::OUTLIVES_STATICS)]] =
    Create(3, "Memory");
const std::shared_ptr<MessageType> MessageType::BOOTLOADER [[gnu::init_priority(System::OUTLIVES_STATICS)]] =
    Create(4, "Bootloader");
const std::shared_ptr<MessageType> MessageType::RESET [[gnu::init_priority(System::OUTLIVES_STATICS)]] =
    Create(5, "Reset");
const std::shared_ptr<MessageType> MessageType::PRODUCTION [[gnu::init_priority(System::OUTLIVES_STATICS)]] =
    Create(6, "Production");

System::Lazy<MessageType::List> MessageType::VALUES
    [[gnu::init_priority(System::OUTLIVES_STATICS)]] (CreateList);

std::shared_ptr<MessageType::List> MessageType::CreateList() {
    return ListOf({APPLICATION, FIELDBUS, MEMORY, BOOTLOADER, RESET, PRODUCTION});
}

} // namespace Vesk::Mailbox
