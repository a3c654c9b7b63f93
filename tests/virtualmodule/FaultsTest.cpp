// SPDX-License-Identifier: MIT
#include "virtualmodule/faults/FaultInjector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <stdexcept>

using namespace VirtualModule;

namespace {

std::string Parsed(const std::string& text) {
    try {
        return Fault::Parse(text).Text();
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
}

} // namespace

TEST(FaultsTest, ReadsTheTextFormOrSaysWhatIsWrongWithIt) {
    const std::pair<const char*, const char*> CASES[] = {
        {"deadx2", "dead@3x2"},
        {"boot-late@2x1=0x7D0", "boot-late@2x1=2000"},
        {"boot-extra-bitsx3=0x0f", "boot-extra-bits@1x3=15"},
        {"boot-slient", R"(there is no "boot-slient", but there is boot-silent)"},
        {"late", R"(there is no "late", but there is boot-late answer-late)"},
        {"dead@0", "STEP counts from 1"},
        {"dead@4x", R"(STEP must be a number, not "4x")"},
        {"dead=1", "it takes no VALUE"},
        {"boot-late=4294967296", R"(VALUE must be a number, not "4294967296")"},
        {"boot-late=1901", "VALUE 1901 is out of range: 1 to 1900, 2000 to 600000"},
    };
    for (const auto& [text, result] : CASES)
        EXPECT_THAT(Parsed(text), testing::AnyOf(result, "fault \"" + std::string(text) + "\": " + result));
    for (const char* text : {"", "@3", "=1", "something-else"})
        EXPECT_THAT(Parsed(text), testing::ContainsRegex("the faults are boot-silent boot-late .*-flicker$"));
}

TEST(FaultsTest, TableIsWhole) {
    std::set<FaultId> ids;
    std::set<const Outcome*> promised;
    for (const FaultKind& kind : Faults()) {
        ids.insert(kind.id);
        promised.insert(kind.outcomes.begin(), kind.outcomes.end());
        EXPECT_EQ(KindOf(kind.id).name, kind.name) << "one name for one fault";
        EXPECT_EQ(KindOf(kind.id).counts, kind.counts) << kind.name;
        EXPECT_EQ(&KindOf(kind.id, kind.values.usual), &kind) << kind.name << ": usual value";
        for (const unsigned value : {kind.values.least, kind.values.most})
            EXPECT_EQ(&KindOf(kind.id, value), &kind) << kind.name << ": ranges meet at " << value;
        EXPECT_EQ(Fault::Parse(kind.Usual().Text()).Text(), kind.Usual().Text());
    }
    EXPECT_EQ(ids.size(), static_cast<std::size_t>(FaultId::DPRAM_FLICKER) + 1);
    EXPECT_EQ(promised.size(), AllOutcomes().size()) << "each outcome comes of a fault";
    for (const Outcome* outcome : AllOutcomes())
        EXPECT_FALSE(outcome->means.empty() || outcome->check.empty()) << outcome->message;
    EXPECT_THROW(KindOf(FaultId::HEADER_BIT, 256), std::invalid_argument);
}

TEST(FaultsTest, OutcomeKnowsItsExceptionByTypeAndMessage) {
    constexpr Outcome outcome{"Type", "a * of *", "", ""};
    EXPECT_TRUE(outcome.Is("Type", "a  of "));
    EXPECT_TRUE(outcome.Is("Type", "a pair\nof socks of wool"));
    EXPECT_FALSE(outcome.Is("Type", "a pair"));
    EXPECT_FALSE(outcome.Is("Typ", "a pair of socks"));
    EXPECT_FALSE(Outcomes::SAME_DATA.Is("", ""));
}

TEST(FaultsTest, StrikesFromItsStepOnAsOftenAsItShould) {
    const Watch watch;
    FaultInjector faults({{FaultId::DEAD, 2, 2}, {FaultId::BOOT_LATE, 3, 0, 7}}, watch);
    std::string seen;
    for (int i = 0; i < 5; ++i) {
        faults.Count(Counts::BOOTS);
        faults.Count(Counts::INTERRUPTS);
        seen += faults.Strike(FaultId::DEAD) ? "x" : ".";
        seen += std::to_string(faults.Falsify(FaultId::BOOT_LATE, 0));
    }
    EXPECT_EQ(seen, ".0x0x7.7.7");
}
