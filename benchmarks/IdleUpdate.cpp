// SPDX-License-Identifier: MIT
// What does an Update cost in which nothing happens?
#include "benchmarks/Measure.h"
#include "tests/support/RunningMaster.h"

#include "vesk/hostinterface/MasterDpRam.h"

namespace MasterDpRam = Vesk::HostInterface::MasterDpRam;

/// Against the look at the interrupt line, which is the application's.
static void Idle(benchmark::State& state, RunningMaster& master, const Target& target) {
    Compare(
        state, target, 200, [&] { benchmark::DoNotOptimize(master.VelmoIrq_n().Invoke()); },
        [&] { master.Update(); });
}

static void WithoutArea(benchmark::State& state) {
    RunningMaster master(MasterDpRam::INPUT_AREA_SIZE);
    Idle(state, master, {"<= callback + 15 ns", 1, 15});
}

/// The module has handed over the input area and nobody changes a byte of it.
static void Acquire(RunningMaster& master) {
    master.Raise(0x02);
    master.Update(); // writes the new segment and gives the area back
    master.Raise(0x02);
    master.Update();
}

static void WithArea(benchmark::State& state) {
    RunningMaster master(MasterDpRam::INPUT_AREA_SIZE);
    Acquire(master);
    volatile unsigned char& answer = master.DpRam()[MasterDpRam::APPLICATION_INDICATION_COMPANION];
    answer = 0xFF;
    while (answer == 0xFF) // until the empty write, after 2 ms
        master.Update();
    Idle(state, master, {"<= 120 ns", 0, 120});
}

/// The 2 ms before that empty write, in which each Update looks at the clock.
static void BeforeTheEmptyWrite(benchmark::State& state) {
    RunningMaster master(MasterDpRam::INPUT_AREA_SIZE);
    System::DateTime::SetSource([]() -> std::int64_t {
        benchmark::DoNotOptimize(std::chrono::steady_clock::now());
        return 0;
    });
    Acquire(master);
    Idle(state, master, {"<= 120 ns", 0, 120});
    System::DateTime::SetSource(nullptr);
}

BENCHMARK(WithoutArea)->Name("idle update")->UseManualTime();
BENCHMARK(WithArea)->Name("idle update, input area acquired")->UseManualTime();
BENCHMARK(BeforeTheEmptyWrite)->Name("the same, interrupt not yet answered")->UseManualTime();
