// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/RecordingHostInterface.h"
#include "tests/support/TraceListener.h"

#include "vesk/handshake/VelmoIndication.h"
#include "vesk/hostinterface/RuntimeConfig.h"

#include <tuple>

using System::InvalidOperationException;
using Vesk::Handshake::VelmoEvent;
using Vesk::Handshake::VelmoIndication;

class VelmoIndicationTest : public testing::Test {
protected:
    std::shared_ptr<VelmoEvent> Show(int value) {
        _host->Put(0x1FFF, {value});
        return _indication->Update();
    }

    /// Lets the module show one value after the other, one per read.
    void ShowToEachRead(std::vector<int> values) {
        _host->beforeAccess = [this, values, next = std::size_t{0}](const std::string&) mutable {
            _host->Put(0x1FFF, {values.at(next++)});
        };
    }

    const std::vector<std::string> ONE_PAIR{"R8 1fff", "R8 1fff"};
    std::shared_ptr<RecordingHostInterface> _host = std::make_shared<RecordingHostInterface>();
    std::shared_ptr<VelmoIndication> _indication = VelmoIndication::Create(0x1FFF, _host);
};

TEST_F(VelmoIndicationTest, TurnsEachChangeIntoOneEvent) {
    const std::tuple<int, int, const char*> cases[] = {
        {0x00, 0x01, "FbCtrlAreaAcquired NegotiationEvent "},
        {0x01, 0x00, "FbCtrlAreaReleased NegotiationEvent "},
        {0x00, 0x02, "NegotiationEvent OutAcquired "},
        {0x02, 0x00, "NegotiationEvent OutReleased"},
        {0x00, 0x04, "InAreaAcquired NegotiationEvent "},
        {0x04, 0x00, "InAreaReleased NegotiationEvent "},
        {0x00, 0x08, ""},
        {0x08, 0x00, ""},
        {0x00, 0x10, "Initialized "},
        {0x00, 0x20, "Event "},
        {0x20, 0x00, "Event "},
        {0x00, 0x40, "MailboxOutUpdated "},
        {0x40, 0x00, "MailboxOutUpdated "},
        {0x00, 0x80, "MailboxInAcknowledged "},
        {0x80, 0x00, "MailboxInAcknowledged "},
        {0x00, 0x05, "FbCtrlAreaAcquired InAreaAcquired NegotiationEvent "},
        {0x05, 0x01, "InAreaReleased NegotiationEvent "},
        {0x02, 0xFD,
         "Event FbCtrlAreaAcquired InAreaAcquired Initialized MailboxInAcknowledged MailboxOutUpdated "
         "NegotiationEvent OutReleased"},
    };
    for (const auto& [before, after, text] : cases) {
        SCOPED_TRACE(text);
        _indication = VelmoIndication::Create(0x1FFF, _host);
        Show(before);
        const auto event = Show(after);
        ASSERT_TRUE(event);
        EXPECT_EQ(event->ToString().Value(), text);
        _host->TakeLog();
        EXPECT_FALSE(Show(after));
        EXPECT_EQ(_host->TakeLog(), ONE_PAIR);
    }
}

TEST_F(VelmoIndicationTest, ReadsInPairsUntilBothReadsOfAPairAgree) {
    ShowToEachRead({0x20, 0x00, 0x00, 0x40, 0x40, 0x20, 0x80, 0x80});
    const auto event = _indication->Update();
    ASSERT_TRUE(event);
    EXPECT_EQ(event->ToString().Value(), "MailboxInAcknowledged ");
    EXPECT_EQ(_host->TakeLog(), std::vector<std::string>(8, "R8 1fff"));
}

TEST_F(VelmoIndicationTest, InitialisedFlagNeverFalls) {
    Show(0x10);
    for (int attempt = 0; attempt < 2; ++attempt)
        ExpectFailure<InvalidOperationException>("Velmo module no longer initialized!", [&] { Show(0x20); });
    const auto event = Show(0x30);
    ASSERT_TRUE(event);
    EXPECT_EQ(event->ToString().Value(), "Event ");
}

TEST_F(VelmoIndicationTest, IsZeroAtBoot) {
    _host->Put(0x1FFF, {0x41});
    ExpectFailure<InvalidOperationException>("Non-zero handshake on bootup: 65",
                                             [&] { _indication->HandleBootEvent(); });
    Show(0x20);
    _host->Put(0x1FFF, {0x00});
    _host->TakeLog();
    _indication->HandleBootEvent();
    EXPECT_EQ(_host->TakeLog(), ONE_PAIR);
    EXPECT_FALSE(_indication->Update());
}

TEST_F(VelmoIndicationTest, TracesWhatHasChanged) {
    TraceListener trace(Vesk::RuntimeConfig::_printVelmoHandshake);
    Show(0x10);
    Show(0x10);
    Show(0x31);
    EXPECT_EQ(trace.lines, (std::vector<std::string>{"VelmoInd: init", "VelmoInd: fbctrl event"}));
    const Vesk::Handshake::VelmoIndication_t all{0xFF};
    EXPECT_EQ(VelmoIndication::ToString(&all).Value(), "VelmoInd: fbctrl out in updated init event mOut mIn");
}

TEST_F(VelmoIndicationTest, NeedsAHostInterface) {
    ExpectFailure<System::ArgumentNullException>("hostInterface must not be null",
                                                 [] { VelmoIndication::Create(0x1FFF, nullptr); });
    EXPECT_TRUE(_host->TakeLog().empty());
}
