// SPDX-License-Identifier: MIT
#include "vesk/modules/InitMessages.h"

#include "vesk/mailbox/RequestBuilder.h"

namespace Vesk::Modules::Slave {

using Mailbox::IRequest;
using Mailbox::RequestBuilder;

std::shared_ptr<IRequest> InitMessages::StartInit() {
    return RequestBuilder::Create(Mailbox::Commands::START_INIT)->Build();
}

std::shared_ptr<IRequest> InitMessages::EndInit() {
    return RequestBuilder::Create(Mailbox::Commands::END_INIT)->Build();
}

} // namespace Vesk::Modules::Slave
