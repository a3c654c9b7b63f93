// SPDX-License-Identifier: MIT
#include "tools/vesk/Commands.h"
#include "tools/vesk/documents/CommandTree.h"
#include "tools/vesk/documents/FaultsPage.h"

#include <iostream>

namespace VeskTool {

void AddGenerate(CLI::App& program, int& status) {
    static const std::map<std::string, std::string (*)(const CommandTree&)> DOCUMENTS{
        {"man", ManPage},
        {"bash", BashCompletion},
        {"zsh", ZshCompletion},
        {"fish", FishCompletion},
        {"faults", [](const CommandTree&) { return FaultsPage(); }}};
    CLI::App* const command = program.add_subcommand(
        "generate", "Print a document that is made by the program, for the installation or for docs/.");
    command->group(""); // nobody but the build and the tests need it
    const auto document = std::make_shared<std::string>();
    command->add_option("DOCUMENT", *document, "man, bash, zsh, fish or faults")
        ->required()
        ->check(CLI::IsMember({"man", "bash", "zsh", "fish", "faults"}));
    command->callback([document, &program, &status] {
        std::cout << DOCUMENTS.at(*document)(CommandTree(program));
        status = DONE;
    });
}

} // namespace VeskTool
