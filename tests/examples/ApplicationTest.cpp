// SPDX-License-Identifier: MIT
#include "tests/support/ModuleFiles.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/RunTool.h"
#include "vesk/lines/LinesFile.h"

#ifdef VESK_WITH_SDBUS
#include <sdbus-c++/sdbus-c++.h>
#endif

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

namespace {

/// Each program of examples/ against a module in a process of its own.
struct ApplicationTest : testing::Test {
    using Arguments = RunTool::Arguments;
    static constexpr const char* PLANT = ModuleFiles::PLANT;

    static std::string Path(const std::string& example) { return EXAMPLES + ("/" + example); }

    /// The arguments that begin with the files of the module.
    Arguments On(const Arguments& more) const { return RunTool::Join({files.dpRam, files.lines}, more); }

    ModuleFiles files;
};

TEST_F(ApplicationTest, EachDoesItsTask) {
    const std::string update =
        "downloading VT22 demo firmware 1.5.0, 31 requests\nthe module runs version 1.5.0\n";
    const std::string record = // "Virtual slave, ident 0x2a10, record 1"
        "56 69 72 74 75 61 6c 20 73 6c 61 76 65 2c 20 69 64 65 6e 74 20 30 78 32 61 31 30 2c 20 72 65 63 6f "
        "72 64 20 31\n";

    const struct {
        const char* example;
        Arguments arguments;
        std::string out, err; // one of the two
    } cases[]{
        {"bus_up_and_down", {PLANT}, "online\nOPERATE\n12 slaves exchange data\nCLEAR\nSTOP\noffline\n", ""},
        {"cyclic_control", {PLANT}, "running at 1000 rpm\nstanding still\n", ""},
        {"cyclic_control", {PLANT, "1000"}, "", "priority 1000: Invalid argument\n"},
        {"cyclic_control", {"/"}, "", "System.IO.IOException: /: is a directory\n"},
        {"read_record", {"3", "0", "1"}, record + record, ""},
        {"read_record", {"3", "9", "1"}, "", "refused: Invalid Address\n"},
        {"read_record", {"256", "0", "1"}, "", "256 is not 0 to 255\n"},
        {"firmware_update", {ModuleFiles::FIRMWARE}, update, ""},
    };

    const auto module = files.StartModule();
    for (const auto& [example, arguments, out, err] : cases) {
        SCOPED_TRACE(example);
        const ToolResult result = RunTool::Run(On(arguments), Path(example));
        EXPECT_EQ(result.status, err.empty() ? 0 : 1);
        EXPECT_EQ(result.out, out);
        EXPECT_EQ(result.err, err);
    }
    {
        const auto lines = LinesFile::Open(files.lines);
        EXPECT_THAT(RunTool::Run(On({PLANT}), Path("application")).err,
                    StartsWith(files.lines + " is in use by process " + std::to_string(::getpid()) + " ("));
    }
    for (int life = 0; life < 2; ++life) { // with another firmware's database, and with its own
        const ToolResult result = RunTool::Run(On({PLANT}), Path("application"));
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_THAT(result.out, StartsWith("online\nnew mode\n42 went to the bus and came back\n"));
        EXPECT_THAT(result.out, HasSubstr("\nError: No error\n"));
    }
    ModuleFiles::ExpectRightHost(*module);
}

TEST_F(ApplicationTest, EachSaysHowItIsUsed) {
    Arguments examples{"application",     "bus_up_and_down", "cyclic_control", "fault_log",
                       "firmware_update", "read_record",     "several_modules"};
#ifdef VESK_WITH_GPIOD
    examples.emplace_back("event_driven");
#endif
#ifdef VESK_WITH_SERVICE
    examples.emplace_back("service");
#endif
    for (const std::string& example : examples) {
        const ToolResult result = RunTool::Run({}, Path(example));
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.err, StartsWith("usage: " + example + " "));
    }
}

TEST_F(ApplicationTest, AModuleThatFailsDoesNotStopTheOthers) {
    const ModuleFiles failing;
    const auto module = files.StartModule();
    const auto failingModule = failing.StartModule({"--fault", "fatal@20"});
    const ToolResult result = RunTool::Run({PLANT, failing.dpRam, failing.lines, files.dpRam, files.lines},
                                           Path("several_modules"));
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out, HasSubstr(files.dpRam + ": 42 went to the bus and came back\n"));
    EXPECT_EQ(result.err,
              failing.dpRam +
                  ": Vesk.Modules.DPVM.Vt22FatalEventException: Fatal event reported by VT22 module\n");
    ModuleFiles::ExpectRightHost(*module);
    ModuleFiles::ExpectRightHost(*failingModule);
}

TEST_F(ApplicationTest, TheFaultLogSurvivesTheModule) {
    // Far behind the start-up, which takes some hundred interrupts with the download and ten without.
    const auto module = files.StartModule({"--fault", "reboot@400x1", "--fault", "fatal@600x1"});
    const std::string log = files.folder.Path("log");
    Process example(Path("fault_log"), On({PLANT, log}));
    ASSERT_TRUE(example.WaitForOut("running\nrunning\nrunning\n")) << example.Err();
    EXPECT_EQ(example.End(SIGTERM), 0);
    EXPECT_EQ(example.Err(), "");

    const std::string at = "20[0-9-]+T[0-9:]+Z Vesk\\.";
    const std::string reboot = "ModuleStateException: Unexpected poweron indication from module! PowerOn +\n";
    const std::string fatal =
        "Modules.DPVM.Vt22FatalEventException ErrorCode: 0x102 .* SourceFile: dpmaster.c +\n";
    EXPECT_THAT(TemporaryFolder::Read(log), MatchesRegex(at + reboot + at + fatal));
    ModuleFiles::ExpectRightHost(*module);
}

#ifdef VESK_WITH_SDBUS
TEST_F(ApplicationTest, APublishedPlantIsLookedAtWhileItRuns) {
    EXPECT_THAT(RunTool::Run({}, Path("published")).err, StartsWith("usage: published "));
    const PrivateBus bus;
    const auto module = files.StartModule({"--publish", "plant", "--bus", bus.Address()});
    Process example(Path("published"), On({PLANT, bus.Address()}));
    const auto asked = [&](RunTool::Arguments question) {
        return RunTool::Run(RunTool::Join(std::move(question), {"--plant", "plant", "--bus", bus.Address()}));
    };
    const auto waitForSlaves = [&](const std::string& state) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(2);
        while (asked({"status"}).out.find(state) == std::string::npos)
            ASSERT_LT(std::chrono::steady_clock::now(), end) << state << example.Err();
    };
    waitForSlaves("12 of 12 exchange data");
    const auto connection = sdbus::createSessionBusConnectionWithAddress(bus.Address());
    const auto model =
        sdbus::createProxy(*connection, "org.libvesk.VirtualModule.plant", "/org/libvesk/VirtualModule");
    for (std::uint8_t slave = 3; slave <= 4; ++slave) { // the second one's bytes are counted
        model->callMethod("RemoveSlave").onInterface("org.libvesk.VirtualModule1").withArguments(slave);
        waitForSlaves("Slave " + std::to_string(slave) + " does not exchange data");
        model->callMethod("InsertSlave").onInterface("org.libvesk.VirtualModule1").withArguments(slave);
        waitForSlaves("12 of 12 exchange data");
        EXPECT_THAT(asked({"output", "3"}).out, HasSubstr("03 e8 00 00")); // sent back
    }
    EXPECT_EQ(example.End(SIGTERM), 0) << example.Out();
    EXPECT_THAT(example.Out(), HasSubstr(", 0 mismatches;"));
    EXPECT_EQ(example.Err(), "");
    ModuleFiles::ExpectRightHost(*module);
}
#endif

} // namespace
