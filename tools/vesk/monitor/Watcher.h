// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/monitor/Screen.h"
#include "tools/vesk/session/RemoteSession.h"
#include "tools/vesk/verbs/Changes.h"

#include <memory>
#include <optional>

namespace VeskTool {

/// Keeps a view of a plant up to date.
class Watcher {
public:
    /// `slave`: the one whose data are shown; the first one without.
    Watcher(RemoteSession& session, std::optional<unsigned int> slave);

    /// Lets the session go on, and asks for what the plant does not tell by itself, a few times a second.
    void Look();

    /// The same until everything is there once.
    void LookOnce();

    /// Another slave, or another place in its data or the messages.
    void Take(Key key);

    const View& Shown() const { return _view; }

private:
    /// The bytes of one direction, and when each of them changed.
    struct Direction {
        void Take(const std::vector<unsigned char>& now);
        WatchedBytes Watched() const;

        std::vector<unsigned char> bytes;
        std::vector<std::optional<System::DateTime>> changed;
        bool known = false;
    };

    /// What arrives; the answers may come when the watcher is gone.
    struct Answers {
        Vesk::DBus::PlantStatistics statistics;
        bool counted = false;
        unsigned int slave = 0;
        Direction input;
        Direction output;
    };

    void Ask();
    void Choose(int step);
    void NoteChanges();
    void Scroll(std::size_t& place, bool further, std::size_t step, std::size_t most);

    RemoteSession& _session;
    Changes _changes;
    std::shared_ptr<Answers> _answers = std::make_shared<Answers>();
    std::optional<System::DateTime> _asked;
    bool _seen = false; // what there was at first
    View _view;
};

} // namespace VeskTool
