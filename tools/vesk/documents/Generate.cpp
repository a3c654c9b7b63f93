// SPDX-License-Identifier: MIT
#include "tools/vesk/documents/Generate.h"

#include "tools/vesk/documents/CommandTree.h"
#include "tools/vesk/documents/FaultsPage.h"

#include <iostream>
#include <map>

namespace VeskTool {

Action AddGenerate(CLI::App& command) {
    static const std::map<std::string, std::string (*)(const CommandTree&)> DOCUMENTS{
        {"man", ManPage},
        {"bash", BashCompletion},
        {"zsh", ZshCompletion},
        {"fish", FishCompletion},
        {"faults", [](const CommandTree&) { return FaultsPage(); }}};
    const auto document = std::make_shared<std::string>();
    command.add_option("DOCUMENT", *document, "man, bash, zsh, fish or faults")
        ->required()
        ->check(CLI::IsMember({"man", "bash", "zsh", "fish", "faults"}));
    return [document, &program = *command.get_parent()] {
        std::cout << DOCUMENTS.at(*document)(CommandTree(program));
        return DONE;
    };
}

} // namespace VeskTool
