// SPDX-License-Identifier: MIT
// The command line, asked for the module of an application that publishes it.
#include "tests/support/ModuleFiles.h"
#include "tests/support/ModuleLines.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/RunTool.h"

#include "dbus/remote/Bus.h"
#include "tools/vesk/monitor/Watcher.h"
#include "tools/vesk/session/Link.h"
#include "tools/vesk/session/PlantFlash.h"
#include "tools/vesk/session/ProcessData.h"
#include "vesk/dbus/Plant.h"
#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/lines/LinesFile.h"
#include "vesk/modules/dpvm/CreateHostInterface.h"
#include "virtualmodule/InProcess.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

using namespace Vesk::Modules::DPVM;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const std::string ASKED = "vesk: the application of plant press is asked, nothing is reset\n";

/// An application with the plant of the examples, whose thread updates until something fails or it is ended.
class Application {
public:
    Application(const PrivateBus& bus, bool control, VeskTool::Link link, const char* name = "press") {
        Vesk::DBus::PlantOptions options;
        options.bus = bus.Address();
        options.control = control;
        const auto config = VeskTool::Plant()->config;
        const auto ignore = System::Func<void>::Create([] {});
        _master = Vt22Module::Create(
            CreateHostInterface(link.dpRamPath, 0, link.velmoIrq_n, link.reset_n, link.bootloader_enable_n),
            ignore, ignore, System::ArgFunc<OperationMode_e, void>::Create([](OperationMode_e) {}), config);
        _plant = Vesk::DBus::Plant::Publish(name, _master, config, options);
        UpdateUntil([this] { return _master->Configured(); });
        VeskTool::InputData inputs;
        inputs.TakePlaces(config);
        inputs.Map(*_master, _master->GetDatabaseInfo()->Description.Value());
        _master->BeginInitialization();
        UpdateUntil([this] { return _master->Initialized(); });
        _master->SetOperationMode(OperationMode_e::OPERATE);
        UpdateUntil([this] {
            const auto configured = _master->GetSlaveConfiguredList();
            return std::equal(configured->begin(), configured->end(),
                              _master->GetDataTransferList()->begin());
        });
        UpdateUntil([this] { return _plant->Published(); });
        _thread = std::thread([this] { Run(); });
    }

    ~Application() { End(); }

    /// Does that between two Updates, which the module then may fail in.
    void Disturb(std::function<void()> disturb) {
        _disturb = std::move(disturb);
        _disturbs = true;
    }

    /// It lets its module go, and takes it from the bus.
    void End() {
        _ends = true;
        if (_thread.joinable())
            _thread.join();
        _plant = nullptr;
        _master = nullptr;
    }

private:
    void UpdateUntil(const std::function<bool()>& reached) {
        while (!reached()) {
            _plant->Update();
            std::this_thread::sleep_for(std::chrono::microseconds(50));
        }
    }

    void Run() {
        try {
            UpdateUntil([this] {
                if (_disturbs.exchange(false))
                    _disturb();
                return _ends.load();
            });
        } catch (const std::exception&) {
            // which whoever looks is told
        }
    }

    std::shared_ptr<Vt22Module> _master;
    std::shared_ptr<Vesk::DBus::Plant> _plant;
    std::atomic<bool> _ends{false};
    std::atomic<bool> _disturbs{false};
    std::function<void()> _disturb;
    std::thread _thread;
};

class RemoteTest : public testing::Test {
protected:
    std::unique_ptr<Application> Begin(bool control) const {
        return Begin(control, VeskTool::InProcessLink(VeskTool::PlantFlash()));
    }

    /// One that shows already that everything is right.
    std::unique_ptr<Application> Begin(bool control, VeskTool::Link link) const {
        auto application = std::make_unique<Application>(bus, control, std::move(link));
        while (RunTool::Run(ToPlant({"status"})).status != 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return application;
    }

    RunTool::Arguments ToPlant(const RunTool::Arguments& arguments) const {
        return RunTool::Join(arguments, {"--plant", "press", "--bus", bus.Address()});
    }

    /// What a script for a shell says, each object but for which module it was.
    static std::string Shell(const std::string& script, const std::string& options) {
        const TemporaryFolder folder;
        const auto result = RunTool::Run({"-c", std::string(VESK_TOOL) + " shell --json " + options + " < " +
                                                    folder.Put("script", script)},
                                         "/bin/sh");
        std::string facts;
        std::istringstream lines(result.out);
        for (std::string line; std::getline(lines, line);) {
            auto object = nlohmann::json::parse(line);
            object.erase("link");
            facts += object.dump() + "\n";
        }
        return facts + "= " + std::to_string(result.status);
    }

    PrivateBus bus;
};

TEST_F(RemoteTest, EveryVerbSaysTheSameAsOfAModuleOfOnesOwn) {
    const auto application = Begin(false);
    const std::string names =
        SOURCE_DIR "/examples/plant.toml"; // which only a virtual module knows by itself
    for (const RunTool::Arguments& verb :
         std::vector<RunTool::Arguments>{{"identify"},
                                         {"status"},
                                         {"status", "--config", ModuleFiles::PLANT},
                                         {"database"},
                                         {"verify", ModuleFiles::PLANT},
                                         {"slaves", "-v", "--config", names},
                                         {"livelist"},
                                         {"diag", "5"},
                                         {"diag", "--all"},
                                         {"slave-config", "33"},
                                         {"input", "5", "--config", names},
                                         {"output", "40", "--config", names},
                                         {"output", "pump.speed", "--config", names},
                                         {"read", "5", "0", "1"},
                                         {"read", "5", "0", "1", "16", "--class2"},
                                         // what the module refuses
                                         {"diag", "77"},
                                         {"output", "77"},
                                         {"read", "5", "3", "9"},
                                         {"read", "77", "0", "0"}}) {
        SCOPED_TRACE(testing::PrintToString(verb));
        const auto own = RunTool::Run(RunTool::Join(verb, {"--virtual"}));
        const auto remote = RunTool::Run(ToPlant(verb));
        EXPECT_EQ(remote.status, own.status);
        EXPECT_EQ(remote.out, own.out);
        EXPECT_EQ(remote.err, ASKED + own.err);
        const auto json = RunTool::Run(RunTool::Join(ToPlant(verb), {"--json"}));
        EXPECT_EQ(nlohmann::json::parse(json.out)["link"], "plant press");
    }
    const auto both = [](const std::string& text) {
        auto json = nlohmann::json::parse(text);
        json.erase("link");
        return json;
    };
    const RunTool::Arguments slaves{"slaves", "--json", "--config", names};
    EXPECT_EQ(both(RunTool::Text(ToPlant(slaves))), both(RunTool::Text(slaves)));
    const auto plants = RunTool::Json({"plants", "--bus", bus.Address()})["plants"];
    ASSERT_EQ(plants.size(), 1U);
    EXPECT_EQ(plants[0]["process"], ::getpid());
    EXPECT_EQ(plants[0]["state"], "INITIALIZED");
}

TEST_F(RemoteTest, ChangesTheSameAsAtAModuleOfOnesOwn) {
    const std::string script =
        "set 5 0a0b0c\ninput 5\noutput 5\nset 5 2 ff\noutput 5\nset 77 00\n"
        "set lamps.ready true\nset lamps.fault true\nset lamps.ready false\ninput lamps\n"
        "write 5 1 200 010203\nread 5 1 200\nwrite 5 1 201 04 --class2\nread 5 1 201 --class2\n"
        "write 77 1 1 00\nstop 9 10\nlivelist\nstart 9 10\nstart 77\nlivelist\n"
        "mode clear\nstatus\nmode operate\nstatus\n";
    const auto application = Begin(true);
    const std::string config = " --config " SOURCE_DIR "/examples/plant.toml";
    const std::string said = Shell(script, "--plant press --bus " + bus.Address() + config);
    EXPECT_EQ(said, Shell(script, "--virtual" + config));
    EXPECT_THAT(said, AllOf(HasSubstr("\"data\":\"0a0bff"), HasSubstr("\"data\":\"03\""),
                            HasSubstr("\"type\":\"Refusal\"")));
}

TEST_F(RemoteTest, LetsTheApplicationsBytesGoOutAgain) {
    const auto application = Begin(true);
    const auto set =
        RunTool::Run(ToPlant({"set", "5", "0a", "--seconds", "0", "--config", ModuleFiles::PLANT}));
    EXPECT_EQ(set.out, "Set: slave 5, input from byte 0 on: 0a\n");
    EXPECT_EQ(set.err, ASKED + "vesk: held for 0 s, then the application's own bytes go out again\n");
    while (RunTool::Json(ToPlant({"input", "5"}))["data"] != "000000000000000000000000") {
    }
}

TEST_F(RemoteTest, ChangesNothingThatIsNotOffered) {
    auto application = Begin(false);
    for (const RunTool::Arguments& verb :
         std::vector<RunTool::Arguments>{{"write", "5", "1", "200", "00"},
                                         {"write", "5", "1", "200", "00", "--class2"},
                                         {"mode", "clear"},
                                         {"start", "5"},
                                         {"stop", "5"},
                                         {"set", "5", "01", "--config", ModuleFiles::PLANT}})
        RunTool::ExpectFailure(ToPlant(verb), 1,
                               StartsWith(ASKED +
                                          "vesk: Plant press lets nobody change anything: it does not "
                                          "offer org.libvesk.Control1\n"));
    RunTool::ExpectFailure(ToPlant({"set-address", "5", "6", "1"}), 1,
                           HasSubstr("this is only for the program that has the module"));
    const std::string needs = "needs the module itself";
    for (const RunTool::Arguments& verb : std::vector<RunTool::Arguments>{
             {"download", ModuleFiles::PLANT}, {"flash", ModuleFiles::FIRMWARE, "--yes"}, {"run"}})
        RunTool::ExpectFailure(ToPlant(verb), 2, HasSubstr(needs));
    EXPECT_THAT(Shell("restart\n", "--plant press --bus " + bus.Address()),
                HasSubstr("only for the program"));
    application->End();
    RunTool::ExpectFailure(ToPlant({"identify"}), 1,
                           StartsWith("vesk: No plant is published as press, nor is"));
    RunTool::ExpectFailure({"plants", "--bus", "unix:path=/nowhere"}, 1,
                           StartsWith("vesk: The bus at unix:path=/nowhere cannot be used: "));
}

TEST_F(RemoteTest, AsksWhoHasTheModuleByItself) {
    const ModuleFiles files;
    const auto module = files.StartModule();
    const auto lines = LinesFile::Open(files.lines);
    const auto application = Begin(
        false, {"", files.dpRam, 0, lines->VelmoIrq_n(), lines->Reset_n(), lines->BootloaderEnable_n(), {}});
    const auto with = [&](const RunTool::Arguments& verb) {
        return RunTool::Run(RunTool::Join(files.With(verb), {"--bus", bus.Address()}));
    };
    EXPECT_EQ(with({"identify"}).err, ASKED);
    EXPECT_EQ(with({"status"}).status, 0);
    EXPECT_THAT(with({"download", ModuleFiles::PLANT}).err, HasSubstr("is in use by process"));
    const Application other(bus, false, VeskTool::InProcessLink(VeskTool::PlantFlash()), "welder");
    EXPECT_THAT(with({"identify"}).err, AllOf(HasSubstr("is in use by process"), HasSubstr("--plant NAME")));
    ModuleFiles::ExpectRightHost(*module);
}

TEST_F(RemoteTest, SaysWhatHasFailedThere) {
    const TemporaryFolder folder;
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = folder.Path("dump");
    auto flash = VeskTool::PlantFlash();
    VirtualModule::InProcess module(flash, [] {
        return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
    });
    const ModuleLines lines(module);
    auto application = Begin(
        false, {"", module.DpRamPath(), 0, lines.velmoIrq_n, lines.reset_n, lines.bootloaderEnable_n, {}});
    Process data(VESK_TOOL, ToPlant({"output", "5", "--watch"}));
    EXPECT_TRUE(data.WaitForOut("00 00"));
    application->Disturb([&] {
        VirtualModule::FatalEvent event{};
        event.errorCode = 7;
        module.GetModule().RaiseFatal(event);
    });
    EXPECT_EQ(data.Wait(), 1);
    EXPECT_THAT(data.Err(),
                AllOf(HasSubstr("vesk: Vesk.Modules.DPVM.Vt22FatalEventException"),
                      HasSubstr("The module says: error code 0x7,"), HasSubstr(folder.Path("dump"))));
    const auto status = RunTool::Json(ToPlant({"status"}), 3);
    EXPECT_EQ(status["problem"]["fatalEvent"]["errorCode"], 7);
    EXPECT_EQ(status["problem"]["dump"], folder.Path("dump"));
    application = nullptr;
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;
}

TEST_F(RemoteTest, SaysWhenThePlantGoesAndWhenItIsBack) {
    auto application = Begin(true);
    Process data(VESK_TOOL, ToPlant({"output", "5", "--watch"}));
    Process status(VESK_TOOL, ToPlant({"status", "--watch"}));
    EXPECT_TRUE(data.WaitForOut("00 00"));
    EXPECT_TRUE(status.WaitForOut(" slave 40 exchanges data\n"));
    EXPECT_THAT(status.Out(), AllOf(HasSubstr(" state INITIALIZED\n"), HasSubstr(" mode OPERATE\n")));
    RunTool::Text(ToPlant({"stop", "9"}));
    EXPECT_TRUE(status.WaitForOut(" slave 9 does not exchange data\n"));
    application->End();
    EXPECT_EQ(data.Wait(), 1);
    EXPECT_THAT(data.Err(),
                testing::ContainsRegex("vesk: Plant press (has left the bus|cannot be used: Failed, )"));
    EXPECT_TRUE(status.WaitForOut(" Plant press has left the bus\n"));
    application = Begin(true);
    EXPECT_TRUE(status.WaitForOut(" the application goes on\n"));
    EXPECT_EQ(status.End(SIGINT), 128 + SIGINT);
}

TEST_F(RemoteTest, MonitorsAPlant) {
    const auto application = Begin(true);
    const auto once = RunTool::Text({"monitor", "--once", "--slave", "5", "--bus", bus.Address()});
    std::istringstream lines(once);
    for (std::string line; std::getline(lines, line);)
        EXPECT_LE(line.size(), 80U) << line;
    EXPECT_THAT(once, AllOf(StartsWith(" press   INITIALIZED   OPERATE "),
                            HasSubstr("\n    0 . . . X X[X]. . X X    to it, 12 bytes\n")));
    const auto connection = Vesk::DBus::OpenBus(bus.Address());
    VeskTool::RemoteSession session(connection, Vesk::DBus::ListPlants(*connection).at(0));
    VeskTool::Watcher watcher(session, 40);
    watcher.LookOnce();
    using enum VeskTool::Key;
    for (const auto& [key, slave, dataAbove] : {std::tuple{PAGE_DOWN, 40U, 10U},
                                                {PAGE_UP, 40U, 0U},
                                                {PAGE_UP, 40U, 0U},
                                                {PAGE_DOWN, 40U, 10U},
                                                {NEXT, 3U, 0U},
                                                {NEXT, 4U, 0U},
                                                {PREVIOUS, 3U, 0U},
                                                {PREVIOUS, 40U, 0U},
                                                {PREVIOUS, 33U, 0U}}) {
        watcher.Take(key);
        EXPECT_EQ(watcher.Shown().slave, slave);
        EXPECT_EQ(watcher.Shown().dataAbove, dataAbove);
    }
    ::setenv("TERM", "xterm-mono", 1);
    const auto drawn = RunTool::RunOnTerminal(ToPlant({"monitor"}), "q", "q ends");
    EXPECT_EQ(drawn.status, 0) << drawn.out;
    EXPECT_THAT(drawn.out, HasSubstr("Slave 3"));
    ::setenv("TERM", "nothing", 1);
    EXPECT_THAT(RunTool::RunOnTerminal(ToPlant({"monitor"}), "").out, HasSubstr("--once prints it"));
}

} // namespace
