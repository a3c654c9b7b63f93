// SPDX-License-Identifier: MIT
#include "tools/vesk/verbs/StartUp.h"
#include "tests/support/Golden.h"
#include "tests/support/ModuleLines.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestClock.h"
#include "tools/vesk/session/Dumps.h"
#include "tools/vesk/session/OwnSession.h"
#include "tools/vesk/session/PlantFlash.h"
#include "tools/vesk/text/Text.h"
#include "vesk/hostinterface/RuntimeConfig.h"

using namespace VeskTool;

namespace {

/// A virtual module on which time passes with the updates of its session.
struct Bench {
    Bench() { Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr; }

    /// A new life on `flash`.
    Session& Begin() {
        Link link;
        link.dpRamPath = module.DpRamPath();
        link.velmoIrq_n = System::Func<bool>::Create([this] { return dead || module.VelmoIrq_n(); });
        link.reset_n = ModuleLines(module).reset_n;
        link.bootloader_enable_n = ModuleLines(module).bootloaderEnable_n;
        session = std::make_unique<OwnSession>(link, nullptr);
        session->OnUpdate([this] { clock.Advance(1'000'000); });
        return *session;
    }

    void Pass() {
        session->UpdateFor(0.1, [] { return false; });
    }

    TestClock clock;
    VirtualModule::Flash flash = PlantFlash();
    VirtualModule::InProcess module{flash, TestClock::Nanoseconds};
    bool dead = false; // no longer steps
    std::unique_ptr<Session> session;
    Json arguments = Json::object();
};

/// The facts, and the same for people.
std::string Shown(const std::string& name, Json facts) {
    const std::string text = StartUpText(facts, Paint(false));
    for (const Json& slave : facts["slaves"]) // only what is wrong, and only people read the text of the rest
        EXPECT_EQ(slave["cause"].is_null(), text.find("\n        " + Padded(slave["address"].dump(), 5) +
                                                      "configured, exchanges data\n") != text.npos);
    facts.erase("slaves");
    facts.erase("steps");
    return "# " + name + "\n" + facts.dump() + "\n" + text;
}

TEST(StartUpTest, NamesTheFirstThingThatIsNotRight) {
    const std::pair<const char*, std::function<void(Bench&)>> CASES[]{
        {"nothing", [](Bench&) {}},
        {"another database", [](Bench& bench) { bench.arguments["checksum"] = "00000000"; }},
        {"no database", [](Bench& bench) { bench.flash.database = {}; }},
        {"a slave off the bus", [](Bench& bench) { bench.module.GetModule().SetSlavePresent(9, false); }},
        {"a slave that is back",
         [](Bench& bench) {
             bench.module.GetModule().SetSlavePresent(9, false);
             bench.Begin().Reach(Need::OPERATING);
             bench.module.GetModule().SetSlavePresent(9, true);
             bench.Pass();
         }},
        {"a stopped slave",
         [](Bench& bench) {
             bench.Begin().Reach(Need::OPERATING);
             const auto slaves = System::Array<unsigned char>::Create(126);
             slaves->Set(5, 1);
             bench.session->Ask([&](auto action) { bench.session->Module().StopSlaves(slaves, action); }, "");
             bench.Pass();
         }},
        {"CLEAR",
         [](Bench& bench) {
             bench.Begin().Reach(Need::OPERATING);
             bench.session->SetMode(Session::OperationMode::CLEAR);
         }},
        {"OFFLINE",
         [](Bench& bench) {
             bench.Begin().Reach(Need::OPERATING);
             bench.session->SetMode(Session::OperationMode::OFFLINE);
         }},
        {"a module that does not start", [](Bench& bench) { bench.dead = true; }},
    };
    std::string shown;
    for (const auto& [name, arrange] : CASES) {
        Bench bench;
        arrange(bench);
        Session& session = bench.session ? *bench.session : bench.Begin();
        const Json facts = ExamineStartUp(session, bench.arguments);
        shown += Shown(name, facts);
        if (facts["alive"])
            EXPECT_EQ(ExamineStartUp(session, bench.arguments), facts) << "looking changes nothing";
    }
    ExpectGolden("startup.txt", shown);
}

/// Not a failure of the module.
struct Enough {};

TEST(StartUpTest, WatchesUntilItIsToldToStop) {
    VirtualModule::FatalEvent event;
    event.errorCode = 0x1234;
    std::string shown;
    for (const std::string end : {"the module dies", "a fatal event"}) {
        Bench bench;
        int looks = 0;
        const TemporaryFolder dumps;
        Dumps::SetFolder(dumps.Path(""));
        const auto show = [&](Json facts) {
            if (facts["problem"].contains("dump")) {
                EXPECT_THAT(facts["problem"]["dump"].get<std::string>(),
                            testing::MatchesRegex(dumps.Path("") + "/?vesk-[0-9]+-[0-9]+\\.bin"));
                EXPECT_THAT(StartUpText(facts, Paint(false)),
                            testing::HasSubstr("Event: error code 0x1234, "));
                facts["problem"].erase("dump");
            }
            shown += end + ", look " + std::to_string(++looks) + ": " + facts["problem"].dump() + "\n";
            bench.dead = looks == 2 && end == "the module dies"; // and comes back
            if (looks == 1 && end == "a fatal event")
                bench.module.GetModule().RaiseFatal(event);
            if (looks == 4)
                throw Enough();
        };
        EXPECT_THROW(WatchStartUp(bench.Begin(), bench.arguments, 1, show), Enough);
        EXPECT_EQ(std::filesystem::is_empty(dumps.Path("")), end != "a fatal event");
        Dumps::SetFolder("");
    }
    ExpectGolden("watch.txt", shown);
}

} // namespace
