// SPDX-License-Identifier: MIT
// What does a cycle cost in which everything moves: an event, output data, input data and the register that
// gives both areas back? Once with one segment each way, once with as many as a full bus has slaves, and once
// with little data.
#include "benchmarks/Accesses.h"
#include "benchmarks/Measure.h"
#include "tests/support/RunningMaster.h"

namespace MasterDpRam = Vesk::HostInterface::MasterDpRam;

/// `bytes` bytes each way in `segments` segments each way, against the bare accesses.
static void Exchange(benchmark::State& state, int bytes, int segments, int batch, const Target& target,
                     RunningMaster::Arrays arrays = RunningMaster::Arrays::ONE) {
    const OccupiedHeap occupied;
    RunningMaster master(bytes, segments, arrays);
    master.PutStatus(0x04, 0, 0, 0); // output data
    const auto raise = [&] {
        ++master.LastInput(); // so that every byte is looked at
        master.Raise(0x03);
    };
    Compare(
        state, target, batch,
        [&] {
            raise();
            benchmark::DoNotOptimize(master.VelmoIrq_n().Invoke());
            Accesses::Exchange(master.DpRam(), master.in->Data(), master.out->Data(), bytes);
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
    Exchange(state, MasterDpRam::INPUT_AREA_SIZE, 125, 10, {"<= 1.25 x limit", 1.25, 0});
}

static void ManyArrays(benchmark::State& state) {
    Exchange(state, MasterDpRam::INPUT_AREA_SIZE, 125, 10, {"<= 2.0 x limit", 2.0, 0},
             RunningMaster::Arrays::EACH);
}

static void SmallExchange(benchmark::State& state) {
    Exchange(state, 64, 1, 200, {"<= limit + 60 ns", 1, 60});
}

BENCHMARK(OneSegment)->Name("full exchange, 1 segment each way")->UseManualTime();
BENCHMARK(ManySegments)->Name("full exchange, 125 segments each way")->UseManualTime();
BENCHMARK(ManyArrays)->Name("full exchange, 125 arrays each way")->UseManualTime();
BENCHMARK(SmallExchange)->Name("small exchange, 64 bytes each way")->UseManualTime();
