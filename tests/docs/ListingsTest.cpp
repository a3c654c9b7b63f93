// SPDX-License-Identifier: MIT
// Every code block of README.md and docs/ is compared or executed. ```cpp is an excerpt of a file in
// examples/. Of any other block each line is a command, or what the command with "$ " above it prints.
#include "tests/support/ModuleFiles.h"
#include "tests/support/RunTool.h"

#include <gmock/gmock.h>

#include <map>
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
        if (line.starts_with("od ")) {
            _out = OutOf(line);
            return;
        }
        const std::string commands = line.substr(0, std::min(line.find("  "), line.find(" #")));
        std::string program;
        for (Lines words : Alternatives(Words(commands))) {
            if (words.empty() || !IsProgram(words[0]))
                words.insert(words.begin(), program);
            program = words[0];
            Run(words);
        }
    }

    /// What the last command has printed.
    const std::string& Out() const { return _out; }

    ~Commands() { EndModule(); }

private:
    static bool IsProgram(const std::string& word) {
        return word == "vesk" || word.find('/') != std::string::npos;
    }

    /// Words as a shell has them, and each comma behind one as a word.
    static Lines Words(const std::string& text) {
        Lines words;
        const std::regex word(R"re("([^"]*)"|([^ ",]+(?:,[^ ",]+)*)|(,))re");
        for (std::sregex_iterator at(text.begin(), text.end(), word), end; at != end; ++at)
            words.push_back((*at)[1].matched ? (*at)[1] : (*at)[0]);
        return words;
    }

    static std::vector<Lines> Alternatives(const Lines& words) {
        std::vector<Lines> alternatives(1);
        for (const std::string& word : words)
            if (word == ",")
                alternatives.emplace_back();
            else
                alternatives.back().push_back(word);
        return alternatives;
    }

    /// What stands for a file of the reader's, and /tmp.
    std::string File(const std::string& word) {
        static const std::map<std::string, std::string> OF_THE_READER{
            {"FILE.ddb", "examples/plant.ddb"},
            {"A", "examples/plant.ddb"},
            {"B", "examples/plant.ddb"},
            {"FILE.fw", "examples/firmware/vt22-1.5.0.fw"}};
        if (const auto found = OF_THE_READER.find(word); found != OF_THE_READER.end())
            return found->second;
        return word.starts_with("/tmp/") ? _folder.Path(word.substr(5)) : word;
    }

    void Run(const Lines& words) {
        Lines arguments;
        for (std::size_t i = 1; i < words.size(); ++i)
            arguments.push_back(File(words[i]));
        const std::string& program = words[0];
        if (!IsProgram(program)) {
            ADD_FAILURE() << "is no command";
        } else if (program.starts_with("scripts/") || program == ".ci/run") {
            // It builds this tree, so it cannot run in its test.
            EXPECT_EQ(::access(program.c_str(), X_OK), 0);
            for (const std::string& argument : arguments)
                EXPECT_THAT(TemporaryFolder::Read(program), HasSubstr(argument));
        } else if (program == "vesk" && !arguments.empty() && arguments[0] == "module") {
            StartModule(arguments);
        } else {
            const ToolResult result = RunTool::Run(arguments, Path(program));
            EXPECT_EQ(result.status, 0) << result.out << result.err;
            _out = result.out;
        }
    }

    static std::string Path(const std::string& program) {
        if (program == "vesk")
            return VESK_TOOL;
        return program.starts_with(EXAMPLES_IN_TREE) ? EXAMPLES + program.substr(EXAMPLES_IN_TREE.size() - 1)
                                                     : program;
    }

    /// A program of this machine, whatever machine the tree is built for.
    static std::string OutOf(const std::string& command) {
        std::string out;
        FILE* const pipe = ::popen(command.c_str(), "r");
        for (int byte = 0; (byte = std::fgetc(pipe)) != EOF;)
            out += static_cast<char>(byte);
        EXPECT_EQ(::pclose(pipe), 0);
        return out;
    }

    void StartModule(Lines arguments) {
        EndModule();
        arguments.insert(arguments.end(), {"--speed", "10"});
        _module = std::make_unique<Process>(VESK_TOOL, arguments);
        EXPECT_TRUE(_module->WaitForOut("module ready on ")) << _module->Err();
    }

    void EndModule() {
        if (!_module)
            return;
        EXPECT_EQ(_module->End(SIGTERM), 0);
        EXPECT_EQ(_module->Err(), "");
    }

    static constexpr std::string_view EXAMPLES_IN_TREE = "build/dev/examples/";

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
        if (line != "  ...") {
            EXPECT_THAT(without, testing::Contains(std::regex_replace(line, number, "ms")));
        }
}

} // namespace
