// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/NamedValue.h"

namespace Vesk::Mailbox {

/// The part of the module that handles a message.
class MessageType : public NamedValue<MessageType> {
public:
    static const std::shared_ptr<MessageType> APPLICATION;
    static const std::shared_ptr<MessageType> FIELDBUS;
    static const std::shared_ptr<MessageType> MEMORY;
    static const std::shared_ptr<MessageType> BOOTLOADER;
    static const std::shared_ptr<MessageType> RESET;
    static const std::shared_ptr<MessageType> PRODUCTION;

    /// All of the above, in that order.
    static std::shared_ptr<List> CreateList();
    static System::Lazy<List> VALUES;

protected:
    using NamedValue::NamedValue;
};

} // namespace Vesk::Mailbox
