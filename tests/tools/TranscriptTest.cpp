// SPDX-License-Identifier: MIT
// What the commands print, as a person sees it: tests/data/transcripts. There a line behind "$ " is a command
// for a shell; below it stands what it prints, errors behind "! ", and its exit status behind "= " if that is
// not 0. VESK_WRITE_DATA=1 writes the files anew, for a look at what has changed.
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/Golden.h"
#include "tests/support/RunTool.h"

#include <regex>

namespace {

using Builder = DatabaseFileBuilder;

constexpr const char* FOLDER = SOURCE_DIR "/tests/data/transcripts";

/// Every file of it.
std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const auto& file : std::filesystem::directory_iterator(FOLDER))
        names.push_back(file.path().stem().string());
    return names;
}

/// The commands of a file, each in a shell of its own, all in one folder with files to work with.
class TranscriptTest : public testing::TestWithParam<std::string> {
protected:
    TranscriptTest() {
        for (const char* const name : {"plant.ddb", "plant.toml"})
            std::filesystem::copy_file(SOURCE_DIR "/examples/" + std::string(name), _folder.Path(name));
        std::filesystem::copy(SOURCE_DIR "/tests/data/gsd", _folder.Path("gsd"));
        std::filesystem::copy_file(SOURCE_DIR "/examples/drive.gsd", _folder.Path("gsd/drive.gsd"));
        std::filesystem::copy_file(SOURCE_DIR "/examples/firmware/vt22-1.5.0.fw", _folder.Path("vt22.fw"));
        const std::pair<int, Builder::SlaveContent> slave40{40,
                                                            {{0, 1}, {7}, {0x80, 0x00, 0x0F}, {0xC0, 0x01}}};
        const std::pair<int, Builder::SlaveContent> slave41{41, {{2}, {}, {0x00, 0x00, 0x00}, {0x20}}};
        auto changed = slave40;
        changed.second.parameters = {0x80, 0x00, 0x1F};
        Put("two.ddb", 1, {slave40, slave41});
        Put("changed.ddb", 2, {changed, {42, slave41.second}});
        Put("reversed.ddb", 1, {slave41, slave40});
    }

    void Put(const std::string& name, int master,
             const std::vector<std::pair<int, Builder::SlaveContent>>& slaves) {
        Builder builder;
        builder.Master(Builder::MasterRecord(master));
        for (const auto& [address, content] : slaves)
            builder.Slave(address, Builder::SlaveRecord(content));
        _folder.Put(name, builder.Content());
    }

    /// What the command shows; times are those of the machine, and that a virtual module serves is not news.
    std::string Run(const std::string& command) const {
        std::string program;
        for (const std::string& word : Process::WordsOf(VESK_TOOL))
            program += "'" + word + "' ";
        const ToolResult result =
            RunTool::Run({"-c", "cd " + _folder.Path("") + "; vesk() { " + program + "\"$@\"; }\n" +
                                    // put FILE OFFSET BYTE...: replaces bytes, which are hexadecimal digits
                                    "put() { file=$1 at=$2; shift 2; for byte; do printf \"\\\\$(printf %03o "
                                    "0x$byte)\"; done |\n"
                                    "    dd of=$file bs=1 seek=$(($at)) conv=notrunc status=none; }\n" +
                                    command},
                         "/bin/sh");
        std::string shown = result.out;
        if (!shown.empty() && shown.back() != '\n')
            shown += '\n';
        std::istringstream errors(result.err);
        for (std::string line; std::getline(errors, line);)
            if (!line.starts_with("vesk: no --dpram, so a virtual module in this process serves"))
                shown += "! " + line + "\n";
        if (result.status == 1 && result.err.starts_with("vesk: ") &&
            result.err.find("vesk: standard output: ") == std::string::npos)
            EXPECT_THAT(result.err, testing::AllOf(testing::ContainsRegex("vesk: [^\n]*\n      [A-Z]"),
                                                   testing::Not(testing::HasSubstr("the message says why"))))
                << command;
        if (result.status != 0)
            shown += "= " + std::to_string(result.status) + "\n";
        return std::regex_replace(shown, std::regex("[0-9]+\\.[0-9] (ms|s|KiB/s)"), "# $1");
    }

    TemporaryFolder _folder;
};

TEST_P(TranscriptTest, IsWhatTheCommandsPrint) {
    std::string shown;
    std::istringstream lines(TemporaryFolder::Read(FOLDER + ("/" + GetParam() + ".txt")));
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("$ "))
            shown += line + "\n" + Run(line.substr(2));
        else if (line.starts_with("# ")) // a heading
            shown += (shown.empty() ? "" : "\n") + line + "\n";
    ExpectGolden("transcripts/" + GetParam() + ".txt", shown);
}

INSTANTIATE_TEST_SUITE_P(Each, TranscriptTest, testing::ValuesIn(Names()),
                         [](const auto& test) { return test.param; });

} // namespace
