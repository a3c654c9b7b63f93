// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/Vt22Module.h"

#include <functional>
#include <memory>

/// An initialised master module object on a DPRAM in shared memory. The module's side is played with bare
/// stores into that memory, so that what happens in an Update is the library's work alone. A failure to come
/// up is thrown as System::Exception.
class RunningMaster {
public:
    using Vt22Module = Vesk::Modules::DPVM::Vt22Module;

    /// Where the segments lie.
    enum class Arrays {
        ONE,  // one behind the other in `in` and in `out`
        EACH, // in an array for each of them
    };

    /// Maps `bytes` bytes each way, cut into `segments` segments of one size, and runs the module up to
    /// INITIALIZED; that takes no time, but the process's clock is the system's afterwards.
    /// `reset_n` hears the level of the reset line.
    explicit RunningMaster(
        int bytes, int segments = 1, Arrays arrays = Arrays::ONE,
        std::function<void(bool)> reset_n = [](bool) {});
    RunningMaster(const RunningMaster&) = delete;
    RunningMaster& operator=(const RunningMaster&) = delete;
    ~RunningMaster();

    /// The module raises its interrupt with `indication`; the first look at the line releases it.
    void Raise(unsigned char indication);
    /// The module sets the out-area's indication register, module status and fieldbus change registers.
    void PutStatus(unsigned char indication, unsigned char moduleStatus, unsigned char change,
                   unsigned char operationMode);
    /// The module takes the request in mailbox-in and raises its interrupt with an answer of no data.
    void Answer();

    void Update() { _master->Update(); }

    Vt22Module& Master() { return *_master; }

    System::IFunc<bool>& VelmoIrq_n() { return *_velmoIrq_n; }

    volatile unsigned char* DpRam() const { return _dpRam; }

    /// The last input byte that is mapped.
    unsigned char& LastInput() { return *_lastInput; }

    /// The application's arrays, 3500 bytes each.
    const std::shared_ptr<System::Array<unsigned char>> in;
    const std::shared_ptr<System::Array<unsigned char>> out;
    /// Calls of the offline, online and operation-mode callbacks.
    int calls = 0;

private:
    void ComeUp(int bytes, int segments, Arrays arrays, std::function<void(bool)> reset_n);
    void Map(int bytes, int segments, Arrays arrays);
    void Put(int offset, std::initializer_list<int> bytes);

    int _file;
    volatile unsigned char* _dpRam;
    unsigned char* _lastInput = nullptr;
    bool _irq = false;
    std::shared_ptr<System::IFunc<bool>> _velmoIrq_n;
    std::shared_ptr<Vt22Module> _master;
};
