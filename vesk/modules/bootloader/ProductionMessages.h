// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/IRequest.h"

#include <memory>

namespace Vesk::Modules::Bootloader {

/// The requests that open the module's flash for new firmware, in the order in which they are sent.
class ProductionMessages {
public:
    static std::shared_ptr<Mailbox::IRequest> Enable();
    static std::shared_ptr<Mailbox::IRequest> FlashWriteEnable();
    /// Erases the flash; the module takes its time.
    static std::shared_ptr<Mailbox::IRequest> FlashErase();
};

} // namespace Vesk::Modules::Bootloader
