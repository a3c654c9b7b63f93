// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/RecordingHostInterface.h"
#include "tests/support/TestClock.h"
#include "tests/support/TraceListener.h"

#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/modules/dpvm/Vt22ApplicationIndication.h"
#include "vesk/modules/dpvm/Vt22VelmoIndication.h"

using namespace Vesk::Modules::DPVM;
using Vesk::RuntimeConfig;
using Log = std::vector<std::string>;

class Vt22HandshakeTest : public testing::Test {
protected:
    std::shared_ptr<Vt22VelmoEvent> Read(int value) {
        _dpRam->Put(0x1FFB, {value});
        return _velmo->Update();
    }

    TestClock _clock;
    std::shared_ptr<RecordingHostInterface> _dpRam = std::make_shared<RecordingHostInterface>();
    std::shared_ptr<Vt22VelmoIndication> _velmo = Vt22VelmoIndication::Create(0x1FFB, 0x1FFE, _dpRam);
    std::shared_ptr<Vt22ApplicationIndication> _application =
        Vt22ApplicationIndication::Create(0x1FFA, 0x1FFC, _dpRam);
    const Log _empty{};
};

TEST_F(Vt22HandshakeTest, NeedsAHostInterfaceAndTouchesNothingWhenCreated) {
    for (const auto& create : {+[] { Vt22VelmoIndication::Create(0, 0, nullptr); },
                               +[] { Vt22ApplicationIndication::Create(0, 0, nullptr); }})
        ExpectFailure<System::ArgumentNullException>("hostInterface must not be null", create);
    EXPECT_EQ(_dpRam->TakeLog(), _empty);
}

TEST_F(Vt22HandshakeTest, DecodesEachBitAndEachMix) {
    const std::pair<int, const char*> cases[] = {
        {0x01, "OutAcquired "},
        {0x02, "InAreaAcquired "},
        {0x04, "MailboxOutUpdated "},
        {0x08, "MailboxInAcknowledged "},
        {0x10, "PowerOn "},
        {0x20, "Fatal "},
        {0x40, "Log "},
        {0x80, ""},
        {0x06, "InAreaAcquired MailboxOutUpdated "},
        {0xFF, "Fatal InAreaAcquired MailboxInAcknowledged MailboxOutUpdated OutAcquired PowerOn Log "}};
    EXPECT_EQ(Read(0x00), nullptr);
    for (const auto& [value, text] : cases) {
        const auto event = Read(value);
        ASSERT_NE(event, nullptr) << value;
        EXPECT_EQ(event->ToString().Value(), text) << value;
    }
    EXPECT_EQ(Read(0x06), Read(0x06)) << "no change is needed for an event, and equal events are one";
    EXPECT_EQ(Vt22VelmoEvent::Create(true, false, true, false, true, false, true)->ToString().Value(),
              "Fatal MailboxInAcknowledged OutAcquired Log ");
}

TEST_F(Vt22HandshakeTest, TracesWhatItReads) {
    TraceListener trace(RuntimeConfig::_printVelmoHandshake);
    Read(0x14);
    Read(0x00);
    Read(0xEB);
    EXPECT_EQ(trace.lines, (Log{"VelmoInd: mOut powerOn", "VelmoInd: out in mIn fatal log reserved"}));
}

TEST_F(Vt22HandshakeTest, WritesMarksOncePerInterrupt) {
    _application->ReleaseOut();
    _application->Update();
    EXPECT_EQ(_dpRam->TakeLog(), _empty) << "locked until the module's first interrupt";
    _application->Unlock();
    _application->ReleaseIn();
    _application->AckMailboxOut();
    _application->AckMailboxOut();
    _application->Update();
    EXPECT_EQ(_dpRam->TakeLog(), (Log{"W8 1ffa=07", "W8 1ffc=07"})) << "the mark made while locked goes too";

    _application->NotifyMailboxIn();
    _application->ReleaseLog();
    _application->Update();
    EXPECT_EQ(_dpRam->TakeLog(), _empty);
    _application->Unlock();
    _application->Update();
    EXPECT_EQ(_dpRam->TakeLog(), (Log{"W8 1ffa=18", "W8 1ffc=18"}));
}

TEST_F(Vt22HandshakeTest, WritesNothingButZeroAfterTwoMilliseconds) {
    _application->Unlock();
    _clock.Advance(1'999'999);
    _application->Update();
    EXPECT_EQ(_dpRam->TakeLog(), _empty);
    _clock.Advance(1);
    _application->Update();
    EXPECT_EQ(_dpRam->TakeLog(), (Log{"W8 1ffa=00", "W8 1ffc=00"}));
    _application->Update();
    EXPECT_EQ(_dpRam->TakeLog(), _empty) << "locked again";

    _application->Unlock();
    _clock.Advance(1'999'999);
    _application->ReleaseOut();
    _application->Update();
    EXPECT_EQ(_dpRam->TakeLog(), (Log{"W8 1ffa=01", "W8 1ffc=01"})) << "a late mark does not wait";
    _application->Unlock();
    _clock.Advance(1'000'000);
    _application->Update();
    EXPECT_EQ(_dpRam->TakeLog(), _empty) << "the 2 ms run from the last interrupt, not from an earlier one";
}

TEST_F(Vt22HandshakeTest, TracesWhatItWritesButNotTheEmptyWrite) {
    TraceListener trace(RuntimeConfig::_printApplicationHandshake);
    _application->Unlock();
    _application->ReleaseOut();
    _application->ReleaseIn();
    _application->AckMailboxOut();
    _application->NotifyMailboxIn();
    _application->ReleaseLog();
    _application->Update();
    _application->Unlock();
    _clock.Advance(2'000'000);
    _application->Update();
    EXPECT_EQ(trace.lines, Log{"ApplicationInd: out in mOut mIn log"});
    _application->PrintHandshake();
    EXPECT_EQ(trace.lines.back(), "ApplicationInd:");
}
