// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace VeskTool {

/// What the program's help knows, in the form that other documents are made from. Hidden commands and options
/// are left out.
struct CommandTree {
    struct Parameter {
        std::vector<std::string> names;  // "-o", "--output"; of an argument without dashes its name
        std::string value;               // what follows it, "FILE"; empty for a flag and for an argument
        std::vector<std::string> values; // the only ones that it may have; empty for any
        std::string environment;         // the variable that may stand for it; or empty
        std::string description;
        bool required = false;
        bool several = false;
    };

    explicit CommandTree(const CLI::App& app, const std::string& parent = "");

    std::string name; // the last word of the path
    std::string path; // "vesk config show"
    std::vector<std::string> description;
    std::vector<std::string> examples;
    std::vector<Parameter> options;
    std::vector<Parameter> arguments;
    std::vector<CommandTree> commands;

    /// The description's first sentence, without its full stop.
    std::string Summary() const;

    /// What may follow: further commands, or the values of the arguments.
    std::vector<std::string> Words() const;
    std::vector<std::string> OptionNames() const;

    /// The further command of that name; or null.
    const CommandTree* Find(const std::string& command) const;

private:
    void AddParts(const CLI::App& app);
};

/// The man page vesk(1). Not help2man's: it reads the --help of one program, so it makes a page without the
/// options of the commands, or one for each of them, says nothing of the environment and the exit statuses,
/// and takes the examples for text; where the table of options is wide it runs an option into its
/// description.
std::string ManPage(const CommandTree& program);
/// The completion files. What the shells bring along for a --help knows the options of one program, but no
/// commands.
std::string BashCompletion(const CommandTree& program);
std::string ZshCompletion(const CommandTree& program);
std::string FishCompletion(const CommandTree& program);

} // namespace VeskTool
