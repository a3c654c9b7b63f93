// SPDX-License-Identifier: MIT
#include "endurance/sweep/HostSteps.h"

#include "endurance/Heap.h"

#include "vesk/hostinterface/BootloaderDpRam.h"
#include "vesk/hostinterface/MasterDpRam.h"
#include "vesk/system/DateTime.h"

#include <algorithm>
#include <utility>

namespace BootloaderMap = Vesk::HostInterface::BootloaderDpRam;
namespace MasterMap = Vesk::HostInterface::MasterDpRam;
using Effect = HostFault::Effect;

static bool MayWrite(bool bootloader, int offset) {
    const auto within = [offset](int first, int size) { return offset >= first && offset < first + size; };
    constexpr int mailbox = Vesk::HostInterface::MailboxDpRam::AREA_SIZE;
    if (bootloader)
        return within(BootloaderMap::MAILBOX_IN, mailbox) || offset == BootloaderMap::APPLICATION_INDICATION;
    return within(MasterMap::MAILBOX_IN, mailbox) ||
           within(MasterMap::INPUT_AREA, MasterMap::INPUT_AREA_SIZE) ||
           offset == MasterMap::APPLICATION_INDICATION ||
           offset == MasterMap::APPLICATION_INDICATION_COMPANION;
}

/// The host interface that the library gets.
class HostSteps::Host : public Vesk::HostInterface::IHostInterface {
public:
    using Bytes = std::shared_ptr<System::IArray<unsigned char>>;

    Host(HostSteps& steps, FaultLife::HostInterface dpRam) : _steps(steps), _dpRam(std::move(dpRam)) {}

    void Read(int offset, const Bytes& array, int arrayOffset, int count) override {
        const bool strikes = Before(HostStep::READ, offset, count);
        _dpRam->Read(offset, array, arrayOffset, count);
        if (strikes)
            std::transform(array->Data() + arrayOffset, array->Data() + arrayOffset + count,
                           array->Data() + arrayOffset,
                           [this](unsigned char value) { return Falsified(value); });
    }

    unsigned char ReadUInt8(int offset) override { return Load(&IHostInterface::ReadUInt8, offset); }

    unsigned short ReadUInt16(int offset) override { return Load(&IHostInterface::ReadUInt16, offset); }

    unsigned int ReadUInt32(int offset) override { return Load(&IHostInterface::ReadUInt32, offset); }

    void Write(int offset, const Bytes& array, int arrayOffset, int count) override {
        if (!Before(HostStep::WRITE, offset, count))
            _dpRam->Write(offset, array, arrayOffset, count);
    }

    void WriteUInt8(int offset, unsigned char value) override {
        Store(&IHostInterface::WriteUInt8, offset, value);
    }

    void WriteUInt16(int offset, unsigned short value) override {
        Store(&IHostInterface::WriteUInt16, offset, value);
    }

    void WriteUInt32(int offset, unsigned int value) override {
        Store(&IHostInterface::WriteUInt32, offset, value);
    }

    int Size() override { return _dpRam->Size(); }

    bool VelmoIRQ() override {
        const bool strikes = _steps.Strikes(HostStep::IRQ_READ);
        _steps._accesses = 0;
        FailIf(strikes);
        const Heap::Spared module;
        const bool low = _dpRam->VelmoIRQ();
        return strikes ? _steps.Is(Effect::IRQ_LOW) : low;
    }

    void BootloaderEnable() override { Drive(&IHostInterface::BootloaderEnable, true); }

    void BootloaderDisable() override { Drive(&IHostInterface::BootloaderDisable, false); }

    void PowerOff() override { Drive(&IHostInterface::PowerOff, _steps._bootloader); }

    void PowerOn() override { Drive(&IHostInterface::PowerOn, _steps._bootloader); }

private:
    /// True if the value of the access is to be falsified, or lost.
    bool Before(HostStep step, int offset, int count) {
        const bool strikes = _steps.Strikes(step);
        _steps.Access(step, offset, count);
        return strikes && !ModuleActs();
    }

    template <class Value>
    Value Load(Value (IHostInterface::*read)(int), int offset) {
        const bool strikes = Before(HostStep::READ, offset, sizeof(Value));
        const Value value = (*_dpRam.*read)(offset);
        return strikes ? Falsified(value) : value;
    }

    template <class Value>
    void Store(void (IHostInterface::*write)(int, Value), int offset, Value value) {
        if (!Before(HostStep::WRITE, offset, sizeof(Value)))
            (*_dpRam.*write)(offset, value);
    }

    /// Whether it is the module that does something; it has done so then.
    bool ModuleActs() {
        if (_steps.Is(Effect::OVERTAKEN))
            _steps._life.module.GetModule().Step();
        if (_steps.Is(Effect::BROWN_OUT))
            for (const bool level : {false, true})
                _steps._life.module.Reset_n(level);
        return _steps.Is(Effect::OVERTAKEN) || _steps.Is(Effect::BROWN_OUT);
    }

    template <class Value>
    Value Falsified(Value value) const {
        const auto ones = static_cast<Value>(~Value{});
        return _steps.Is(Effect::ONES)    ? ones
               : _steps.Is(Effect::ZEROS) ? Value{}
                                          : static_cast<Value>(value ^ ones);
    }

    void FailIf(bool strikes) const {
        if (strikes && _steps.Is(Effect::LINE_FAILS))
            System::_env_throw(System::InvalidOperationException::Create("The line cannot be reached"));
    }

    void Drive(void (IHostInterface::*line)(), bool bootloader) {
        FailIf(_steps.Strikes(HostStep::LINE_DRIVE));
        const Heap::Spared module;
        (*_dpRam.*line)();
        _steps._bootloader = bootloader;
    }

    HostSteps& _steps;
    FaultLife::HostInterface _dpRam;
};

HostSteps::HostSteps(FaultLife& life, long bound) : _life(life), _bound(bound) {
    _current = this;
    System::DateTime::SetSource(Now);
    _life.between = [this](FaultLife::HostInterface dpRam) {
        return std::make_shared<Host>(*this, std::move(dpRam));
    };
}

HostSteps::~HostSteps() {
    _life.DropObject();
    System::DateTime::SetSource(TestClock::Nanoseconds);
    _current = nullptr;
}

void HostSteps::Arm(const HostFault* fault, unsigned step) {
    _fault = fault;
    _step = step;
}

std::int64_t HostSteps::Now() {
    if (_current->Strikes(HostStep::CLOCK_READING))
        _current->_life.clock.Advance(_current->_fault->milliseconds * 1'000'000);
    return TestClock::Nanoseconds();
}

bool HostSteps::Strikes(HostStep step) {
    const unsigned now = ++_counted[static_cast<std::size_t>(step)];
    return _fault && _fault->at == step && now == _step;
}

void HostSteps::Access(HostStep step, int offset, int count) {
    for (int i = offset; i < offset + count; ++i) {
        _touched.set(static_cast<std::size_t>(i));
        if (step == HostStep::WRITE && !MayWrite(_bootloader, i) && _foreignWrite.empty())
            _foreignWrite = std::to_string(count) + " bytes to " + std::to_string(offset);
    }
    _accesses += count;
    if (_accesses > _bound)
        throw TooManyAccesses();
}

const std::vector<HostFault>& HostFaults() {
    using namespace VirtualModule::Outcomes;
    using enum HostStep;
    static constexpr VirtualModule::Outcome LINE_FAILED{INVALID_OPERATION, "The line cannot be reached", "",
                                                        ""};
    using Outcomes = std::vector<const VirtualModule::Outcome*>;
    static const Outcomes any = VirtualModule::AllOutcomes();
    static const Outcomes brownOut{&POWER_ON_AGAIN,     &SAME_DATA, &TIMEOUT, &UNDEFINED,
                                   &ACKNOWLEDGED_TWICE, &MODE,      &REFUSED, &EMPTY};
    static const Outcomes lost{&NO_ANSWER, &TIMEOUT, &SAME_DATA, &WRONG_ID, &UNDEFINED, &ACKNOWLEDGED_TWICE};
    static const Outcomes noInterrupt{&SAME_DATA, &NO_ANSWER, &TIMEOUT, &NO_INTERRUPT};
    static const Outcomes interrupt{&NOT_LOCKED,     &SAME_DATA,         &NO_ANSWER,          &TIMEOUT,
                                    &WRONG_ID,       &NOBODY_ASKED,      &ACKNOWLEDGED_TWICE, &EMPTY,
                                    &POWER_ON_AGAIN, &INTERRUPT_IN_RESET};
    static const Outcomes late{&SAME_DATA, &TIMEOUT, &NO_INTERRUPT, &DOWNLOAD_TIMEOUT, &INIT_TIMEOUT};
    static const std::vector<HostFault> faults{
        {"reads ones", READ, Effect::ONES, 0, any},
        {"reads zeros", READ, Effect::ZEROS, 0, any},
        {"reads inverted", READ, Effect::INVERTED, 0, any},
        {"write lost", WRITE, Effect::LOST, 0, lost},
        {"brown-out before reading", READ, Effect::BROWN_OUT, 0, brownOut},
        {"brown-out before writing", WRITE, Effect::BROWN_OUT, 0, brownOut},
        {"module acts before reading", READ, Effect::OVERTAKEN, 0, {&SAME_DATA}},
        {"module acts before writing", WRITE, Effect::OVERTAKEN, 0, {&SAME_DATA}},
        {"interrupt that is none", IRQ_READ, Effect::IRQ_LOW, 0, interrupt},
        {"interrupt lost", IRQ_READ, Effect::IRQ_HIGH, 0, noInterrupt},
        {"interrupt line fails", IRQ_READ, Effect::LINE_FAILS, 0, {&LINE_FAILED}},
        {"output line fails", LINE_DRIVE, Effect::LINE_FAILS, 0, {&LINE_FAILED}},
        {"late by 1 ms", CLOCK_READING, Effect::LATE, 1, {&SAME_DATA}},
        {"late by 400 ms", CLOCK_READING, Effect::LATE, 400, {&SAME_DATA}},
        {"late by 12 s", CLOCK_READING, Effect::LATE, 12'000, late},
    };
    return faults;
}
