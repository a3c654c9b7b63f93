// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/session/DescribedBus.h"
#include "tools/vesk/session/LinkOptions.h"
#include "tools/vesk/session/Session.h"
#include "tools/vesk/text/Command.h"

#include <nlohmann/json.hpp>

namespace VeskTool {

using Json = nlohmann::ordered_json;
using SharedConfig = std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig>;

/// Colours and a width, for a terminal.
class Paint {
public:
    explicit Paint(bool colours, std::size_t width = std::string::npos) : _colours(colours), _width(width) {}

    /// Those of standard output: colours where it is a terminal and NO_COLOR is not set, and the terminal's
    /// width.
    static Paint Standard();

    /// The line, cut to the width where there is one.
    std::string Cut(const std::string& line) const { return line.substr(0, _width); }

    bool Colours() const { return _colours; }

    std::string Good(const std::string& text) const { return Coloured("32", text); }

    std::string Bad(const std::string& text) const { return Coloured("31", text); }

private:
    std::string Coloured(const char* code, const std::string& text) const {
        return _colours ? std::string("\033[") + code + "m" + text + "\033[0m" : text;
    }

    bool _colours;
    std::size_t _width;
};

/// One question to a module or one order. Whoever owns a session can answer it: arguments and facts are JSON
/// objects, and nothing in between knows where they come from and go to.
struct Verb {
    /// How far Answer lets the session go first.
    Need need;
    /// Does it; the facts that --json prints. A fact "ok" that is false says that the module said no.
    Json (*answer)(Session& session, const Json& arguments);
    /// The same facts for people, ending with a line feed.
    std::string (*text)(const Json& facts, const Paint& paint);
    /// Whether it changes something that outlasts the session; then the module has to be named.
    bool lasts = false;
};

/// Answers `verb`; the facts have a "link" too, which module it was. Failure and the library's exceptions
/// pass through.
Json Answer(const Verb& verb, Session& session, const Json& arguments);

/// The exit status that goes with the facts.
int StatusOf(const Json& facts);

/// The bus that the names in a command belong to.
using SharedBus = std::shared_ptr<const DescribedBus>;

/// A life that verbs share. While it lives, every verb is answered in its session, and has no options that
/// say which module it is.
class SharedLife {
public:
    /// `link`: how the module of the session was named. `bus`: what is known of it, or null.
    SharedLife(Session& session, const LinkOptions& link, SharedBus bus);
    ~SharedLife();
    SharedLife(const SharedLife&) = delete;
    SharedLife& operator=(const SharedLife&) = delete;

    /// The one that lives; or null.
    static const SharedLife* Current();

    /// The session that `verb` is answered in; CLI::ParseError where the verb needs a module that is named.
    Session& SessionFor(const Verb& verb) const;

    const SharedBus& Bus() const { return _bus; }

private:
    Session& _session;
    const LinkOptions& _link;
    SharedBus _bus;
    const SharedLife* _outer;
};

/// What is known of the bus of the module: `bus`, or without it that of the plant for a virtual module; null
/// where nothing is.
SharedBus KnownBus(const LinkOptions& link, SharedBus bus);

/// `known`; Failure where that is null.
const DescribedBus& NeedNames(const DescribedBus* known);

/// A new session, which takes the places of input data from `bus`, unless that is null. Without `config` it
/// is one with the application's module where --plant names it, or where an application has the module and
/// publishes it.
std::unique_ptr<Session> OpenSession(const LinkOptions& link, SharedConfig config, const SharedBus& bus);

/// `vesk VERB`: what every verb has on the command line, and the running of one in a session of its own.
class VerbCommand {
public:
    /// Gives `command` the options that every verb has.
    VerbCommand(CLI::App& command, const Verb& verb);
    VerbCommand(const VerbCommand&) = delete;
    VerbCommand& operator=(const VerbCommand&) = delete;

    CLI::App& App() { return _app; }

    bool PrintsJson() const { return _json; }

    /// What is asked; another form of it may be put in.
    const Verb* verb;

    /// The arguments of the verb, for the options to fill.
    Json arguments = Json::object();

    /// The configuration of the session; null at first.
    SharedConfig config;

    /// What is known of the bus, from an option of this very command; null at first.
    SharedBus bus;

    /// Done one after the other before the module is touched, with what is known of its bus, or null.
    std::vector<std::function<void(const DescribedBus* known)>> preparations;

    /// Adds to the facts what is known beside them; nothing at first.
    std::function<void(Session& session, Json& facts)> complete = [](Session&, Json&) {};

    /// Answers the verb in `session` and prints the facts; the exit status. The verb's own way unless it is
    /// replaced.
    std::function<int(Session& session)> run;

    /// Adds a positional argument, a number from `least` to `most` that becomes the verb's argument `key`.
    CLI::Option* AddNumber(const std::string& name, const char* key, unsigned int least, unsigned int most,
                           const std::string& description);

    /// The same for a slave, its station address or its name; and the option --config (AddBus).
    CLI::Option* AddAddress(const std::string& name = "ADDRESS", const char* key = "address");

    /// Gives the slave's address to `take` before the module is touched: `text`, the argument `name`, is an
    /// address, no more than `most`, or the slave's name.
    void TakeAddress(const std::string& name, const std::string& text, unsigned int most,
                     const std::function<void(unsigned int address)>& take);

    /// The positional argument CONFIG, the path of a configuration database file, which goes to `take` before
    /// the module is touched.
    void AddFile(const std::function<void(const std::string& path)>& take);

    /// The option --config, the path of such a file, likewise.
    void AddConfig(const std::string& description, const std::function<void(const std::string& path)>& take);

    /// The option --config, from which `bus` comes; where verbs share a life, that of the life serves
    /// instead.
    void AddBus();

    /// Opens the session, or takes the one that is shared, and runs; the exit status.
    int Execute();

private:
    int Run(Session& session) const;

    CLI::App& _app;
    LinkOptions _link;
    bool _json = false;
};

/// The facts and their text.
void Print(const Verb& verb, const Json& facts, bool json);

} // namespace VeskTool
