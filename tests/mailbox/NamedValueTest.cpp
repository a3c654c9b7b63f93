// SPDX-License-Identifier: MIT
#include "vesk/mailbox/ErrorCode.h"
#include "vesk/mailbox/MessageType.h"

#include <gtest/gtest.h>

using Vesk::Mailbox::ErrorCode;
using Vesk::Mailbox::MessageType;

/// The wire value and name of each constant; each is found by its value.
template <class T>
static std::string Constants() {
    std::string text;
    const auto values = T::VALUES.Value();
    for (int i = 0; i < values->Count(); ++i) {
        EXPECT_EQ(T::GetById(values->Get(i)->Id), values->Get(i));
        text += std::to_string(values->Get(i)->Id) + " " + values->Get(i)->ToString().Value() + ", ";
    }
    return text;
}

TEST(NamedValue, AreClosedSetsOfWireValuesAndNames) {
    EXPECT_EQ(Constants<MessageType>(),
              "1 Application, 2 Fieldbus, 3 Memory, 4 Bootloader, 5 Reset, 6 Production, ");
    EXPECT_EQ(Constants<ErrorCode>(),
              "0 No error, 128 Invalid Message ID, 129 Invalid Message Type, 130 Invalid Command, "
              "131 Invalid Data Size, 132 Invalid Total Frame Count, 133 Invalid Frame Number, "
              "134 Invalid Offset, 135 Invalid Address, 136 Invalid Response, 137 Flash Config Error, "
              "143 Invalid Other, ");
}
