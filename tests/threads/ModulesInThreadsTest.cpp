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
    const auto in = Array<unsigned char>::Create(2);
    const auto out = Array<unsigned char>::Create(2);
    master->MapInputData(0, in, 0, 2);
    master->MapOutputData(0, out, 0, 2);
    master->BeginInitialization();
    for (int value = firstValue; value < firstValue + cycles; ++value) {
        in->Set(0, static_cast<unsigned char>(value));
        in->Set(1, static_cast<unsigned char>(value >> 8));
        while (out->Get(0) != in->Get(0) || out->Get(1) != in->Get(1))
            master->Update();
    }
    return out->Get(0) | out->Get(1) << 8;
}

} // namespace

TEST(ModulesInThreadsTest, LiveSideBySide) {
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;
    System::DateTime::SetSource(NextMicrosecond);
    int first = 0;
    int second = 0;
    std::thread one([&first] { first = Live(1, 500); });
    std::thread other([&second] { second = Live(30'000, 500); });
    one.join();
    other.join();
    EXPECT_EQ(first, 500);
    EXPECT_EQ(second, 30'499);
}
