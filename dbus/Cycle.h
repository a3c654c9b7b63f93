// SPDX-License-Identifier: MIT
#pragma once

#include "dbus/Facts.h"
#include "dbus/Histogram.h"
#include "dbus/Latest.h"
#include "dbus/Seam.h"

#include "vesk/system/DateTime.h"

#include <exception>
#include <functional>
#include <memory>
#include <vector>

namespace Vesk::DBus {

/// The application's side of the seam: updates the module, measures that, and answers what is asked. Update
/// and the operations beside it are the application's thread's; the others may be called from the service's.
///
/// An Update without a question costs that of the module, two atomics and a few comparisons; it allocates
/// nothing, takes no lock and asks the system for nothing but the time, twice, where it measures.
class Cycle : public std::enable_shared_from_this<Cycle> {
public:
    using Vt22Module = Modules::DPVM::Vt22Module;

    /// `wake` tells the service that there is an answer or a failure; it must not wait.
    static std::shared_ptr<Cycle> Create(std::shared_ptr<Vt22Module> master, bool measures,
                                         std::function<void()> wake);

    // ---- the application

    /// What master->Update() throws passes through. InvalidOperationException without a module.
    void Update() {
        if (_requests.IsAsked())
            Begin();
        if (_others.IsAsked())
            AnswerOther();
        if (!_measures)
            return Step(UNKNOWN);
        const std::int64_t begun = Now();
        Step(begun);
        Measure(begun, Now());
    }

    /// Goes on with another module object, or lets go of the one that it has.
    void SetMaster(std::shared_ptr<Vt22Module> master);

    // ---- the service

    /// Where questions of that kind are asked. Requests to the module have a seam of their own: they last as
    /// long as the module takes, and what the cycle answers by itself does not wait for them.
    Seam& SeamFor(Question::Kind kind) { return kind == Question::Kind::MESSAGES ? _requests : _others; }

    /// The newest facts, for one reader.
    const Facts& GetFacts() { return _latest.Get(); }

    struct Statistics {
        const Counter& updates;
        const Counter& interrupts;
        const Counter& messages;
        const Counter& timeOuts;
        const Histogram& updateTime;
        const Histogram& period;
    };

    Statistics GetStatistics() const {
        return {_updates, _interrupts, _messages, _timeOuts, _updateTime, _period};
    }

    /// Nanoseconds since this object was made.
    std::int64_t Now() const { return (System::DateTime::Now() - _origin).Nanoseconds(); }

protected:
    Cycle(bool measures, std::function<void()> wake);

private:
    class Answerer;

    static constexpr int NO_STATE = -1;
    static constexpr std::int64_t UNKNOWN = -1;

    void Step(std::int64_t begun);
    void Measure(std::int64_t begun, std::int64_t ended);
    void NoteChange();
    void NoteFailure(const std::exception_ptr& thrown) noexcept;
    void CountMessages();

    void Begin();
    void AnswerOther();
    void Perform(Question& question);
    bool IsReady(Question& question) const;
    void TakeSnapshot(Question& question);
    void Hold(const std::vector<HeldByte>& bytes);
    void Release(const std::vector<HeldByte>& bytes);
    void HoldAgain();
    void Restore(unsigned short offset);
    void Send();
    void OnAnswer(Mailbox::IResponse& response);
    void Finish(Question::Outcome outcome, std::string why = {});
    void Fail(const std::string& why);

    const bool _measures;
    const System::DateTime _origin = System::DateTime::Now();
    std::shared_ptr<Vt22Module> _master;
    const unsigned int* _masterInterrupts = nullptr;
    Seam _requests;
    Seam _others;
    int _seenState = NO_STATE;
    unsigned int _seenReports = 0;
    unsigned int _seenInterrupts = 0;
    unsigned int _seenMessages = 0;
    std::int64_t _begun = UNKNOWN;   // the Update before
    std::int64_t _heardOf = UNKNOWN; // the last Update in which the module had interrupted

    Counter _updates;
    Counter _interrupts;
    Counter _messages;
    Counter _timeOuts;
    Histogram _updateTime;
    Histogram _period;

    Facts _facts;
    Latest<Facts> _latest;

    Question* _question = nullptr; // whose requests the module is sent
    std::size_t _request = 0;      // the one of them that is with it
    unsigned int _ticket = 0;      // of that request; answers to older ones are nobody's
    std::vector<HeldByte> _held;   // by offset; without a bit where nothing is held
    std::function<void()> _wake;
};

} // namespace Vesk::DBus
