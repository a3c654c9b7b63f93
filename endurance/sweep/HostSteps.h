// SPDX-License-Identifier: MIT
#pragma once

#include "endurance/sweep/FaultLife.h"

#include <array>
#include <bitset>
#include <string>
#include <string_view>
#include <vector>

/// What the library does towards the outside, each a step at which something can go wrong.
enum class HostStep : std::uint8_t { READ, WRITE, IRQ_READ, LINE_DRIVE, CLOCK_READING };
inline constexpr std::size_t HOST_STEPS = 5;

/// Something that goes wrong on the host's side of the DPRAM, at one of its steps.
struct HostFault {
    enum class Effect : std::uint8_t {
        ONES,       // the access reads 0xFF
        ZEROS,      // it reads 0
        INVERTED,   // it reads every bit inverted
        LOST,       // the write does not reach the DPRAM
        BROWN_OUT,  // the module loses its power for a moment, right before the access
        OVERTAKEN,  // the module acts before the access, as one in a process of its own may at any time
        IRQ_LOW,    // the line reads low
        IRQ_HIGH,   // it reads high, and its interrupt is lost
        LINE_FAILS, // the application's callback throws
        LATE,       // so much time has passed
    };

    std::string_view name;
    HostStep at;
    Effect effect;
    std::int64_t milliseconds; // of LATE
    std::vector<const VirtualModule::Outcome*> outcomes;
};

/// All of them, with how a life then ends.
const std::vector<HostFault>& HostFaults();

/// Stands between the library and the module of one life: counts its steps, lets one of them go wrong, and
/// watches what every access touches.
class HostSteps {
public:
    static constexpr int SIZE = 0x2000;

    /// An access beyond those that an Update may have.
    struct TooManyAccesses {};

    /// `bound` is how many bytes of the DPRAM an Update may access.
    HostSteps(FaultLife& life, long bound);
    ~HostSteps();
    HostSteps(const HostSteps&) = delete;
    HostSteps& operator=(const HostSteps&) = delete;

    /// `fault` strikes at the step-th of its steps, from 1; a null one never.
    void Arm(const HostFault* fault, unsigned step);

    unsigned Counted(HostStep step) const { return _counted[static_cast<std::size_t>(step)]; }

    /// The bytes that were accessed.
    const std::bitset<SIZE>& Touched() const { return _touched; }

    /// The first write where the host must not write; empty if there was none.
    const std::string& ForeignWrite() const { return _foreignWrite; }

private:
    class Host;

    static std::int64_t Now();

    /// Counts the step; true if the fault strikes at it.
    bool Strikes(HostStep step);
    void Access(HostStep step, int offset, int count);

    bool Is(HostFault::Effect effect) const { return _fault->effect == effect; }

    inline static HostSteps* _current = nullptr; // the one whose clock runs

    FaultLife& _life;
    long _bound;
    const HostFault* _fault = nullptr;
    unsigned _step = 0;
    std::array<unsigned, HOST_STEPS> _counted{};
    std::bitset<SIZE> _touched;
    long _accesses = 0;       // since the last look at the interrupt line
    bool _bootloader = false; // which of the two programs the module runs or will run
    std::string _foreignWrite;
};
