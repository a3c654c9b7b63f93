// SPDX-License-Identifier: MIT
#include "tools/vesk/session/Cycle.h"

#include "tools/vesk/text/Failure.h"

#include <cerrno>
#include <ctime>
#include <sched.h>
#include <string>
#include <sys/mman.h>
#include <sys/resource.h>
#include <system_error>

namespace VeskTool {

static rlim_t Limit(decltype(RLIMIT_RTPRIO) resource) {
    rlimit limit{};
    getrlimit(resource, &limit);
    return limit.rlim_cur;
}

static void LockMemory() {
    if (mlockall(MCL_CURRENT | MCL_FUTURE) == 0)
        return;
    if (errno != EPERM && errno != ENOMEM)
        throw std::system_error(errno, std::generic_category(), "locking the memory");
    throw Failure(
        "the memory cannot be locked, and a disk would stop the cycle: the limit (RLIMIT_MEMLOCK) is " +
        std::to_string(Limit(RLIMIT_MEMLOCK) / 1024) + " KiB");
}

static int BindToLastProcessor() {
    cpu_set_t processors;
    if (sched_getaffinity(0, sizeof processors, &processors) != 0)
        throw std::system_error(errno, std::generic_category(), "asking for the processors");
    int last = CPU_SETSIZE - 1;
    while (last > 0 && !CPU_ISSET(static_cast<unsigned int>(last), &processors))
        --last;
    CPU_ZERO(&processors);
    CPU_SET(static_cast<unsigned int>(last), &processors);
    if (sched_setaffinity(0, sizeof processors, &processors) != 0)
        throw std::system_error(errno, std::generic_category(), "processor " + std::to_string(last));
    return last;
}

int RunInRealTime(int priority) {
    sched_param parameters{};
    parameters.sched_priority = priority;
    if (sched_setscheduler(0, SCHED_FIFO, &parameters) != 0) {
        if (errno != EPERM)
            throw std::system_error(errno, std::generic_category(), "priority " + std::to_string(priority));
        throw Failure("the real-time priority " + std::to_string(priority) +
                      " is refused: the limit (RLIMIT_RTPRIO) is " + std::to_string(Limit(RLIMIT_RTPRIO)));
    }
    LockMemory();
    return BindToLastProcessor();
}

void Cycle::Do(const std::function<void()>& work) {
    AwaitNext();
    const auto start = Clock::now();
    if (_start != Clock::time_point())
        _period.Add(start - _start);
    _start = start;
    work();
    _work.Add(Clock::now() - start);
}

/// Until that time on the clock: a time from now on would be later by whatever comes between.
void Cycle::AwaitNext() {
    const auto now = Clock::now();
    if (_next == Clock::time_point())
        _next = now;
    for (_next += PERIOD; _next < now; _next += PERIOD)
        ++_missed;
    const auto nanoseconds = std::chrono::nanoseconds(_next.time_since_epoch()).count();
    const timespec until{static_cast<std::time_t>(nanoseconds / 1'000'000'000),
                         static_cast<long>(nanoseconds % 1'000'000'000)};
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr); // a signal is looked at in any case
}

} // namespace VeskTool
