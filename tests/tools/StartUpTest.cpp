// SPDX-License-Identifier: MIT
#include "tools/vesk/verbs/StartUp.h"
#include "tests/support/ModuleLines.h"
#include "tests/support/TestClock.h"
#include "tools/vesk/session/PlantFlash.h"
#include "vesk/hostinterface/RuntimeConfig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace VeskTool;
using testing::HasSubstr;
using testing::Not;

namespace {

/// A virtual module on which time passes with the updates of its session.
class StartUpTest : public testing::Test {
protected:
    StartUpTest() { Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr; }

    /// A new life on `flash`.
    Session& Begin() {
        Link link;
        link.dpRamPath = module.DpRamPath();
        link.velmoIrq_n = System::Func<bool>::Create([this] { return dead || module.VelmoIrq_n(); });
        link.reset_n = ModuleLines(module).reset_n;
        link.bootloader_enable_n = ModuleLines(module).bootloaderEnable_n;
        session = std::make_unique<Session>(link, nullptr);
        session->OnUpdate([this] { clock.Advance(1'000'000); });
        return *session;
    }

    /// That `step` is the first that is not right, and that people are told so.
    static void ExpectProblem(const Json& facts, const std::string& step, const std::string& what,
                              const std::string& cause, const std::string& next) {
        EXPECT_EQ(facts["ok"], false);
        bool passed = false;
        for (const Json& examined : facts["steps"]) {
            const bool here = examined["name"] == step;
            EXPECT_EQ(examined["state"], here ? "wrong" : passed ? "not reached" : "ok") << examined;
            passed = passed || here;
        }
        EXPECT_EQ(facts["problem"]["step"], step);
        for (const auto& [name, words] : {std::pair{"what", what}, {"cause", cause}, {"next", next}})
            EXPECT_THAT(facts["problem"][name].get<std::string>(), HasSubstr(words));
        EXPECT_THAT(StartUpText(facts, Paint(false)),
                    testing::AllOf(HasSubstr(what), HasSubstr("Cause: "), HasSubstr(next),
                                   Not(HasSubstr("operational"))));
    }

    TestClock clock;
    VirtualModule::Flash flash = PlantFlash();
    VirtualModule::InProcess module{flash, TestClock::Nanoseconds};
    bool dead = false; // no longer steps
    std::unique_ptr<Session> session;
    const Json nothing = Json::object();
};

TEST_F(StartUpTest, EverythingIsRight) {
    const Json facts = ExamineStartUp(Begin(), nothing);
    EXPECT_EQ(facts["ok"], true) << facts;
    EXPECT_TRUE(facts["problem"].is_null());
    EXPECT_EQ(facts["mode"], "OPERATE");
    EXPECT_EQ(facts["slaves"].size(), 12u);
    EXPECT_EQ(facts["steps"].size(), 6u);
    EXPECT_THAT(StartUpText(facts, Paint(false)), HasSubstr("Everything is operational."));
    EXPECT_EQ(ExamineStartUp(*session, nothing), facts);

    int shown = 0;
    const auto count = [&](const Json&) { ++shown; };
    EXPECT_EQ(WatchStartUp(*session, nothing, 1, count, [&] { return shown == 3; })["ok"], true);
    EXPECT_EQ(shown, 3) << "until it is told to stop";
}

TEST_F(StartUpTest, AnotherDatabaseOrNone) {
    ExpectProblem(ExamineStartUp(Begin(), {{"checksum", "00000000"}}), "database", "instead of 00000000",
                  "Another configuration", "vesk download CONFIG.ddb");
    flash.database = {};
    ExpectProblem(ExamineStartUp(Begin(), nothing), "database", "holds no database", "was downloaded",
                  "vesk download CONFIG.ddb");
}

TEST_F(StartUpTest, SlaveOffTheBus) {
    module.GetModule().SetSlavePresent(9, false);
    const Json facts = ExamineStartUp(Begin(), nothing);
    ExpectProblem(facts, "slaves", "Slave 9 does not exchange data", "does not answer on the bus",
                  "vesk diag 9");
    for (const Json& slave : facts["slaves"])
        EXPECT_EQ(slave["cause"].is_null(), slave["address"] != 9) << slave;
    EXPECT_EQ(facts["alive"], true);
    module.GetModule().SetSlavePresent(9, true);
    session->UpdateFor(0.1, [] { return false; });
    EXPECT_EQ(ExamineStartUp(*session, nothing)["ok"], true);
}

TEST_F(StartUpTest, StoppedSlave) {
    Begin().Reach(Need::OPERATING);
    const auto slaves = System::Array<unsigned char>::Create(126);
    slaves->Set(5, 1);
    session->Ask([&](auto action) { session->Module().StopSlaves(slaves, action); }, "the stop");
    session->UpdateFor(0.1, [] { return false; });
    ExpectProblem(ExamineStartUp(*session, nothing), "slaves", "Slave 5 does not exchange data",
                  "it waits to be parameterised", "vesk diag 5");
}

TEST_F(StartUpTest, OtherModesThanOperate) {
    Begin().Reach(Need::OPERATING);
    session->SetMode(Session::OperationMode::CLEAR);
    ExpectProblem(ExamineStartUp(*session, nothing), "operation mode", "is CLEAR", "Somebody asked for it",
                  "vesk mode operate");
    session->SetMode(Session::OperationMode::OFFLINE);
    ExpectProblem(ExamineStartUp(*session, nothing), "bus online", "not on the bus", "taken off the bus",
                  "vesk mode operate");
}

TEST_F(StartUpTest, ModuleThatDoesNotStart) {
    dead = true;
    const Json facts = ExamineStartUp(Begin(), nothing);
    ExpectProblem(facts, "module ready", "Timeout waiting for initial IRQ", "no supply", "Check the supply");
    EXPECT_EQ(facts["alive"], false);
}

TEST_F(StartUpTest, WatchingEndsWithTheModule) {
    int shown = 0;
    const auto show = [&](const Json& facts) {
        ++shown;
        EXPECT_EQ(facts["ok"], shown <= 2) << facts;
        dead = shown == 2;
    };
    const Json stopped = WatchStartUp(Begin(), nothing, 1, show, [] { return false; });
    EXPECT_EQ(shown, 3);
    ExpectProblem(stopped, "database", "Timeout after 3 seconds", "The module has stopped answering",
                  "vesk status");
}

TEST_F(StartUpTest, WatchingEndsWithAFatalEvent) {
    VirtualModule::FatalEvent event;
    event.errorCode = 0x1234;
    int shown = 0;
    const auto show = [&](const Json&) {
        if (++shown == 1)
            module.GetModule().RaiseFatal(event);
    };
    const Json facts = WatchStartUp(Begin(), nothing, 1, show, [] { return false; });
    EXPECT_EQ(shown, 2);
    ExpectProblem(facts, "module ready", "Fatal event reported", "error code 0x1234",
                  "Keep this for the vendor");
}

} // namespace
