// SPDX-License-Identifier: MIT
#include "tools/vesk/documents/CommandTree.h"

#include "tools/vesk/text/Text.h"

#include <string_view>

namespace VeskTool {

namespace {

/// For each command, this one first.
template <class Visit>
void Walk(const CommandTree& command, Visit visit) {
    visit(command);
    for (const CommandTree& one : command.commands)
        Walk(one, visit);
}

/// In single quotes for a shell, with `apostrophe` for what stands for one inside.
std::string Quoted(const std::string& text, std::string_view apostrophe) {
    std::string quoted = "'";
    for (const char character : text)
        quoted += character == '\'' ? std::string(apostrophe) : std::string(1, character);
    return quoted + "'";
}

/// The words of the path behind the program's name, each with a blank before it.
std::string PathBelow(const CommandTree& program, const CommandTree& command) {
    return command.path.substr(program.path.size());
}

/// For bash and zsh: makes `at` longer by `word` if the two together are a command.
std::string FollowCommands(const CommandTree& program) {
    std::string paths;
    Walk(program, [&](const CommandTree& command) {
        if (&command != &program)
            paths += (paths.empty() ? "'" : "|'") + PathBelow(program, command) + "'";
    });
    return "        case \"$at $word\" in\n            " + paths + ") at+=\" $word\" ;;\n        esac\n";
}

// What of a description zsh takes for its own in _arguments.
std::string ZshText(const std::string& text) {
    std::string escaped;
    for (const char character : text) {
        if (character == '[' || character == ']' || character == ':' || character == '\\')
            escaped += '\\';
        escaped += character;
    }
    return escaped;
}

/// One entry for _arguments for each name of the option.
std::string ZshOption(const CommandTree::Parameter& option) {
    std::string text;
    std::string description = "[" + ZshText(option.description) + "]";
    if (!option.value.empty())
        description += ":" + ZshText(option.value) + ":" +
                       (option.values.empty() ? "_files" : "(" + Joined(option.values, " ") + ")");
    for (const std::string& name : option.names)
        text += " \\\n            " + Quoted(name + description, "'\\''");
    return text;
}

std::string ZshArguments(const CommandTree& command) {
    const std::vector<std::string> values =
        command.commands.empty() ? command.Words() : std::vector<std::string>();
    return values.empty() ? "'*:argument:_files'" : "'*:argument:(" + Joined(values, " ") + ")'";
}

std::string ZshCase(const CommandTree& program, const CommandTree& command) {
    std::string text = "        " + Quoted(PathBelow(program, command), "'\\''") + ")\n";
    if (!command.commands.empty()) {
        text += "            commands=(\n";
        for (const CommandTree& one : command.commands)
            text += "                " + Quoted(ZshText(one.name) + ":" + one.Summary(), "'\\''") + "\n";
        text += "            )\n            [[ $PREFIX != -* ]] && _describe command commands && return\n";
    }
    text += "            _arguments";
    for (const CommandTree::Parameter& option : command.options)
        text += ZshOption(option);
    return text + " \\\n            " + ZshArguments(command) + "\n            ;;\n";
}

std::string FishOption(const std::string& condition, const CommandTree::Parameter& option) {
    std::string text = condition;
    for (const std::string& name : option.names)
        text += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    if (!option.values.empty())
        text += " -x -a '" + Joined(option.values, " ") + "'";
    else if (!option.value.empty())
        text += " -r";
    return text + " -d " + Quoted(option.description, "\\'") + "\n";
}

} // namespace

std::string BashCompletion(const CommandTree& program) {
    std::string text = "# Completion of " + program.name +
                       " for bash; made from its --help.\n_vesk() {\n"
                       "    local at='' word words options\n"
                       "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n" +
                       FollowCommands(program) + "    done\n    case \"$at\" in\n";
    Walk(program, [&](const CommandTree& command) {
        text += "        '" + PathBelow(program, command) + "') words='" + Joined(command.Words(), " ") +
                "' options='" + Joined(command.OptionNames(), " ") + "' ;;\n";
    });
    text += "    esac\n    case \"$at ${COMP_WORDS[COMP_CWORD-1]}\" in\n";
    Walk(program, [&](const CommandTree& command) {
        for (const CommandTree::Parameter& option : command.options)
            if (!option.values.empty())
                text += "        '" + PathBelow(program, command) + " " + option.names.back() + "') words='" +
                        Joined(option.values, " ") + "' ;;\n";
    });
    return text +
           "    esac\n"
           "    if [[ ${COMP_WORDS[COMP_CWORD]} == -* ]]; then\n"
           "        words=$options\n"
           "    fi\n"
           "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"${COMP_WORDS[COMP_CWORD]}\")\n"
           "}\n"
           "complete -o default -F _vesk " +
           program.name + "\n";
}

std::string ZshCompletion(const CommandTree& program) {
    std::string text = "#compdef " + program.name + "\n# Completion of " + program.name +
                       " for zsh; made from its --help.\n_vesk() {\n"
                       "    local at='' word\n"
                       "    local -a commands\n"
                       "    for word in ${words[2,CURRENT-1]}; do\n" +
                       FollowCommands(program) + "    done\n    case \"$at\" in\n";
    Walk(program, [&](const CommandTree& command) { text += ZshCase(program, command); });
    return text + "    esac\n}\n_vesk \"$@\"\n";
}

std::string FishCompletion(const CommandTree& program) {
    std::string text = "# Completion of " + program.name +
                       " for fish; made from its --help.\n"
                       "# The words of the line, options left out, begin with these.\n"
                       "function __vesk_begins\n"
                       "    set -l words (commandline -opc | string match -v -- '-*')\n"
                       "    set -e words[1]\n"
                       "    for word in $argv\n"
                       "        test \"$words[1]\" = $word; or return 1\n"
                       "        set -e words[1]\n"
                       "    end\n"
                       "end\n"
                       "# The words of the line are these and no more.\n"
                       "function __vesk_is\n"
                       "    __vesk_begins $argv\n"
                       "    and test (commandline -opc | string match -v -- '-*' | count) -eq "
                       "(math (count $argv) + 1)\n"
                       "end\n";
    Walk(program, [&](const CommandTree& command) {
        const std::string below = PathBelow(program, command);
        const std::string complete = "complete -c " + program.name + " -n '__vesk_";
        const std::string only = complete + "is" + below + "'";
        for (const CommandTree& one : command.commands)
            text += only + " -f -a " + one.name + " -d " + Quoted(one.Summary(), "\\'") + "\n";
        for (const CommandTree::Parameter& argument : command.arguments)
            if (!argument.values.empty())
                text += only + " -f -a '" + Joined(argument.values, " ") + "'\n";
        const std::string condition = command.commands.empty() ? complete + "begins" + below + "'" : only;
        for (const CommandTree::Parameter& option : command.options)
            text += FishOption(condition, option);
    });
    return text;
}

} // namespace VeskTool
