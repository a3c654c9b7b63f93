// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/mailbox/RequestBuilder.h"
#include "vesk/mailbox/Response.h"

using namespace Vesk::Mailbox;
using System::ArgumentNullException;
using System::ArgumentOutOfRangeException;
using Bytes = System::Array<unsigned char>;

static std::shared_ptr<RequestBuilder> Ping() {
    return RequestBuilder::Create()->Type(MessageType::FIELDBUS)->Name("Ping");
}

TEST(RequestBuilder, PassesOnWhatWasSetAndCopiesTheArrays) {
    const auto data = Bytes::Create({1, 0xAB});
    const auto builder = Ping()->Command(0xABC)->TotalFrameCount(0x20)->FrameNumber(0x10);
    const auto request = builder->Offset(0x12345678)->Extended(5, 3)->Data(data)->Build();
    data->Set(0, 9);
    const auto next =
        builder->Extended(9, 3)->Name("Pong")->Type(MessageType::MEMORY)->Data(nullptr)->Build();
    next->Extended()->Set(0, 7);

    const std::string numbers = "\nCommand: 0xabc\nTotal frame count: 0x20\nFrame number: 0x10\n"
                                "Offset: 0x12345678\nExtended: [";
    EXPECT_EQ(request->ToString().Value(),
              "Mailbox.Request: Ping\nType: Fieldbus" + numbers +
                  "0000, 0000, 0000, 0005, 0000, 0000, 0000, 0000]\nData: [01, ab]\n");
    EXPECT_EQ(next->ToString().Value(), "Mailbox.Request: Pong\nType: Memory" + numbers +
                                            "0007, 0000, 0000, 0009, 0000, 0000, 0000, 0000]\nData: []\n");
}

TEST(RequestBuilder, RefusesWhatCannotBeSent) {
    const auto most = Bytes::Create(256), tooMuch = Bytes::Create(257);
    ExpectFailure<ArgumentNullException>("_type must not be null",
                                         [&] { RequestBuilder::Create()->Data(tooMuch)->Build(); });
    ExpectFailure<ArgumentOutOfRangeException>("Byte[257]",
                                               [&] { Ping()->Name(nullptr)->Data(tooMuch)->Build(); });
    ExpectFailure<ArgumentNullException>("_name must not be null", [] { Ping()->Name(nullptr)->Build(); });
    EXPECT_EQ(Ping()->Data(most)->Build()->Data()->Count(), 256);

    const auto words = System::Array<unsigned short>::Create(8);
    const auto respond = [&](auto error, auto extended, auto data) {
        return [=] { return Response::Create(error, extended, data); };
    };
    const auto& error = ErrorCode::NO_ERROR;
    ExpectFailure<ArgumentNullException>("error must not be null", respond(nullptr, nullptr, nullptr));
    ExpectFailure<ArgumentNullException>("extended must not be null", respond(error, nullptr, nullptr));
    ExpectFailure<ArgumentNullException>("data must not be null", respond(error, words, nullptr));
    ExpectFailure<ArgumentOutOfRangeException>("257", respond(error, words, tooMuch));
    EXPECT_EQ(respond(error, words, most)()->Data(), most);
}
