// SPDX-License-Identifier: MIT
#include "tools/vesk/documents/CommandTree.h"

#include "virtualmodule/faults/Faults.h"

#include <algorithm>
#include <sstream>
#include <string_view>

namespace VeskTool {

/// The values of a type such as "TEXT:{stop,clear}".
static std::vector<std::string> ValuesOf(const std::string& type) {
    const auto open = type.find(":{");
    const auto close = type.find('}');
    if (open == type.npos || close != type.size() - 1)
        return {};
    return CLI::detail::split(type.substr(open + 2, close - open - 2), ',');
}

static CommandTree::Parameter ParameterOf(const CLI::Option& option) {
    CommandTree::Parameter parameter;
    for (const std::string& name : option.get_snames())
        parameter.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        parameter.names.push_back("--" + name);
    parameter.description = option.get_description();
    parameter.values = ValuesOf(option.get_type_name());
    if (!parameter.names.empty() && parameter.names.back() == "--fault") // too many for a help
        for (const auto& kind : VirtualModule::Faults())
            if (parameter.values.empty() || parameter.values.back() != kind.name)
                parameter.values.emplace_back(kind.name);
    parameter.environment = option.get_envname();
    parameter.required = option.get_required();
    parameter.several = option.get_items_expected_max() > 1;
    if (option.get_positional())
        parameter.names.push_back(option.get_name(true));
    else if (option.get_items_expected_max() > 0)
        parameter.value = option.get_type_name().substr(0, option.get_type_name().find(":{"));
    return parameter;
}

CommandTree::CommandTree(const CLI::App& app, const std::string& parent)
    : name(app.get_name()), path(parent.empty() ? name : parent + " " + name) {
    constexpr std::string_view example = "Example: ";
    std::istringstream lines(app.get_description() + "\n" + app.get_footer());
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with(example))
            examples.push_back(line.substr(example.size()));
        else if (!line.empty())
            description.push_back(line);
    AddParts(app);
}

void CommandTree::AddParts(const CLI::App& app) {
    for (const CLI::Option* const option : app.get_options())
        if (option->get_positional())
            arguments.push_back(ParameterOf(*option));
        else if (!option->get_group().empty() && !(app.get_name().empty() && option == app.get_help_ptr()))
            options.push_back(ParameterOf(*option));
    for (const CLI::App* const part : app.get_subcommands([](const CLI::App*) { return true; }))
        if (part->get_name().empty()) // no command, but a group of options
            AddParts(*part);
        else if (!part->get_group().empty())
            commands.emplace_back(*part, path);
}

std::vector<std::string> CommandTree::Words() const {
    std::vector<std::string> words;
    for (const CommandTree& one : commands)
        words.push_back(one.name);
    for (const Parameter& argument : arguments)
        words.insert(words.end(), argument.values.begin(), argument.values.end());
    return words;
}

std::vector<std::string> CommandTree::OptionNames() const {
    std::vector<std::string> all;
    for (const Parameter& option : options)
        all.insert(all.end(), option.names.begin(), option.names.end());
    return all;
}

const CommandTree* CommandTree::Find(const std::string& command) const {
    const auto found = std::find_if(commands.begin(), commands.end(),
                                    [&](const CommandTree& one) { return one.name == command; });
    return found == commands.end() ? nullptr : &*found;
}

std::string CommandTree::Summary() const {
    const std::string text = description.empty() ? "" : description.front();
    const auto end = text.find_first_of(".:;");
    return text.substr(0, end);
}

} // namespace VeskTool
