// SPDX-License-Identifier: MIT
#include "tests/support/RecordingHostInterface.h"
#include "tests/support/TestClock.h"
#include "tests/support/TraceListener.h"

#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/modules/dpvm/Vt22ApplicationIndication.h"
#include "vesk/modules/dpvm/Vt22VelmoIndication.h"

#include <gtest/gtest.h>

using namespace Vesk::Modules::DPVM;
using Vesk::RuntimeConfig;
using Log = std::vector<std::string>;

class Vt22HandshakeTest : public testing::Test {
protected:
    std::shared_ptr<Vt22VelmoEvent> Read(int value) {
        _dpRam->Put(0x1FFB, {value});
        const auto event = _velmo->Update();
        _dpRam->TakeLog();
        return event;
    }

    /// What an Update writes to the register and to its companion.
    Log Update() {
        _application->Update();
        return _dpRam->TakeLog();
    }

    static Log Written(const std::string& value) { return {"W8 1ffa=" + value, "W8 1ffc=" + value}; }

    TestClock _clock;
    std::shared_ptr<RecordingHostInterface> _dpRam = std::make_shared<RecordingHostInterface>();
    std::shared_ptr<Vt22VelmoIndication> _velmo = Vt22VelmoIndication::Create(0x1FFB, 0x1FFE, _dpRam);
    std::shared_ptr<Vt22ApplicationIndication> _application =
        Vt22ApplicationIndication::Create(0x1FFA, 0x1FFC, _dpRam);
    const Log _nothing{};
};

TEST_F(Vt22HandshakeTest, WritesNothingButZeroAfterTwoMilliseconds) {
    _application->Unlock();
    _clock.Advance(1'999'999);
    EXPECT_EQ(Update(), _nothing);
    _clock.Advance(1);
    EXPECT_EQ(Update(), Written("00"));
    EXPECT_EQ(Update(), _nothing) << "locked again";

    _application->Unlock();
    _clock.Advance(1'999'999);
    _application->ReleaseOut();
    EXPECT_EQ(Update(), Written("01")) << "a late mark does not wait";
    _application->Unlock();
    _clock.Advance(1'000'000);
    EXPECT_EQ(Update(), _nothing) << "the 2 ms run from the last interrupt, not from an earlier one";
}

TEST_F(Vt22HandshakeTest, TracesWhatItReadsAndWritesButNothingEmpty) {
    {
        TraceListener trace(RuntimeConfig::_printVelmoHandshake);
        for (const int value : {0x14, 0x00, 0xEB})
            EXPECT_EQ(Read(value) == nullptr, value == 0x00);
        EXPECT_EQ(trace.lines, (Log{"VelmoInd: mOut powerOn", "VelmoInd: out in mIn fatal log reserved"}));
        EXPECT_EQ(Read(0x69)->ToString().Value(), "Fatal MailboxInAcknowledged OutAcquired Log ");
    }
    TraceListener trace(RuntimeConfig::_printApplicationHandshake);
    _application->ReleaseOut();
    EXPECT_EQ(Update(), _nothing) << "locked until the module's interrupt; the mark stays";
    _application->Unlock();
    _application->ReleaseIn();
    _application->AckMailboxOut();
    _application->NotifyMailboxIn();
    _application->ReleaseLog();
    EXPECT_EQ(Update(), Written("1f"));
    _application->Unlock();
    _clock.Advance(2'000'000);
    _application->Update();
    _application->PrintHandshake();
    EXPECT_EQ(trace.lines, (Log{"ApplicationInd: out in mOut mIn log", "ApplicationInd:"}));
}
