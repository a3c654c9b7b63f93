// SPDX-License-Identifier: MIT
#include "tools/vesk/monitor/Watcher.h"

#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Clock.h"

#include <algorithm>

namespace VeskTool {

using System::DateTime;

static constexpr double ASK_SECONDS = 0.25;
static constexpr double MARK_SECONDS = 1; // how long what has changed stays marked
static constexpr std::size_t MOST_MESSAGES = 1000;
static constexpr std::size_t DATA_STEP = 10;

/// "12:00:00".
static std::string TimeOfDay() {
    return LocalTime().substr(11, 8);
}

Watcher::Watcher(RemoteSession& session, std::optional<unsigned int> slave)
    : _session(session), _changes(session) {
    _view.name = session.Name();
    _view.slaves = session.Remote().Properties().slaves;
    if (slave)
        _view.slave = *slave;
    else if (!_view.slaves.empty())
        _view.slave = _view.slaves.front().address;
}

void Watcher::Direction::Take(const std::vector<unsigned char>& now) {
    changed.resize(now.size());
    for (std::size_t i = 0; i < now.size(); ++i)
        if (known && (i >= bytes.size() || bytes[i] != now[i]))
            changed[i] = DateTime::Now();
    bytes = now;
    known = true;
}

WatchedBytes Watcher::Direction::Watched() const {
    WatchedBytes watched{bytes, {}};
    watched.changed.reserve(changed.size());
    for (const auto& time : changed)
        watched.changed.push_back(time && SecondsSince(*time) < MARK_SECONDS);
    return watched;
}

void Watcher::Ask() {
    if (!_session.Alive() || (_asked && SecondsSince(*_asked) < ASK_SECONDS))
        return;
    _asked = DateTime::Now();
    if (_answers->slave != _view.slave) {
        _answers = std::make_shared<Answers>();
        _answers->slave = _view.slave;
    }
    auto& plant = _session.Remote();
    plant.GetStatistics([answers = _answers](const Vesk::DBus::PlantStatistics& statistics) {
        answers->statistics = statistics;
        answers->counted = true;
    });
    plant.GetSlaveData(static_cast<unsigned char>(_view.slave),
                       [answers = _answers](const auto& input, const auto& output) {
                           answers->input.Take(input);
                           answers->output.Take(output);
                       });
}

void Watcher::Look() {
    Ask();
    NoteChanges();
    const auto* const properties = _session.Alive() ? &_session.Remote().Properties() : nullptr;
    _view.time = TimeOfDay();
    _view.state = properties ? properties->state : "";
    _view.mode = properties ? (properties->online ? properties->operationMode : "OFFLINE") : "";
    if (properties)
        _view.slaves = properties->slaves;
    _view.statistics = _answers->statistics;
    _view.input = _answers->input.Watched();
    _view.output = _answers->output.Watched();
}

void Watcher::NoteChanges() {
    for (const Json& change : _changes.Next()) {
        if (change["change"] == "failure")
            _view.failure = change["type"].is_null() ? "" : Changes::Text(change);
        if (_seen) // what was so before is no news
            _view.messages.push_back(TimeOfDay() + " " + Changes::Text(change));
        _view.messagesBelow += _view.messagesBelow > 0 ? 1 : 0; // who looks back goes on to see the same
    }
    _seen = true;
    while (_view.messages.size() > MOST_MESSAGES)
        _view.messages.pop_front();
}

void Watcher::LookOnce() {
    _session.Update();
    Ask();
    _session.UpdateUntil([this] { return _answers->counted && _answers->input.known; },
                         "the answer of the plant");
    Look();
}

void Watcher::Take(Key key) {
    switch (key) {
    case Key::NEXT:
        return Choose(1);
    case Key::PREVIOUS:
        return Choose(-1);
    case Key::UP:
        return Scroll(_view.messagesBelow, true, 1, _view.messages.size());
    case Key::DOWN:
        return Scroll(_view.messagesBelow, false, 1, _view.messages.size());
    case Key::PAGE_DOWN:
        return Scroll(_view.dataAbove, true, DATA_STEP, DataRows(_view));
    case Key::PAGE_UP:
        return Scroll(_view.dataAbove, false, DATA_STEP, DataRows(_view));
    case Key::NONE:
    case Key::QUIT:
        break;
    }
}

/// The next slave in that direction, round and round.
void Watcher::Choose(int step) {
    if (_view.slaves.empty())
        return;
    const auto found = std::find_if(_view.slaves.begin(), _view.slaves.end(),
                                    [this](const auto& slave) { return slave.address == _view.slave; });
    const auto count = static_cast<std::ptrdiff_t>(_view.slaves.size());
    const std::ptrdiff_t at = found == _view.slaves.end() ? 0 : found - _view.slaves.begin() + step;
    _view.slave = _view.slaves[static_cast<std::size_t>((at + count) % count)].address;
    _view.dataAbove = 0;
    _asked.reset();
}

void Watcher::Scroll(std::size_t& place, bool further, std::size_t step, std::size_t most) {
    if (further)
        place = place + step < most ? place + step : place;
    else
        place -= std::min(place, step);
}

} // namespace VeskTool
