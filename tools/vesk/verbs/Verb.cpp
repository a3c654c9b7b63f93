// SPDX-License-Identifier: MIT
#include "tools/vesk/verbs/Verb.h"

#include "tools/vesk/Commands.h"
#include "tools/vesk/session/PlantFlash.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Console.h"
#include "tools/vesk/text/Numbers.h"

#include <cstdlib>
#include <iostream>

namespace VeskTool {

Paint Paint::Standard() {
    const char* const noColour = std::getenv("NO_COLOR");
    return Paint(Console::Standard().draws && (noColour == nullptr || *noColour == 0));
}

Json Answer(const Verb& verb, Session& session, const Json& arguments) {
    session.Reach(verb.need);
    return verb.answer(session, arguments);
}

int StatusOf(const Json& facts) {
    return facts.value("ok", true) ? DONE : FAILED;
}

void Print(const Verb& verb, const Json& facts, bool json) {
    std::cout << (json ? JsonText(facts) : verb.text(facts, Paint::Standard())) << std::flush;
}

VerbCommand::VerbCommand(CLI::App& app, const Verb& asked) : verb(&asked), _app(&app) {
    run = [this](Session& session) { return Run(session); };
}

std::shared_ptr<VerbCommand> VerbCommand::Add(CLI::App& program, int& status, const Verb& verb,
                                              const std::string& description) {
    CLI::App& app = *program.add_subcommand(verb.name, description);
    const std::shared_ptr<VerbCommand> command(new VerbCommand(app, verb));
    command->_link.AddTo(app);
    app.add_flag("--json", command->_json, "Print one JSON object instead of text");
    app.callback([command, &status] {
        Session session(command->_link.Open(PlantFlash()), command->config);
        status = command->run(session);
    });
    return command;
}

int VerbCommand::Run(Session& session) const {
    const Json facts = Answer(*verb, session, arguments);
    Print(*verb, facts, _json);
    return StatusOf(facts);
}

CLI::Option* VerbCommand::AddNumber(const std::string& name, const char* key, unsigned int least,
                                    unsigned int most, const std::string& description) {
    const auto take = [this, name, key, least, most](const std::string& text) {
        arguments[key] = ParseNumber(name, text, least, most);
    };
    return _app->add_option_function<std::string>(name, take, description)->type_name("");
}

CLI::Option* VerbCommand::AddAddress() {
    return AddNumber("ADDRESS", "address", 0, HIGHEST_ADDRESS, "Station address of the slave, 0 to 126")
        ->required();
}

void VerbCommand::AddFile(const std::function<void(const std::string& path)>& take) {
    _app->add_option_function<std::string>("CONFIG", take, "Configuration database file (.ddb)")
        ->required()
        ->type_name("");
}

} // namespace VeskTool
