// SPDX-License-Identifier: MIT
// What does a Class 1 read cost from the call to the callback, with a module that answers at once?
#include "benchmarks/Accesses.h"
#include "benchmarks/Measure.h"
#include "endurance/Heap.h"
#include "tests/support/RunningMaster.h"

#include "vesk/mailbox/IResponse.h"

namespace MasterDpRam = Vesk::HostInterface::MasterDpRam;
namespace MailboxDpRam = Vesk::HostInterface::MailboxDpRam;
using Vesk::Mailbox::IResponse;
using Vesk::Mailbox::IResponseAction;

/// A master that is asked for records.
class Reader {
public:
    /// The request goes out with an empty interrupt, the answer comes with the next.
    void Read() {
        _master.Raise(0x00);
        _master.Master().Class1Read(5, 1, 2, 240, _action);
        _master.Update();
        _master.Answer();
        _master.Update();
    }

    /// The accesses of Read, and the copies that the module makes.
    void Access() {
        volatile unsigned char* const dpRam = _master.DpRam();
        const auto interrupt = [&] {
            benchmark::DoNotOptimize(_master.VelmoIrq_n().Invoke());
            static_cast<void>(dpRam[MasterDpRam::VELMO_INDICATION]);
            static_cast<void>(dpRam[MasterDpRam::VELMO_INDICATION_COMPANION]);
        };
        const auto answer = [&](unsigned char indication) {
            dpRam[MasterDpRam::APPLICATION_INDICATION] = indication;
            dpRam[MasterDpRam::APPLICATION_INDICATION_COMPANION] = indication;
        };
        _master.Raise(0x00);
        interrupt();
        Accesses::Move(_message, dpRam + MasterDpRam::MAILBOX_IN, MailboxDpRam::HEADER_SIZE);
        answer(0x08);
        _master.Answer();
        interrupt();
        Accesses::Move(dpRam + MasterDpRam::MAILBOX_OUT, _message, MailboxDpRam::AREA_SIZE);
        answer(0x04);
    }

    int answers = 0;

private:
    RunningMaster _master{0, 1};
    unsigned char _message[MailboxDpRam::AREA_SIZE] = {};
    std::shared_ptr<IResponseAction> _action = System::ArgFunc<std::shared_ptr<IResponse>, void>::Create(
        [this](const std::shared_ptr<IResponse>&) { ++answers; });
};

/// It takes two interrupts of the module, which come a millisecond apart.
static void Time(benchmark::State& state) {
    Reader reader;
    Compare(
        state, {"<= 1 % of its handshake", 0, 20'000}, 20, [&] { reader.Access(); }, [&] { reader.Read(); });
}

static void Allocations(benchmark::State& state) {
    Reader reader;
    reader.Read();
    Samples samples;
    for (auto _ : state) {
        const long before = Heap::Allocations();
        reader.Read();
        samples.Add(0, static_cast<double>(Heap::Allocations() - before));
        state.SetIterationTime(1e-3);
    }
    samples.Report(state, {"< 20 allocations", 0, 19});
}

BENCHMARK(Time)->Name("Class 1 read, call to callback")->UseManualTime();
BENCHMARK(Allocations)->Name("Class 1 read, allocations")->UseManualTime();
