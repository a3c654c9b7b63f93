// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/text/Histogram.h"

#include <chrono>
#include <functional>

namespace VeskTool {

/// Lets this thread have a processor at once whenever it wants one, and nothing that it touches wait for a
/// disk: SCHED_FIFO with that priority, 1 to 99, bound to the last processor that it may use, and all memory
/// of the process locked. The number of that processor. Failure that names the right which is missing.
int RunInRealTime(int priority);

/// A cycle of one millisecond, and what became of it.
class Cycle {
public:
    /// Waits for the next millisecond, and does the work.
    void Do(const std::function<void()>& work);

    /// From the start of the work to its next start.
    const Histogram& Period() const { return _period; }

    /// From the start of the work to its end.
    const Histogram& Work() const { return _work; }

    /// Milliseconds that began while the one before was still busy.
    std::uint64_t Missed() const { return _missed; }

private:
    using Clock = std::chrono::steady_clock;

    static constexpr std::chrono::milliseconds PERIOD{1};

    void AwaitNext();

    Clock::time_point _next{};  // when the work is due; the epoch before the first time
    Clock::time_point _start{}; // of the last work
    Histogram _period, _work;
    std::uint64_t _missed = 0;
};

} // namespace VeskTool
