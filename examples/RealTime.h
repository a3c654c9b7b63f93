// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <sched.h>
#include <string>
#include <sys/mman.h>
#include <system_error>

/// Gives this thread a processor at once whenever it wants one, and keeps the process's memory in RAM. The
/// user needs the right to both.
inline void RunInRealTime(int priority) {
    sched_param parameters{};
    parameters.sched_priority = priority;
    if (sched_setscheduler(0, SCHED_FIFO, &parameters) != 0)
        throw std::system_error(errno, std::generic_category(), "priority " + std::to_string(priority));
    if (mlockall(MCL_CURRENT | MCL_FUTURE) != 0)
        throw std::system_error(errno, std::generic_category(), "mlockall");
}
