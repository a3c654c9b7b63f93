// SPDX-License-Identifier: MIT
// What holds for every command, whatever it does.
#include "tools/vesk/Commands.h"
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ModuleFiles.h"
#include "tests/support/RunTool.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using Arguments = RunTool::Arguments;

namespace {

Arguments Words(const std::string& text) {
    return CLI::detail::split(text, ' ');
}

TEST(CommandsTest, EachSaysWhatItDoesAndHow) {
    const std::string all = RunTool::Text({"--help"});
    const Arguments withoutJson{"config",         "firmware",         "gsd",     "flash",
                                "module",         "config decompile", "monitor", "config header",
                                "firmware build", "generate"};
    for (const auto& [name, group, text, add, failed, alone] : VeskTool::Commands()) {
        SCOPED_TRACE(name);
        const std::string help = RunTool::Text(RunTool::Join(Words(name), {"--help"}));
        EXPECT_TRUE(help.starts_with(text + "\n")) << help;
        EXPECT_EQ(help.find("  --json ") == std::string::npos,
                  testing::Value(name, testing::AnyOfArray(withoutJson)));
        if (add && !group.empty())
            EXPECT_THAT(text, MatchesRegex("([A-Z].*\\.\n)+(Example: vesk .*)+"));
        if (name.find(' ') == std::string::npos)
            EXPECT_EQ(all.find("\n  " + name + " ") == std::string::npos, group.empty());
        EXPECT_THAT(all, HasSubstr("\n" + group));
    }
}

/// A file that is not what it should be is named in one line, as an error of the file and not of its use, and
/// nothing is touched.
TEST(CommandsTest, EachNamesAFileThatItCannotUse) {
    const TemporaryFolder folder;
    const std::string plant = TemporaryFolder::Read(ModuleFiles::PLANT);
    const std::string firmware = TemporaryFolder::Read(ModuleFiles::FIRMWARE);
    const auto slave = DatabaseFileBuilder::SlaveRecord({{0}, {0}});
    const Arguments useless{folder.Path("missing"), folder.Path(""), "/dev/zero", folder.Put("empty", "")};
    const Arguments databases{folder.Put("cut", plant.substr(0, 500)),
                              folder.Put("shorter", plant.substr(0, plant.size() - 288)),
                              folder.Put("checksum", "0" + plant.substr(1)),
                              folder.Put("masterless", DatabaseFileBuilder().Slave(3, slave).Content())};
    const Arguments programs{folder.Put("header", firmware.substr(0, 127)),
                             folder.Put("program", firmware.substr(0, 200))};
    const Arguments dumps{folder.Put("short", std::string(8191, 'x')),
                          folder.Put("long", std::string(8193, 'x'))};
    const std::string build = " -o " + folder.Path("new") + " --type application --module-id 1 --address 0";
    const std::string good = " " + std::string(ModuleFiles::PLANT);

    const struct {
        std::string before, after;
        Arguments files; // besides the useless ones
    } CASES[] = {
        {"run", "", databases},
        {"download", "", databases},
        {"verify", "", databases},
        {"status --config", "", databases},
        {"slaves --config", "", databases},
        {"config check", "", databases},
        {"set 5 00 --config", "", databases},
        {"config show", "", databases},
        {"config diff", good, databases},
        {"config diff" + good, "", databases},
        {"firmware show", "", programs},
        {"firmware build", build, {}},
        {"flash", " --yes --virtual", programs},
        {"gsd show", "", {}},
        {"dump", "", dumps},
    };

    for (const auto& [before, after, files] : CASES)
        for (const std::string& file : RunTool::Join(useless, files)) {
            const int status = before.starts_with("config diff") ? 2 : 1; // as diff has it
            const Arguments arguments = Words(before + " " + file + after);
            RunTool::ExpectFailure(arguments, status,
                                   MatchesRegex("(vesk: no --dpram.*serves\n)?vesk: [^\n]*" + file +
                                                "[^\n]*\n(      [^\n]*\n)*"));
            if (before == "dump" || before == "run")
                EXPECT_THAT(RunTool::Json(arguments, 1)["error"]["message"].get<std::string>(),
                            HasSubstr(file));
        }
    EXPECT_FALSE(std::filesystem::exists(folder.Path("new")));
}

TEST(CommandsTest, ColourOnATerminalOnly) {
    EXPECT_THAT(RunTool::RunOnTerminal({"status"}, "").out, HasSubstr("\033[32mok"));
    ::setenv("NO_COLOR", "1", 1);
    EXPECT_THAT(RunTool::RunOnTerminal({"status"}, "").out, AllOf(HasSubstr("ok "), Not(HasSubstr("\033"))));
    ::unsetenv("NO_COLOR");
    const char* const update = SOURCE_DIR "/examples/firmware/vt22-1.5.0.fw";
    ::setenv("TERM", "dumb", 1); // which can do nothing but write line after line
    const std::pair<Arguments, const char*> plain[]{{{"status"}, "ok "},
                                                    {{"flash", update, "--yes", "--virtual"}, "100 %"}};
    for (const auto& [arguments, shown] : plain)
        EXPECT_THAT(RunTool::RunOnTerminal(arguments, "").out,
                    AllOf(HasSubstr(shown), Not(testing::ContainsRegex("\033|\r[^\n]"))));
    ::setenv("TERM", "vt100", 1);
    EXPECT_THAT(RunTool::RunOnTerminal({"run", "--cycles", "1001"}, "").out,
                HasSubstr("\r[##########] 1001/1001 cycles, 0.0 s left\033[K"));
    EXPECT_THAT(RunTool::Text({"run", "--cycles", "1001"}), HasSubstr("\n   50 %  501/1001 cycles, "));
}

#ifndef TEST_EMULATOR // the script starts the program itself
TEST(CommandsTest, MakeTheFirmwareOfTheExamples) {
    const TemporaryFolder folder;
    const auto result = RunTool::Run({VESK_TOOL, folder.Path("out")}, SOURCE_DIR "/examples/firmware/make");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(folder.Content("out"), TemporaryFolder::Read(ModuleFiles::FIRMWARE));
}
#endif

} // namespace
