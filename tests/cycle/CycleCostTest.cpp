// SPDX-License-Identifier: MIT
// A cycle costs its accesses to the DPRAM and looks at the clock: no allocation, no lock, no throw, no system
// call. A program apart, since it counts them in place of the process's own functions.
#include "dbus/Cycle.h"
#include "endurance/Heap.h"
#include "tests/support/RunningMaster.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestClock.h"

#include "vesk/mailbox/IResponse.h"
#include "vesk/mailbox/MessageType.h"
#include "vesk/system/io/MemoryMappedFile.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cxxabi.h>
#include <dlfcn.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <tuple>
#include <unistd.h>

using Vesk::Mailbox::IResponse;

static long locks = 0;
static long throws = 0;

/// The function that the process would call if this program did not stand in its way.
template <class Function>
static Function* Next(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

extern "C" int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
    static auto* const next = Next<int(pthread_mutex_t*)>("pthread_mutex_lock");
    ++locks;
    return next(mutex);
}

void abi::__cxa_throw(void* thrown, std::type_info* type, void (*destructor)(void*)) {
    ++throws;
    Next<void(void*, std::type_info*, void (*)(void*))>("__cxa_throw")(thrown, type, destructor);
    __builtin_unreachable();
}

/// From now on this process may look at the clock and exit; any other system call kills it.
static void ForbidSystemCalls() {
    sock_filter rules[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_clock_gettime, 2, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_exit_group, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{static_cast<unsigned short>(std::size(rules)), rules};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0)
        ::_exit(2);
}

/// A master with process data in each direction, a third of it in each of three segments.
class CycleCostTest : public testing::Test {
protected:
    /// Every kind of cycle without a message, one after the other.
    void RunCycles(int rounds) {
        for (int round = 0; round < rounds; ++round) {
            Idle();
            Interrupt(0x00); // nothing to tell: the empty write follows after 2 ms
            Interrupt(0x02); // the input area, unchanged
            Idle();
            ++_master.in->Data()[round % 3500];
            Idle();
            Interrupt(0x42); // the input area, changed, and a log
            ++_master.in->Data()[3499];
            Idle();
            _master.PutStatus(0x04, 0, 0, 0);
            Interrupt(0x01); // output data
            _master.PutStatus(0x03, round % 2 == 0 ? 2 : 1, 0x1F, round % 2 == 0 ? 0xC0 : 0x40);
            Interrupt(0x01); // the module's status and the bus's, with every list and both callbacks
            Exchange();
        }
    }

    /// Everything at once.
    void Exchange() {
        _master.PutStatus(0x07, 0, 0x1F, 0x80);
        ++_master.in->Data()[0];
        Interrupt(0x03);
    }

    void Interrupt(unsigned char indication) {
        _master.Raise(indication);
        Update();
        Idle();
    }

    void Idle() {
        for (int i = 0; i < 3; ++i) {
            _clock.Advance(1'000'000);
            Update();
        }
    }

    /// By way of what publishes the module, where it is published.
    void Update() { _cycle ? _cycle->Update() : _master.Update(); }

    void Publish() {
        _cycle = Vesk::DBus::Cycle::Create(_master.Master().shared_from_this(), true, [] {});
        Idle();
    }

    void ExpectNoCosts() {
        const auto before = std::tuple(Heap::Allocations(), locks, throws);
        RunCycles(1000);
        EXPECT_EQ(std::tuple(Heap::Allocations(), locks, throws), before);
    }

    /// Ends the process.
    void LiveOnTheTimeAlone() {
        ForbidSystemCalls();
        RunCycles(1000);
        System::DateTime::SetSource(nullptr); // and with the system's clock, for what does not wait
        for (int i = 0; i < 1000; ++i)
            Exchange();
        ::_exit(0);
    }

    std::shared_ptr<Vesk::DBus::Cycle> _cycle;
    RunningMaster _master{3000, 3};
    TestClock _clock; // after the master, which sets the clock itself
};

TEST_F(CycleCostTest, AllocatesNothingLocksNothingAndThrowsNothing) {
    ExpectNoCosts();
    EXPECT_EQ(_master.calls, 3000) << "of online, offline and the mode";
    EXPECT_EQ(_master.DpRam()[0x296], _master.in->Get(0));
    Publish();
    ExpectNoCosts();
    EXPECT_EQ(_cycle->GetFacts().mode, Vesk::Modules::DPVM::OperationMode_e::CLEAR) << "seen, all the same";
}

TEST_F(CycleCostTest, AsksTheSystemForNothingButTheTime) {
    EXPECT_EXIT(LiveOnTheTimeAlone(), testing::ExitedWithCode(0), "");
    Publish();
    EXPECT_EXIT(LiveOnTheTimeAlone(), testing::ExitedWithCode(0), "");
}

TEST_F(CycleCostTest, CountsWhatThereIsToCount) {
    const auto before = std::tuple(Heap::Allocations(), locks, throws);
    EXPECT_ANY_THROW(
        Vesk::Mailbox::MessageType::GetById(0)); // which is none, out of a list that is made once
    EXPECT_GT(Heap::Allocations(), std::get<0>(before));
    EXPECT_GT(locks, std::get<1>(before));
    EXPECT_EQ(throws, std::get<2>(before) + 1);
}

TEST_F(CycleCostTest, ReadsARecordWithFewAllocations) {
    long answered = 0;
    const auto action = System::ArgFunc<std::shared_ptr<IResponse>, void>::Create(
        [&](const std::shared_ptr<IResponse>&) { answered = Heap::Allocations(); });
    for (int read = 0; read < 1000; ++read) {
        const long called = Heap::Allocations();
        _master.Master().Class1Read(5, 1, 2, 240, action);
        _master.Raise(0x00);
        _master.Update();
        _master.Answer();
        _master.Update();
        EXPECT_LT(answered - called, 20);
        EXPECT_GT(answered, called);
        Idle();
    }
}

TEST(HeapTest, HoldsARunningMasterInLittleMemory) {
    const RunningMaster first(3500);
    const long before = Heap::Bytes();
    const RunningMaster second(3500, 125);
    EXPECT_LE(Heap::Bytes() - before - 7000, 64 * 1024) << "beside the application's arrays";
}

TEST(HeapTest, LeavesNoMappingBehindWhereMemoryRunsOut) {
    using namespace System::IO;
    const TemporaryFolder folder;
    const System::String path = folder.Put("dpram", std::string(0x2000, 0));
    for (long failing = 1;; ++failing) {
        Heap::FailAt(failing);
        try {
            MemoryMappedFile::CreateFromPath(path, FileMode::OPEN, 0, 0x2000,
                                             MemoryMappedFileAccess::READ_WRITE);
            Heap::FailAt(0);
            EXPECT_GT(failing, 1);
            break;
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(TemporaryFolder::Read("/proc/self/maps").find(path.Value()), std::string::npos)
                << "allocation " << failing;
        }
    }
}
