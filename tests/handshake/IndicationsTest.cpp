// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/RecordingHostInterface.h"
#include "tests/support/TestClock.h"
#include "tests/support/TraceListener.h"

#include "vesk/handshake/ApplicationIndication.h"
#include "vesk/handshake/VelmoIndication.h"
#include "vesk/hostinterface/RuntimeConfig.h"

using System::InvalidOperationException;
using Vesk::RuntimeConfig;
using A = Vesk::Handshake::ApplicationIndication;
using Vesk::Handshake::VelmoIndication;
using Log = std::vector<std::string>;

class IndicationsTest : public testing::Test {
protected:
    /// What the host's side does to the DPRAM in an update 0.5 ms later.
    Log Update() {
        _clock.Advance(500'000);
        _application->Update();
        return _host->TakeLog();
    }

    static Log Write(const std::string& value) { return {"W8 1ffd=" + value, "R8 1ffd"}; }

    /// What the module tells by changing its register to `value`, read in one pair.
    std::string Show(int value) {
        _host->Put(0x1FFF, {value});
        const auto event = _velmo->Update();
        EXPECT_EQ(_host->TakeLog(), (Log{"R8 1fff", "R8 1fff"}));
        return event ? event->ToString().Value() : "none";
    }

    TestClock _clock;
    std::shared_ptr<RecordingHostInterface> _host = std::make_shared<RecordingHostInterface>();
    std::shared_ptr<A> _application = A::Create(0x1FFD, _host);
    std::shared_ptr<VelmoIndication> _velmo = VelmoIndication::Create(0x1FFF, _host);
};

TEST_F(IndicationsTest, ActionsToggleTheirBitsAndAreaCommandsAlternateWithTheModulesAnswers) {
    const auto after = [this](std::initializer_list<void (A::*)()> actions) {
        for (const auto action : actions)
            (*_application.*action)();
        return Update();
    };
    EXPECT_EQ(after({}), Log{});
    EXPECT_EQ(after({&A::AckMailboxOut, &A::AckMailboxOut}), Write("40"));
    EXPECT_EQ(after({&A::RequestIn, &A::ReleaseOut, &A::NotifyMailboxIn}), Write("ca"));
    EXPECT_EQ(after({&A::AckEvent}), Write("e0")) << "at once; the area command stays";
    EXPECT_EQ(after({&A::VelmoIndicationReceived}), Write("fc"));
    EXPECT_EQ(after({&A::VelmoIndicationReceived}), Log{});
    EXPECT_EQ(after({&A::ReleaseFbCtrl, &A::ReleaseIn}), Write("ed"));
    EXPECT_EQ(after({&A::VelmoIndicationReceived, &A::RequestFbCtrl, &A::RequestOut, &A::AckEvent,
                     &A::AckMailboxOut, &A::NotifyMailboxIn}),
              Write("1b"));
}

TEST_F(IndicationsTest, WritesAreHalfAMillisecondApartFromTheEndOfEach) {
    _host->beforeAccess = [this](const std::string&) { _clock.Advance(1); };
    for (const char* value : {"40", "00"}) { // counted from the creation, then from the write
        _application->AckMailboxOut();
        _clock.Advance(499'999);
        _application->Update();
        EXPECT_EQ(_host->TakeLog(), Log{});
        _clock.Advance(1);
        _application->Update();
        EXPECT_EQ(_host->TakeLog(), Write(value));
    }
}

TEST_F(IndicationsTest, WritesUntilTheValueReadsBackAndTracesTheActions) {
    TraceListener trace(RuntimeConfig::_printApplicationHandshake);
    _host->beforeAccess = [this, disturbed = 2](const std::string& access) mutable {
        if (access == "R8 1ffd" && disturbed-- > 0)
            _host->Put(0x1FFD, {0x00});
    };
    _application->AckMailboxOut();
    EXPECT_EQ(Update(), (Log{"W8 1ffd=40", "R8 1ffd", "W8 1ffd=40", "R8 1ffd", "W8 1ffd=40", "R8 1ffd"}));
    _application->AckMailboxOut();
    _application->RequestOut();
    EXPECT_EQ(Update(), Write("1a"));
    _application->PrintHandshake();
    EXPECT_EQ(trace.lines, (Log{"ApplicationInd: mOut", "ApplicationInd: out lock action mOut",
                                "ApplicationInd: out lock action"}));
}

TEST_F(IndicationsTest, TurnsEachChangeIntoOneEvent) {
    TraceListener trace(RuntimeConfig::_printVelmoHandshake);
    const std::pair<int, const char*> changes[] = {
        {0x01, "FbCtrlAreaAcquired NegotiationEvent "},
        {0x03, "NegotiationEvent OutAcquired "},
        {0x07, "InAreaAcquired NegotiationEvent "},
        {0x0F, ""},
        {0x1F, "Initialized "},
        {0x3F, "Event "},
        {0x7F, "MailboxOutUpdated "},
        {0xFF, "MailboxInAcknowledged "},
        {0xFE, "FbCtrlAreaReleased NegotiationEvent "},
        {0xFC, "NegotiationEvent OutReleased"},
        {0x15, "Event FbCtrlAreaAcquired MailboxInAcknowledged MailboxOutUpdated NegotiationEvent "},
        {0x11, "InAreaReleased NegotiationEvent "},
    };
    for (const auto& [value, text] : changes) {
        EXPECT_EQ(Show(value), text);
        EXPECT_EQ(Show(value), "none");
    }
    EXPECT_EQ(trace.lines.size(), std::size(changes));
    EXPECT_EQ(trace.lines[10], "VelmoInd: fbctrl updated event mOut mIn");
    const Vesk::Handshake::VelmoIndication_t all{0xFF};
    EXPECT_EQ(VelmoIndication::ToString(&all).Value(), "VelmoInd: fbctrl out in updated init event mOut mIn");
}

TEST_F(IndicationsTest, ReadsInPairsUntilBothReadsOfAPairAgree) {
    const std::vector<int> shown = {0x20, 0x00, 0x00, 0x40, 0x40, 0x20, 0x80, 0x80};
    _host->beforeAccess = [&, next = std::size_t{0}](const std::string&) mutable {
        _host->Put(0x1FFF, {shown.at(next++)});
    };
    EXPECT_EQ(_velmo->Update()->ToString().Value(), "MailboxInAcknowledged ");
    EXPECT_EQ(_host->TakeLog().size(), shown.size());
}

TEST_F(IndicationsTest, IsZeroAtBootAndStaysInitialised) {
    _host->Put(0x1FFF, {0x41});
    ExpectFailure<InvalidOperationException>("Non-zero handshake on bootup: 65",
                                             [&] { _velmo->HandleBootEvent(); });
    _host->TakeLog();
    Show(0x20);
    _host->Put(0x1FFF, {0x00});
    _velmo->HandleBootEvent();
    _host->TakeLog();
    EXPECT_EQ(Show(0x00), "none");
    Show(0x10);
    for (int attempt = 0; attempt < 2; ++attempt)
        ExpectFailure<InvalidOperationException>("Velmo module no longer initialized!", [&] { Show(0x20); });
}
