// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/TimeSpan.h"

#include <cstdint>

namespace System {

/// A moment on a clock that only moves forward. This is the one place where the library asks for the time.
class DateTime {
public:
    static DateTime Now();

    /// Replaces the clock, for the whole process: a function that returns nanoseconds from any start, or null
    /// for the system's monotonic clock. A test lets ten seconds pass in no time this way.
    static void SetSource(std::int64_t (*nanoseconds)());

    /// The time that passed from `earlier` to this moment.
    TimeSpan operator-(const DateTime& earlier) const {
        return TimeSpan(_nanoseconds - earlier._nanoseconds);
    }

private:
    explicit DateTime(std::int64_t nanoseconds) : _nanoseconds(nanoseconds) {}

    std::int64_t _nanoseconds;
};

} // namespace System
