// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/RecordingHostInterface.h"
#include "tests/support/TraceListener.h"

#include "vesk/handshake/VelmoIndication.h"
#include "vesk/hostinterface/RuntimeConfig.h"

using System::InvalidOperationException;
using Vesk::Handshake::VelmoIndication;

class VelmoIndicationTest : public testing::Test {
protected:
    /// What the module tells by changing its register to `value`, read in one pair.
    std::string Show(int value) {
        _host->Put(0x1FFF, {value});
        const auto event = _indication->Update();
        EXPECT_EQ(_host->TakeLog(), (std::vector<std::string>{"R8 1fff", "R8 1fff"}));
        return event ? event->ToString().Value() : "none";
    }

    std::shared_ptr<RecordingHostInterface> _host = std::make_shared<RecordingHostInterface>();
    std::shared_ptr<VelmoIndication> _indication = VelmoIndication::Create(0x1FFF, _host);
};

TEST_F(VelmoIndicationTest, TurnsEachChangeIntoOneEvent) {
    TraceListener trace(Vesk::RuntimeConfig::_printVelmoHandshake);
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

TEST_F(VelmoIndicationTest, ReadsInPairsUntilBothReadsOfAPairAgree) {
    const std::vector<int> shown = {0x20, 0x00, 0x00, 0x40, 0x40, 0x20, 0x80, 0x80};
    _host->beforeAccess = [&, next = std::size_t{0}](const std::string&) mutable {
        _host->Put(0x1FFF, {shown.at(next++)});
    };
    EXPECT_EQ(_indication->Update()->ToString().Value(), "MailboxInAcknowledged ");
    EXPECT_EQ(_host->TakeLog().size(), shown.size());
}

TEST_F(VelmoIndicationTest, IsZeroAtBootAndStaysInitialised) {
    _host->Put(0x1FFF, {0x41});
    ExpectFailure<InvalidOperationException>("Non-zero handshake on bootup: 65",
                                             [&] { _indication->HandleBootEvent(); });
    _host->Put(0x1FFF, {0x00});
    _indication->HandleBootEvent();
    _host->TakeLog();
    EXPECT_EQ(Show(0x00), "none");
    Show(0x10);
    for (int attempt = 0; attempt < 2; ++attempt)
        ExpectFailure<InvalidOperationException>("Velmo module no longer initialized!", [&] { Show(0x20); });
    ExpectFailure<System::ArgumentNullException>("hostInterface must not be null",
                                                 [] { VelmoIndication::Create(0x1FFF, nullptr); });
}
