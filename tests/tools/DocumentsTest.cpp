// SPDX-License-Identifier: MIT
#include "tests/support/RunTool.h"

#include "tools/vesk/Commands.h"
#include "vesk/Vesk.h"
#include "virtualmodule/faults/Faults.h"

#include <regex>

using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

namespace {

/// What the program makes: the man page and the completions from its help, docs/faults.md from its faults.
class DocumentsTest : public testing::Test {
protected:
    /// The path of the generated document.
    std::string Generate(const std::string& document) {
        return _folder.Put("vesk." + document, RunTool::Text({"generate", document}));
    }

    static ToolResult Shell(const std::string& script) { return RunTool::Run({"-c", script}, "/bin/sh"); }

    static bool Installed(const std::string& program) { return Shell("command -v " + program).status == 0; }

    TemporaryFolder _folder;
};

TEST_F(DocumentsTest, ManPageHasEveryCommandAndNoFault) {
    const std::string page = Generate("man");
    const std::string text = _folder.Content("vesk.man");
    EXPECT_TRUE(text.starts_with(".TH VESK 1 \"\" \"vesk " + std::string(Vesk::Version()) + "\"\n"));
    for (const VeskTool::Command& command : VeskTool::Commands()) {
        if (command.group.empty() || !command.add)
            continue;
        const std::string name = std::regex_replace(command.name, std::regex("-"), R"(\-)");
        EXPECT_THAT(text,
                    AnyOf(HasSubstr("\n.SS vesk " + name + " "), HasSubstr("\n.SS vesk " + name + "\n")));
    }
    EXPECT_THAT(text, Not(HasSubstr("generate")));
    if (Installed("groff")) {
        const auto groff = Shell("groff -man -ww -Tascii " + page);
        EXPECT_EQ(groff.status, 0);
        EXPECT_EQ(groff.err, "");
        EXPECT_THAT(groff.out, HasSubstr("Wrong usage."));
    }
    if (Installed("mandoc"))
        EXPECT_EQ(Shell("mandoc -T lint -W error " + page).status, 0);
}

TEST_F(DocumentsTest, OtherShellsAcceptTheirs) {
    const std::string zsh = Generate("zsh");
    if (Installed("zsh"))
        EXPECT_EQ(Shell("zsh -n " + zsh).err, "");
    const std::string fish = Generate("fish");
    if (Installed("fish")) {
        const std::string home = "HOME=" + _folder.Path("") + " ";
        const auto offered = Shell(home + "fish -c 'source " + fish + "; complete -C \"vesk config d\"'");
        EXPECT_EQ(offered.err, "");
        EXPECT_TRUE(offered.out.starts_with("diff\t")) << offered.out;
    }
}

TEST_F(DocumentsTest, FaultsPageIsUpToDate) {
    Generate("faults");
    const std::string page = _folder.Content("vesk.faults");
    EXPECT_EQ(TemporaryFolder::Read(SOURCE_DIR "/docs/faults.md"), page)
        << "to bring it up to date: vesk generate faults > docs/faults.md";
    EXPECT_THAT(page,
                HasSubstr("| `Vesk.StartupException`<br>`Timeout waiting for initial IRQ` | The module was "
                          "let out of reset and did not report: "));
    EXPECT_THAT(page, HasSubstr("`boot-silent`, `boot-late=2500`; at times `dead` |\n"));
    for (const VirtualModule::FaultKind& kind : VirtualModule::Faults())
        EXPECT_THAT(page, HasSubstr("`" + std::string(kind.name)));
}

TEST_F(DocumentsTest, VersionIsThatOfTheLibrary) {
    EXPECT_TRUE(std::regex_match(Vesk::Version(), std::regex("2\\.[0-9]+\\.[0-9]+")));
    EXPECT_EQ(RunTool::Text({"--version"}), "vesk " + std::string(Vesk::Version()) + "\n");
}

} // namespace
