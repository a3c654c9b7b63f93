// SPDX-License-Identifier: MIT
// The code blocks of README.md and docs/ are compared or executed. ```cpp is an excerpt of a file in
// examples/. Of a block without a language each line is a command, or what the command with "$ " above it
// prints.
#include "tests/support/ModuleFiles.h"
#include "tests/support/RunTool.h"

#include <regex>
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
    std::string language;
    Lines lines;
};

std::vector<Block> BlocksOf(const std::string& page) {
    const std::string text = TemporaryFolder::Read(page);
    const std::string fence = "\n```";
    std::vector<Block> blocks;
    for (auto at = text.find(fence); at != text.npos; at = text.find(fence, at + 1)) {
        const auto start = text.find('\n', at + 1);
        const auto end = text.find(fence, start);
        blocks.push_back({text.substr(at + 4, start - at - 4), Split(text.substr(start + 1, end - start))});
        at = end;
    }
    return blocks;
}

/// The lines without their indentation, each between line feeds.
std::string Flush(const Lines& lines) {
    std::string text = "\n";
    for (const std::string& line : lines)
        text += line.substr(std::min(line.find_first_not_of(' '), line.size())) + "\n";
    return text;
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
        EXPECT_EQ(::access((SOURCE_DIR "/" + script).c_str(), X_OK), 0);
        std::istringstream words(arguments);
        for (std::string word; words >> word;)
            EXPECT_THAT(TemporaryFolder::Read(SOURCE_DIR "/" + script), HasSubstr(word));
    }

    /// With the programs of this build, and with files for those of the reader and for /tmp; without the
    /// right to a priority and the seconds that a run with one takes.
    std::string ForThisTest(std::string command) const {
        const std::string plant = ModuleFiles::PLANT;
        for (const auto& [written, meant] : {std::pair<const char*, std::string>{"/tmp/", _folder.Path("")},
                                             {"FILE\\.ddb", plant},
                                             {"FILE\\.toml", SOURCE_DIR "/examples/plant.toml"},
                                             {"A B", plant + " " + plant},
                                             {"--rt 80 --cycles 10000", "--cycles 100"},
                                             {"FILE\\.gsd", SOURCE_DIR "/examples/drive.gsd"},
                                             {"FILE\\.fw", ModuleFiles::FIRMWARE},
                                             {"^vesk", VESK_TOOL},
                                             {"^build/dev/examples", EXAMPLES}})
            command = std::regex_replace(command, std::regex(written), meant);
        return command;
    }

    void Run(const std::string& command, bool isModule) {
        if (isModule) {
            EndModule();
            const std::string script = "cd " SOURCE_DIR "; exec " + command + " --speed 10";
            _module = std::make_unique<Process>("/bin/sh", RunTool::Arguments{"-c", script});
            EXPECT_TRUE(_module->WaitForOut("module ready on ")) << _module->Err();
            return;
        }
        const ToolResult result = RunTool::Run({"-c", "cd " SOURCE_DIR "; " + command}, "/bin/sh");
        EXPECT_EQ(result.status, 0) << result.out << result.err;
        _out = result.out;
    }

    void EndModule() {
        if (_module)
            ModuleFiles::ExpectRightHost(*_module);
    }

    TemporaryFolder _folder;
    std::string _dump = _folder.Put("hostinterface.bin", std::string(0x2000, '\0')); // of an application
    std::unique_ptr<Process> _module;
    std::string _out;
};

void ExpectExcerpt(const Block& block) {
    std::string examples;
    for (const auto& file : std::filesystem::directory_iterator(SOURCE_DIR "/examples"))
        if (file.is_regular_file())
            examples += Flush(Split(TemporaryFolder::Read(file.path())));
    EXPECT_THAT(examples, HasSubstr(Flush(block.lines)));
}

/// A block with "$ " before its commands has what they print below them.
void ExpectRuns(const Block& block, Commands& commands) {
    const bool withOutput = block.lines[0].starts_with("$ ");
    for (std::size_t i = 0; i < block.lines.size();) {
        const std::string& line = block.lines[i++];
        SCOPED_TRACE(line);
        commands.RunLine(withOutput ? line.substr(2) : line);
        std::string printed;
        while (withOutput && i < block.lines.size() && !block.lines[i].starts_with("$ "))
            printed += block.lines[i++] + "\n";
        if (!printed.empty())
            EXPECT_EQ(commands.Out(), printed);
    }
}

/// The demonstration, without the times in it.
void ExpectDemo(const Block& block) {
    const auto withoutTimes = [](const std::string& text) {
        return std::regex_replace(text, std::regex("[0-9]+\\.[0-9] ms"), "ms");
    };
    const std::string printed = withoutTimes(RunTool::Text({"run", ModuleFiles::PLANT}));
    for (const std::string& line : block.lines)
        if (line != "  ...")
            EXPECT_THAT(printed, HasSubstr("\n" + withoutTimes(line) + "\n"));
}

TEST(ListingsTest, AreComparedOrExecuted) {
    Lines pages{SOURCE_DIR "/README.md"};
    for (const auto& file : std::filesystem::directory_iterator(SOURCE_DIR "/docs"))
        if (file.path().extension() == ".md")
            pages.push_back(file.path().string());
    for (const std::string& page : pages) {
        Commands commands;
        for (const Block& block : BlocksOf(page)) {
            ASSERT_FALSE(block.lines.empty()) << page;
            SCOPED_TRACE(page + ": " + block.lines[0]);
            if (block.language == "cpp")
                ExpectExcerpt(block);
            else if (block.lines[0] == "First life")
                ExpectDemo(block);
            else if (block.language.empty())
                ExpectRuns(block, commands);
        }
    }
}

} // namespace
