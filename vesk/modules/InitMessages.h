// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/IRequest.h"

namespace Vesk::Modules::Slave {

/// The requests around the initialisation of a module: first StartInit, then what the module's kind asks for,
/// then EndInit.
class InitMessages {
public:
    static std::shared_ptr<Mailbox::IRequest> StartInit();
    static std::shared_ptr<Mailbox::IRequest> EndInit();
};

} // namespace Vesk::Modules::Slave
