// SPDX-License-Identifier: MIT
#include "vesk/modules/bootloader/ProductionMessages.h"

#include "vesk/mailbox/RequestBuilder.h"

namespace Vesk::Modules::Bootloader {

static std::shared_ptr<Mailbox::IRequest> Build(const char* name, unsigned short command) {
    return Mailbox::RequestBuilder::Create()
        ->Type(Mailbox::MessageType::PRODUCTION)
        ->Name(name)
        ->Command(command)
        ->Build();
}

std::shared_ptr<Mailbox::IRequest> ProductionMessages::Enable() {
    return Build("Enable", 1);
}

std::shared_ptr<Mailbox::IRequest> ProductionMessages::FlashWriteEnable() {
    return Build("FlashWriteEnable", 2);
}

std::shared_ptr<Mailbox::IRequest> ProductionMessages::FlashErase() {
    return Build("FlashErase", 3);
}

} // namespace Vesk::Modules::Bootloader
