// SPDX-License-Identifier: MIT
// How much of the heap does a running master take, beside the application's arrays?
#include "benchmarks/Measure.h"
#include "endurance/Heap.h"
#include "tests/support/RunningMaster.h"

#include "vesk/hostinterface/MasterDpRam.h"

static void Master(benchmark::State& state, int segments) {
    constexpr int BYTES = Vesk::HostInterface::MasterDpRam::INPUT_AREA_SIZE;
    const RunningMaster first(BYTES); // what all masters share
    Samples samples;
    for (auto _ : state) {
        const long before = Heap::Bytes();
        const RunningMaster master(BYTES, segments);
        samples.Add(0, static_cast<double>(Heap::Bytes() - before - 2 * BYTES));
        state.SetIterationTime(1e-2);
    }
    samples.Report(state, {"<= 64 KiB", 0, 64 * 1024});
}

static void OneSegment(benchmark::State& state) {
    Master(state, 1);
}

static void ManySegments(benchmark::State& state) {
    Master(state, 125);
}

BENCHMARK(OneSegment)->Name("bytes of heap, 1 segment each way")->UseManualTime();
BENCHMARK(ManySegments)->Name("bytes of heap, 125 segments each way")->UseManualTime();
