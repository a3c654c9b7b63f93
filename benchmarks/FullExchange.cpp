// SPDX-License-Identifier: MIT
// What does a cycle cost in which everything moves: an event, output data, input data and the register that
// gives both areas back? Once with one segment each way, once with as many as a full bus has slaves, and once
// with little data.
#include "benchmarks/Accesses.h"
#include "benchmarks/Measure.h"
#include "tests/support/RunningMaster.h"

namespace MasterDpRam = Vesk::HostInterface::MasterDpRam;

/// `bytes` bytes each way in `segments` segments each way, against the bare accesses.
static void Exchange(benchmark::State& state, int bytes, int segments, int batch, const Target& target) {
    const OccupiedHeap occupied;
    RunningMaster master(bytes, segments);
    master.PutStatus(0x04, 0, 0, 0); // output data
    unsigned char* const in = master.in->Data();
    const auto raise = [&] {
        ++in[bytes - 1]; // the last one, so that every byte is looked at
        master.Raise(0x03);
    };
    Compare(
        state, target, batch,
        [&] {
            raise();
            benchmark::DoNotOptimize(master.VelmoIrq_n().Invoke());
            Accesses::Exchange(master.DpRam(), in, master.out->Data(), bytes);
        },
        [&] {
            raise();
            master.Update();
        });
}

static void OneSegment(benchmark::State& state) {
    Exchange(state, MasterDpRam::INPUT_AREA_SIZE, 1, 10, {"<= 1.15 x limit", 1.15, 0});
}

static void ManySegments(benchmark::State& state) {
    Exchange(state, MasterDpRam::INPUT_AREA_SIZE, 125, 10, {"<= 1.5 x limit", 1.5, 0});
}

static void SmallExchange(benchmark::State& state) {
    Exchange(state, 64, 1, 200, {"<= limit + 60 ns", 1, 60});
}

BENCHMARK(OneSegment)->Name("full exchange, 1 segment each way")->UseManualTime();
BENCHMARK(ManySegments)->Name("full exchange, 125 segments each way")->UseManualTime();
BENCHMARK(SmallExchange)->Name("small exchange, 64 bytes each way")->UseManualTime();
