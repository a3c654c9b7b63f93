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

TEST_F(ApplicationIndicationTest, ActionsToggleTheirBitsAndAreaCommandsAlternateWithTheModulesAnswers) {
    using A = ApplicationIndication;
    const auto after = [this](std::initializer_list<void (A::*)()> actions) {
        for (const auto action : actions)
            (*_indication.*action)();
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

TEST_F(ApplicationIndicationTest, WritesAreHalfAMillisecondApartFromTheEndOfEach) {
    _host->beforeAccess = [this](const std::string&) { _clock.Advance(1); };
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

TEST_F(ApplicationIndicationTest, WritesUntilTheValueReadsBackAndTracesTheActions) {
    TraceListener trace(Vesk::RuntimeConfig::_printApplicationHandshake);
    _host->beforeAccess = [this, disturbed = 2](const std::string& access) mutable {
        if (access == "R8 1ffd" && disturbed-- > 0)
            _host->Put(0x1FFD, {0x00});
    };
    _indication->AckMailboxOut();
    EXPECT_EQ(Update(), (Log{"W8 1ffd=40", "R8 1ffd", "W8 1ffd=40", "R8 1ffd", "W8 1ffd=40", "R8 1ffd"}));
    _indication->AckMailboxOut();
    _indication->RequestOut();
    EXPECT_EQ(Update(), Write("1a"));
    _indication->PrintHandshake();
    EXPECT_EQ(trace.lines, (Log{"ApplicationInd: mOut", "ApplicationInd: out lock action mOut",
                                "ApplicationInd: out lock action"}));
    ExpectFailure<System::ArgumentNullException>("hostInterface must not be null",
                                                 [] { ApplicationIndication::Create(0x1FFD, nullptr); });
}
