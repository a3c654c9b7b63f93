// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/RecordingHostInterface.h"
#include "tests/support/TestClock.h"
#include "tests/support/TraceListener.h"

#include "vesk/core/FormatArray.h"
#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/mailbox/MailboxAreaHandler.h"
#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/mailbox/MailboxTimeoutException.h"
#include "vesk/mailbox/Request.h"
#include "vesk/mailbox/RequestBuilder.h"

#include <gmock/gmock.h>

using namespace Vesk::Mailbox;
using System::ArgumentOutOfRangeException;
using System::Array;
using testing::ElementsAre;

static constexpr int IN = 0x56;
static constexpr int OUT = 0x176;
static constexpr std::int64_t SECOND = 1'000'000'000;

static const std::string REQUEST_TEXT =
    "Mailbox.Request: Ping\nType: Fieldbus\nCommand: 0x16\nTotal frame count: 0x1\nFrame number: 0x1\n"
    "Offset: 0x0\nExtended: [0000, 0000, 0000, 0000, 0000, 0000, 0000, 0000]\nData: []\n";

class MailboxAreaHandlerTest : public testing::Test {
protected:
    static std::shared_ptr<RequestBuilder> Ping() {
        return RequestBuilder::Create()->Type(MessageType::FIELDBUS)->Name("Ping")->Command(0x16);
    }

    /// Queues a request whose response is written down under `name`; without one, it has no action.
    void Queue(const std::string& name = "", int seconds = 3) {
        const auto note = [this, name](const std::shared_ptr<IResponse>& response) {
            _answers.push_back(name + ": " + response->ToString().Value());
        };
        using Action = System::ArgFunc<std::shared_ptr<IResponse>, void>;
        _handler->Enqueue(Ping()->Build(), name.empty() ? nullptr : Action::Create(note), seconds);
    }

    void Send() {
        _handler->HandleBootEvent();
        ASSERT_TRUE(_handler->Update());
    }

    /// The module puts a response with two bytes of data into mailbox-out.
    void Respond(int id, int information = 0x0002, int command = 0x16, int dataSize = 2) {
        _dpram->Put(OUT, {id >> 8, id & 0xFF, information >> 8, information & 0xFF, 0, command, dataSize >> 8,
                          dataSize & 0xFF, 0, 1, 0, 1, 0, 0, 0, 0, 0x12, 0x34});
        _dpram->Put(OUT + 32, {0xCA, 0xFE});
        _handler->ResponseAvailable();
    }

    int IdInMailboxIn() const { return _dpram->bytes[IN] << 8 | _dpram->bytes[IN + 1]; }

    static std::string ResponseText(const std::string& error = "No error") {
        return "Mailbox.Response\nError: " + error +
               "\nExtended: [1234, 0000, 0000, 0000, 0000, 0000, 0000, 0000]\nData: [ca, fe]\n";
    }

    TestClock _clock;
    std::shared_ptr<RecordingHostInterface> _dpram = std::make_shared<RecordingHostInterface>();
    std::shared_ptr<MailboxAreaHandler> _handler = MailboxAreaHandler::Create(IN, _dpram);
    std::vector<std::string> _answers;
};

TEST_F(MailboxAreaHandlerTest, WritesHeaderAndDataInOneGoOnceTheModuleHasBooted) {
    _dpram->bytes.assign(_dpram->bytes.size(), 0xEE);
    const auto data = Array<unsigned char>::Create(std::vector<unsigned char>(256, 0xDA));
    const auto request = Ping()->TotalFrameCount(0x0304)->FrameNumber(0x0506)->Offset(0x0708090A);
    _handler->Enqueue(request->Extended(0x0B0C, 0)->Extended(0x0D0E, 7)->Data(data)->Build(), nullptr, 1);
    EXPECT_FALSE(_handler->Update());
    _handler->HandleBootEvent();
    EXPECT_THAT(_dpram->TakeLog(), testing::IsEmpty());
    EXPECT_TRUE(_handler->Update());
    EXPECT_THAT(_dpram->TakeLog(), ElementsAre("W 0056+288"));
    EXPECT_THAT(_dpram->Bytes(IN, 33), ElementsAre(0x00, 0x01, 0x40, 0x02, 0x00, 0x16, 0x01, 0x00, 0x03, 0x04,
                                                   0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B, 0x0C, 0, 0, 0, 0,
                                                   0, 0, 0, 0, 0, 0, 0, 0, 0x0D, 0x0E, 0xDA));
    EXPECT_THAT(_dpram->Bytes(OUT - 1, 2), ElementsAre(0xDA, 0xEE));
}

TEST_F(MailboxAreaHandlerTest, DropsARequestOfAnotherClassWithMoreData) {
    struct Own : Request {
        explicit Own(const std::shared_ptr<Array<unsigned char>>& data)
            : Request(MessageType::FIELDBUS, 0x16, 1, 1, 0, Array<unsigned short>::Create(8), data, "Own") {}
    };

    _handler->Enqueue(std::make_shared<Own>(Array<unsigned char>::Create(257)), nullptr, 1);
    _handler->Enqueue(std::make_shared<Own>(nullptr), nullptr, 1);
    Queue("a");
    _handler->HandleBootEvent();
    ExpectFailure<ArgumentOutOfRangeException>("257", [this] { _handler->Update(); });
    ExpectFailure<System::ArgumentNullException>("data must not be null", [this] { _handler->Update(); });
    EXPECT_TRUE(_dpram->TakeLog().empty());
    EXPECT_TRUE(_handler->Update());
    EXPECT_EQ(IdInMailboxIn(), 3);
}

TEST_F(MailboxAreaHandlerTest, TimesOutAtTheNanosecondAndTakesTheAnswerAfterAll) {
    Queue("a", 2147483647);
    Send();
    _clock.Advance(2147483647 * SECOND - 1);
    EXPECT_FALSE(_handler->Update());
    _clock.Advance(1);
    ExpectFailure<MailboxTimeoutException>("Timeout after 2147483647 seconds.\nMailbox request:\n" +
                                               REQUEST_TEXT + "\n",
                                           [this] { return _handler->Update(); });
    Respond(1);
    EXPECT_EQ(_answers.size(), 1u);
}

TEST_F(MailboxAreaHandlerTest, SpendsAnIdOnEveryRequestAndStartsAgainAt0) {
    ExpectFailure<System::ArgumentNullException>("request must not be null",
                                                 [this] { _handler->Enqueue(nullptr, nullptr, -1); });
    ExpectFailure<ArgumentOutOfRangeException>("timeoutSeconds (-1) must not be less than zero (0)",
                                               [this] { Queue("never", -1); });
    ExpectFailure<ArgumentOutOfRangeException>("timeoutSeconds (0) must not be equal to zero (0)",
                                               [this] { Queue("never", 0); });
    for (int id = 4; id < 65535; ++id)
        EXPECT_THROW(_handler->Enqueue(nullptr, nullptr, 1), System::Thrown);
    for (const int id : {65535, 0, 1}) {
        Queue();
        Send();
        EXPECT_EQ(IdInMailboxIn(), id);
        Respond(id);
    }
}

TEST_F(MailboxAreaHandlerTest, RefusesAResponseThatNobodyAskedForOrThatCannotBeRead) {
    Queue("a"); // which is not outstanding
    EXPECT_THROW(Respond(1), System::Thrown);
    const std::vector<unsigned char> area(_dpram->bytes.begin() + OUT, _dpram->bytes.begin() + OUT + 288);
    const auto text = Vesk::FormatArray(Array<unsigned char>::Create(area), 0, 288, "0x", 2, 16).Value();
    ExpectFailure<MailboxResponseException>(
        "Received response without an outstanding request:\n" + text + "\n", [this] { Respond(1); });
    Send();
    const std::tuple<std::string, unsigned char, unsigned short, std::string> others[]{
        {"MessageId", 2, 0x0003, "Memory"},
        {"MessageType", 1, 0x0003, "Memory"},
        {"Command", 1, 0x0002, "Fieldbus"}};
    for (const auto& [what, id, type, typeName] : others)
        ExpectFailure<MailboxResponseException>(
            what + " of response header does not match outstanding request:\nResponse\nID: 0x" +
                std::to_string(id) + "\nType: " + typeName +
                "\nCommand: 0x17\nData size: 0x101\nTotal frame count: 0x1\nFrame number: 0x1\nOffset: 0x0\n"
                "Extended: [1234, 0000, 0000, 0000, 0000, 0000, 0000, 0000]\n\n" +
                REQUEST_TEXT + "\n",
            [this, id = id, type = type] { Respond(id, type, 0x17, 257); });
    ExpectFailure<System::ArgumentException>("7", [this] { Respond(2, 0x0007); });
    ExpectFailure<ArgumentOutOfRangeException>(
        "offset (32) + count (257) must not be greater than the length of array (288)",
        [this] { Respond(1, 0x0002, 0x16, 257); });
    Respond(1, 0x4002, 0x16, 256); // the request flag is not looked at
    ASSERT_EQ(_answers.size(), 1u);
    EXPECT_EQ(std::count(_answers[0].begin(), _answers[0].end(), ','), 7 + 255);
    EXPECT_THROW(Respond(1), System::Thrown);
}

TEST_F(MailboxAreaHandlerTest, LeavesAnErrorToTheActionAndFailsWithoutOne) {
    Queue("a");
    Send();
    Respond(1, 0x8202);
    EXPECT_THAT(_answers, ElementsAre("a: " + ResponseText("Invalid Command")));
    Queue();
    Send();
    ExpectFailure<MailboxResponseException>("Received erroneous mailbox response:\n" +
                                                ResponseText("Invalid Command") + "\nMailbox request:\n" +
                                                REQUEST_TEXT + "\n",
                                            [this] { Respond(2, 0x8202); });
    TraceListener trace(Vesk::RuntimeConfig::_printMailbox);
    Respond(2); // it was still outstanding
    Queue();
    Send();
    EXPECT_THAT(trace.lines, ElementsAre("MailboxAreaHandler, received mailbox:" + ResponseText(),
                                         "MailboxAreaHandler, sending mailbox:" + REQUEST_TEXT));
}
