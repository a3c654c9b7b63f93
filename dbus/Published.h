// SPDX-License-Identifier: MIT
#pragma once

#include "dbus/Cycle.h"
#include "dbus/Holds.h"
#include "dbus/Line.h"
#include "dbus/SlaveTable.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>

namespace Vesk::DBus {

/// One module as the service's thread has it, on the bus or not. The application's thread has its end of the
/// cycle, and says once that it closes.
class Published {
public:
    /// Says to a caller how its request has ended.
    using Reply = std::function<void(Question&)>;

    Published(std::string name, std::string path, std::shared_ptr<Cycle> cycle, SlaveTable slaves,
              SignalTable signals, const PlantOptions& options);

    const std::string& Name() const { return _name; }

    const std::string& Path() const { return _path; }

    const std::string& ConfigurationName() const { return _configurationName; }

    bool LetsControl() const { return _control; }

    const SlaveTable& Slaves() const { return _slaves; }

    const SignalTable& Signals() const { return _signals; }

    const Facts& GetFacts() const { return _facts; }

    const Holds& GetHolds() const { return _holds; }

    Cycle::Statistics GetStatistics() const { return _cycle->GetStatistics(); }

    /// Requests of clients that were not answered in their time.
    const Counter& TimedOut() const { return _timedOut; }

    /// The moment of the cycle's clock, and when this object was made, as nanoseconds since the start of
    /// 1970.
    std::uint64_t WallTime(std::int64_t cycleTime) const;

    std::uint64_t Since() const { return WallTime(0); }

    /// Lets a question wait for the cycle. `reply` is called once, with an outcome of its own for what ends
    /// before, and not for a caller that has left. False, with no reply, where there is no room.
    bool Ask(const std::string& caller, std::unique_ptr<Question> question, Reply reply);

    /// The same for bytes that `caller` wants held, or anybody wants released: the book is kept.
    bool Hold(const std::string& caller, const std::vector<HeldByte>& bytes, Reply reply);
    bool Release(const std::string& caller, unsigned short offset, Reply reply);

    /// Goes on with what waits.
    void Advance();

    /// Nanoseconds until a request ends without an answer; negative where none waits.
    std::int64_t UntilDeadline() const;

    /// Looks at the facts anew; true where they have changed, and then `before` has the old ones.
    bool Refresh(Facts& before);

    /// A caller has left the bus, or all have: their requests end, and what they hold is released.
    void Leave(const std::string& caller);
    void LeaveAll();

    /// The application, in any thread: there will be no Update any more.
    void Close() { _closed = true; }

    bool IsClosed() const { return _closed; }

    /// The service, then: all requests end with an error.
    void End(const std::string& why);

private:
    bool Add(const std::string& caller, std::unique_ptr<Question> question, Line::Answer answer);
    void Tell(Reply& reply, Question& answered, DBus::End end);
    void EndClaims(const std::vector<HeldByte>& bytes);
    void ReleaseAll(std::vector<HeldByte> bytes);

    const std::string _name;
    const std::string _path;
    const std::string _configurationName;
    const bool _control;
    const std::shared_ptr<Cycle> _cycle;
    const SlaveTable _slaves;
    const SignalTable _signals;
    Facts _facts;
    Line _requests; // to the module
    Line _others;   // which do not wait for it
    Holds _holds;
    Counter _timedOut;
    std::atomic<bool> _closed{false};
};

} // namespace Vesk::DBus
