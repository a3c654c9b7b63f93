// SPDX-License-Identifier: MIT
#include "tools/vesk/monitor/Monitor.h"

#include "tools/vesk/session/PublishedPlants.h"
#include "tools/vesk/session/Session.h"
#include "tools/vesk/text/Failure.h"
#include "tools/vesk/text/Numbers.h"

#ifdef VESK_WITH_DBUS
#include "tools/vesk/monitor/Watcher.h"
#endif

#include <iostream>
#include <optional>

namespace VeskTool {

namespace {

constexpr unsigned int HIGHEST = 126;

struct MonitorOptions {
    std::optional<unsigned int> slave;
    bool once = false;
};

#ifdef VESK_WITH_DBUS

constexpr int REFRESH_MILLISECONDS = 100;
constexpr std::size_t ONCE_ROWS = 24;
constexpr std::size_t ONCE_COLUMNS = 80;
constexpr const char* KEYS = " q ends   left, right: the slave   up, down: messages   page up, down: data ";

void Monitor(RemoteSession& session, const MonitorOptions& options) {
    Watcher watcher(session, options.slave);
    if (options.once) {
        watcher.LookOnce();
        auto page = Page(watcher.Shown(), ONCE_ROWS, ONCE_COLUMNS, "");
        page.pop_back(); // the keys
        while (page.back().empty())
            page.pop_back();
        for (const Row& row : page) {
            const std::string text = TextOf(row);
            std::cout << text.substr(0, text.find_last_not_of(' ') + 1) << "\n";
        }
        return;
    }
    Screen screen;
    for (Key key = Key::NONE; key != Key::QUIT; key = Screen::Next(REFRESH_MILLISECONDS)) {
        watcher.Take(key);
        watcher.Look();
        screen.Show(Page(watcher.Shown(), screen.Rows(), screen.Columns(), KEYS));
    }
}

#endif

/// The plant that is named, or the only one.
std::unique_ptr<Session> OpenPlant() {
    if (!PublishedPlants::Named().empty())
        return PublishedPlants::Open(PublishedPlants::Named());
    const auto plants = PublishedPlants::All();
    if (plants.size() == 1)
        return PublishedPlants::Open(plants.front().name);
    throw Failure(plants.empty() ? "No plant is published as anything"
                                 : "More than one plant is published; name one with --plant");
}

} // namespace

Action AddMonitor(CLI::App& app) {
    const auto options = std::make_shared<MonitorOptions>();
    app.add_option_function<std::string>(
           "--slave",
           [options](const std::string& text) { options->slave = ParseNumber("--slave", text, 0, HIGHEST); },
           "The slave whose data are shown at first (the first one)")
        ->type_name("ADDRESS");
    app.add_flag("--once", options->once, "Print it once, as text");
    return [options] {
        const auto session = OpenPlant();
#ifdef VESK_WITH_DBUS
        Monitor(dynamic_cast<RemoteSession&>(*session), *options);
#endif
        return DONE;
    };
}

} // namespace VeskTool
