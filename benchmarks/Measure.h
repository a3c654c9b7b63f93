// SPDX-License-Identifier: MIT
#pragma once

#include "benchmarks/Instructions.h"

#include <benchmark/benchmark.h>

#include <alloca.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <memory>
#include <vector>

/// How much something may cost: `factor` times its limit and `extra` more.
struct Target {
    const char* text;
    double factor;
    double extra;
};

/// What was measured of one thing, sample after sample.
class Samples {
public:
    void Add(double limit, double ours);

    /// Gives the medians to Google Benchmark as the counters "limit", "ours", "ratio" and "over", which is by
    /// how much the target was missed, and negative where it was met. The pairs are compared one by one,
    /// since the speed of a machine changes while it measures.
    void Report(benchmark::State& state, const Target& target) const;

private:
    struct Pair {
        double limit;
        double ours;
    };

    std::vector<Pair> _pairs;
};

template <class Callable>
double NanosecondsEach(int calls, Callable& callable) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < calls; ++i)
        callable();
    const std::chrono::duration<double, std::nano> passed = std::chrono::steady_clock::now() - start;
    return passed.count() / calls;
}

/// Takes chunks of each size from the heap, another number of them each time, so that what is allocated
/// afterwards has another place in each repetition: measured, the place alone is worth 18 ns of 78.
class OccupiedHeap {
public:
    OccupiedHeap() {
        static unsigned int chunks = 0;
        chunks = (chunks + 7) % 32;
        for (std::size_t size = 16; size <= 1024; size += 16)
            for (unsigned int i = 0; i < chunks; ++i)
                _chunks.push_back(std::make_unique<char[]>(size));
    }

private:
    std::vector<std::unique_ptr<char[]>> _chunks;
};

/// Calls `callable` with the stack `bytes` further on.
template <class Callable>
__attribute__((noinline)) void CallFurtherOn(std::size_t bytes, Callable&& callable) {
    benchmark::DoNotOptimize(alloca(bytes));
    callable();
}

/// Measures the bare `limit` and `ours` in turn, `batch` calls of each at a time and each first every other
/// time, so that whatever else the machine does hits both. The stack moves through a page meanwhile: where it
/// meets the DPRAM in the low bits of their addresses, a processor takes one for the other and waits.
template <class Limit, class Ours>
void Compare(benchmark::State& state, const Target& target, int batch, Limit&& limit, Ours&& ours) {
    Samples samples;
    bool limitFirst = false;
    std::size_t place = 0;
    for (auto _ : state) {
        if (Instructions::counted) {
            const int calls = std::min(batch, 100);
            Instructions::Count(calls, limit);
            Instructions::Count(calls, ours);
            state.counters["calls"] = calls;
            state.SetIterationTime(1); // enough: the count is the same every time
            continue;
        }
        limitFirst = !limitFirst;
        place = (place + 208) % 4096; // comes by every sixteenth byte
        CallFurtherOn(place, [&] {
            double limitTook = limitFirst ? NanosecondsEach(batch, limit) : 0;
            const double oursTook = NanosecondsEach(batch, ours);
            if (!limitFirst)
                limitTook = NanosecondsEach(batch, limit);
            samples.Add(limitTook, oursTook);
            state.SetIterationTime(oursTook * batch * 1e-9);
        });
    }
    samples.Report(state, target);
}
