// SPDX-License-Identifier: MIT
// What hangs on a bus becomes a description that nothing can be said against, with the names of device
// description files; a module without slaves sees who is there as well.
#include "tests/support/ModuleFiles.h"
#include "tests/support/RunTool.h"

using testing::AllOf;
using testing::HasSubstr;

namespace {

struct ScanTest : testing::Test {
    std::string Do(const RunTool::Arguments& arguments, int status = 0) const {
        return RunTool::Text(files.With(arguments), status);
    }

    ModuleFiles files;
    std::string gsd = files.folder.Put("drive.gsd", TemporaryFolder::Read(SOURCE_DIR "/examples/drive.gsd"));
    std::string plant = files.folder.Path("plant.toml");
    std::string draft = files.folder.Path("draft.toml");
};

TEST_F(ScanTest, MakesATextThatTheBusIsCheckedAgainst) {
    const std::string bus = "[bus]\nrate = \"1.5M\"\nmaster = 3\nwatchdog = \"1 s\"\n";
    const std::string slaves =
        bus + "[[slave]]\naddress = 9\nident = 0x2a14\nidentifier-bytes = \"1f\"\n"
              "max-diagnosis = 32\n[[slave]]\nname = \"drive\"\naddress = 5\ngsd = \"drive.gsd\"\n"
              "modules = [\"4 words\", ";
    files.folder.Put("empty.toml", bus);
    files.folder.Put("plant.toml", slaves + "\"Encoder\"]\n");
    files.folder.Put("other.toml", slaves + "\"Parameter channel\"]\n");
    const auto module = files.StartModule();
    const RunTool::Arguments scan{"config", "scan", "--gsd", files.folder.Path(""), "-o", draft};
    RunTool::ExpectFailure(files.With(scan), 1, HasSubstr("The module holds no database"));
    Do({"download", files.folder.Path("empty.toml")});
    EXPECT_THAT(Do({"config", "scan", "--rate", "93.75k"}),
                AllOf(HasSubstr("rate = \"93.75k\"\nmaster = 3\n"), testing::Not(HasSubstr("[[slave]]"))));
    Do({"download", plant});
    RunTool::ExpectFailure(files.With(scan), 1, HasSubstr("name it with --rate"));

    EXPECT_EQ(Do(RunTool::Join(scan, {"--config", plant})), draft + ": 2 slaves\n");
    EXPECT_THAT(files.folder.Content("draft.toml"),
                AllOf(HasSubstr("address = 5\ngsd = \"drive.gsd\"\nmodules = [\"4 words\", \"Encoder\"]\n"),
                      HasSubstr("# \"drive.gsd\" has its ident number, and not these modules.\n"),
                      HasSubstr("address = 9\nident = 0x2a14\nidentifier-bytes = \"1f\"\n")));
    for (const std::string& text : {draft, plant})
        EXPECT_THAT(Do({"config", "check", text}), HasSubstr("All 2 slaves are there as described."));
    EXPECT_THAT(Do({"config", "check", files.folder.Path("other.toml")}, 3),
                HasSubstr("5 drive: its modules are \"4 words\", \"Encoder\", described are \"4 words\", "
                          "\"Parameter channel\"\n"));
    RunTool::ExpectFailure(files.With(scan), 1, HasSubstr("is there already"));
    ModuleFiles::ExpectRightHost(*module);
}

} // namespace
