// SPDX-License-Identifier: MIT
#include "vesk/modules/bootloader/ProductionMessages.h"

#include "vesk/mailbox/RequestBuilder.h"

namespace Vesk::Modules::Bootloader {

using Mailbox::RequestBuilder;
namespace Commands = Mailbox::Commands;

std::shared_ptr<Mailbox::IRequest> ProductionMessages::Enable() {
    return RequestBuilder::Create(Commands::ENABLE)->Build();
}

std::shared_ptr<Mailbox::IRequest> ProductionMessages::FlashWriteEnable() {
    return RequestBuilder::Create(Commands::FLASH_WRITE_ENABLE)->Build();
}

std::shared_ptr<Mailbox::IRequest> ProductionMessages::FlashErase() {
    return RequestBuilder::Create(Commands::FLASH_ERASE)->Build();
}

} // namespace Vesk::Modules::Bootloader
