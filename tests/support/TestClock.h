// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/DateTime.h"

#include <atomic>
#include <cstdint>

/// The clock of the whole process for as long as it lives: time stands still until it is advanced. One at a
/// time.
class TestClock {
public:
    TestClock() {
        _now = 1'000'000'000;
        System::DateTime::SetSource(Nanoseconds);
    }

    ~TestClock() { System::DateTime::SetSource(nullptr); }

    TestClock(const TestClock&) = delete;
    TestClock& operator=(const TestClock&) = delete;

    void Advance(std::int64_t nanoseconds) { _now += nanoseconds; }

    /// The same clock as a plain function, for the virtual module for example.
    static std::int64_t Nanoseconds() { return _now; }

private:
    inline static std::atomic<std::int64_t> _now;
};
