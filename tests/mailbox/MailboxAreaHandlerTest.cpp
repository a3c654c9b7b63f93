// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/RecordingHostInterface.h"
#include "tests/support/TestClock.h"
#include "tests/support/TraceListener.h"

#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/mailbox/MailboxAreaHandler.h"
#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/mailbox/MailboxTimeoutException.h"
#include "vesk/mailbox/RequestBuilder.h"

#include <gmock/gmock.h>

#include <functional>
#include <tuple>

using namespace Vesk::Mailbox;
using System::ArgumentOutOfRangeException;
using System::Array;
using testing::ElementsAre;
using testing::IsEmpty;

static constexpr int IN = 0x56;
static constexpr int OUT = 0x176;
static constexpr std::int64_t SECOND = 1'000'000'000;

static const std::string REQUEST_TEXT =
    "Mailbox.Request: Ping\nType: Fieldbus\nCommand: 0x16\nTotal frame count: 0x1\nFrame number: 0x1\n"
    "Offset: 0x0\nExtended: [0000, 0000, 0000, 0000, 0000, 0000, 0000, 0000]\nData: []\n";

class MailboxAreaHandlerTest : public testing::Test {
protected:
    static std::shared_ptr<IRequest> Ping(int dataSize = 0) {
        return RequestBuilder::Create()
            ->Type(MessageType::FIELDBUS)
            ->Name("Ping")
            ->Command(0x16)
            ->Data(Array<unsigned char>::Create(
                std::vector<unsigned char>(static_cast<std::size_t>(dataSize), 0xDA)))
            ->Build();
    }

    /// Queues a request for whose response `action` is called.
    void Queue(std::function<void(const std::shared_ptr<IResponse>&)> action, int seconds = 3) {
        _handler->Enqueue(
            Ping(), System::ArgFunc<std::shared_ptr<IResponse>, void>::Create(std::move(action)), seconds);
    }

    /// Queues a request whose response is written down in _answers under `name`.
    void Queue(const char* name, int seconds = 3) {
        const auto note = [this, name = std::string(name)](const std::shared_ptr<IResponse>& response) {
            _answers.push_back(name + ": " + response->ToString().Value());
        };
        Queue(note, seconds);
    }

    void QueueWithoutAction(int seconds = 3) { _handler->Enqueue(Ping(), nullptr, seconds); }

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

    static std::string Answer(const std::string& name, const std::string& error = "No error") {
        return name + ": " + ResponseText(error);
    }

    void ExpectTimeout(int seconds) {
        ExpectFailure<MailboxTimeoutException>("Timeout after " + std::to_string(seconds) +
                                                   " seconds.\nMailbox request:\n" + REQUEST_TEXT + "\n",
                                               [this] { return _handler->Update(); });
    }

    TestClock _clock;
    std::shared_ptr<RecordingHostInterface> _dpram = std::make_shared<RecordingHostInterface>();
    std::shared_ptr<MailboxAreaHandler> _handler = MailboxAreaHandler::Create(IN, _dpram);
    std::vector<std::string> _answers;
};

TEST_F(MailboxAreaHandlerTest, SendsNothingBeforeTheModuleHasBooted) {
    ExpectFailure<System::ArgumentNullException>("hostInterface must not be null",
                                                 [] { return MailboxAreaHandler::Create(IN, nullptr); });
    Queue("a");
    EXPECT_FALSE(_handler->Update());
    EXPECT_THAT(_dpram->TakeLog(), IsEmpty());

    _handler->HandleBootEvent();
    EXPECT_THAT(_dpram->TakeLog(), IsEmpty());
    EXPECT_TRUE(_handler->Update());
    EXPECT_THAT(_dpram->TakeLog(), ElementsAre("W 0056+32"));
}

TEST_F(MailboxAreaHandlerTest, WritesHeaderAndDataInOneGo) {
    _dpram->bytes.assign(_dpram->bytes.size(), 0xEE);
    _handler->Enqueue(RequestBuilder::Create()
                          ->Type(MessageType::MEMORY)
                          ->Name("All")
                          ->Command(0x0102)
                          ->TotalFrameCount(0x0304)
                          ->FrameNumber(0x0506)
                          ->Offset(0x0708090A)
                          ->Extended(0x0B0C, 0)
                          ->Extended(0x0D0E, 7)
                          ->Data(Array<unsigned char>::Create({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}))
                          ->Build(),
                      nullptr, 1);
    Send();

    EXPECT_THAT(_dpram->TakeLog(), ElementsAre("W 0056+42"));
    EXPECT_THAT(_dpram->Bytes(IN, 43),
                ElementsAre(0x00, 0x01, 0x40, 0x03, 0x01, 0x02, 0x00, 0x0A, 0x03, 0x04, 0x05, 0x06, 0x07,
                            0x08, 0x09, 0x0A, 0x0B, 0x0C, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x0D, 0x0E, 1,
                            2, 3, 4, 5, 6, 7, 8, 9, 10, 0xEE));
}

TEST_F(MailboxAreaHandlerTest, FillsTheWholeAreaButNotMore) {
    _handler->Enqueue(Ping(256), nullptr, 1);
    Send();
    EXPECT_THAT(_dpram->TakeLog(), ElementsAre("W 0056+288"));
    EXPECT_THAT(_dpram->Bytes(IN + 6, 2), ElementsAre(1, 0));
    EXPECT_THAT(_dpram->Bytes(OUT - 1, 2), ElementsAre(0xDA, 0));
}

TEST_F(MailboxAreaHandlerTest, SendsInOrderOnceTheLastOneIsTakenAndAnswered) {
    for (const char* name : {"a", "b", "c"})
        Queue(name);
    Send();
    EXPECT_EQ(IdInMailboxIn(), 1);
    _dpram->TakeLog();

    // Acknowledged, then answered.
    EXPECT_FALSE(_handler->Update());
    _handler->RequestAcknowledged();
    EXPECT_FALSE(_handler->Update());
    EXPECT_THAT(_dpram->TakeLog(), IsEmpty());
    Respond(1);
    EXPECT_THAT(_dpram->TakeLog(), ElementsAre("R 0176+288"));
    EXPECT_TRUE(_handler->Update());
    EXPECT_EQ(IdInMailboxIn(), 2);

    // Answered, then acknowledged.
    Respond(2);
    EXPECT_FALSE(_handler->Update());
    _handler->RequestAcknowledged();
    EXPECT_TRUE(_handler->Update());
    EXPECT_EQ(IdInMailboxIn(), 3);

    // A boot frees mailbox-in; the outstanding request is still to be answered.
    _handler->HandleBootEvent();
    EXPECT_FALSE(_handler->Update());
    Respond(3);
    EXPECT_FALSE(_handler->Update());
    EXPECT_THAT(_answers, ElementsAre(Answer("a"), Answer("b"), Answer("c")));
}

TEST_F(MailboxAreaHandlerTest, RefusesASecondAcknowledgement) {
    Queue("a");
    Send();
    _handler->RequestAcknowledged();
    ExpectFailure<System::InvalidOperationException>(nullptr, [this] { _handler->RequestAcknowledged(); });
    Respond(1);
    ExpectFailure<System::InvalidOperationException>(nullptr, [this] { _handler->RequestAcknowledged(); });
}

TEST_F(MailboxAreaHandlerTest, TimesOutAtTheNanosecondCountedFromTheWrite) {
    Queue("a", 2);
    _clock.Advance(5 * SECOND);
    Send();
    _clock.Advance(2 * SECOND - 1);
    EXPECT_FALSE(_handler->Update());
    _clock.Advance(1);
    ExpectTimeout(2);
    _handler->RequestAcknowledged();
    ExpectTimeout(2);

    // The module answers after all.
    Respond(1);
    EXPECT_FALSE(_handler->Update());
    EXPECT_THAT(_answers, ElementsAre(Answer("a")));
}

TEST_F(MailboxAreaHandlerTest, CountsLongTimeoutsIn64Bits) {
    QueueWithoutAction(2147483647);
    Send();
    _clock.Advance(2147483647 * SECOND - 1);
    EXPECT_FALSE(_handler->Update());
    _clock.Advance(1);
    ExpectTimeout(2147483647);
}

TEST_F(MailboxAreaHandlerTest, SpendsAnIdOnEveryRequestAndStartsAgainAt0) {
    ExpectFailure<System::ArgumentNullException>("request must not be null",
                                                 [this] { _handler->Enqueue(nullptr, nullptr, -1); });
    ExpectFailure<ArgumentOutOfRangeException>("timeoutSeconds (-1) must not be less than zero (0)",
                                               [this] { Queue("never", -1); });
    ExpectFailure<ArgumentOutOfRangeException>("timeoutSeconds (0) must not be equal to zero (0)",
                                               [this] { Queue("never", 0); });
    QueueWithoutAction();
    Send();
    EXPECT_EQ(IdInMailboxIn(), 4);
    Respond(4);

    for (int id = 5; id < 65535; ++id)
        EXPECT_THROW(_handler->Enqueue(nullptr, nullptr, 1), System::Thrown);
    for (const int id : {65535, 0, 1}) {
        QueueWithoutAction();
        Send();
        EXPECT_EQ(IdInMailboxIn(), id);
        Respond(id);
    }
}

TEST_F(MailboxAreaHandlerTest, RefusesAResponseThatNobodyAskedFor) {
    std::string bytes = "0x00, 0x01, 0x00, 0x02, 0x00, 0x16, 0x00, 0x02, 0x00, 0x01, 0x00, 0x01, 0x00, 0x00, "
                        "0x00, 0x00, 0x12, 0x34";
    for (int i = 18; i < 288; ++i)
        bytes += i == 32 ? ", 0xca" : i == 33 ? ", 0xfe" : ", 0x00";
    const auto expectRefusal = [&] {
        ExpectFailure<MailboxResponseException>(
            "Received response without an outstanding request:\n[" + bytes + "]\n", [this] { Respond(1); });
    };
    Queue("a");
    expectRefusal(); // queued is not outstanding
    Send();
    Respond(1);
    expectRefusal();
}

TEST_F(MailboxAreaHandlerTest, RefusesAResponseToAnotherRequest) {
    Queue("a");
    Send();
    const std::tuple<const char*, int, int, int, const char*> cases[] = {
        // id, information, command
        {"MessageId", 2, 0x0003, 0x17, "2\nType: Memory\nCommand: 0x17"},
        {"MessageType", 1, 0x0003, 0x17, "1\nType: Memory\nCommand: 0x17"},
        {"Command", 1, 0x0002, 0x17, "1\nType: Fieldbus\nCommand: 0x17"},
    };
    for (const auto& [what, id, information, command, text] : cases)
        ExpectFailure<MailboxResponseException>(
            std::string(what) + " of response header does not match outstanding request:\nResponse\nID: 0x" +
                text +
                "\nData size: 0x101\nTotal frame count: 0x1\nFrame number: 0x1\nOffset: 0x0\n"
                "Extended: [1234, 0000, 0000, 0000, 0000, 0000, 0000, 0000]\n\n" +
                REQUEST_TEXT + "\n",
            [&, id = id, information = information, command = command] {
                Respond(id, information, command, 257);
            });
    Respond(1, 0x4002); // the request flag is not looked at
    EXPECT_THAT(_answers, ElementsAre(Answer("a")));
}

TEST_F(MailboxAreaHandlerTest, RefusesAResponseThatCannotBeRead) {
    Queue("a");
    Send();
    ExpectFailure<System::ArgumentException>("138", [this] { Respond(1, 0x8A07); });
    ExpectFailure<System::ArgumentException>("7", [this] { Respond(2, 0x0007); });
    for (const int size : {257, 65535})
        ExpectFailure<ArgumentOutOfRangeException>("offset (32) + count (" + std::to_string(size) +
                                                       ") must not be greater than the length of array (288)",
                                                   [&] { Respond(1, 0x0002, 0x16, size); });
    EXPECT_THAT(_answers, IsEmpty());

    Respond(1, 0x0002, 0x16, 256);
    ASSERT_EQ(_answers.size(), 1u);
    EXPECT_EQ(std::count(_answers[0].begin(), _answers[0].end(), ','), 7 + 255);
}

TEST_F(MailboxAreaHandlerTest, LeavesAnErrorToTheActionAndFailsWithoutOne) {
    Queue("a");
    Send();
    Respond(1, 0x8202);
    EXPECT_THAT(_answers, ElementsAre(Answer("a", "Invalid Command")));

    QueueWithoutAction();
    Send();
    ExpectFailure<MailboxResponseException>("Received erroneous mailbox response:\n" +
                                                ResponseText("Invalid Command") + "\nMailbox request:\n" +
                                                REQUEST_TEXT + "\n",
                                            [this] { Respond(2, 0x8202); });
    Respond(2);
    EXPECT_FALSE(_handler->Update());
}

TEST_F(MailboxAreaHandlerTest, KeepsTheRequestOutstandingWhenItsActionThrows) {
    int calls = 0;
    Queue([&](const auto&) {
        if (++calls == 1)
            throw std::runtime_error("application");
    });
    Send();
    EXPECT_THROW(Respond(1), std::runtime_error);
    Respond(1);
    EXPECT_EQ(calls, 2);
    EXPECT_THROW(Respond(1), System::Thrown);
}

TEST_F(MailboxAreaHandlerTest, LetsAnActionQueueTheNextRequest) {
    Queue([this](const auto&) { Queue("second"); });
    Send();
    _handler->RequestAcknowledged();
    Respond(1);
    EXPECT_TRUE(_handler->Update());
    Respond(2);
    EXPECT_THAT(_answers, ElementsAre(Answer("second")));
}

TEST_F(MailboxAreaHandlerTest, LetsAnActionReplaceTheHandler) {
    Queue([this](const auto&) {
        _handler = MailboxAreaHandler::Create(IN, _dpram);
        Queue("fresh");
    });
    Send();
    const std::weak_ptr<MailboxAreaHandler> replaced = _handler;
    {
        const auto running = _handler;
        Respond(1);
        EXPECT_FALSE(replaced.expired());
    }
    EXPECT_TRUE(replaced.expired());
    Send();
    EXPECT_EQ(IdInMailboxIn(), 1);
    Respond(1);
    EXPECT_THAT(_answers, ElementsAre(Answer("fresh")));
}

TEST_F(MailboxAreaHandlerTest, TracesBothMessagesOnRequest) {
    TraceListener trace(Vesk::RuntimeConfig::_printMailbox);
    for (const bool traced : {false, true}) {
        Vesk::RuntimeConfig::_printMailbox = traced;
        QueueWithoutAction();
        Send();
        Respond(traced ? 2 : 1);
    }
    EXPECT_THAT(trace.lines, ElementsAre("MailboxAreaHandler, sending mailbox:" + REQUEST_TEXT,
                                         "MailboxAreaHandler, received mailbox:" + ResponseText()));
}
