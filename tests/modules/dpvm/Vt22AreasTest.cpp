// SPDX-License-Identifier: MIT
#include "tests/support/RecordingHostInterface.h"

#include "vesk/modules/dpvm/Vt22FatalEventArea.h"
#include "vesk/modules/dpvm/Vt22FatalEventException.h"
#include "vesk/modules/dpvm/Vt22OutArea.h"

#include <gtest/gtest.h>

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

TEST(Vt22OutAreaTest, ForgetsAStatusWhoseCallbackThrew) {
    const auto dpRam = std::make_shared<RecordingHostInterface>();
    int calls = 0;
    const auto online = System::Func<void>::Create([&] {
        if (++calls == 1)
            throw std::runtime_error("application");
    });
    const auto area = Vt22OutArea::Create(0x1042, dpRam, nullptr, online, nullptr);
    dpRam->Put(0x1042, {0, 1, 0, 2});
    EXPECT_THROW(area->Update(), std::runtime_error);
    area->Update();
    EXPECT_EQ(calls, 2);
    dpRam->Put(0x1042, {0, 2, 0, 0, 0, 0x08});
    area->Update();
    EXPECT_EQ(dpRam->log.back(), "R16 1046") << "nobody asks for the mode";
}
