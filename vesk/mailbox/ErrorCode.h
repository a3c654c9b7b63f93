// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/NamedValue.h"

namespace Vesk::Mailbox {

/// What the module answers about a request. Every error has bit 7 set and tells itself apart in bits 0 to 3.
class ErrorCode : public NamedValue<ErrorCode> {
public:
    static const std::shared_ptr<ErrorCode> NO_ERROR;
    static const std::shared_ptr<ErrorCode> MESSAGE_ID;
    static const std::shared_ptr<ErrorCode> MESSAGE_TYPE;
    static const std::shared_ptr<ErrorCode> COMMAND;
    static const std::shared_ptr<ErrorCode> DATA_SIZE;
    static const std::shared_ptr<ErrorCode> TOTAL_FRAME_COUNT;
    static const std::shared_ptr<ErrorCode> FRAME_NUMBER;
    static const std::shared_ptr<ErrorCode> OFFSET;
    static const std::shared_ptr<ErrorCode> ADDRESS;
    static const std::shared_ptr<ErrorCode> RESPONSE;
    static const std::shared_ptr<ErrorCode> FLASH_CONFIG_ERROR;
    static const std::shared_ptr<ErrorCode> INVALID_OTHER;

    /// All of the above, in that order.
    static std::shared_ptr<List> CreateList();
    static System::Lazy<List> VALUES;

protected:
    using NamedValue::NamedValue;
};

} // namespace Vesk::Mailbox
