// SPDX-License-Identifier: MIT
#include "tools/vesk/files/DatabaseFile.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Clock.h"
#include "tools/vesk/text/Console.h"
#include "tools/vesk/text/Text.h"
#include "tools/vesk/verbs/Changes.h"
#include "tools/vesk/verbs/StartUp.h"
#include "tools/vesk/verbs/Verbs.h"

#include <iostream>

namespace VeskTool {

static constexpr double WATCH_SECONDS = 1;

static Json AnswerStatus(Session& session, const Json& arguments) {
    return ExamineStartUp(session, arguments);
}

// Examining takes the session as far as the module lets it; it needs nothing.
static constexpr Verb STATUS{Need::NOTHING, AnswerStatus, StartUpText};

/// Shows the status each second: on a terminal over and over in the same place, otherwise one after the
/// other, as JSON a line each.
[[noreturn]] static int Watch(Session& session, const VerbCommand& command) {
    const bool redraw = Console::Standard().draws && !command.PrintsJson();
    const auto show = [&](Json facts) {
        facts["link"] = LinkOptions::Opened();
        facts["time"] = UniversalTime();
        std::cout << (redraw ? "\033[H\033[J" : "")
                  << (command.PrintsJson()
                          ? JsonLine(facts)
                          : LocalTime() + "\n" + StartUpText(facts, Paint::Standard()) + "\n")
                  << std::flush;
    };
    WatchStartUp(session, command.arguments, WATCH_SECONDS, show);
}

/// Shows what changes at an application's module, a line each.
[[noreturn]] static int WatchChanges(Session& session, const VerbCommand& command) {
    Changes changes(session);
    while (true)
        for (Json& change : changes.Next()) {
            change["link"] = LinkOptions::Opened();
            std::cout << (command.PrintsJson() ? JsonLine(change)
                                               : LocalTime() + " " + Changes::Text(change) + "\n")
                      << std::flush;
        }
}

Action AddStatus(CLI::App& app) {
    const auto command = std::make_shared<VerbCommand>(app, STATUS);
    VerbCommand* const self = command.get();
    app.add_flag_callback(
        "--watch",
        [self] {
            self->run = [self](Session& session) {
                return session.Owns() ? Watch(session, *self) : WatchChanges(session, *self);
            };
        },
        "Look again each second until the program is interrupted, over the end of a module too; at a plant a "
        "line with the time whenever something changes");
    command->AddConfig("Configuration database (.ddb) or bus description (.toml) that the module should hold",
                       [self](const std::string& path) {
                           self->arguments["checksum"] = ChecksumText(LoadDatabaseFile(path)->Checksum());
                       });
    return [command] { return command->Execute(); };
}

} // namespace VeskTool
