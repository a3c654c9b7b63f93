// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/RecordingHostInterface.h"
#include "tests/support/TestClock.h"
#include "tests/support/TraceListener.h"

#include "vesk/handshake/ApplicationIndication.h"
#include "vesk/hostinterface/RuntimeConfig.h"

using Vesk::Handshake::ApplicationIndication;
using Log = std::vector<std::string>;

class ApplicationIndicationTest : public testing::Test {
protected:
    /// What Update does to the DPRAM, 0.5 ms later.
    Log Update() {
        _clock.Advance(500'000);
        _indication->Update();
        return _host->TakeLog();
    }

    static Log Write(const std::string& value) { return {"W8 1ffd=" + value, "R8 1ffd"}; }

    TestClock _clock;
    std::shared_ptr<RecordingHostInterface> _host = std::make_shared<RecordingHostInterface>();
    std::shared_ptr<ApplicationIndication> _indication = ApplicationIndication::Create(0x1FFD, _host);
};

TEST_F(ApplicationIndicationTest, EachActionTogglesItsBit) {
    _indication->AckEvent();
    EXPECT_EQ(Update(), Write("20"));
    _indication->AckMailboxOut();
    _indication->AckMailboxOut();
    EXPECT_EQ(Update(), Write("60"));
    _indication->NotifyMailboxIn();
    EXPECT_EQ(Update(), Write("e0"));
    EXPECT_EQ(Update(), Log{});
    _indication->AckMailboxOut();
    _indication->NotifyMailboxIn();
    EXPECT_EQ(Update(), Write("20"));
    _indication->AckEvent();
    EXPECT_EQ(Update(), Write("00"));
}

TEST_F(ApplicationIndicationTest, AreaCommandsAlternateWithTheModulesAnswers) {
    _indication->RequestIn();
    _indication->ReleaseOut();
    EXPECT_EQ(Update(), Write("0a"));
    EXPECT_EQ(Update(), Log{});
    _indication->AckEvent(); // goes out at once; the area command stays
    EXPECT_EQ(Update(), Write("20"));
    _indication->VelmoIndicationReceived();
    EXPECT_EQ(Update(), Write("3c"));
    _indication->VelmoIndicationReceived();
    EXPECT_EQ(Update(), Log{});
    _indication->ReleaseFbCtrl();
    _indication->ReleaseIn();
    EXPECT_EQ(Update(), Write("2d"));
}

TEST_F(ApplicationIndicationTest, OneWriteCarriesAllThatIsMarked) {
    _indication->RequestFbCtrl();
    _indication->RequestOut();
    _indication->RequestIn();
    _indication->AckEvent();
    _indication->AckMailboxOut();
    _indication->NotifyMailboxIn();
    EXPECT_EQ(_host->TakeLog(), Log{});
    EXPECT_EQ(Update(), Write("ff"));
}

TEST_F(ApplicationIndicationTest, WritesAreHalfAMillisecondApart) {
    for (const char* value : {"40", "00"}) { // counted from the creation, then from the write
        _indication->AckMailboxOut();
        _clock.Advance(499'999);
        _indication->Update();
        EXPECT_EQ(_host->TakeLog(), Log{});
        _clock.Advance(1);
        _indication->Update();
        EXPECT_EQ(_host->TakeLog(), Write(value));
    }
}

TEST_F(ApplicationIndicationTest, WritesUntilTheValueReadsBack) {
    _host->beforeAccess = [this, disturbed = 2](const std::string& access) mutable {
        if (access == "R8 1ffd" && disturbed-- > 0)
            _host->Put(0x1FFD, {0x00});
    };
    _indication->AckEvent();
    EXPECT_EQ(Update(), (Log{"W8 1ffd=20", "R8 1ffd", "W8 1ffd=20", "R8 1ffd", "W8 1ffd=20", "R8 1ffd"}));
}

TEST_F(ApplicationIndicationTest, TracesTheActionsThatItTakes) {
    TraceListener trace(Vesk::RuntimeConfig::_printApplicationHandshake);
    _indication->AckMailboxOut();
    Update();
    _indication->AckMailboxOut();
    _indication->RequestOut();
    EXPECT_EQ(Update(), Write("1a"));
    EXPECT_EQ(trace.lines, (Log{"ApplicationInd: mOut", "ApplicationInd: out lock action mOut"}));
    _indication->PrintHandshake();
    EXPECT_EQ(trace.lines.back(), "ApplicationInd: out lock action");
}

TEST_F(ApplicationIndicationTest, NeedsAHostInterface) {
    ExpectFailure<System::ArgumentNullException>("hostInterface must not be null",
                                                 [] { ApplicationIndication::Create(0x1FFD, nullptr); });
    EXPECT_EQ(_host->TakeLog(), Log{});
}
