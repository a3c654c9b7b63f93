// SPDX-License-Identifier: MIT
#include "vesk/system/DateTime.h"

#include <atomic>
#include <chrono>

namespace System {

static std::int64_t MonotonicNanoseconds() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

static std::atomic<std::int64_t (*)()> source = MonotonicNanoseconds;

DateTime DateTime::Now() {
    return DateTime(source.load(std::memory_order_relaxed)());
}

void DateTime::SetSource(std::int64_t (*nanoseconds)()) {
    source.store(nanoseconds ? nanoseconds : MonotonicNanoseconds, std::memory_order_relaxed);
}

} // namespace System
