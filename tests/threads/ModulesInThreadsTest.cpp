// SPDX-License-Identifier: MIT
// Two masters in two threads at once: nothing of the library is shared between them.
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ModuleLines.h"

#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/modules/dpvm/Vt22.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace Vesk::Modules::DPVM;
using System::Array;

namespace {

/// A clock for both threads that moves on a microsecond with each look at it.
std::int64_t NextMicrosecond() {
    static std::atomic<std::int64_t> now{0};
    return now += 1'000;
}

/// A whole life of one master with one slave; the last value that came back. Time is the virtual module's
/// count of steps, so the life does not depend on the machine's speed.
int Live(int firstValue, int cycles) {
    const auto slave = DatabaseFileBuilder::SlaveRecord({{0, 1}, {0, 1}});
    const auto config = DatabaseFileBuilder().Master().Slave(3, slave).Read();
    VirtualModule::Flash flash;
    VirtualModule::InProcess module(flash, NextMicrosecond, {.interruptPeriod = 0, .faults = {}});
    const auto [irq, reset, boot] = ModuleLines(module);
    const auto master =
        Vt22::CreateConfigured(module.DpRamPath(), 0, irq, reset, boot, nullptr, nullptr, nullptr, config);
    while (!master->Configured())
        master->Update();
    const auto in = Array<unsigned char>::Create(1);
    const auto out = Array<unsigned char>::Create(1);
    master->MapInputData(0, in, 0, 1);
    master->MapOutputData(0, out, 0, 1);
    master->BeginInitialization();
    for (int value = firstValue; value < firstValue + cycles; ++value) {
        in->Set(0, static_cast<unsigned char>(value));
        while (out->Get(0) != in->Get(0))
            master->Update();
    }
    return out->Get(0);
}

} // namespace

TEST(ModulesInThreadsTest, LiveSideBySide) {
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;
    System::DateTime::SetSource(NextMicrosecond);
    std::thread one([] { EXPECT_EQ(Live(1, 500), 500 & 0xFF); });
    std::thread other([] { EXPECT_EQ(Live(100, 500), 599 & 0xFF); });
    one.join();
    other.join();
}
