// SPDX-License-Identifier: MIT
// Every code block of README.md and docs/ is compared or executed. ```cpp is an excerpt of a file in
// examples/. Of any other block each line is a command, or what the command with "$ " above it prints.
#include "tests/support/ModuleFiles.h"
#include "tests/support/RunTool.h"

#include <regex>
#include <set>
#include <sstream>

using testing::HasSubstr;

namespace {

using Lines = std::vector<std::string>;

Lines Split(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

struct Block {
    std::string place; // of the fence
    std::string language;
    Lines lines;
};

std::vector<Block> BlocksOf(const std::string& page) {
    std::vector<Block> blocks;
    bool open = false;
    int number = 0;
    for (const std::string& line : Split(TemporaryFolder::Read(page))) {
        ++number;
        if (line.starts_with("```")) {
            open = !open;
            if (open)
                blocks.push_back({page + ":" + std::to_string(number), line.substr(3), {}});
        } else if (open) {
            blocks.back().lines.push_back(line);
        }
    }
    EXPECT_FALSE(open) << page << ": a block without an end";
    return blocks;
}

/// Whether the lines of the block stand in the file one behind the other, all indented alike.
bool IsExcerpt(const Lines& block, const Lines& file) {
    for (std::size_t start = 0; start + block.size() <= file.size(); ++start) {
        if (!file[start].ends_with(block[0]))
            continue;
        const std::string indent(file[start].size() - block[0].size(), ' ');
        const auto alike = [&indent](const std::string& shown, const std::string& line) {
            return line == (shown.empty() ? shown : indent + shown);
        };
        if (std::equal(block.begin(), block.end(), file.begin() + static_cast<std::ptrdiff_t>(start), alike))
            return true;
    }
    return false;
}

/// Runs the commands of one page in their order, in the source tree. A folder of their own takes the place of
/// /tmp, and a `vesk module` runs beside the commands that follow it.
class Commands {
public:
    /// The whole line of a block: a command, or several with commas between, and a remark behind two blanks.
    void RunLine(const std::string& line) {
        const std::string commands = line.substr(0, std::min(line.find("  "), line.find(" #")));
        std::string program;
        for (std::string command : Split(std::regex_replace(commands, std::regex(", "), "\n"))) {
            if (!std::regex_search(command, std::regex("^(vesk|od|[^ ]*/[^ ]*) ?")))
                command.insert(0, program + " ");
            program = command.substr(0, command.find(' '));
            if (program.starts_with("scripts/") || program == ".ci/run")
                ExpectScript(program, command.substr(program.size()));
            else
                Run(ForThisTest(command), command.starts_with("vesk module"));
        }
    }

    /// What the last command has printed.
    const std::string& Out() const { return _out; }

    ~Commands() { EndModule(); }

private:
    /// It builds this tree, so it cannot run in its test.
    static void ExpectScript(const std::string& script, const std::string& arguments) {
        EXPECT_EQ(::access(script.c_str(), X_OK), 0);
        std::istringstream words(arguments);
        for (std::string word; words >> word;)
            EXPECT_THAT(TemporaryFolder::Read(script), HasSubstr(word));
    }

    /// With the programs of this build, and with files for those of the reader and for /tmp.
    std::string ForThisTest(std::string command) const {
        const std::string plant = ModuleFiles::PLANT;
        for (const auto& [written, meant] : {std::pair<const char*, std::string>{"/tmp/", _folder.Path("")},
                                             {"FILE\\.ddb", plant},
                                             {"A B", plant + " " + plant},
                                             {"FILE\\.fw", ModuleFiles::FIRMWARE},
                                             {"^vesk", VESK_TOOL},
                                             {"^build/dev/examples", EXAMPLES}})
            command = std::regex_replace(command, std::regex(written), meant);
        return command;
    }

    void Run(const std::string& command, bool isModule) {
        if (isModule) {
            EndModule();
            const RunTool::Arguments arguments{"-c", "exec " + command + " --speed 10"};
            _module = std::make_unique<Process>("/bin/sh", arguments);
            EXPECT_TRUE(_module->WaitForOut("module ready on ")) << _module->Err();
            return;
        }
        const ToolResult result = RunTool::Run({"-c", command}, "/bin/sh");
        EXPECT_EQ(result.status, 0) << result.out << result.err;
        _out = result.out;
    }

    void EndModule() {
        if (!_module)
            return;
        EXPECT_EQ(_module->End(SIGTERM), 0);
        EXPECT_EQ(_module->Err(), "");
    }

    TemporaryFolder _folder;
    std::string _dump = _folder.Put("hostinterface.bin", std::string(0x2000, '\0')); // of an application
    std::unique_ptr<Process> _module;
    std::string _out;
};

class ListingsTest : public testing::Test {
protected:
    ListingsTest() { std::filesystem::current_path(SOURCE_DIR); }

    ~ListingsTest() override { std::filesystem::current_path(_folder); }

    static Lines Pages() {
        Lines pages{"README.md"};
        for (const auto& file : std::filesystem::directory_iterator("docs"))
            if (file.path().extension() == ".md")
                pages.push_back(file.path().string());
        return pages;
    }

    static void ExpectExcerpt(const Block& block) {
        for (const auto& file : std::filesystem::directory_iterator("examples"))
            if (file.is_regular_file() && IsExcerpt(block.lines, Split(TemporaryFolder::Read(file.path()))))
                return;
        ADD_FAILURE() << "no file of examples/ has these lines";
    }

    /// A block with "$ " before its commands has what they print below them.
    static void ExpectRuns(const Block& block, Commands& commands) {
        std::string printed;
        const bool withOutput = block.lines[0].starts_with("$ ");
        for (const std::string& line : block.lines) {
            if (withOutput && !line.starts_with("$ ")) {
                printed += line + "\n";
                continue;
            }
            SCOPED_TRACE(line);
            EXPECT_TRUE(printed.empty() || printed == commands.Out()) << printed;
            printed.clear();
            commands.RunLine(withOutput ? line.substr(2) : line);
        }
        EXPECT_TRUE(printed.empty() || printed == commands.Out()) << printed << "instead of\n"
                                                                  << commands.Out();
    }

private:
    std::filesystem::path _folder = std::filesystem::current_path();
};

TEST_F(ListingsTest, AreComparedOrExecuted) {
    // What is neither listing nor command, by its first line.
    std::set<std::string> others{
        "First life", // see below
        "system ← core ← hostinterface ← handshake, io, mailbox ← modules ← modules/bootloader, "
        "modules/dpvm/config",
        "POWER_OFF → POWER_ON → BOOTED → DOWNLOADING → DOWNLOAD_COMPLETE → INITIALIZING → INITIALIZED",
        "&external_bus {",
    };
    for (const std::string& page : Pages()) {
        Commands commands;
        for (const Block& block : BlocksOf(page)) {
            SCOPED_TRACE(block.place);
            ASSERT_FALSE(block.lines.empty());
            if (block.language == "cpp")
                ExpectExcerpt(block);
            else if (others.erase(block.lines[0]) == 0)
                ExpectRuns(block, commands);
        }
    }
    EXPECT_THAT(others, testing::IsEmpty());
}

TEST_F(ListingsTest, TheDemoPrintsWhatTheReadmeShows) {
    const auto number = std::regex("[0-9]+\\.[0-9] ms");
    const Lines printed = Split(RunTool::Run({"run", "examples/plant.ddb"}).out);
    std::set<std::string> without; // their numbers
    for (const std::string& line : printed)
        without.insert(std::regex_replace(line, number, "ms"));
    const auto blocks = BlocksOf("README.md");
    const auto shown = std::find_if(blocks.begin(), blocks.end(),
                                    [](const Block& block) { return block.lines[0] == "First life"; });
    ASSERT_NE(shown, blocks.end());
    for (const std::string& line : shown->lines)
        if (line != "  ...")
            EXPECT_THAT(without, testing::Contains(std::regex_replace(line, number, "ms")));
}

} // namespace
