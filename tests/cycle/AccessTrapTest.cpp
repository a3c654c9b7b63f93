// SPDX-License-Identifier: MIT
// What a module object does to the real DPRAM: these bytes, one at a time, in this order, and no other. The
// mapping that the library makes has no access rights, so that every access is a fault, and is then made in a
// single step. A program apart, since it stands in the way of the process's own functions and signals; x86-64
// only.
#include "tests/support/RunningMaster.h"
#include "tests/support/TestClock.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <optional>
#include <string_view>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

using Log = std::vector<std::string>;

static constexpr std::size_t SIZE = 0x2000;

/// Accesses in one direction to bytes that follow each other, or with a count of 0 what a line did.
struct Run {
    std::string what;
    std::ptrdiff_t first = 0;
    std::ptrdiff_t count = 0;
};

static int mappingsToPass = 1; // that of the test itself before the library's
static unsigned char* mapped = nullptr;
static std::vector<Run> runs;

/// "W 1ffa", and "R 0176+288" where more bytes follow.
static Log TakeLog() {
    Log log;
    for (const Run& run : std::exchange(runs, {})) {
        char place[32] = "";
        if (run.count > 0)
            std::snprintf(place, sizeof place, run.count > 1 ? " %04tx+%td" : " %04tx", run.first, run.count);
        log.push_back(run.what + place);
    }
    return log;
}

extern "C" void* mmap(void* at, std::size_t size, int rights, int flags, int file, off_t offset) noexcept {
    const bool trapped = flags == MAP_SHARED && size == SIZE && mappingsToPass-- == 0;
    void* const memory = reinterpret_cast<void*>(
        ::syscall(SYS_mmap, at, size, trapped ? PROT_NONE : rights, flags, file, offset));
    if (trapped)
        mapped = static_cast<unsigned char*>(memory);
    return memory;
}

/// Whether the instruction moves or compares a single byte of memory.
static bool AccessesOneByte(const unsigned char* code) {
    code += (*code & 0xF0) == 0x40; // REX
    const std::string_view opcodes = "\x38\x3A\x80\x84\x88\x8A\xC6\xF6";
    return code[0] == 0x0F ? code[1] == 0xB6 || code[1] == 0xBE
                           : opcodes.find(static_cast<char>(code[0])) != std::string_view::npos;
}

/// An access to the mapping is noted and may then happen. It never comes out of the middle of an allocation.
static void OnFault(int, siginfo_t* info, void* context) {
    auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    const std::ptrdiff_t offset = static_cast<unsigned char*>(info->si_addr) - mapped;
    if (!mapped || offset < 0 || offset >= static_cast<std::ptrdiff_t>(SIZE)) {
        std::signal(SIGSEGV, SIG_DFL);
        return;
    }
    std::string what = registers[REG_ERR] & 2 ? "W" : "R";
    if (!AccessesOneByte(reinterpret_cast<const unsigned char*>(registers[REG_RIP])))
        what += " of several bytes";
    if (runs.empty() || runs.back().what != what || runs.back().first + runs.back().count != offset)
        runs.push_back({what, offset, 0});
    ++runs.back().count;
    ::mprotect(mapped, SIZE, PROT_READ | PROT_WRITE);
    registers[REG_EFL] |= 0x100; // single step
}

static void OnStep(int, siginfo_t*, void* context) {
    static_cast<ucontext_t*>(context)->uc_mcontext.gregs[REG_EFL] &= ~0x100;
    ::mprotect(mapped, SIZE, PROT_NONE);
}

static void StandInTheWay() {
    for (const auto& [signal, handler] : {std::pair(SIGSEGV, &OnFault), {SIGTRAP, &OnStep}}) {
        struct sigaction action {};

        action.sa_sigaction = handler;
        action.sa_flags = SA_SIGINFO;
        ::sigaction(signal, &action, nullptr);
    }
}

/// `accesses` between those that read the module's register and those that write the host's.
static Log Answered(Log accesses) {
    accesses.insert(accesses.begin(), {"R 1ffb", "R 1ffe"});
    accesses.insert(accesses.end(), {"W 1ffa", "W 1ffc"});
    return accesses;
}

TEST(AccessTrapTest, ALifeMakesTheseAccessesAndNoOther) {
    StandInTheWay();
    std::optional<RunningMaster> master(std::in_place, 22, 2, RunningMaster::Arrays::ONE, [](bool level) {
        runs.push_back({level ? "reset high" : "reset low"});
    });
    Log start = {"reset low", "R 0000+8192", "reset high", "R 1ffb", "R 1ffe", "R 0000+19"}; // no opening
    for (const char* request : {"W 0056+32", "W 0056+32", "W 0056+44", "W 0056+32"})
        start.insert(start.end(), {request, "W 1ffa", "W 1ffc", "R 1ffb", "R 1ffe", "R 0176+288"});
    start.insert(start.end(), {"W 1ffa", "W 1ffc"});
    EXPECT_EQ(TakeLog(), start);

    TestClock clock;
    const auto update = [&] {
        master->Update();
        return TakeLog();
    };
    const auto cycle = [&](unsigned char indication, unsigned char outArea = 0, unsigned char change = 0) {
        master->PutStatus(outArea, 0, change, 0xC0);
        master->Raise(indication);
        return update();
    };
    // Nothing to tell: answered after 2 ms.
    EXPECT_EQ(cycle(0x00), (Log{"R 1ffb", "R 1ffe"}));
    EXPECT_TRUE(master->Master().OwesAnswer());
    clock.Advance(2'000'000);
    EXPECT_EQ(update(), (Log{"W 1ffa", "W 1ffc"}));
    EXPECT_FALSE(master->Master().OwesAnswer());
    // The input area is written once it is the host's and has changed.
    EXPECT_EQ(cycle(0x02), Answered({"W 0296+22"}));
    EXPECT_EQ(cycle(0x02), (Log{"R 1ffb", "R 1ffe"}));
    master->in->Set(21, 1);
    EXPECT_EQ(update(), (Log{"W 0296+22", "W 1ffa", "W 1ffc"}));
    master->in->Set(21, 2);
    EXPECT_EQ(update(), Log{}) << "the module's again";
    // Of the out area is read what the module names, before anything is written.
    EXPECT_EQ(cycle(0x01), Answered({"R 1042+2"}));
    EXPECT_EQ(cycle(0x01, 1), Answered({"R 1042+4"}));
    EXPECT_EQ(cycle(0x01, 2, 4), Answered({"R 1042+2", "R 1046+2", "R 1068+16"}));
    EXPECT_EQ(cycle(0x01, 2, 0x1F), Answered({"R 1042+2", "R 1046+50", "R 1086+16", "R 1078+14"}));
    EXPECT_EQ(cycle(0x03, 4), Answered({"R 1042+2", "R 1096+22", "W 0296+22"}));
    // A message: the module hears of it when it interrupts.
    master->Master().Class1Write(5, 1, 2, System::Array<unsigned char>::Create(10), nullptr);
    EXPECT_EQ(update(), Log{"W 0056+42"});
    EXPECT_EQ(cycle(0x00), Answered({}));
    master->Answer();
    EXPECT_EQ(update(), Answered({"R 0176+288"}));

    // Who looks at the data, or holds a byte of it, does not look at the DPRAM.
    std::vector<unsigned char> copy(22);
    EXPECT_EQ(master->Master().CopyInputData(copy), 22);
    EXPECT_EQ(copy[21], 2);
    EXPECT_EQ(master->Master().CopyOutputData(copy), 22);
    master->Master().HoldInput(21, 9);
    EXPECT_EQ(TakeLog(), Log{});

    master.reset();
    EXPECT_EQ(TakeLog(), (Log{"R 0000+8192", "reset low", "R 0000+8192"})) << "the snapshot first";
}
