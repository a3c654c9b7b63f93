// SPDX-License-Identifier: MIT
#include "tools/vesk/verbs/Verb.h"

#include "tools/vesk/files/DatabaseFile.h"
#include "tools/vesk/session/OwnSession.h"
#include "tools/vesk/session/PlantFlash.h"
#include "tools/vesk/session/PublishedPlants.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Console.h"
#include "tools/vesk/text/Numbers.h"
#include "vesk/lines/InUse.h"

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

SharedLife::SharedLife(Session& session, const LinkOptions& link, SharedBus bus)
    : _session(session), _link(link), _bus(std::move(bus)), _outer(sharedLife) {
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

SharedBus KnownBus(const LinkOptions& link, SharedBus bus) {
    return bus || !link.UseVirtual() ? std::move(bus) : Plant();
}

/// A session with a module of one's own, or with the plant that has the module.
static std::unique_ptr<Session> OpenWhatIsThere(const LinkOptions& link, const SharedConfig& config) {
    if (const std::string plant = link.Plant(); !plant.empty() && !config)
        return PublishedPlants::Open(plant);
    try {
        return std::make_unique<OwnSession>(link.Open(PlantFlash()), config);
    } catch (const InUse& use) {
        auto session = config ? nullptr : PublishedPlants::OpenThatOf(use.Process());
        if (!session)
            throw;
        return session;
    }
}

std::unique_ptr<Session> OpenSession(const LinkOptions& link, SharedConfig config, const SharedBus& bus) {
    auto session = OpenWhatIsThere(link, config);
    session->TakePlaces(bus ? bus->config : nullptr);
    return session;
}

const DescribedBus& NeedNames(const DescribedBus* known) {
    if (known == nullptr)
        throw Failure(
            "Only a bus description says what a slave or a signal is called; name it with --config");
    return *known;
}

VerbCommand::VerbCommand(CLI::App& command, const Verb& asked) : verb(&asked), _app(command) {
    run = [this](Session& session) { return Run(session); };
    if (!SharedLife::Current())
        _link.AddTo(command, asked.lasts ? LinkOptions::Unnamed::REFUSED : LinkOptions::Unnamed::VIRTUAL);
    AddJson(command, _json);
}

int VerbCommand::Execute() {
    const SharedLife* const life = SharedLife::Current();
    const SharedBus known = life == nullptr ? KnownBus(_link, bus) : bus ? bus : life->Bus();
    for (const auto& prepare : preparations)
        prepare(known.get());
    return life == nullptr ? run(*OpenSession(_link, config, known)) : run(life->SessionFor(*verb));
}

int VerbCommand::Run(Session& session) const {
    Json facts = Answer(*verb, session, arguments);
    complete(session, facts);
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

CLI::Option* VerbCommand::AddAddress(const std::string& name, const char* key) {
    const auto take = [this, name, key](const std::string& text) {
        TakeAddress(name, text, HIGHEST_ADDRESS,
                    [this, key](unsigned int address) { arguments[key] = address; });
    };
    AddBus();
    return _app
        .add_option_function<std::string>(name, take, "Station address of the slave, 0 to 126, or its name")
        ->type_name("")
        ->required();
}

void VerbCommand::TakeAddress(const std::string& name, const std::string& text, unsigned int most,
                              const std::function<void(unsigned int address)>& take) {
    if (BusDescription::IsName(text)) {
        preparations.emplace_back([text, take](const DescribedBus* known) {
            take(NeedNames(known).SlaveNamed(text).address.value);
        });
        return;
    }
    const unsigned int address = ParseNumber(name, text, 0, most);
    preparations.emplace_back([address, take](const DescribedBus*) { take(address); });
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

void VerbCommand::AddBus() {
    if (!SharedLife::Current())
        AddConfig(
            "Bus description (.toml) or configuration database (.ddb) of the module; a description has names",
            [this](const std::string& path) { bus = LoadDescribedBus(path); });
}

} // namespace VeskTool
