// SPDX-License-Identifier: MIT
// What does it cost to update a module that is published: with nobody asking, with the time measured, and
// while somebody takes a snapshot of all its data?
#include "benchmarks/Measure.h"
#include "dbus/Cycle.h"
#include "tests/support/RunningMaster.h"

#include "vesk/hostinterface/MasterDpRam.h"

#include <cstring>

namespace MasterDpRam = Vesk::HostInterface::MasterDpRam;
using Vesk::DBus::Cycle;
using Vesk::DBus::Question;

static constexpr std::size_t BYTES = MasterDpRam::INPUT_AREA_SIZE;

static std::shared_ptr<Cycle> Publish(RunningMaster& master, bool measures) {
    auto cycle = Cycle::Create(master.Master().shared_from_this(), measures, [] {});
    cycle->Update();
    return cycle;
}

/// What a measured Update asks for beside the module's own.
static void LookAtTheClockTwice() {
    benchmark::DoNotOptimize(System::DateTime::Now());
    benchmark::DoNotOptimize(System::DateTime::Now());
}

static void Nobody(benchmark::State& state, bool measures, const Target& target) {
    RunningMaster master(MasterDpRam::INPUT_AREA_SIZE);
    const auto cycle = Publish(master, measures);
    Compare(
        state, target, 200,
        [&] {
            master.Update();
            if (measures)
                LookAtTheClockTwice();
        },
        [&] { cycle->Update(); });
}

static void Unmeasured(benchmark::State& state) {
    Nobody(state, false, {"<= update + 10 ns", 1, 10});
}

static void Measured(benchmark::State& state) {
    Nobody(state, true, {"<= update, 2 times + 20 ns", 1, 20});
}

/// Against the copies of the bytes; a measured Update is in both.
static void Snapshot(benchmark::State& state) {
    RunningMaster master(MasterDpRam::INPUT_AREA_SIZE);
    const auto cycle = Publish(master, true);
    master.Raise(0x00); // so that the time of the data is known
    cycle->Update();
    Vesk::DBus::Seam& seam = cycle->SeamFor(Question::Kind::SNAPSHOT);
    auto question = std::make_unique<Question>();
    question->kind = Question::Kind::SNAPSHOT;
    question->data.resize(BYTES);
    question->output.resize(BYTES);
    std::vector<unsigned char> input(BYTES);
    std::vector<unsigned char> output(BYTES);
    Compare(
        state, {"<= 1.2 x copies", 1.2, 0}, 50,
        [&] {
            master.Update();
            LookAtTheClockTwice();
            std::memcpy(input.data(), master.in->Data(), BYTES);
            std::memcpy(output.data(), master.out->Data(), BYTES);
            benchmark::ClobberMemory();
        },
        [&] {
            seam.Ask(std::move(question));
            cycle->Update();
            question = seam.TakeAnswered();
        });
}

BENCHMARK(Unmeasured)->Name("idle update, published")->UseManualTime();
BENCHMARK(Measured)->Name("idle update, published and measured")->UseManualTime();
BENCHMARK(Snapshot)->Name("snapshot of 3500 bytes each way")->UseManualTime();
