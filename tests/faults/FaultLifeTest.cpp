// SPDX-License-Identifier: MIT
#include "tests/support/FaultLife.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace VirtualModule;

class FaultLifeTest : public testing::Test {
protected:
    /// A life with this fault on an empty module, and one without it on what it leaves in the flash.
    FaultLife::Ending Live(const FaultKind& kind, const Fault& fault) {
        FaultLife life({}, {fault});
        const FaultLife::Ending ending = life.Run(kind.life);
        EXPECT_LE(ending.updates, 10'000);
        for (const std::string& violation : life.module.GetModule().Violations())
            EXPECT_FALSE(violation.starts_with(Violation::FOREIGN_WRITE)) << violation;
        ExpectGood(kind, FaultLife(life.flash).Run(kind.life), "the next life, without the fault");
        return ending;
    }

    void Expect(const FaultKind& kind, const FaultLife::Ending& ending, const Outcome& outcome) {
        EXPECT_TRUE(ending.Is(outcome, Good(kind)))
            << "ends with " << ending.Text() << "\ninstead of " << outcome.type << ": " << outcome.message;
    }

    void ExpectGood(const FaultKind& kind, const FaultLife::Ending& ending, const char* which) {
        SCOPED_TRACE(which);
        Expect(kind, ending, Outcomes::SAME_DATA);
    }

    const FaultLife::Ending& Good(const FaultKind& kind) const {
        return kind.life == FaultKind::Life::MASTER ? _goodMaster : _goodFirmware;
    }

    const FaultLife::Ending _goodMaster = FaultLife().Run(FaultKind::Life::MASTER);
    const FaultLife::Ending _goodFirmware = FaultLife().Run(FaultKind::Life::FIRMWARE);
};

TEST_F(FaultLifeTest, GoodLivesGetWhatTheyWant) {
    EXPECT_TRUE(_goodMaster.complete) << _goodMaster.Text();
    EXPECT_EQ(_goodMaster.data.size(), 59u);
    EXPECT_TRUE(_goodFirmware.complete) << _goodFirmware.Text();
    EXPECT_EQ(_goodFirmware.data.front(), "valid 1");
}

TEST_F(FaultLifeTest, EachFaultEndsAsPromised) {
    for (const FaultKind& kind : Faults()) {
        SCOPED_TRACE(kind.Usual().Text());
        Expect(kind, Live(kind, kind.Usual()), kind.Promise());
    }
}

TEST_F(FaultLifeTest, ModuleComesBackOnceItsFaultIsOver) {
    for (const FaultKind& kind : Faults()) {
        Fault fault = kind.Usual();
        fault.count = 1;
        SCOPED_TRACE(fault.Text());
        FaultLife life({}, {fault});
        life.Run(kind.life);
        ExpectGood(kind, life.Run(kind.life), "the next life on the same module");
    }
}

TEST_F(FaultLifeTest, DownloadFailsAtEachOfItsRequests) {
    for (const char* name : {"database-error", "database-power-cut", "firmware-error", "firmware-silent",
                             "firmware-power-cut"}) {
        Fault fault = Fault::Parse(name);
        const FaultKind& kind = KindOf(fault.id);
        FaultLife good;
        good.Run(kind.life);
        const unsigned requests = good.module.GetModule().Counted(kind.counts);
        EXPECT_GE(requests, 7u);
        for (fault.step = 1; fault.step <= requests; ++fault.step)
            for (fault.value = kind.values.least; fault.value <= kind.values.most; ++fault.value) {
                SCOPED_TRACE(fault.Text());
                Expect(kind, Live(kind, fault), kind.Promise());
            }
    }
}

TEST_F(FaultLifeTest, EachBitOfAnAnswersHeaderIsGuardedAsTheTableSays) {
    for (unsigned bit = 0; bit < 256; ++bit)
        for (const unsigned step : {1u, 2u, 9u}) { // refused, without data, the read-back of the database
            const FaultKind& kind = KindOf(FaultId::HEADER_BIT, bit);
            const Fault fault{kind.id, step, 1, bit};
            SCOPED_TRACE(fault.Text());
            const FaultLife::Ending ending = Live(kind, fault);
            const auto is = [&](const Outcome* outcome) { return ending.Is(*outcome, Good(kind)); };
            EXPECT_TRUE(is(&Outcomes::SAME_DATA) ||
                        std::any_of(kind.outcomes.begin(), kind.outcomes.end(), is))
                << ending.Text();
        }
}

TEST_F(FaultLifeTest, DatabaseThatIsOnceReportedWrongIsWrittenAgain) {
    FaultLife first;
    first.Run(FaultKind::Life::MASTER);
    for (const char* name : {"database-none", "database-checksum", "database-length", "database-not-hex"}) {
        SCOPED_TRACE(name);
        Fault fault = Fault::Parse(name);
        fault.count = 1;
        FaultLife life(first.flash, {fault});
        ExpectGood(KindOf(fault.id), life.Run(FaultKind::Life::MASTER), "the same data");
        EXPECT_EQ(life.module.GetModule().Counted(Counts::DATABASE_COMMANDS), 7u);
    }
}

/// What the library does not notice by itself; an application that must know has to watch its own time.
TEST_F(FaultLifeTest, WaitsWithoutLimit) {
    using Life = FaultKind::Life;
    for (const auto& [life, fault] :
         {std::pair{Life::MASTER, "mailbox-no-ack@14"}, std::pair{Life::MASTER, "dead@25"},
          std::pair{Life::MASTER, "database-nonex1000"}, std::pair{Life::FIRMWARE, "mailbox-no-ack"}}) {
        SCOPED_TRACE(fault);
        const auto ending = FaultLife({}, {Fault::Parse(fault)}).Run(life);
        EXPECT_TRUE(ending.Is(Outcomes::NO_ANSWER, _goodMaster)) << ending.Text();
    }
}
