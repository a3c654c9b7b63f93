// SPDX-License-Identifier: MIT
#include "tests/support/RunningMaster.h"

#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/modules/dpvm/CreateHostInterface.h"

#include <cerrno>
#include <string>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>
#include <utility>

using Vesk::Modules::DPVM::OperationMode_e;
using State = RunningMaster::Vt22Module::ModuleState_e;

static constexpr int DPRAM_SIZE = 0x2000;
static constexpr int AREA_SIZE = 3500;

/// A clock that moves on a millisecond with each look at it.
static std::int64_t NextMillisecond() {
    thread_local std::int64_t now = 0;
    return now += 1'000'000;
}

RunningMaster::RunningMaster(int bytes, int segments, Arrays arrays, std::function<void(bool)> reset_n)
    : in(System::Array<unsigned char>::Create(AREA_SIZE)),
      out(System::Array<unsigned char>::Create(AREA_SIZE)),
      _file(::memfd_create("dpram", MFD_CLOEXEC)) {
    if (_file < 0 || ::ftruncate(_file, DPRAM_SIZE) != 0)
        throw std::system_error(errno, std::generic_category(), "dpram");
    void* const memory = ::mmap(nullptr, DPRAM_SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, _file, 0);
    if (memory == MAP_FAILED)
        throw std::system_error(errno, std::generic_category(), "dpram");
    _dpRam = static_cast<volatile unsigned char*>(memory);
    ComeUp(bytes, segments, arrays, std::move(reset_n));
}

RunningMaster::~RunningMaster() {
    _master = nullptr;
    ::munmap(const_cast<unsigned char*>(_dpRam), DPRAM_SIZE);
    ::close(_file);
}

void RunningMaster::ComeUp(int bytes, int segments, Arrays arrays, std::function<void(bool)> reset_n) {
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;
    System::DateTime::SetSource(NextMillisecond);
    const auto call = System::Func<void>::Create([this] { ++calls; });
    _velmoIrq_n = System::Func<bool>::Create([this] { return !std::exchange(_irq, false); });
    _master = Vt22Module::Create(
        Vesk::Modules::DPVM::CreateHostInterface("/proc/self/fd/" + std::to_string(_file), 0, _velmoIrq_n,
                                                 System::ArgFunc<bool, void>::Create(std::move(reset_n)),
                                                 System::ArgFunc<bool, void>::Create([](bool) {})),
        call, call, System::ArgFunc<OperationMode_e, void>::Create([this](OperationMode_e) { ++calls; }),
        nullptr);
    while (_master->State() != State::POWER_ON)
        Update();
    Map(bytes, segments, arrays);
    Put(0x0A, {0x02, 0x01, 0x00, 0x01, 0x00, 0x05});
    Raise(0x10);
    Update();
    _master->BeginInitialization();
    Update();
    for (int request = 0; request < 4; ++request) {
        Answer();
        Update();
    }
    Update();
    System::DateTime::SetSource(nullptr);
}

void RunningMaster::Map(int bytes, int segments, Arrays arrays) {
    using System::Array;
    const int size = bytes / segments;
    for (int i = 0; i < segments; ++i) {
        const bool one = arrays == Arrays::ONE;
        const auto input = one ? in : Array<unsigned char>::Create(size);
        const auto output = one ? out : Array<unsigned char>::Create(size);
        const int place = one ? i * size : 0;
        _master->MapInputData(static_cast<unsigned short>(i * size), input, place, size);
        _master->MapOutputData(static_cast<unsigned short>(i * size), output, place, size);
        _lastInput = input->Data() + place + size - 1;
    }
}

void RunningMaster::Raise(unsigned char indication) {
    _dpRam[0x1FFB] = indication;
    _irq = true;
}

void RunningMaster::PutStatus(unsigned char indication, unsigned char moduleStatus, unsigned char change,
                              unsigned char operationMode) {
    Put(0x1042, {0, indication, 0, moduleStatus, 0, change});
    _dpRam[0x1078] = operationMode;
}

void RunningMaster::Answer() {
    for (int i = 0; i < 6; ++i)
        _dpRam[0x176 + i] = _dpRam[0x56 + i];
    Put(0x178, {0}); // a response without error
    Put(0x17C, {0, 0, 0, 1, 0, 1, 0, 0, 0, 0});
    for (int word = 0; word < 4; ++word) // the database's lengths, in the answer that carries them
        Put(0x186 + 2 * word, {AREA_SIZE >> 8, AREA_SIZE & 0xFF});
    Raise(0x0C);
}

void RunningMaster::Put(int offset, std::initializer_list<int> bytes) {
    for (const int byte : bytes)
        _dpRam[offset++] = static_cast<unsigned char>(byte);
}
