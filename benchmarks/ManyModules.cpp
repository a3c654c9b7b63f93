// SPDX-License-Identifier: MIT
// Do many modules in one process slow each other down?
#include "benchmarks/Measure.h"
#include "tests/support/RunningMaster.h"

#include "vesk/hostinterface/MasterDpRam.h"

#include <ctime>
#include <thread>

static constexpr int MODULES = 64;
static constexpr int BYTES = Vesk::HostInterface::MasterDpRam::INPUT_AREA_SIZE;

static void Exchange(RunningMaster& master) {
    ++master.in->Data()[0];
    master.Raise(0x03);
    master.Update();
}

static std::vector<std::unique_ptr<RunningMaster>> Masters(int count) {
    std::vector<std::unique_ptr<RunningMaster>> masters;
    for (int i = 0; i < count; ++i) {
        masters.push_back(std::make_unique<RunningMaster>(BYTES));
        masters.back()->PutStatus(0x04, 0, 0, 0);
    }
    return masters;
}

/// One module's exchange against the same with each of the others in turn.
static void InTurn(benchmark::State& state) {
    const auto one = Masters(1);
    const auto many = Masters(MODULES);
    std::size_t next = 0;
    Compare(
        state, {"<= 1.2 x one module's", 1.2, 0}, MODULES, [&] { Exchange(*one[0]); },
        [&] {
            Exchange(*many[next]);
            next = (next + 1) % many.size();
        });
}

/// The processor time of one exchange in each of as many threads as there are masters.
static double InThreads(const std::vector<std::unique_ptr<RunningMaster>>& masters, int exchanges) {
    std::vector<std::thread> threads;
    std::vector<double> took(masters.size());
    for (std::size_t i = 0; i < masters.size(); ++i)
        threads.emplace_back([&, i] {
            const auto processorTime = [] {
                timespec now{};
                ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
                return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
            };
            const double start = processorTime();
            for (int exchange = 0; exchange < exchanges; ++exchange)
                Exchange(*masters[i]);
            took[i] = (processorTime() - start) / exchanges;
        });
    for (std::thread& thread : threads)
        thread.join();
    const auto middle = took.begin() + static_cast<std::ptrdiff_t>(took.size() / 2);
    std::nth_element(took.begin(), middle, took.end());
    return *middle;
}

static void InThreadsOfTheirOwn(benchmark::State& state) {
    constexpr int EXCHANGES = 500;
    const auto one = Masters(1);
    const auto many = Masters(MODULES);
    Samples samples;
    for (auto _ : state) {
        const double alone = InThreads(one, EXCHANGES);
        const double together = InThreads(many, EXCHANGES);
        samples.Add(alone, together);
        state.SetIterationTime(together * 1e-9 * EXCHANGES * MODULES);
    }
    samples.Report(state, {"<= 1.2 x one module's", 1.2, 0});
}

BENCHMARK(InTurn)->Name("full exchange, 64 modules in turn")->UseManualTime();
BENCHMARK(InThreadsOfTheirOwn)->Name("full exchange, 64 modules in threads")->UseManualTime();
