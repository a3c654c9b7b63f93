// SPDX-License-Identifier: MIT
#include "tests/support/ModuleFiles.h"
#include "tests/support/RunTool.h"
#include "vesk/lines/LinesFile.h"
#include "vesk/modules/dpvm/DPVMMessages.h"
#include "vesk/modules/dpvm/config/DdbParser.h"
#include "virtualmodule/faults/Faults.h"
#include "virtualmodule/flash/Flash.h"

#include <array>

namespace {

namespace DPVM = Vesk::Modules::DPVM;

using testing::EndsWith;
using testing::HasSubstr;
using VirtualModule::Flash;

const RunTool::Arguments ALONE{"run", ModuleFiles::PLANT, "--cycles", "20", "--json"};
const RunTool::Arguments UPDATE{"flash", ModuleFiles::FIRMWARE, "--yes"};

struct TwoProcessesTest : testing::Test {
    /// What the report of `vesk run --json` says whichever module it was and however fast it went.
    static nlohmann::json Facts(const std::string& report) {
        nlohmann::json facts = nlohmann::json::parse(report);
        facts.erase("link");
        facts["exchange"].erase("milliseconds");
        for (const char* life : {"firstLife", "secondLife"})
            for (auto& state : facts[life]["states"])
                state.erase("milliseconds");
        return facts;
    }

    /// A host that comes now does its whole job.
    void ExpectRecovery() const {
        const auto host = files.StartHost();
        EXPECT_EQ(host->Wait(), 0) << host->Out() << host->Err();
        EXPECT_THAT(host->Out(), HasSubstr("\nAll held: 12 slaves, 20 cycles, 0 mismatches, 2 lives.\n"));
        EXPECT_EQ(host->Err(), "");
    }

    /// What was answered to a host that traces its mailbox, from the start of a download, is in the flash.
    void ExpectKept(const Process& host) const {
        const auto plant = DPVM::Config::DdbParser::FromPath(ModuleFiles::PLANT);
        const VirtualModule::Database database = Flash::Load(files.flash).database;
        std::vector<bool> kept{true, true, true}; // GetDatabaseInfo, StartDatabaseDownload, DeleteDatabase
        kept.push_back(!database.master.empty());
        for (int i = 0; i < plant->SlaveAddresses()->Count(); ++i) {
            const unsigned char slave = plant->SlaveAddresses()->Get(i);
            const int fragments =
                DPVM::DPVMMessages::SlaveRecordDownload(slave, plant->Slave(slave))->Count();
            kept.insert(kept.end(), static_cast<std::size_t>(fragments - 1), true); // its record is not whole
            kept.push_back(database.slaves.contains(slave));
        }
        kept.push_back(database.Complete());
        const std::string trace = host.Err();
        std::size_t answer = 0;
        for (auto at = trace.find(ANSWER); at != std::string::npos && answer < kept.size(); ++answer) {
            EXPECT_TRUE(kept[answer]) << "answer " << answer + 1;
            at = trace.find(ANSWER, at + 1);
        }
    }

    static constexpr const char* ANSWER = "received mailbox:";

    ModuleFiles files;
};

TEST_F(TwoProcessesTest, AWholeLifeIsThatOfOneProcess) {
    const auto alone = RunTool::Run(ALONE);
    ASSERT_EQ(alone.status, 0) << alone.err;
    EXPECT_EQ(alone.err, "vesk: no --dpram, so a virtual module in this process serves\n");
    const auto module = files.StartModule();
    const auto host = files.StartHost(20, {"--json"});
    ASSERT_EQ(host->Wait(), 0) << host->Err();
    EXPECT_EQ(Facts(host->Out()), Facts(alone.out));
    EXPECT_EQ(host->Err(), "");
    ModuleFiles::ExpectRightHost(*module);

    const auto next = files.StartModule();
    const auto again = files.StartHost(20, {"--json"});
    ASSERT_EQ(again->Wait(), 0) << again->Err();
    EXPECT_EQ(Facts(again->Out())["firstLife"], Facts(alone.out)["secondLife"])
        << "the flash lasted: no download";
    EXPECT_EQ(next->End(SIGINT), 0);
    EXPECT_THAT(next->Out(), Not(HasSubstr("flash saved")));
}

// What the module logs at moments all over a life, up to the exchange of process data, which does not end.
constexpr const char* MOMENTS[]{"boots as the master",
                                "command GetDatabaseInfo",
                                "command DeleteDatabase",
                                "command SlaveRecord",
                                "request 16:",
                                "command EndDatabase",
                                "held in reset",
                                "command StartInit",
                                "command VelmoInit",
                                "  online",
                                "command SetOperation",
                                "velmoIndication 0x03"};
constexpr int ENDLESS = 1'000'000'000;

TEST_F(TwoProcessesTest, ANewHostRecoversAfterEitherWasKilled) {
    for (const char* moment : MOMENTS)
        for (const bool killModule : {true, false}) {
            SCOPED_TRACE(moment + std::string(killModule ? ", both killed" : ", the host killed"));
            std::filesystem::remove(files.flash);
            auto module = files.StartModule();
            const auto host = files.StartHost(ENDLESS);
            ASSERT_TRUE(module->WaitForOut(moment));
            if (killModule) {
                EXPECT_EQ(module->End(SIGKILL), -SIGKILL);
                EXPECT_NO_THROW(Flash::Load(files.flash));
                module = files.StartModule();
            }
            host->End(SIGKILL);
            ExpectRecovery();
            EXPECT_EQ(module->End(SIGTERM), 0);
            EXPECT_TRUE(killModule || module->Err().empty()) << "a new host resets: " << module->Err();
            EXPECT_NO_THROW(Flash::Load(files.flash));
        }
}

TEST_F(TwoProcessesTest, TheFlashHoldsWhatWasAnsweredAndIsNeverHalfWritten) {
    // Each request of a download from the third to the last changes the flash, right after its line.
    for (int request = 2; request <= 19; ++request) {
        SCOPED_TRACE(request);
        std::filesystem::remove(files.flash);
        const auto module = files.StartModule();
        const auto host = files.StartHost(20, {"--trace", "mailbox"});
        ASSERT_TRUE(module->WaitForOut("request " + std::to_string(request) + ": ")) << host->Err();
        module->End(SIGKILL);
        host->End(SIGKILL);
        ExpectKept(*host);
    }
    files.folder.Put("flash.new", "what a save that was cut off may leave");
    const auto module = files.StartModule();
    EXPECT_EQ(files.folder.Count(), 4) << "the DPRAM, the lines, the flash and its lock";
    ExpectRecovery();
    EXPECT_TRUE(Flash::Load(files.flash).database.Complete());
}

TEST_F(TwoProcessesTest, NothingIsAnsweredBeforeItIsInTheFlash) {
    const auto module = files.StartModule();
    std::filesystem::create_directory(files.flash + Flash::UNFINISHED); // from now on it cannot be saved
    const auto host = files.StartHost();
    EXPECT_EQ(module->Wait(), 1);
    EXPECT_THAT(module->Err(), HasSubstr(files.flash + Flash::UNFINISHED + ": File exists\n"));
    EXPECT_EQ(host->Wait(), 1);
    EXPECT_THAT(host->Err(), HasSubstr("Mailbox.Request: DeleteDatabase;")) << "the first one that writes";
}

TEST_F(TwoProcessesTest, AFirmwareUpdateThatWasCutOffIsRunAgain) {
    auto module = files.StartModule({"--fault", "firmware-silent@10"}); // goes no further before it is killed
    const auto host = files.Start(UPDATE);
    ASSERT_TRUE(module->WaitForOut("request 10:"));
    module->End(SIGKILL);
    host->End(SIGKILL);
    EXPECT_FALSE(Flash::Load(files.flash).application.valid);

    module = files.StartModule();
    EXPECT_THAT(RunTool::Text(files.With(UPDATE)), HasSubstr("The module runs firmware 1.5.0"));
    ModuleFiles::ExpectRightHost(*module);
    EXPECT_TRUE(Flash::Load(files.flash).application.valid);
}

TEST_F(TwoProcessesTest, WhatTheHostBreaksIsReportedAtOnceAndCountedAtTheEnd) {
    const auto module = files.StartModule();
    const auto lines = LinesFile::Open(files.lines);
    lines->BootloaderEnable_n()->Invoke(true);
    lines->Reset_n()->Invoke(true);
    ASSERT_TRUE(module->WaitForOut("velmoIndication 0x10 powerOn"));
    const int dpRam = ::open(files.dpRam.c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_EQ(::pwrite(dpRam, "\x80", 1, 0x1FFA), 1) << "a reserved bit, and nobody has read the line";
    EXPECT_EQ(::pwrite(dpRam, "\x80", 1, 0x1FFC), 1);
    ::close(dpRam);
    EXPECT_TRUE(module->WaitForErr("vesk: violation: host register written without an interrupt"));
    EXPECT_TRUE(module->WaitForErr("vesk: violation: reserved bit written: 0x80\n"));
    EXPECT_EQ(module->End(SIGINT), 0);
    EXPECT_THAT(module->Err(), EndsWith("\nvesk: the host broke the protocol 2 times\n"));
}

TEST_F(TwoProcessesTest, FaultsStrikeOnRequest) {
    // The second boot follows the download, the third is that of the second host.
    const auto module = files.StartModule({"--fault", "boot-empty@2x1", "--fault",
                                           "wrong-vendor-id@3x1=0x1234", "--fault", "firmware-error@10"});
    const std::pair<RunTool::Arguments, const char*> cases[]{
        {ALONE, "Empty indication at bootup!"}, {ALONE, "Unexpected vendor id!"}, {UPDATE, " was refused"}};
    for (const auto& [command, error] : cases) {
        const auto host = files.Start(command);
        EXPECT_EQ(host->Wait(), 1);
        EXPECT_THAT(host->Err(), HasSubstr(error));
    }
    const std::string list = RunTool::Text({"module", "--faults"});
    for (const auto& kind : VirtualModule::Faults())
        EXPECT_THAT(list, testing::ContainsRegex("\n" + std::string(kind.name) + "[ [].*" +
                                                 std::string(Name(kind.counts)) + " "));
}

TEST_F(TwoProcessesTest, ASlaveThatIsOffTheBusIsNamed) {
    const auto module = files.StartModule({"--absent", "9", "--absent", "20"});
    RunTool::Text(files.With({"download", ModuleFiles::PLANT}));
    EXPECT_THAT(RunTool::Json(files.With({"status"}), 3)["problem"],
                HasFacts(R"({"step": "slaves", "what": "Slave 9 does not exchange data"})"));
    const auto host = files.StartHost();
    EXPECT_EQ(host->Wait(), 1);
    EXPECT_THAT(host->Err(),
                HasSubstr("vesk: Slaves 9, 20 do not exchange data; slave 9: it does not answer"));
    EXPECT_EQ(RunTool::Text(files.With({"stop", "9"})),
              "Slave 9 is stopped; it exchanged no data before either\n");
    EXPECT_THAT(RunTool::Text(files.With({"start", "9"}), 3),
                HasSubstr("Slave 9 was started, but does not exchange data: it does not answer"));
}

TEST_F(TwoProcessesTest, WhatIsInUseStaysWithWhoHasIt) {
    const auto module = files.StartModule();
    {
        const auto lines = LinesFile::Open(files.lines);
        std::ifstream(files.lines).get(); // closing the file elsewhere in the process changes nothing
        RunTool::ExpectFailure(
            files.With({"identify"}), 1,
            HasSubstr(files.lines + " is in use by process " + std::to_string(::getpid())));
        EXPECT_THROW(LinesFile::Open(files.lines), InUse);
    }
    const auto host = files.StartHost(ENDLESS);
    ASSERT_TRUE(module->WaitForOut("velmoIndication 0x03"));
    const TemporaryFolder other;
    const auto moduleOn = [&](const std::string& dpRam, const std::string& lines, const std::string& flash) {
        return RunTool::Arguments{"module", "--dpram", dpRam, "--lines", lines, "--flash", flash};
    };

    const struct {
        RunTool::Arguments arguments;
        std::string taken;
        const Process& user;
    } cases[]{
        {files.With({"diag", "5"}), files.lines, *host},
        {files.With({"status", "--watch"}), files.lines, *host},
        {files.With({"run"}), files.lines, *host},
        {files.With(UPDATE), files.lines, *host},
        {moduleOn(files.dpRam, other.Path("lines"), other.Path("flash")), files.dpRam, *module},
        {moduleOn(other.Path("dpram"), files.lines, other.Path("flash")), files.lines, *module},
        {moduleOn(other.Path("dpram"), other.Path("lines"), files.flash), files.flash, *module},
    };

    for (const auto& [arguments, taken, user] : cases)
        RunTool::ExpectFailure(
            arguments, 1,
            HasSubstr("vesk: " + taken + " is in use by process " + std::to_string(user.Id()) + " ("));
    for (const char* layout : {"--json", "--bootloader"})
        EXPECT_THAT(RunTool::Text({"dump", "--dpram", files.dpRam, layout}),
                    AllOf(testing::ContainsRegex("[sS]napshot"), Not(HasSubstr("applicationIndication"))));
    EXPECT_EQ(host->End(SIGKILL), -SIGKILL) << "it has noticed nothing: " << host->Err();
    EXPECT_THAT(RunTool::Run(files.With({"run", ModuleFiles::PLANT, "--offset", "1"})).err,
                HasSubstr("8193"));
    ExpectRecovery();
    EXPECT_EQ(module->Err(), "");
}

} // namespace
