// SPDX-License-Identifier: MIT
#include "endurance/sweep/FaultRuns.h"

#include "endurance/Heap.h"

#include "vesk/hostinterface/MasterDpRam.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <set>

using namespace VirtualModule;

namespace {

using Kind = FaultLife::Kind;
constexpr Outcome OUT_OF_MEMORY{"std::bad_alloc", "", "", ""};

/// This part of the steps of a life are its last ones.
constexpr unsigned LAST_STEPS = 20;

/// A range of values is tried whole if, with the steps, it makes no more runs than this.
constexpr unsigned MOST_OF_A_RANGE = 2'500;

/// Bytes of the heap, file descriptors and mappings of a DPRAM that this process has.
std::array<long, 3> Held() {
    using Entries = std::filesystem::directory_iterator;
    const long bytes = Heap::Bytes();
    const auto descriptors = std::distance(Entries("/proc/self/fd"), Entries());
    long mapped = 0;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        mapped += line.find("velmo-dpram") != std::string::npos ? 1 : 0;
    return {bytes, descriptors, mapped};
}

} // namespace

std::string FaultRun::Text() const {
    const std::string where = life == Kind::MASTER ? "master: " : "firmware: ";
    if (hostFault)
        return where + std::string(hostFault->name) + ", step " + std::to_string(step);
    return where + (allocation != 0 ? "allocation " + std::to_string(allocation) + " fails"
                                    : moduleFaults.front().Text());
}

FaultRuns::FaultRuns() {
    for (const Kind life : {Kind::MASTER, Kind::FIRMWARE}) {
        LiveWell(life); // what the library makes only once is made now
        _good[life] = LiveWell(life);
        Add(life, _good[life]);
    }
}

/// The life runs without a fault, but on the module that can have them, as an honest one counts no steps: the
/// fault that Life arms never strikes.
FaultRuns::Good FaultRuns::LiveWell(Kind kind) {
    constexpr long never = std::numeric_limits<long>::max();
    Good good;
    FaultLife life;
    HostSteps host(life, never);
    Heap::FailAt(never);
    good.ending = life.Run(kind);
    good.allocations = never - Heap::FailAt(0);
    for (std::size_t i = 0; i < COUNTS; ++i)
        good.moduleSteps[i] = life.module.GetModule().Counted(static_cast<Counts>(i));
    for (std::size_t i = 0; i < HOST_STEPS; ++i)
        good.hostSteps[i] = host.Counted(static_cast<HostStep>(i));
    for (unsigned i = 0; i < HostSteps::SIZE; ++i)
        if (host.Touched()[i])
            good.touched.push_back(i);
    // Everything that a life ever touches, at once and each byte twice, and why the module stopped.
    good.bound =
        2 * static_cast<long>(good.touched.size()) + Vesk::HostInterface::MasterDpRam::FatalEvent::BLOCK_SIZE;
    return good;
}

void FaultRuns::Add(Kind life, const Good& good) {
    for (const FaultKind& kind : Faults()) {
        if (life == kind.life)
            _runs.push_back({life, {kind.Usual()}, nullptr, 0, 0, {&kind.Promise()}, true});
        for (unsigned step = 1; step <= good.moduleSteps[static_cast<std::size_t>(kind.counts)]; ++step)
            for (const unsigned value : ValuesOf(kind, good, step))
                for (const unsigned count : std::set<unsigned>{kind.count, 1})
                    _runs.push_back({life, {{kind.id, step, count, value}}, nullptr, 0, 0, kind.outcomes});
    }
    for (const HostFault& fault : HostFaults())
        for (unsigned step = 1; step <= good.hostSteps[static_cast<std::size_t>(fault.at)]; ++step)
            _runs.push_back({life, {}, &fault, step, 0, fault.outcomes});
    for (long allocation = 1; allocation <= good.allocations; ++allocation)
        _runs.push_back({life, {}, nullptr, 0, allocation, {&OUT_OF_MEMORY}});
}

std::vector<unsigned> FaultRuns::ValuesOf(const FaultKind& kind, const Good& good, unsigned step) const {
    const auto& [name, usual, least, most] = kind.values;
    if (name.empty())
        return {0};
    const bool bit = kind.id == FaultId::DPRAM_BIT_HIGH || kind.id == FaultId::DPRAM_BIT_LOW;
    if (bit || kind.id == FaultId::DPRAM_FLICKER) { // another two of the places that matter at each step
        std::set<unsigned> places{usual};
        for (unsigned i = 0; i < 2; ++i) {
            const unsigned offset = good.touched[(step * 2 + i) * 97 % good.touched.size()];
            places.insert(bit ? offset * 8 + (step + i) % 8 : offset);
        }
        return {places.begin(), places.end()};
    }
    std::set<unsigned> values{usual, least, most};
    if ((most - least) * good.moduleSteps[static_cast<std::size_t>(kind.counts)] < MOST_OF_A_RANGE)
        for (unsigned value = least; value <= most; ++value)
            values.insert(value);
    return {values.begin(), values.end()};
}

std::string FaultRuns::Broken(const FaultRun& run) const {
    const auto before = Held();
    const std::string broken = Live(run);
    const auto after = Held();
    if (!broken.empty() || after == before)
        return broken;
    const auto left = [&](std::size_t what) { return std::to_string(after[what] - before[what]); };
    return left(0) + " bytes, " + left(1) + " file descriptors and " + left(2) + " mappings are left";
}

std::string FaultRuns::Live(const FaultRun& run) const {
    const Good& good = _good.at(run.life);
    FaultLife life(run.moduleFaults);
    HostSteps host(life, good.bound);
    try {
        host.Arm(run.hostFault, run.step);
        Heap::FailAt(run.allocation);
        const FaultLife::Ending ending = life.Run(run.life);
        Heap::FailAt(0);
        const auto promised = PromisedOf(run, life.module.GetModule().FaultHasStruck());
        if (std::none_of(promised.begin(), promised.end(),
                         [&](const Outcome* outcome) { return ending.Is(*outcome, good.ending); }))
            return "does not end as promised, but " + ending.Text();
        host.Arm(nullptr, 0);
        const std::string broken = LiveAfterwards(run, life, ending);
        if (!broken.empty() || host.ForeignWrite().empty())
            return broken;
        return "wrote where it must not: " + host.ForeignWrite();
    } catch (const HostSteps::TooManyAccesses&) {
        return "more than " + std::to_string(good.bound) + " bytes accessed in an Update";
    }
}

/// What does not strike, or only when hardly anything is left to be done, changes nothing. The example of a
/// row always strikes.
std::vector<const Outcome*> FaultRuns::PromisedOf(const FaultRun& run, bool struck) const {
    if (run.moduleFaults.empty() || (run.usual && struck))
        return run.promised;
    if (run.usual)
        return {};
    if (!struck)
        return {&Outcomes::SAME_DATA};
    const Fault& fault = run.moduleFaults.front();
    const unsigned steps =
        _good.at(run.life).moduleSteps[static_cast<std::size_t>(KindOf(fault.id, fault.value).counts)];
    auto promised = run.promised;
    if (fault.step + steps / LAST_STEPS >= steps)
        promised.push_back(&Outcomes::SAME_DATA);
    return promised;
}

std::string FaultRuns::LiveAfterwards(const FaultRun& run, FaultLife& life,
                                      const FaultLife::Ending& first) const {
    const FaultLife::Ending& good = _good.at(run.life).ending;
    if (life.HasObject())
        life.GoOn();
    life.module.GetModule().ClearFaults();
    if (life.HasObject()) {
        const FaultLife::Ending again = life.RunAgain();
        const bool usable = again.Is(Outcomes::SAME_DATA, good) ||
                            (first.Is(Outcomes::READ_BACK, good) && again.Is(Outcomes::READ_BACK, good));
        if (!usable)
            return "after " + first.Text() + "\nand a reset, the same object " + again.Text();
    }
    const FaultLife::Ending next = life.Run(run.life);
    return next.Is(Outcomes::SAME_DATA, good) ? ""
                                              : "after " + first.Text() + "\na new object " + next.Text();
}
