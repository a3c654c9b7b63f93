// SPDX-License-Identifier: MIT
#include "tools/vesk/shell/Shell.h"

#include "tools/vesk/documents/CommandTree.h"
#include "tools/vesk/explain/Telling.h"
#include "tools/vesk/files/DatabaseFile.h"
#include "tools/vesk/shell/LineSource.h"
#include "tools/vesk/shell/Words.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Interruption.h"
#include "tools/vesk/text/Series.h"
#include "tools/vesk/text/Text.h"
#include "tools/vesk/verbs/Verb.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <iostream>
#include <sstream>

namespace VeskTool {

namespace {

/// Of two exit statuses the one that matters more.
int Worse(int one, int other) {
    constexpr std::array order{DONE, NEGATIVE, FAILED, USAGE};
    const auto rank = [&](int status) { return std::find(order.begin(), order.end(), status); };
    return rank(one) < rank(other) ? other : one;
}

class Shell {
public:
    Shell(Session& session, Series& series, AddLineCommands addCommands)
        : _session(session), _series(series), _addCommands(addCommands) {}

    /// Takes lines until they end; the exit status.
    int Run();

private:
    std::optional<std::string> NextLine();
    int Execute(const std::string& line, const Telling& telling, int& failed);
    void AddCommands(CLI::App& program, int& status, int& failed);
    void AddOwnCommands(CLI::App& program, int& status);
    void Help(CLI::App& program, const std::vector<std::string>& words) const;
    void Say(const Json& facts, const std::string& text) const;
    std::vector<std::string> WordsAfter(const std::string& beginning);

    Session& _session;
    Series& _series;
    AddLineCommands _addCommands;
    bool _person = LineSource::Person();
    std::unique_ptr<LineSource> _source =
        LineSource::Standard([this](const std::string& beginning) { return WordsAfter(beginning); });
    int _number = 0; // of the line
    bool _ended = false;
};

/// A person goes on after a failure, even one that ends the life, and after Ctrl-C.
int Shell::Run() {
    if (_person)
        _session.OutliveInterrupts();
    if (_person && !_series.PrintsJson())
        std::cout << "One life with the " << LinkOptions::Opened()
                  << "; help shows the commands, quit ends it.\n"
                  << std::flush;
    int worst = DONE;
    while (!_ended) {
        _series.Begin(Json::object());
        std::optional<std::string> line;
        int failed = FAILED;
        const auto wait = [&] {
            line = NextLine();
            _ended = !line;
            return DONE;
        };
        int status = Telling(_series.PrintsJson()).Do(wait, failed);
        if (line) {
            ++_number;
            const Telling telling(_series.PrintsJson(),
                                  _person ? "" : "line " + std::to_string(_number) + ": ");
            status = telling.Do([&] { return Execute(*line, telling, failed); }, failed);
        }
        if (status > SIGNALLED && !(_person && status == SIGNALLED + SIGINT))
            return status;
        if (!_person && !_session.Alive())
            return FAILED;
        worst = Worse(worst, status);
    }
    return _person ? DONE : worst;
}

std::optional<std::string> Shell::NextLine() {
    try {
        return _source->Next([this] {
            if (_session.Alive())
                _session.Update();
            else
                StopIfSignalled([](int) { return "after the life of the module"; });
        });
    } catch (const Interrupted& interrupted) {
        if (!_person || interrupted.Signal() != SIGINT)
            throw;
        return ""; // the line that was begun is given up
    }
}

int Shell::Execute(const std::string& line, const Telling& telling, int& failed) {
    _series.Begin({{"line", _number}, {"command", line}});
    int status = DONE;
    CLI::App program("The commands, one in a line.");
    try {
        std::vector<std::string> words = SplitWords(line);
        if (words.empty())
            return DONE;
        AddCommands(program, status, failed);
        std::reverse(words.begin(), words.end()); // as the parser takes them
        program.parse(std::move(words));
        std::cout << std::flush;
    } catch (const CLI::ParseError& error) {
        return telling.Usage(error, program);
    }
    return status;
}

void Shell::AddCommands(CLI::App& program, int& status, int& failed) {
    program.require_subcommand(1);
    AddOwnCommands(program, status);
    _addCommands(program, status, failed);
}

void Shell::AddOwnCommands(CLI::App& program, int& status) {
    const auto add = [&](const char* name, const char* help, const std::function<void()>& act) {
        CLI::App& command = *program.add_subcommand(name, help)->group("The shell");
        command.callback([act, &status] {
            act();
            status = DONE;
        });
        return &command;
    };
    const auto words = std::make_shared<std::vector<std::string>>();
    add("help", "Show the commands, or what one of them does.",
        [this, &program, words] { Help(program, *words); })
        ->add_option("COMMAND", *words, "One of them")
        ->type_name("");
    add("restart", "Begin another life: the module is reset, and what was set is gone.", [this] {
        if (!_session.Owns())
            _session.Own(); // which says whose it is
        _session.Restart();
        Say({{"restarted", true}}, "Another life has begun.\n");
    });
    add("quit", "Leave the module in reset and end.", [this] { _ended = true; })->alias("exit");
}

void Shell::Help(CLI::App& program, const std::vector<std::string>& words) const {
    CLI::App* app = &program;
    for (const std::string& word : words) {
        const auto found = app->get_subcommands(
            [&](const CLI::App* one) { return one->check_name(word) && !one->get_group().empty(); });
        if (found.empty())
            throw CLI::ValidationError("COMMAND", word + " is no command");
        app = found.front();
    }
    // Not App::help, which takes this very command for what is asked about.
    const std::string text =
        app->get_formatter()->make_help(app, Joined(words, " "), CLI::AppFormatMode::Normal);
    Say({{"help", text}}, text);
}

void Shell::Say(const Json& facts, const std::string& text) const {
    std::cout << (_series.PrintsJson() ? JsonText(facts) : text) << std::flush;
}

std::vector<std::string> Shell::WordsAfter(const std::string& beginning) {
    int ignored = DONE;
    CLI::App program;
    AddCommands(program, ignored, ignored);
    const CommandTree tree(program);
    const CommandTree* command = &tree;
    std::istringstream before(beginning);
    for (std::string word; before >> word;)
        if (const CommandTree* const next = command->Find(word); next && word != "help")
            command = next;
    std::vector<std::string> words = command->Words();
    const std::vector<std::string> options = command->OptionNames();
    words.insert(words.end(), options.begin(), options.end());
    return words;
}

struct ShellOptions {
    LinkOptions link;
    SharedBus bus;
    bool json = false;
};

} // namespace

Action AddShell(CLI::App& app, AddLineCommands addCommands) {
    const auto options = std::make_shared<ShellOptions>();
    options->link.AddTo(app);
    app.add_option_function<std::string>(
           "--config", [options](const std::string& path) { options->bus = LoadDescribedBus(path); },
           "Bus description (.toml) or configuration database (.ddb) of the module: names, and where set "
           "puts its bytes")
        ->type_name("FILE");
    AddJson(app, options->json);
    return [options, addCommands] {
        Series series(options->json);
        const auto live = [&] {
            const SharedBus bus = KnownBus(options->link, options->bus);
            const auto session = OpenSession(options->link, nullptr, bus);
            const SharedLife life(*session, options->link, bus);
            return Shell(*session, series, addCommands).Run();
        };
        return Telling(options->json).Do(live, FAILED);
    };
}

} // namespace VeskTool
