// SPDX-License-Identifier: MIT
// What signals do to a command that talks to a module, and when careful work goes on.
#include "tools/vesk/text/Interruption.h"
#include "tests/support/ModuleFiles.h"
#include "tests/support/RunTool.h"
#include "tests/support/TestClock.h"

#include <sstream>

using testing::HasSubstr;
using testing::MatchesRegex;

namespace {

constexpr std::pair<int, const char*> SIGNALS[]{
    {SIGINT, "SIGINT"}, {SIGTERM, "SIGTERM"}, {SIGHUP, "SIGHUP"}, {SIGPIPE, "SIGPIPE"}};

TEST(InterruptionTest, WhatOnlyLooksLeavesTheModuleInReset) {
    const ModuleFiles files;
    const auto module = files.StartModule();
    RunTool::Text(files.With({"download", ModuleFiles::PLANT}));
    const std::pair<RunTool::Arguments, const char*> cases[]{
        {{"status", "--watch"}, "Everything"},
        {{"status", "--watch", "--json"}, "alive"},
        {{"run", "--cycles", "1000000000"}, "OPERATE"},
    };
    for (const auto& [signal, name] : SIGNALS)
        for (const auto& [arguments, running] : cases) {
            SCOPED_TRACE(arguments.front() + ", " + name);
            const auto host = files.Start(arguments);
            ASSERT_TRUE(host->WaitForOut(running)) << host->Err();
            EXPECT_EQ(host->End(signal), 128 + signal);
            EXPECT_THAT(host->Err(), MatchesRegex("vesk: stopped by " + std::string(name) +
                                                  " [^\n]*; the module is in reset\n"));
            EXPECT_EQ(TemporaryFolder::Read(files.lines)[1], 0) << "the level of the reset line";
        }
    EXPECT_EQ(module->Err(), "");
}

TEST(InterruptionTest, ADownloadGoesOnWithoutItsTerminal) {
    const ModuleFiles files;
    const auto module = files.StartModule();
    const auto host = files.Start({"download", ModuleFiles::PLANT});
    ASSERT_TRUE(module->WaitForOut("command DeleteDatabase"));
    for (const int signal : {SIGHUP, SIGPIPE, SIGINT})
        ::kill(host->Id(), signal);
    EXPECT_EQ(host->Wait(), 0);
    EXPECT_THAT(host->Err(),
                MatchesRegex("(vesk: stopping now would end it with [0-9]+ of 15 requests sent.*)?"));
    EXPECT_THAT(host->Out(), HasSubstr("Downloaded: "));
}

TEST(InterruptionTest, CarefulWorkStopsWhenItIsAskedTwice) {
    using namespace VeskTool;
    TestClock clock;
    WatchSignals();
    std::stringstream words;
    words.exceptions(std::ios::badbit);
    std::string left = "at 1.";
    const CarefulWork work({words, words, words}, [&] { return left; });
    EXPECT_EQ(words.exceptions(), std::ios::goodbit) << "output that cannot be written does not stop it";
    const auto stops = [](int signal) {
        std::raise(signal);
        try {
            StopIfSignalled([](int) { return "somewhere"; });
        } catch (const Interrupted& interrupted) {
            return interrupted.What();
        }
        return std::string();
    };
    for (const int signal : {SIGPIPE, SIGHUP, SIGTERM})
        EXPECT_EQ(stops(signal), "");
    clock.Advance(5'000'000'000);
    EXPECT_EQ(stops(SIGINT), "") << "that was long ago";
    clock.Advance(4'999'999'999);
    EXPECT_EQ(stops(SIGINT), "stopped by SIGINT at 1.");
    left = "";
    EXPECT_EQ(stops(SIGTERM), "stopped by SIGTERM somewhere") << "nothing was changed yet";
    const std::string warning =
        "vesk: stopping now would end it at 1.\n      It goes on; Ctrl-C again within 5 s stops it.\n";
    EXPECT_EQ(words.str(), warning + warning);
    WatchSignals(); // and what came is forgotten
    for (const auto& [signal, name] : SIGNALS)
        std::signal(signal, SIG_DFL);
}

} // namespace
