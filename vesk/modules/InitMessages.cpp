// SPDX-License-Identifier: MIT
#include "vesk/modules/InitMessages.h"

#include "vesk/mailbox/RequestBuilder.h"

namespace Vesk::Modules::Slave {

using Mailbox::IRequest;
using Mailbox::MessageType;
using Mailbox::RequestBuilder;

std::shared_ptr<IRequest> InitMessages::StartInit() {
    return RequestBuilder::Create()
        ->Type(MessageType::APPLICATION)
        ->Name("StartInit")
        ->Command(0x01)
        ->Build();
}

std::shared_ptr<IRequest> InitMessages::EndInit() {
    return RequestBuilder::Create()->Type(MessageType::APPLICATION)->Name("EndInit")->Command(0x03)->Build();
}

} // namespace Vesk::Modules::Slave
