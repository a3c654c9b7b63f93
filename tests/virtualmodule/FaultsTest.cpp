// SPDX-License-Identifier: MIT
#include "virtualmodule/faults/FaultInjector.h"

#include "tests/virtualmodule/RawHost.h"

#include <set>
#include <stdexcept>

using namespace VirtualModule;

namespace {

std::string ErrorOf(const std::string& text) {
    try {
        return "no error: " + Fault::Parse(text).Text();
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
}

} // namespace

TEST(FaultsTest, ReadsTheTextForm) {
    const std::pair<const char*, const char*> CASES[] = {
        {"dead", "dead@3"},
        {"deadx2", "dead@3x2"},
        {"dead@5x2", "dead@5x2"},
        {"boot-late", "boot-late@1=900"},
        {"boot-late@2x1=2000", "boot-late@2x1=2000"},
        {"boot-late=0x7D0", "boot-late@1=2000"},
        {"boot-extra-bitsx3=0x0f", "boot-extra-bits@1x3=15"},
        {"header-bit", "header-bit@2x1=0"},
        {"header-bit@1=255", "header-bit@1x1=255"},
    };

    for (const auto& [text, whole] : CASES)
        EXPECT_EQ(Fault::Parse(text).Text(), whole) << text;
}

TEST(FaultsTest, SaysWhatIsWrongWithATextForm) {
    const std::pair<std::string, std::string> CASES[] = {
        {"boot-slient", R"(there is no "boot-slient", but there is boot-silent)"},
        {"late", R"(there is no "late", but there is boot-late answer-late)"},
        {"dead@", R"(STEP must be a number, not "")"},
        {"dead@0", "STEP counts from 1"},
        {"dead@-1", R"(STEP must be a number, not "-1")"},
        {"dead@4x0", "COUNT counts from 1"},
        {"dead@4x", R"(STEP must be a number, not "4x")"},
        {"dead=1", "it takes no VALUE"},
        {"boot-late=", R"(VALUE must be a number, not "")"},
        {"boot-late=0x", R"(VALUE must be a number, not "0x")"},
        {"boot-late=5s", R"(VALUE must be a number, not "5s")"},
        {"boot-late=4294967296", R"(VALUE must be a number, not "4294967296")"},
        {"boot-late=1901", "VALUE 1901 is out of range: 1 to 1900, 2000 to 600000"},
    };

    for (const auto& [text, error] : CASES)
        EXPECT_EQ(ErrorOf(text), "fault \"" + text + "\": " + error);
    for (const char* text : {"", "@3", "=1", "something-else"})
        EXPECT_THAT(ErrorOf(text), testing::ContainsRegex("the faults are boot-silent boot-late .*-flicker$"))
            << text;
}

TEST(FaultsTest, TableIsWhole) {
    std::set<FaultId> ids;
    std::set<const Outcome*> promised;
    std::set<std::string_view> names;
    for (const FaultKind& kind : Faults()) {
        ids.insert(kind.id);
        names.insert(kind.name);
        promised.insert(kind.outcomes.begin(), kind.outcomes.end());
        EXPECT_EQ(KindOf(kind.id).name, kind.name) << "one name for one fault";
        EXPECT_EQ(KindOf(kind.id).counts, kind.counts) << kind.name;
        EXPECT_EQ(&KindOf(kind.id, kind.values.usual), &kind) << kind.name << ": usual value";
        for (const unsigned value : {kind.values.least, kind.values.most})
            EXPECT_EQ(&KindOf(kind.id, value), &kind) << kind.name << ": ranges meet at " << value;
        EXPECT_EQ(Fault::Parse(kind.Usual().Text()).Text(), kind.Usual().Text());
    }
    EXPECT_EQ(ids.size(), static_cast<std::size_t>(FaultId::DPRAM_FLICKER) + 1);
    EXPECT_EQ(names.size(), ids.size());
    EXPECT_EQ(promised.size(), AllOutcomes().size()) << "each outcome comes of a fault";
    for (const Outcome* outcome : AllOutcomes())
        EXPECT_FALSE(outcome->means.empty() || outcome->check.empty()) << outcome->message;
    EXPECT_THROW(KindOf(FaultId::HEADER_BIT, 256), std::invalid_argument);
    EXPECT_THROW(KindOf(FaultId::DEAD, 1), std::invalid_argument);
}

TEST(FaultsTest, OutcomeKnowsItsExceptionByTypeAndMessage) {
    constexpr Outcome outcome{"Type", "a * of *", "", ""};
    EXPECT_TRUE(outcome.Is("Type", "a  of "));
    EXPECT_TRUE(outcome.Is("Type", "a pair\nof socks of wool"));
    EXPECT_FALSE(outcome.Is("Type", "a pair"));
    EXPECT_FALSE(outcome.Is("Type", "no a pair of socks"));
    EXPECT_FALSE(outcome.Is("Typ", "a pair of socks"));
    EXPECT_FALSE(Outcomes::EMPTY.Is("Vesk.ModuleStateException", "Empty indication at bootup!!"));
    EXPECT_FALSE(Outcomes::SAME_DATA.Is("", ""));
}

TEST(FaultsTest, StrikesFromItsStepOnAsOftenAsItShould) {
    const Watch watch;
    FaultInjector faults(
        {{FaultId::DEAD, 2, 2, 0}, {FaultId::BOOT_LATE, 3, 0, 7}, {FaultId::BOOT_LATE, 1, 1, 5}}, watch);
    std::string dead, late;
    for (int i = 0; i < 5; ++i) {
        faults.Count(Counts::BOOTS);
        faults.Count(Counts::INTERRUPTS);
        dead += faults.Strike(FaultId::DEAD) ? "x" : ".";
        late += std::to_string(faults.Falsify(FaultId::BOOT_LATE, 0));
    }
    EXPECT_EQ(dead, ".xx..");
    EXPECT_EQ(late, "50777");
    EXPECT_EQ(faults.Counted(Counts::INTERRUPTS), 5u);
}

TEST(FaultsTest, FatalEventIsFull) {
    RawHost host({.faults = {Fault::Parse("fatal@2=0xBEEF")}});
    host.PowerOn();
    EXPECT_EQ(host.Turn(), RawHost::FATAL);
    const Bytes event = host.Memory(0x0014, 66);
    EXPECT_EQ(Get16(event, 0), 0xBEEF);
    for (const std::size_t field : {2u, 4u, 12u, 14u, 38u, 40u})
        EXPECT_NE(Get16(event, field), 0) << field;
}
