// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/mailbox/RequestBuilder.h"
#include "vesk/mailbox/Response.h"

using namespace Vesk::Mailbox;
using System::Array;

static std::shared_ptr<RequestBuilder> Ping() {
    return RequestBuilder::Create()->Type(MessageType::FIELDBUS)->Name("Ping");
}

TEST(RequestBuilder, FillsInWhatWasNotSet) {
    EXPECT_EQ(Ping()->Build()->ToString().Value(),
              "Mailbox.Request: Ping\nType: Fieldbus\nCommand: 0x0\nTotal frame count: 0x1\n"
              "Frame number: 0x1\nOffset: 0x0\n"
              "Extended: [0000, 0000, 0000, 0000, 0000, 0000, 0000, 0000]\nData: []\n");
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
    EXPECT_EQ(request->Type(), MessageType::MEMORY);
    EXPECT_EQ(request->Command(), 0xABC);
    EXPECT_EQ(request->TotalFrameCount(), 0x20);
    EXPECT_EQ(request->FrameNumber(), 0x10);
    EXPECT_EQ(request->Offset(), 0x12345678u);
    EXPECT_EQ(request->Name().Value(), "Ping");
    EXPECT_EQ(next->ToString().Value(),
              "Mailbox.Request: Pong\nType: Memory\nCommand: 0xabc\nTotal frame count: 0x20\n"
              "Frame number: 0x10\nOffset: 0x12345678\n"
              "Extended: [0007, 0000, 0000, 0009, 0000, 0000, 0000, 0000]\nData: []\n");
    EXPECT_EQ(Ping()->Build()->Extended()->Get(0), 0);
}

TEST(RequestBuilder, RefusesWhatCannotBeSent) {
    const auto tooLong = Array<unsigned char>::Create(257);
    ExpectFailure<System::ArgumentNullException>(
        "_type must not be null", [&] { return RequestBuilder::Create()->Data(tooLong)->Build(); });
    ExpectFailure<System::ArgumentOutOfRangeException>(
        "Byte[257]", [&] { return Ping()->Name(nullptr)->Data(tooLong)->Build(); });
    ExpectFailure<System::ArgumentNullException>("_name must not be null",
                                                 [] { return Ping()->Name(nullptr)->Build(); });
    ExpectFailure<System::ArgumentOutOfRangeException>("index (8) must not be greater than count - 1 (7)",
                                                       [] { return Ping()->Extended(1, 8); });
    ExpectFailure<System::ArgumentOutOfRangeException>("index (-1) must not be less than zero (0)",
                                                       [] { return Ping()->Extended(1, -1); });
    EXPECT_EQ(Ping()->Data(Array<unsigned char>::Create(256))->Build()->Data()->Count(), 256);
}

TEST(Response, KeepsTheArraysThatItWasMadeOf) {
    const auto words = Array<unsigned short>::Create({1, 0xABCD});
    const auto bytes = Array<unsigned char>::Create({0, 255});
    const auto response = Response::Create(ErrorCode::COMMAND, words, bytes);
    EXPECT_EQ(response->Error(), ErrorCode::COMMAND);
    EXPECT_EQ(response->Extended(), words);
    EXPECT_EQ(response->Data(), bytes);
    EXPECT_EQ(response->ToString().Value(),
              "Mailbox.Response\nError: Invalid Command\nExtended: [0001, abcd]\nData: [00, ff]\n");
}

TEST(Response, RefusesIncompleteFields) {
    const auto words = Array<unsigned short>::Create(8);
    const auto make = [&](bool error, bool extended, int size) {
        return Response::Create(error ? ErrorCode::NO_ERROR : nullptr, extended ? words : nullptr,
                                size < 0 ? nullptr : Array<unsigned char>::Create(size));
    };
    ExpectFailure<System::ArgumentNullException>("error must not be null",
                                                 [&] { return make(false, false, -1); });
    ExpectFailure<System::ArgumentNullException>("extended must not be null",
                                                 [&] { return make(true, false, -1); });
    ExpectFailure<System::ArgumentNullException>("data must not be null",
                                                 [&] { return make(true, true, -1); });
    ExpectFailure<System::ArgumentOutOfRangeException>("257", [&] { return make(true, true, 257); });
    EXPECT_EQ(make(true, true, 256)->Data()->Count(), 256);
}
