// SPDX-License-Identifier: MIT
#include "tests/support/Life.h"

#include "tests/support/ModuleLines.h"

#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/modules/dpvm/CreateHostInterface.h"

#include <limits>

using namespace Vesk::Modules::DPVM;
using VirtualModule::Counts;

static constexpr std::int64_t MILLISECOND = 1'000'000;
/// Nothing in a life takes longer than this without a request in between.
static constexpr std::int64_t PATIENCE = 15'000 * MILLISECOND;
/// And no life is longer; a good one takes a tenth.
static constexpr int MOST_UPDATES = 8'000;

/// An honest module counts nothing, so each life is on one that has a fault, if only one that never strikes:
/// waiting looks at the counts, and from those of its good lives the sweep knows at which steps to strike.
static VirtualModule::Options Counting(VirtualModule::Options options) {
    constexpr unsigned never = std::numeric_limits<unsigned>::max();
    options.faults.push_back({VirtualModule::FaultId::DEAD, never});
    return options;
}

Life::Life(VirtualModule::Flash start, VirtualModule::Options options)
    : flash(std::move(start)), module(flash, TestClock::Nanoseconds, Counting(std::move(options))) {
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;
}

void Life::BeginMaster(Config config) {
    DropObject();
    master = Vt22Module::Create(
        OpenDpRam(), System::Func<void>::Create([this] { online = false; }),
        System::Func<void>::Create([this] { online = true; }),
        System::ArgFunc<OperationMode, void>::Create([this](OperationMode reached) { mode = reached; }),
        std::move(config));
    _object = master.get();
}

void Life::BeginBootloader() {
    DropObject();
    bootloader = Vt22Bootloader::Create(OpenDpRam());
    _object = bootloader.get();
}

void Life::DropObject() {
    _object = nullptr;
    master = nullptr;
    bootloader = nullptr;
    online = false;
    mode = OperationMode::OFFLINE;
    updates = 0;
}

Life::HostInterface Life::OpenDpRam() {
    const auto [irq, reset, boot] = ModuleLines(module);
    HostInterface dpRam = CreateHostInterface(module.DpRamPath(), 0, irq, reset, boot);
    return between ? between(dpRam) : dpRam;
}

void Life::Update(int times) {
    for (int i = 0; i < times; ++i) {
        clock.Advance(MILLISECOND / 4);
        _object->Update();
        ++updates;
    }
}

void Life::UpdateUntil(const std::function<bool()>& reached) {
    const auto events = [this] {
        return module.GetModule().Counted(Counts::REQUESTS) + module.GetModule().Counted(Counts::BOOTS);
    };
    unsigned seen = events();
    std::int64_t since = TestClock::Nanoseconds();
    while (!reached()) {
        const std::int64_t waited = TestClock::Nanoseconds() - since;
        if (waited > PATIENCE || updates > MOST_UPDATES)
            throw WaitsInVain();
        if (waited > 50 * MILLISECOND)
            clock.Advance(8 * MILLISECOND);
        Update();
        if (std::exchange(seen, events()) != events())
            since = TestClock::Nanoseconds();
    }
}

void Life::BringUp(Config config) {
    BeginMaster(std::move(config));
    UpdateUntil([this] { return master->Configured(); });
}

Life::Response Life::Ask(const Service& service) {
    const auto answer = std::make_shared<Response>();
    service(System::ArgFunc<Response, void>::Create(
        [answer](Response response) { *answer = std::move(response); }));
    UpdateUntil([&] { return *answer != nullptr; });
    return *answer;
}
