// SPDX-License-Identifier: MIT
#include "vesk/mailbox/ErrorCode.h"

#include "vesk/system/Statics.h"

namespace Vesk::Mailbox {

const std::shared_ptr<ErrorCode> ErrorCode::NO_ERROR [[gnu::init_priority(System::OUTLIVES_STATICS)]] =
    Create(0x00, "No error");
const std::shared_ptr<ErrorCode> ErrorCode::MESSAGE_ID [[gnu::init_priority(System::OUTLIVES_STATICS)]] =
    Create(0x80, "Invalid Message ID");
const std::shared_ptr<ErrorCode> ErrorCode::MESSAGE_TYPE [[gnu::init_priority(System::OUTLIVES_STATICS)]] =
    Create(0x81, "Invalid Message Type");
const std::shared_ptr<ErrorCode> ErrorCode::COMMAND [[gnu::init_priority(System::OUTLIVES_STATICS)]] =
    Create(0x82, "Invalid Command");
const std::shared_ptr<ErrorCode> ErrorCode::DATA_SIZE [[gnu::init_priority(System::OUTLIVES_STATICS)]] =
    Create(0x83, "Invalid Data Size");
const std::shared_ptr<ErrorCode> ErrorCode::TOTAL_FRAME_COUNT
    [[gnu::init_priority(System::OUTLIVES_STATICS)]] = Create(0x84, "Invalid Total Frame Count");
const std::shared_ptr<ErrorCode> ErrorCode::FRAME_NUMBER [[gnu::init_priority(System::OUTLIVES_STATICS)]] =
    Create(0x85, "Invalid Frame Number");
const std::shared_ptr<ErrorCode> ErrorCode::OFFSET [[gnu::init_priority(System::OUTLIVES_STATICS)]] =
    Create(0x86, "Invalid Offset");
const std::shared_ptr<ErrorCode> ErrorCode::ADDRESS [[gnu::init_priority(System::OUTLIVES_STATICS)]] =
    Create(0x87, "Invalid Address");
const std::shared_ptr<ErrorCode> ErrorCode::RESPONSE [[gnu::init_priority(System::OUTLIVES_STATICS)]] =
    Create(0x88, "Invalid Response");
const std::shared_ptr<ErrorCode> ErrorCode::FLASH_CONFIG_ERROR
    [[gnu::init_priority(System::OUTLIVES_STATICS)]] = Create(0x89, "Flash Config Error");
const std::shared_ptr<ErrorCode> ErrorCode::INVALID_OTHER [[gnu::init_priority(System::OUTLIVES_STATICS)]] =
    Create(0x8F, "Invalid Other");

System::Lazy<ErrorCode::List> ErrorCode::VALUES [[gnu::init_priority(System::OUTLIVES_STATICS)]] (CreateList);

std::shared_ptr<ErrorCode::List> ErrorCode::CreateList() {
    return ListOf({NO_ERROR, MESSAGE_ID, MESSAGE_TYPE, COMMAND, DATA_SIZE, TOTAL_FRAME_COUNT, FRAME_NUMBER,
                   OFFSET, ADDRESS, RESPONSE, FLASH_CONFIG_ERROR, INVALID_OTHER});
}

} // namespace Vesk::Mailbox
