// SPDX-License-Identifier: MIT
// What the transcripts of the shell cannot show: time that passes, signals, and a terminal.
#include "tests/support/ModuleFiles.h"
#include "tests/support/RunTool.h"
#include "tests/support/TestClock.h"
#include "tools/vesk/session/OwnSession.h"
#include "tools/vesk/session/PlantFlash.h"
#include "tools/vesk/verbs/ProcessVerbs.h"

#include <sys/stat.h>

using namespace VeskTool;
using testing::AllOf;
using testing::HasSubstr;

namespace {

TEST(ShellTest, AWatchShowsWhatHasChanged) {
    TestClock clock;
    OwnSession session(InProcessLink(), nullptr);
    session.OnUpdate([&] { clock.Advance(1'000'000); });
    static const char* const DATA[]{"0a0b0c0d", "0a0b0c0d", "ff0bfffe", "ff0bff", "ff0bff00"};
    const Verb verb{Need::NOTHING,
                    [](Session&, const Json& arguments) {
                        static std::size_t round = 0;
                        return Json{{"data", DATA[round++]}, {"address", arguments["address"]}};
                    },
                    nullptr};
    std::string shown;
    WatchData(verb, session, {{"address", 5}}, 0.045, [&](const Json& facts) {
        EXPECT_EQ(facts["address"], 5);
        for (const bool colours : {false, true})
            shown += ChangedText(facts, Paint(colours)) + "\n";
    });
    EXPECT_EQ(shown, " 0a 0b 0c 0d\n 0a 0b 0c 0d\n"
                     "[ff]0b[ff fe]\n \033[31mff\033[0m 0b \033[31mff\033[0m \033[31mfe\033[0m\n"
                     " ff 0b ff\n ff 0b ff\n"
                     " ff 0b ff[00]\n ff 0b ff \033[31m00\033[0m\n");
}

/// Lines that never end: a pipe that this process holds open.
struct Shell {
    explicit Shell(const ModuleFiles& files, const std::string& options = "") {
        const std::string pipe = files.folder.Path("pipe");
        ::mkfifo(pipe.c_str(), 0600);
        const Process::Arguments script{"-c", "exec \"$0\" \"$@\" " + options + " <> " + pipe};
        const Process::Arguments shell{"shell", "--dpram", files.dpRam, "--lines", files.lines};
        process = std::make_unique<Process>(
            "/bin/sh", Process::Join(script, Process::Join(Process::WordsOf(VESK_TOOL), shell)));
        std::ofstream(pipe) << "identify\n";
    }

    std::unique_ptr<Process> process;
};

TEST(ShellTest, EndsWithTheLifeOfItsModule) {
    const ModuleFiles files;
    const auto module = files.StartModule({"--fault", "fatal@600x1"});
    const Shell shell(files, "--json --dumps " + files.folder.Path(""));
    EXPECT_EQ(shell.process->Wait(), 1);
    EXPECT_THAT(shell.process->Out(), AllOf(HasSubstr("{\"line\":1,\"command\":\"identify\","),
                                            HasSubstr("\n{\"error\":{"), HasSubstr("\"fatalEvent\":{")));
    EXPECT_THAT(shell.process->Err(), HasSubstr("The DPRAM is kept in "));
}

TEST(ShellTest, EndsBySignalFromAPipe) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        const ModuleFiles files;
        const auto module = files.StartModule();
        const Shell shell(files);
        ASSERT_TRUE(shell.process->WaitForOut("Bootloader")) << shell.process->Err();
        EXPECT_EQ(shell.process->End(signal), 128 + signal);
        EXPECT_THAT(shell.process->Err(), HasSubstr("; the module is in reset\n"));
        ModuleFiles::ExpectRightHost(*module);
    }
}

#ifdef VESK_WITH_LIBEDIT
TEST(ShellTest, GoesOnAtATerminalAndCompletesAndKeepsItsLines) {
    const ModuleFiles files;
    const auto module = files.StartModule({"--fault", "fatal@600x1"});
    ::setenv("XDG_STATE_HOME", files.folder.Path("").c_str(), 1);
    ::setenv("TERM", "xterm", 1);
    const ToolResult shell = RunTool::RunOnTerminal(files.With({"shell", "--dumps", files.folder.Path("")}),
                                                    "restart\nidenti\t\nquit\n", "The DPRAM is kept in ");
    EXPECT_EQ(shell.status, 0);
    EXPECT_THAT(shell.out, AllOf(HasSubstr("Another life has begun."), HasSubstr("\nSerial ")));
    EXPECT_EQ(files.folder.Content("vesk/history"), "_HiStOrY_V2_\nrestart\nidentify\\040\nquit\n");
}
#endif

} // namespace
