// SPDX-License-Identifier: MIT
#include "dbus/Line.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace Vesk::DBus {

static constexpr std::int64_t NEVER = std::numeric_limits<std::int64_t>::max();

bool Line::Add(std::string caller, std::unique_ptr<Question> question, Answer answer, std::int64_t now) {
    const auto ofCaller = std::ranges::count(_waiting, caller, &Request::caller);
    if (_waiting.size() >= _limits.waiting || static_cast<std::size_t>(ofCaller) >= _limits.ofOneCaller)
        return false;
    _waiting.push_back(
        {std::move(caller), std::move(question), std::move(answer), now + _limits.nanoseconds});
    return true;
}

void Line::AddDuty(std::unique_ptr<Question> question) {
    _waiting.push_front({"", std::move(question), [](Question&, End) {}, NEVER});
}

void Line::Advance(std::int64_t now) {
    if (auto question = _seam.TakeAnswered()) {
        const auto request = std::move(_current);
        request->answer(*question, End::ANSWERED);
    }
    EndThose([now](const Request& request) { return request.deadline <= now; }, End::TIMED_OUT);
    if (!_seam.IsFree() || _waiting.empty())
        return;
    _current = std::make_unique<Request>(std::move(_waiting.front()));
    _waiting.pop_front();
    _seam.Ask(std::move(_current->question));
}

void Line::Leave(const std::string& caller) {
    EndThose([&](const Request& request) { return request.caller == caller; }, End::LEFT);
}

void Line::LeaveAll() {
    EndThose([](const Request& request) { return !request.caller.empty(); }, End::LEFT);
}

template <class Condition>
void Line::EndThose(const Condition& condition, End end) {
    if (_current && !_current->ended && condition(*_current))
        EndCurrent(end);
    std::vector<Request> over;
    std::erase_if(_waiting, [&](Request& request) {
        const bool is = condition(request);
        if (is)
            over.push_back(std::move(request));
        return is;
    });
    for (Request& request : over)
        request.answer(*request.question, end);
}

void Line::EndCurrent(End end) {
    if (auto question = _seam.Withdraw()) {
        const auto request = std::move(_current);
        request->answer(*question, end);
        return;
    }
    _current->ended = true;
    Question unknown; // the cycle has the other
    _current->answer(unknown, end);
}

void Line::Close(const std::string& why) {
    const auto end = [&why](Request& request) {
        Question failed;
        failed.outcome = Question::Outcome::FAILED;
        failed.why = why;
        request.answer(failed, End::ANSWERED);
    };
    if (const auto question = _seam.TakeAnswered()) // with the cycle's own reason
        std::exchange(_current, nullptr)->answer(*question, End::ANSWERED);
    if (const auto current = std::exchange(_current, nullptr); current && !current->ended)
        end(*current);
    for (Request& request : std::exchange(_waiting, {}))
        end(request);
}

std::int64_t Line::NextDeadline() const {
    std::int64_t next = _current && !_current->ended ? _current->deadline : NEVER;
    for (const Request& request : _waiting)
        next = std::min(next, request.deadline);
    return next;
}

} // namespace Vesk::DBus
