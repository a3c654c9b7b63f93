// SPDX-License-Identifier: MIT
// What each kind of cycle does on the bus: these accesses, in this order, and no other.
#include "tests/support/ScriptedMaster.h"

using System::Array;
using Log = std::vector<std::string>;

class AccessSequenceTest : public ScriptedMaster {
protected:
    /// An initialised master with two segments each way and all that the module may have changed.
    void SetUp() override {
        Create();
        Boot();
        Initialize();
        _module->MapInputData(0, _in, 0, 4);
        _module->MapInputData(100, _in, 4, 4);
        _module->MapOutputData(0, _out, 0, 4);
        _module->MapOutputData(100, _out, 4, 4);
        Raise(0x02);
        _dpRam->TakeLog();
    }

    /// What the module hands over, and whether a mapped byte has changed when it raises its interrupt.
    Log Cycle(int indication, int outArea = 0, int change = 0, bool changed = false) {
        _dpRam->Put(0x1042, {0, outArea, 0, 0, 0, change});
        if (changed)
            _in->Set(7, static_cast<unsigned char>(_in->Get(7) + 1));
        Raise(indication);
        return _dpRam->TakeLog();
    }

    /// `accesses` between those that read the module's register and those that write `answer` to the host's.
    static Log Answered(const Log& accesses, const std::string& answer) {
        Log log = {"irq", "R8 1ffb", "R8 1ffe"};
        log.insert(log.end(), accesses.begin(), accesses.end());
        log.insert(log.end(), {"W8 1ffa=" + answer, "W8 1ffc=" + answer});
        return log;
    }

    std::shared_ptr<Array<unsigned char>> _in = Array<unsigned char>::Create(8);
    std::shared_ptr<Array<unsigned char>> _out = Array<unsigned char>::Create(8);
};

TEST_F(AccessSequenceTest, AnswersAnInterruptThatTellsNothingAfterTwoMilliseconds) {
    for (const int indication : {0x00, 0x40}) {
        EXPECT_EQ(Cycle(indication, 7, 0x1F, true), (Log{"irq", "R8 1ffb", "R8 1ffe"})) << indication;
        _clock.Advance(1'999'999);
        _module->Update();
        _clock.Advance(1);
        _module->Update();
        EXPECT_EQ(_dpRam->TakeLog(), (Log{"irq", "irq", "W8 1ffa=00", "W8 1ffc=00"})) << indication;
    }
}

TEST_F(AccessSequenceTest, WritesTheInputAreaAsSoonAsItIsTheHostsAndHasChanged) {
    const Log written = {"W 0296+4", "W 02fa+4"};
    EXPECT_EQ(Cycle(0x02, 7, 0x1F, true), Answered(written, "02"));

    EXPECT_EQ(Cycle(0x02), (Log{"irq", "R8 1ffb", "R8 1ffe"})) << "unchanged, and still the host's";
    _in->Set(0, 99);
    _module->Update();
    EXPECT_EQ(_dpRam->TakeLog(), (Log{"irq", "W 0296+4", "W 02fa+4", "W8 1ffa=02", "W8 1ffc=02"}));
    _in->Set(0, 98);
    _module->Update();
    EXPECT_EQ(_dpRam->TakeLog(), Log{"irq"}) << "the module's again";
}

TEST_F(AccessSequenceTest, ReadsOfTheOutAreaWhatTheModuleNames) {
    const Log lists = {"R16 1042",  "R16 1046",  "R 1048+16", "R 1058+16",
                       "R 1068+16", "R 1086+16", "R 1078+14"};
    _dpRam->Put(0x1078, {0xC0});
    EXPECT_EQ(Cycle(0x01, 0), Answered({"R16 1042"}, "01"));
    EXPECT_EQ(Cycle(0x01, 4), Answered({"R16 1042", "R 1096+4", "R 10fa+4"}, "01"));
    EXPECT_EQ(Cycle(0x01, 1), Answered({"R16 1042", "R16 1044"}, "01"));
    EXPECT_EQ(Cycle(0x01, 2), Answered({"R16 1042", "R16 1046"}, "01"));
    EXPECT_EQ(Cycle(0x01, 2, 0x04), Answered({"R16 1042", "R16 1046", "R 1068+16"}, "01"));
    EXPECT_EQ(Cycle(0x01, 2, 0x1F), Answered(lists, "01"));
}

TEST_F(AccessSequenceTest, ReadsBeforeItWritesWhenBothAreasAreHandedOver) {
    const Log both = {"R16 1042", "R16 1044", "R16 1046", "R 1058+16",
                      "R 1096+4", "R 10fa+4", "W 0296+4", "W 02fa+4"};
    EXPECT_EQ(Cycle(0x03, 7, 0x02, true), Answered(both, "03"));
    EXPECT_EQ(Cycle(0x03, 4), Answered({"R16 1042", "R 1096+4", "R 10fa+4"}, "01")) << "nothing to write";
}

TEST_F(AccessSequenceTest, CarriesAMessageInTwoInterrupts) {
    const auto data = Array<unsigned char>::Create(10);
    _module->Class1Write(5, 1, 2, data, nullptr);
    _module->Update();
    EXPECT_EQ(_dpRam->TakeLog(), (Log{"irq", "W 0056+42"})) << "the module hears of it when it interrupts";
    EXPECT_EQ(Cycle(0x00), Answered({}, "08"));
    EXPECT_EQ(Cycle(0x08), (Log{"irq", "R8 1ffb", "R8 1ffe"})) << "taken, not yet answered";
    _clock.Advance(2'000'000);
    _module->Update();
    _dpRam->TakeLog();

    _dpRam->Put(0x176, {0, 5, 0, 2, 0, 0x21, 0, 0});
    EXPECT_EQ(Cycle(0x04), Answered({"R 0176+288"}, "04"));

    _module->Class1Read(5, 1, 2, 10, nullptr);
    EXPECT_EQ(Cycle(0x00), Answered({"W 0056+32"}, "08")) << "queued before the interrupt";
}
