// SPDX-License-Identifier: MIT
// Host and module at once, in a thread each, as in two processes: no interrupt between them is lost. A
// program apart: bytes of the DPRAM are no atomics, so ThreadSanitizer would call each of them a race.
#include "tests/support/TemporaryFolder.h"

#include "vesk/lines/LinesFile.h"
#include "virtualmodule/wires/DpRam.h"
#include "virtualmodule/wires/Lines.h"

#include <gtest/gtest.h>

#include <thread>

using VirtualModule::DpRam;
using VirtualModule::Lines;

static constexpr int ROUNDS = 20'000;
static constexpr std::size_t ANSWER = 0x1FFA;

/// Lets the other thread run now and then: there may be one processor for both.
static void Spin() {
    static thread_local int spins = 0;
    if (++spins % 64 == 0)
        std::this_thread::yield();
}

TEST(InterruptsTest, NoneIsLostThatFollowsAnAnswer) {
    const TemporaryFolder folder;
    const auto host = LinesFile::Open(folder.Put("lines", std::string(Lines::SIZE, 0)));
    const int file = ::open(folder.Path("lines").c_str(), O_RDWR);
    void* const shared = ::mmap(nullptr, Lines::SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ASSERT_NE(shared, MAP_FAILED);
    Lines& module = Lines::At(shared);
    volatile std::uint8_t memory[DpRam::SIZE]{};
    DpRam dpRam(memory);
    std::atomic<long> looks{0}; // of the host that found the line high
    std::atomic<bool> over{false};

    host->Reset_n()->Invoke(true);
    std::thread answering([&, irq_n = host->VelmoIrq_n()] {
        for (std::uint8_t answer = 0; !over;)
            if (irq_n->Invoke()) {
                ++looks;
                Spin();
            } else {
                memory[ANSWER] = ++answer;
            }
    });
    int lost = 0;
    for (int round = 1; round <= ROUNDS; ++round) {
        const auto answered = [&] { return dpRam.ReadRegister(ANSWER) == static_cast<std::uint8_t>(round); };
        module.AssertIrq(module.Generation());
        // A host that looks twice at a line that is high, and has not answered, knows of no interrupt.
        for (long seen = -1; !answered(); Spin())
            if (module.IrqAsserted(module.Generation())) {
                seen = -1;
            } else if (seen < 0) {
                seen = looks;
            } else if (looks >= seen + 2 && !answered()) {
                ++lost;
                module.AssertIrq(module.Generation());
            }
    }
    over = true;
    answering.join();
    EXPECT_EQ(lost, 0) << "of " << ROUNDS;
    ::munmap(shared, Lines::SIZE);
    ::close(file);
}
