// SPDX-License-Identifier: MIT
#include "tools/vesk/documents/CommandTree.h"
#include "vesk/core/Version.h"

#include <cctype>
#include <map>

namespace VeskTool {

namespace {

/// Text of the page: nothing in it is taken for a request of troff.
std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char character : text)
        if (character == '\\')
            escaped += "\\e";
        else if (character == '-')
            escaped += "\\-";
        else if ((character == '.' || character == '\'') && escaped.empty())
            escaped += std::string("\\&") + character;
        else
            escaped += character;
    return escaped;
}

std::string Bold(const std::string& text) {
    return "\\fB" + Escaped(text) + "\\fR";
}

std::string Italic(const std::string& text) {
    return "\\fI" + Escaped(text) + "\\fR";
}

/// The command with its arguments.
std::string Synopsis(const CommandTree& command) {
    std::string text = Bold(command.path);
    if (!command.options.empty())
        text += " [" + Italic("OPTION") + "]...";
    for (const CommandTree::Parameter& argument : command.arguments) {
        const std::string name = Italic(argument.names.front()) + (argument.several ? "..." : "");
        text += argument.required ? " " + name : " [" + name + "]";
    }
    return text + "\n";
}

std::string Entry(const CommandTree::Parameter& parameter) {
    std::string text = ".TP\n";
    for (std::size_t i = 0; i < parameter.names.size(); ++i) {
        const std::string& name = parameter.names[i];
        text += (i ? ", " : "") + (name.front() == '-' ? Bold(name) : Italic(name));
    }
    if (!parameter.value.empty())
        text += " " + Italic(parameter.value);
    text += "\n" + Escaped(parameter.description);
    if (!parameter.environment.empty())
        text += " (environment: " + Bold(parameter.environment) + ")";
    return text + "\n";
}

std::string Paragraphs(const CommandTree& command) {
    std::string text;
    for (const std::string& paragraph : command.description)
        text += (text.empty() ? "" : ".PP\n") + Escaped(paragraph) + "\n";
    return text;
}

std::string Examples(const CommandTree& command) {
    std::string text;
    for (const std::string& example : command.examples)
        text +=
            (text.empty() ? ".PP\nExample:\n" : "") + std::string(".PP\n.RS\n") + Bold(example) + "\n.RE\n";
    return text;
}

/// A section for each command that does something itself.
std::string Commands(const CommandTree& command) {
    if (!command.commands.empty()) {
        std::string text;
        for (const CommandTree& one : command.commands)
            text += Commands(one);
        return text;
    }
    std::string text =
        ".SS " + Escaped(command.path) + "\n" + Synopsis(command) + ".PP\n" + Paragraphs(command);
    for (const CommandTree::Parameter& argument : command.arguments)
        text += Entry(argument);
    for (const CommandTree::Parameter& option : command.options)
        if (option.names.back() != "--help") // each has it
            text += Entry(option);
    return text + Examples(command);
}

/// The variables and the options that they stand for.
void CollectEnvironment(const CommandTree& command,
                        std::map<std::string, CommandTree::Parameter>& variables) {
    for (const CommandTree::Parameter& option : command.options)
        if (!option.environment.empty())
            variables.emplace(option.environment, option);
    for (const CommandTree& one : command.commands)
        CollectEnvironment(one, variables);
}

std::string Environment(const CommandTree& program) {
    std::map<std::string, CommandTree::Parameter> variables;
    CollectEnvironment(program, variables);
    std::string text = ".SH ENVIRONMENT\n";
    for (const auto& [variable, option] : variables)
        text += ".TP\n" + Bold(variable) + "\nStands for " + Bold(option.names.back()) + ".\n";
    return text + ".TP\n" + Bold("NO_COLOR") + "\nNo colours, even on a terminal.\n";
}

constexpr auto* EXIT_STATUS =
    ".SH EXIT STATUS\n"
    ".TP\n\\fB0\\fR\nDone.\n"
    ".TP\n\\fB1\\fR\nThe module or a file said no, or the output could not be written.\n"
    ".TP\n\\fB2\\fR\nWrong usage.\n"
    ".TP\n\\fB128\\fR and more\nStopped by the signal of the number above 128.\n";

} // namespace

std::string ManPage(const CommandTree& program) {
    std::string title = program.name;
    for (char& character : title)
        character = static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
    std::string summary = program.Summary();
    summary.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(summary.front())));
    std::string text = ".TH " + title + R"( 1 "" ")" + program.name + " " + Vesk::Version() +
                       "\"\n.SH NAME\n" + program.name + R"( \- )" + Escaped(summary) + "\n.SH SYNOPSIS\n" +
                       Bold(program.name) + " " + Italic("COMMAND") + " [" + Italic("ARGUMENT") +
                       "]...\n.SH DESCRIPTION\n" + Paragraphs(program) + ".SH OPTIONS\n";
    for (const CommandTree::Parameter& option : program.options)
        text += Entry(option);
    return text + ".SH COMMANDS\n" + Commands(program) + Environment(program) + EXIT_STATUS;
}

} // namespace VeskTool
