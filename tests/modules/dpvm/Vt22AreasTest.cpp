// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/RecordingHostInterface.h"
#include "tests/support/Values.h"

#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/Vt22FatalEventArea.h"
#include "vesk/modules/dpvm/Vt22FatalEventException.h"
#include "vesk/modules/dpvm/Vt22FatalEventInfo.h"
#include "vesk/modules/dpvm/Vt22OutArea.h"

using namespace Vesk::Modules::DPVM;
using System::Array;
using Vesk::ModuleStateException;
using Log = std::vector<std::string>;

class Vt22FatalEventTest : public testing::Test {
protected:
    std::shared_ptr<IVt22FatalEventInfo> Read() {
        return Vt22FatalEventArea::Create(0x14, _dpRam)->GetFatalEventInfo();
    }

    std::shared_ptr<RecordingHostInterface> _dpRam = std::make_shared<RecordingHostInterface>();
};

TEST_F(Vt22FatalEventTest, ReadsTheBlockInItsOrderAndKeepsEveryCharacter) {
    _dpRam->Put(0x14, {0xDE, 0xAD, 0x00, 0x07, 0x01, 0x0F, 0, 0, 0, 0, 0, 0, 0x03, 0xE8});
    _dpRam->Put(0x22, {1, 2, 3});
    _dpRam->Put(0x39, {0xFF});
    _dpRam->Put(0x3A, {0x02, 0x9A, 'd', 'p', '.', 'c'});
    _dpRam->Put(0x55, {'!'});
    const auto info = Read();
    EXPECT_EQ(_dpRam->TakeLog(), (Log{"R16 0014", "R16 0016", "R16 0018", "R32 001a", "R32 001e", "R 0022+24",
                                      "R16 003a", "R 003c+26"}));
    EXPECT_EQ(info->SourceFile().Value(), std::string("dp.c") + std::string(21, '\0') + "!");
    EXPECT_EQ(
        info->ToString().Value(),
        "ErrorCode: 0xdead\nErrorCause: 0x7\nTaskId: 0x10f\nTimeStamp: 00:00:01\nAdditionalInfo: "
        "[01, 02, 03, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, 00, ff]"
        "\nSourceLine: 666\nSourceFile: " +
            info->SourceFile().Value() + "\n");
    const auto exception = Vt22FatalEventException::Create(info);
    EXPECT_EQ(exception->Message().Value(), "Fatal event reported by VT22 module");
    EXPECT_EQ(exception->ToString().Value(),
              "Vesk.Modules.DPVM.Vt22FatalEventException\n" + info->ToString().Value() + "\n");
}

TEST_F(Vt22FatalEventTest, CountsTheTimeStampIn64BitsHighHalfFirst) {
    _dpRam->Put(0x1A, {0, 0, 0, 1, 0, 0, 0, 0});
    EXPECT_EQ(Read()->TimeStamp()->Nanoseconds(), (std::int64_t{1} << 32) * 1'000'000);
    _dpRam->Put(0x1A, {0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF});
    EXPECT_EQ(Read()->TimeStamp()->Nanoseconds(), std::int64_t{4294967295} * 1'000'000);
}

TEST_F(Vt22FatalEventTest, NeedsItsParts) {
    const auto span = System::TimeSpan::Create(0);
    const auto bytes = Array<unsigned char>::Create(24);
    const auto expectMissing = [](const char* name, auto timeStamp, auto info) {
        ExpectFailure<System::ArgumentNullException>(std::string(name) + " must not be null", [&] {
            Vt22FatalEventInfo::Create(0, 0, 0, timeStamp, info, 0, nullptr);
        });
    };
    expectMissing("timeStamp", nullptr, nullptr);
    expectMissing("additionalInfo", span, nullptr);
    expectMissing("sourceFile", span, bytes);
}

/// An out-area with callbacks that write down their calls.
class Vt22OutAreaTest : public testing::Test {
protected:
    std::shared_ptr<Vt22OutArea> Create(bool withCallbacks) {
        if (!withCallbacks)
            return Vt22OutArea::Create(0x1042, _dpRam, nullptr, nullptr, nullptr);
        return Vt22OutArea::Create(
            0x1042, _dpRam, System::Func<void>::Create([this] { _calls.push_back("offline"); }),
            System::Func<void>::Create([this] { _calls.push_back("online"); }),
            System::ArgFunc<OperationMode_e, void>::Create([this](OperationMode_e mode) {
                _calls.push_back("mode " + std::to_string(static_cast<int>(mode)));
            }));
    }

    /// The module hands the area over with these registers.
    void HandOver(int indication, int status, int change = 0, int mode = 0) {
        for (const auto& [offset, value] :
             {std::pair{0x1042, indication}, {0x1044, status}, {0x1046, change}})
            _dpRam->Put(offset, {value >> 8, value & 0xFF});
        _dpRam->Put(0x1078, {mode});
        _area->Update();
    }

    void ExpectStateFailure(const std::string& message, int indication, int status, int change = 0,
                            int mode = 0) {
        ExpectFailure<ModuleStateException>(message, [&] { HandOver(indication, status, change, mode); });
    }

    std::shared_ptr<RecordingHostInterface> _dpRam = std::make_shared<RecordingHostInterface>();
    Log _calls;
    std::shared_ptr<Vt22OutArea> _area = Create(true);
};

TEST_F(Vt22OutAreaTest, RefusesReservedBitsInEachRegister) {
    for (int bit = 3; bit < 16; ++bit) {
        char text[48];
        std::snprintf(text, sizeof text, " register\n%x\n", 1 << bit);
        ExpectStateFailure(std::string("Reserved bits set in indication") + text, 1 << bit, 0);
        ExpectStateFailure(std::string("Reserved bits set in module status") + text, 1, 1 << bit);
        if (bit >= 5)
            ExpectStateFailure(std::string("Reserved bits set in indication") + text, 2, 0, 1 << bit);
    }
    EXPECT_EQ(_calls, Log{});
}

TEST_F(Vt22OutAreaTest, ReportsOfflineAndOnlineButNeverTwiceInARow) {
    HandOver(1, 0x0002);
    ExpectStateFailure("Double online indication received", 1, 0x0002);
    HandOver(1, 0x0001);
    ExpectStateFailure("Double offline indication received", 1, 0x0001);
    HandOver(1, 0x0000);
    HandOver(1, 0x0001);
    HandOver(1, 0x0002);
    ExpectStateFailure("Simultaneous offline and online indication", 1, 0x0003);
    ExpectStateFailure("Double online indication received", 1, 0x0002);
    EXPECT_EQ(_calls, (Log{"online", "offline", "offline", "online"}));
    HandOver(4, 0x0003);
    EXPECT_EQ(_calls.size(), 4u) << "a status that is not named as changed is not read";
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
}

TEST_F(Vt22OutAreaTest, FillsTheListsInPlaceAndInOrder) {
    const auto fieldbus = _area->FieldbusOut();
    const auto lists = {fieldbus->SlaveConfiguredList(), fieldbus->DataTransferList(),
                        fieldbus->SlaveDiagnosticList(), fieldbus->Dpv1ConnectionLiveList()};
    for (const auto& list : lists)
        EXPECT_EQ(Values(list), std::vector<int>(16, 0));
    for (const auto& [offset, value] : {std::pair{0x1048, 1}, {0x1058, 2}, {0x1068, 3}, {0x1086, 4}})
        _dpRam->Put(offset + 15, {value});
    HandOver(2, 0, 0x1F, 0xC0);
    EXPECT_EQ(_dpRam->TakeLog(),
              (Log{"R16 1042", "R16 1046", "R 1048+16", "R 1058+16", "R 1068+16", "R 1086+16", "R 1078+14"}));
    int value = 0;
    for (const auto& list : lists)
        EXPECT_EQ(list->Get(15), ++value);
}

TEST_F(Vt22OutAreaTest, CallsBackWithEachNewModeThatIsOne) {
    HandOver(2, 0, 0x08, 0x00);
    HandOver(2, 0, 0x08, 0xC0);
    HandOver(2, 0, 0x08, 0xC0);
    HandOver(2, 0, 0x01, 0x40);
    HandOver(2, 0, 0x08, 0x40);
    HandOver(2, 0, 0x08, 0x80);
    EXPECT_EQ(_calls, (Log{"mode 192", "mode 64", "mode 128"}));
    ExpectStateFailure("Invalid operation mode: 0", 2, 0, 0x08, 0x00);
    ExpectStateFailure("Invalid operation mode: 20", 2, 0, 0x09, 0x20);
    ExpectStateFailure("Invalid operation mode: c1", 2, 0, 0x08, 0xC1);
}

TEST_F(Vt22OutAreaTest, WorksWithoutCallbacksAndThenReadsNoMode) {
    _area = Create(false);
    HandOver(3, 0x0002, 0x09, 0x20);
    EXPECT_EQ(_dpRam->TakeLog(), (Log{"R16 1042", "R16 1044", "R16 1046", "R 1048+16"}));
    ExpectStateFailure("Double online indication received", 1, 0x0002);
    ExpectFailure<System::ArgumentNullException>("hostInterface must not be null", [] {
        return Vt22OutArea::Create(0, nullptr, nullptr, nullptr, nullptr);
    });
}
