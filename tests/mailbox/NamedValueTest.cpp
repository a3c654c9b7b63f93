// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/mailbox/ErrorCode.h"
#include "vesk/mailbox/MessageType.h"

using Vesk::Mailbox::ErrorCode;
using Vesk::Mailbox::MessageType;

template <class T>
static void
ExpectClosedSet(const std::vector<std::pair<std::shared_ptr<T>, std::pair<int, const char*>>>& set) {
    const auto values = T::VALUES.Value();
    ASSERT_EQ(values->Count(), static_cast<int>(set.size()));
    std::vector<std::shared_ptr<T>> known(256);
    for (int i = 0; i < values->Count(); ++i) {
        const auto& [constant, wire] = set[static_cast<std::size_t>(i)];
        EXPECT_EQ(values->Get(i), constant) << wire.second;
        EXPECT_EQ(constant->ToString().Value(), wire.second);
        known[static_cast<std::size_t>(wire.first)] = constant;
    }
    for (int id = 0; id < 256; ++id) {
        const auto find = [id] { return T::GetById(static_cast<unsigned char>(id)); };
        if (known[static_cast<std::size_t>(id)])
            EXPECT_EQ(find(), known[static_cast<std::size_t>(id)]) << id;
        else
            ExpectFailure<System::ArgumentException>(std::to_string(id), find);
    }
}

TEST(NamedValue, MessageTypesAreSix) {
    ExpectClosedSet<MessageType>({{MessageType::APPLICATION, {1, "Application"}},
                                  {MessageType::FIELDBUS, {2, "Fieldbus"}},
                                  {MessageType::MEMORY, {3, "Memory"}},
                                  {MessageType::BOOTLOADER, {4, "Bootloader"}},
                                  {MessageType::RESET, {5, "Reset"}},
                                  {MessageType::PRODUCTION, {6, "Production"}}});
}

TEST(NamedValue, ErrorCodesAreTwelve) {
    ExpectClosedSet<ErrorCode>({{ErrorCode::NO_ERROR, {0, "No error"}},
                                {ErrorCode::MESSAGE_ID, {128, "Invalid Message ID"}},
                                {ErrorCode::MESSAGE_TYPE, {129, "Invalid Message Type"}},
                                {ErrorCode::COMMAND, {130, "Invalid Command"}},
                                {ErrorCode::DATA_SIZE, {131, "Invalid Data Size"}},
                                {ErrorCode::TOTAL_FRAME_COUNT, {132, "Invalid Total Frame Count"}},
                                {ErrorCode::FRAME_NUMBER, {133, "Invalid Frame Number"}},
                                {ErrorCode::OFFSET, {134, "Invalid Offset"}},
                                {ErrorCode::ADDRESS, {135, "Invalid Address"}},
                                {ErrorCode::RESPONSE, {136, "Invalid Response"}},
                                {ErrorCode::FLASH_CONFIG_ERROR, {137, "Flash Config Error"}},
                                {ErrorCode::INVALID_OTHER, {143, "Invalid Other"}}});
}
