// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/mailbox/RequestBuilder.h"
#include "vesk/mailbox/Response.h"

using namespace Vesk::Mailbox;
using System::ArgumentNullException;
using System::ArgumentOutOfRangeException;
using System::Array;

static std::shared_ptr<RequestBuilder> Ping() {
    return RequestBuilder::Create()->Type(MessageType::FIELDBUS)->Name("Ping");
}

TEST(RequestBuilder, PassesOnWhatWasSetAndCopiesTheArrays) {
    const auto data = Array<unsigned char>::Create({1, 0xAB});
    const auto builder = Ping()
                             ->Type(MessageType::MEMORY)
                             ->Command(0xABC)
                             ->TotalFrameCount(0x20)
                             ->FrameNumber(0x10)
                             ->Offset(0x12345678)
                             ->Extended(5, 3)
                             ->Data(data);
    const auto request = builder->Build();
    data->Set(0, 9);
    builder->Extended(9, 3)->Name("Pong");
    const auto next = builder->Data(nullptr)->Build();
    next->Extended()->Set(0, 7);

    EXPECT_EQ(request->ToString().Value(),
              "Mailbox.Request: Ping\nType: Memory\nCommand: 0xabc\nTotal frame count: 0x20\n"
              "Frame number: 0x10\nOffset: 0x12345678\n"
              "Extended: [0000, 0000, 0000, 0005, 0000, 0000, 0000, 0000]\nData: [01, ab]\n");
    EXPECT_EQ(next->ToString().Value(),
              "Mailbox.Request: Pong\nType: Memory\nCommand: 0xabc\nTotal frame count: 0x20\n"
              "Frame number: 0x10\nOffset: 0x12345678\n"
              "Extended: [0007, 0000, 0000, 0009, 0000, 0000, 0000, 0000]\nData: []\n");
    EXPECT_EQ(Ping()->Build()->Extended()->Get(0), 0);
}

TEST(RequestBuilder, RefusesWhatCannotBeSent) {
    const auto tooLong = Array<unsigned char>::Create(257);
    ExpectFailure<ArgumentNullException>("_type must not be null",
                                         [&] { RequestBuilder::Create()->Data(tooLong)->Build(); });
    ExpectFailure<ArgumentOutOfRangeException>("Byte[257]",
                                               [&] { Ping()->Name(nullptr)->Data(tooLong)->Build(); });
    ExpectFailure<ArgumentNullException>("_name must not be null", [] { Ping()->Name(nullptr)->Build(); });
    ExpectFailure<ArgumentOutOfRangeException>("index (8) must not be greater than count - 1 (7)",
                                               [] { Ping()->Extended(1, 8); });
    ExpectFailure<ArgumentOutOfRangeException>("index (-1) must not be less than zero (0)",
                                               [] { Ping()->Extended(1, -1); });
    EXPECT_EQ(Ping()->Data(Array<unsigned char>::Create(256))->Build()->Data()->Count(), 256);
}

TEST(Response, RefusesIncompleteFields) {
    const auto words = Array<unsigned short>::Create(8);
    const auto& error = ErrorCode::NO_ERROR;
    ExpectFailure<ArgumentNullException>("error must not be null",
                                         [] { Response::Create(nullptr, nullptr, nullptr); });
    ExpectFailure<ArgumentNullException>("extended must not be null",
                                         [&] { Response::Create(error, nullptr, nullptr); });
    ExpectFailure<ArgumentNullException>("data must not be null",
                                         [&] { Response::Create(error, words, nullptr); });
    ExpectFailure<ArgumentOutOfRangeException>(
        "257", [&] { Response::Create(error, words, Array<unsigned char>::Create(257)); });
    EXPECT_NO_THROW(Response::Create(error, words, Array<unsigned char>::Create(256)));
}
