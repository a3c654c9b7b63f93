// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <limits>
#include <vector>

namespace Vesk::DBus {

/// A number that one thread counts up and any other may read.
class Counter {
public:
    void Add(std::uint64_t more) {
        _value.store(_value.load(std::memory_order_relaxed) + more, std::memory_order_relaxed);
    }

    std::uint64_t Read() const { return _value.load(std::memory_order_relaxed); }

private:
    std::atomic<std::uint64_t> _value{0};
};

/// How long something took, in powers of two: one thread adds, any other may read meanwhile.
class Histogram {
public:
    /// Nanoseconds; 0 counts as 1.
    void Add(std::uint64_t nanoseconds) {
        _buckets[static_cast<std::size_t>(std::bit_width(nanoseconds | 1) - 1)].Add(1);
        _sum.Add(nanoseconds);
        if (nanoseconds < _least.load(std::memory_order_relaxed))
            _least.store(nanoseconds, std::memory_order_relaxed);
        if (nanoseconds > _greatest.load(std::memory_order_relaxed))
            _greatest.store(nanoseconds, std::memory_order_relaxed);
    }

    /// What was added so far.
    struct Reading {
        std::uint64_t count = 0;
        std::uint64_t least = 0; // nanoseconds, as the next two; all 0 while there is none
        std::uint64_t mean = 0;
        std::uint64_t greatest = 0;
        std::vector<std::uint64_t> buckets; // from 2^n to below 2^(n+1), up to the last that is not 0
    };

    Reading Read() const {
        Reading reading;
        for (const Counter& bucket : _buckets)
            reading.buckets.push_back(bucket.Read());
        while (!reading.buckets.empty() && reading.buckets.back() == 0)
            reading.buckets.pop_back();
        for (const std::uint64_t bucket : reading.buckets)
            reading.count += bucket;
        if (reading.count == 0)
            return reading;
        reading.least = _least.load(std::memory_order_relaxed);
        reading.greatest = std::max(reading.least, _greatest.load(std::memory_order_relaxed));
        reading.mean = std::clamp(_sum.Read() / reading.count, reading.least, reading.greatest);
        return reading;
    }

private:
    std::array<Counter, 64> _buckets;
    Counter _sum;
    std::atomic<std::uint64_t> _least{std::numeric_limits<std::uint64_t>::max()};
    std::atomic<std::uint64_t> _greatest{0};
};

} // namespace Vesk::DBus
