// SPDX-License-Identifier: MIT
#include "tools/vesk/verbs/Verb.h"

#include "tools/vesk/session/PlantFlash.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Console.h"
#include "tools/vesk/text/Numbers.h"

#include <cstdlib>
#include <iostream>

namespace VeskTool {

Paint Paint::Standard() {
    const char* const noColour = std::getenv("NO_COLOR");
    const Console console = Console::Standard();
    return Paint(console.draws && (noColour == nullptr || *noColour == 0),
                 console.draws ? console.columns() : std::string::npos);
}

Json Answer(const Verb& verb, Session& session, const Json& arguments) {
    session.Reach(verb.need);
    Json facts = verb.answer(session, arguments);
    facts["link"] = LinkOptions::Opened();
    return facts;
}

int StatusOf(const Json& facts) {
    return facts.value("ok", true) ? DONE : NEGATIVE;
}

void Print(const Verb& verb, const Json& facts, bool json) {
    std::cout << (json ? JsonText(facts) : verb.text(facts, Paint::Standard())) << std::flush;
}

static const SharedLife* sharedLife = nullptr;

SharedLife::SharedLife(Session& session, const LinkOptions& link)
    : _session(session), _link(link), _outer(sharedLife) {
    sharedLife = this;
}

SharedLife::~SharedLife() {
    sharedLife = _outer;
}

const SharedLife* SharedLife::Current() {
    return sharedLife;
}

Session& SharedLife::SessionFor(const Verb& verb) const {
    if (verb.lasts)
        _link.CheckNamed();
    return _session;
}

std::unique_ptr<Session> OpenSession(const LinkOptions& link, SharedConfig config, SharedConfig places) {
    auto session = std::make_unique<Session>(link.Open(PlantFlash()), std::move(config));
    session->Inputs().TakePlaces(places || !link.UseVirtual() ? std::move(places) : Plant());
    return session;
}

VerbCommand::VerbCommand(CLI::App& command, const Verb& asked) : verb(&asked), _app(command) {
    run = [this](Session& session) { return Run(session); };
    if (!SharedLife::Current())
        _link.AddTo(command, asked.lasts ? LinkOptions::Unnamed::REFUSED : LinkOptions::Unnamed::VIRTUAL);
    AddJson(command, _json);
}

int VerbCommand::Execute() {
    if (const SharedLife* const life = SharedLife::Current())
        return run(life->SessionFor(*verb));
    return run(*OpenSession(_link, config, places));
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
    return _app.add_option_function<std::string>(name, take, description)->type_name("");
}

CLI::Option* VerbCommand::AddAddress() {
    return AddNumber("ADDRESS", "address", 0, HIGHEST_ADDRESS, "Station address of the slave, 0 to 126")
        ->required();
}

void VerbCommand::AddFile(const std::function<void(const std::string& path)>& take) {
    _app.add_option_function<std::string>("CONFIG", take,
                                          "Configuration database (.ddb) or bus description (.toml)")
        ->required()
        ->type_name("");
}

void VerbCommand::AddConfig(const std::string& description,
                            const std::function<void(const std::string& path)>& take) {
    _app.add_option_function<std::string>("--config", take, description)->type_name("FILE");
}

} // namespace VeskTool
