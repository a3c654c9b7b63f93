// SPDX-License-Identifier: MIT
#pragma once

#include "dbus/Seam.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>

namespace Vesk::DBus {

/// How the service's side of a request ends.
enum class End : std::uint8_t {
    ANSWERED,  ///< the question says how
    TIMED_OUT, ///< the caller's time is over
    LEFT,      ///< the caller has left the bus
};

/// The requests that wait for the seam, in their order. The line has room for so many, and for so many of one
/// caller, so that nobody pushes the others out.
class Line {
public:
    using Answer = std::function<void(Question&, End)>;

    struct Limits {
        std::size_t waiting;
        std::size_t ofOneCaller;
        std::int64_t nanoseconds; // from its call to the end of a request
    };

    Line(Seam& seam, Limits limits) : _seam(seam), _limits(limits) {}

    /// Takes a request; false, and nothing is done, where there is no room. `answer` is called once, from one
    /// of the operations below, or twice: for a request that ends before its question is answered, and then
    /// with ANSWERED once the cycle has given that back, so that what it has done can be undone. `now` is the
    /// cycle's time here and below.
    bool Add(std::string caller, std::unique_ptr<Question> question, Answer answer, std::int64_t now);

    /// Puts in what has no caller and no limit: nobody waits for it.
    void AddDuty(std::unique_ptr<Question> question);

    /// Takes an answer from the seam, ends what has lasted too long and hands over what is next.
    void Advance(std::int64_t now);

    /// Ends the requests of a caller that has left the bus, or of all callers.
    void Leave(const std::string& caller);
    void LeaveAll();

    /// Ends everything with FAILED and `why`.
    void Close(const std::string& why);

    /// No request waits or is with the cycle.
    bool IsEmpty() const { return _waiting.empty() && !_current; }

    /// When the first request ends without an answer; the greatest number without one.
    std::int64_t NextDeadline() const;

private:
    struct Request {
        std::string caller; // empty for a duty
        std::unique_ptr<Question> question;
        Answer answer;
        std::int64_t deadline;
        bool ended = false; // before its question was answered
    };

    template <class Condition>
    void EndThose(const Condition& condition, End end);
    void EndCurrent(End end);

    Seam& _seam;
    Limits _limits;
    std::deque<Request> _waiting;
    std::unique_ptr<Request> _current; // its question is with the seam
};

} // namespace Vesk::DBus
