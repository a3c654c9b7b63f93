// SPDX-License-Identifier: MIT
#pragma once

#include "dbus/Question.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>

namespace Vesk::DBus {

/// Where the service's thread hands one question at a time to the application's thread, and gets it back with
/// its answer. There is no lock: whoever the phase names has the question.
class Seam {
public:
    // ---- the service

    /// Nothing is asked; Ask may follow.
    bool IsFree() const { return _phase.load(std::memory_order_relaxed) == Phase::FREE; }

    void Ask(std::unique_ptr<Question> question) {
        _question = std::move(question);
        _phase.store(Phase::ASKED, std::memory_order_release);
    }

    /// The question with its answer; null while there is none.
    std::unique_ptr<Question> TakeAnswered() {
        if (_phase.load(std::memory_order_acquire) != Phase::ANSWERED)
            return nullptr;
        return TakeBack();
    }

    /// The question, if the cycle has not begun with it; null otherwise.
    std::unique_ptr<Question> Withdraw() {
        Phase asked = Phase::ASKED;
        if (!_phase.compare_exchange_strong(asked, Phase::ANSWERED, std::memory_order_acquire))
            return nullptr;
        return TakeBack();
    }

    // ---- the cycle

    /// Whether a question waits to be taken; what a cycle without one costs.
    bool IsAsked() const { return _phase.load(std::memory_order_relaxed) == Phase::ASKED; }

    /// The question, which is the cycle's until it is answered; null if it was withdrawn.
    Question* Take() {
        Phase asked = Phase::ASKED;
        if (!_phase.compare_exchange_strong(asked, Phase::TAKEN, std::memory_order_acquire))
            return nullptr;
        return _question.get();
    }

    void Answer() { _phase.store(Phase::ANSWERED, std::memory_order_release); }

private:
    enum class Phase : std::uint8_t { FREE, ASKED, TAKEN, ANSWERED };

    std::unique_ptr<Question> TakeBack() {
        auto question = std::move(_question);
        _phase.store(Phase::FREE, std::memory_order_relaxed);
        return question;
    }

    std::atomic<Phase> _phase{Phase::FREE};
    std::unique_ptr<Question> _question;
};

} // namespace Vesk::DBus
