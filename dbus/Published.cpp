// SPDX-License-Identifier: MIT
#include "dbus/Published.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

namespace Vesk::DBus {

static constexpr const char* TIME_IS_OVER = "the application did not answer in its time for requests";

static Line::Limits LimitsIn(const PlantOptions& options) {
    return {options.waitingRequests, options.waitingOfOneClient,
            std::chrono::duration_cast<std::chrono::nanoseconds>(options.requestTime).count()};
}

Published::Published(std::string name, std::string path, std::shared_ptr<Cycle> cycle, SlaveTable slaves,
                     SignalTable signals, const PlantOptions& options)
    : _name(std::move(name)),
      _path(std::move(path)),
      _configurationName(options.configurationName),
      _control(options.control),
      _cycle(std::move(cycle)),
      _slaves(std::move(slaves)),
      _signals(std::move(signals)),
      _facts(_cycle->GetFacts()),
      _requests(_cycle->SeamFor(Question::Kind::MESSAGES), LimitsIn(options)),
      _others(_cycle->SeamFor(Question::Kind::RELEASE), LimitsIn(options)) {}

std::uint64_t Published::WallTime(std::int64_t cycleTime) const {
    const auto now = std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::chrono::system_clock::now().time_since_epoch());
    return static_cast<std::uint64_t>(now.count() - (_cycle->Now() - cycleTime));
}

bool Published::Ask(const std::string& caller, std::unique_ptr<Question> question, Reply reply) {
    return Add(caller, std::move(question),
               [this, reply = std::move(reply)](Question& answered, DBus::End end) mutable {
                   Tell(reply, answered, end);
               });
}

bool Published::Add(const std::string& caller, std::unique_ptr<Question> question, Line::Answer answer) {
    Line& line = question->kind == Question::Kind::MESSAGES ? _requests : _others;
    return line.Add(caller, std::move(question), std::move(answer), _cycle->Now());
}

void Published::Tell(Reply& reply, Question& answered, DBus::End end) {
    // Once; and then it is gone, since the bus may be, too, before the cycle has answered.
    const Reply once = std::exchange(reply, nullptr);
    if (!once || end == DBus::End::LEFT)
        return;
    if (end == DBus::End::TIMED_OUT) {
        _timedOut.Add(1);
        answered.outcome = Question::Outcome::TIMED_OUT;
        answered.why = TIME_IS_OVER;
    }
    once(answered);
}

static std::unique_ptr<Question> About(Question::Kind kind, std::vector<HeldByte> bytes) {
    auto question = std::make_unique<Question>();
    question->kind = kind;
    question->bytes = std::move(bytes);
    return question;
}

bool Published::Hold(const std::string& caller, const std::vector<HeldByte>& bytes, Reply reply) {
    const auto answer = [this, caller, bytes, reply = std::move(reply)](Question& answered,
                                                                        DBus::End end) mutable {
        if (reply)
            EndClaims(bytes);
        if (end == DBus::End::ANSWERED && answered.outcome == Question::Outcome::ANSWERED) {
            if (!reply) { // nobody knows of it
                for (const HeldByte& byte : bytes)
                    _holds.Remove(byte.offset);
                return ReleaseAll(bytes);
            }
            for (const HeldByte& byte : bytes)
                _holds.Add(byte, caller);
        }
        Tell(reply, answered, end);
    };
    for (const HeldByte& byte : bytes)
        _holds.Claim(byte.offset, caller);
    const bool added = Add(caller, About(Question::Kind::HOLD, bytes), answer);
    if (!added)
        EndClaims(bytes);
    return added;
}

void Published::EndClaims(const std::vector<HeldByte>& bytes) {
    for (const HeldByte& byte : bytes)
        _holds.EndClaim(byte.offset);
}

bool Published::Release(const std::string& caller, unsigned short offset, Reply reply) {
    return Add(caller, About(Question::Kind::RELEASE, {{offset, 0, 0}}),
               [this, offset, reply = std::move(reply)](Question& answered, DBus::End end) mutable {
                   if (_holds.Remove(offset) && end != DBus::End::ANSWERED)
                       ReleaseAll({{offset, 0, 0}}); // whoever asked for it has not waited
                   Tell(reply, answered, end);
               });
}

void Published::ReleaseAll(std::vector<HeldByte> bytes) {
    if (!bytes.empty())
        _others.AddDuty(About(Question::Kind::RELEASE, std::move(bytes)));
}

void Published::Advance() {
    _requests.Advance(_cycle->Now());
    _others.Advance(_cycle->Now());
}

void Published::End(const std::string& why) {
    _requests.Close(why);
    _others.Close(why);
}

std::int64_t Published::UntilDeadline() const {
    const std::int64_t next = std::min(_requests.NextDeadline(), _others.NextDeadline());
    return next == std::numeric_limits<std::int64_t>::max() ? -1
                                                            : std::max<std::int64_t>(next - _cycle->Now(), 0);
}

bool Published::Refresh(Facts& before) {
    const Facts& newest = _cycle->GetFacts();
    if (newest == _facts)
        return false;
    before = std::exchange(_facts, newest);
    return true;
}

void Published::Leave(const std::string& caller) {
    _requests.Leave(caller);
    _others.Leave(caller);
    ReleaseAll(_holds.TakeOf(caller));
}

void Published::LeaveAll() {
    _requests.LeaveAll();
    _others.LeaveAll();
    ReleaseAll(_holds.TakeOf(""));
}

} // namespace Vesk::DBus
