// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/RecordingHostInterface.h"

#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/Vt22FatalEventArea.h"
#include "vesk/modules/dpvm/Vt22FatalEventException.h"
#include "vesk/modules/dpvm/Vt22OutArea.h"

using namespace Vesk::Modules::DPVM;
using Log = std::vector<std::string>;

TEST(Vt22FatalEventTest, ReadsTheBlockInItsOrderAndKeepsEveryCharacter) {
    const auto dpRam = std::make_shared<RecordingHostInterface>();
    const auto area = Vt22FatalEventArea::Create(0x14, dpRam);
    dpRam->Put(0x14, {0xDE, 0xAD, 0x00, 0x07, 0x01, 0x0F, 0, 0, 0, 0, 0, 0, 0x03, 0xE8});
    dpRam->Put(0x22, {1, 2, 3});
    dpRam->Put(0x39, {0xFF, 0x02, 0x9A, 'd', 'p', '.', 'c'});
    dpRam->Put(0x55, {'!'});
    const auto info = area->GetFatalEventInfo();
    EXPECT_EQ(dpRam->TakeLog(), (Log{"R16 0014", "R16 0016", "R16 0018", "R32 001a", "R32 001e", "R 0022+24",
                                     "R16 003a", "R 003c+26"}));
    EXPECT_EQ((std::vector<int>{info->ErrorCode(), info->ErrorCause(), info->TaskId(), info->SourceLine(),
                                info->AdditionalInfo()->Get(23)}),
              (std::vector<int>{0xDEAD, 7, 0x10F, 666, 0xFF}));
    EXPECT_EQ(info->SourceFile().Value(), std::string("dp.c") + std::string(21, '\0') + "!");
    const std::string text =
        "ErrorCode: 0xdead\nErrorCause: 0x7\nTaskId: 0x10f\nTimeStamp: 00:00:01\nAdditionalInfo: "
        "[01, 02, 03, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, ff]"
        "\nSourceLine: 666\nSourceFile: " +
        info->SourceFile().Value() + "\n";
    EXPECT_EQ(info->ToString().Value(), text);
    const auto exception = Vt22FatalEventException::Create(info);
    EXPECT_EQ(exception->Info(), info);
    EXPECT_EQ(exception->ToString().Value(), "Vesk.Modules.DPVM.Vt22FatalEventException\n" + text + "\n");

    dpRam->Put(0x1A, {0, 0, 0, 1, 0xFF, 0xFF, 0xFF, 0xFF});
    EXPECT_EQ(area->GetFatalEventInfo()->TimeStamp()->Nanoseconds(),
              ((std::int64_t{2} << 32) - 1) * 1'000'000);
}

/// An out-area with callbacks that write down their calls.
class Vt22OutAreaTest : public testing::Test {
protected:
    Vt22OutAreaTest() {
        const auto note = [this](const char* name) {
            return System::Func<void>::Create([this, name] { _calls.push_back(name); });
        };
        _area = Vt22OutArea::Create(0x1042, _dpRam, note("offline"), note("online"),
                                    System::ArgFunc<OperationMode_e, void>::Create([this](auto mode) {
                                        _calls.push_back("mode " + std::to_string(static_cast<int>(mode)));
                                    }));
    }

    /// The module hands the area over with these registers.
    void HandOver(int indication, int status, int change = 0, int mode = 0) {
        _dpRam->Put(0x1042, {indication >> 8, indication & 0xFF, status >> 8, status & 0xFF, change >> 8,
                             change & 0xFF});
        _dpRam->Put(0x1078, {mode});
        _area->Update();
    }

    void ExpectFailureOf(const std::string& message, int indication, int status, int change = 0,
                         int mode = 0) {
        ExpectFailure<Vesk::ModuleStateException>(message,
                                                  [&] { HandOver(indication, status, change, mode); });
    }

    std::shared_ptr<RecordingHostInterface> _dpRam = std::make_shared<RecordingHostInterface>();
    Log _calls;
    std::shared_ptr<Vt22OutArea> _area;
};

TEST_F(Vt22OutAreaTest, RefusesReservedBitsInEachRegister) {
    for (int bit = 3; bit < 16; ++bit) {
        char text[48];
        std::snprintf(text, sizeof text, " register\n%x\n", 1 << bit);
        ExpectFailureOf(std::string("Reserved bits set in indication") + text, 1 << bit, 0);
        ExpectFailureOf(std::string("Reserved bits set in module status") + text, 1, 1 << bit);
        if (bit >= 5)
            ExpectFailureOf(std::string("Reserved bits set in indication") + text, 2, 0, 1 << bit);
    }
    EXPECT_EQ(_calls, Log{});
}

TEST_F(Vt22OutAreaTest, ReportsOfflineAndOnlineButNeverTwiceInARow) {
    HandOver(1, 0x0002);
    ExpectFailureOf("Double online indication received", 1, 0x0002);
    HandOver(1, 0x0001);
    ExpectFailureOf("Double offline indication received", 1, 0x0001);
    HandOver(1, 0x0000);
    HandOver(1, 0x0001);
    HandOver(1, 0x0002);
    ExpectFailureOf("Simultaneous offline and online indication", 1, 0x0003);
    ExpectFailureOf("Double online indication received", 1, 0x0002);
    HandOver(4, 0x0003); // a status that is not named as changed is not read
    EXPECT_EQ(_calls, (Log{"online", "offline", "offline", "online"}));
}

TEST_F(Vt22OutAreaTest, ForgetsAStatusWhoseCallbackThrew) {
    int calls = 0;
    _area = Vt22OutArea::Create(0x1042, _dpRam, nullptr, System::Func<void>::Create([&] {
                                    if (++calls == 1)
                                        throw std::runtime_error("application");
                                }),
                                nullptr);
    EXPECT_THROW(HandOver(1, 2), std::runtime_error);
    HandOver(1, 2);
    EXPECT_EQ(calls, 2);
    HandOver(2, 0, 0x08, 0x20);
    EXPECT_EQ(_dpRam->log.back(), "R16 1046") << "nobody asks for the mode";
}

TEST_F(Vt22OutAreaTest, CallsBackWithEachNewModeThatIsOne) {
    for (const auto& [change, mode] :
         {std::pair{0x08, 0x00}, {0x08, 0xC0}, {0x08, 0xC0}, {0x01, 0x80}, {0x08, 0x40}, {0x08, 0x80}})
        HandOver(2, 0, change, mode);
    EXPECT_EQ(_calls, (Log{"mode 192", "mode 64", "mode 128"}));
    ExpectFailureOf("Invalid operation mode: 0", 2, 0, 0x08, 0x00);
    ExpectFailureOf("Invalid operation mode: c1", 2, 0, 0x09, 0xC1);
}
