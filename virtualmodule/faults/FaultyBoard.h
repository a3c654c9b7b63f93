// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/faults/FaultyDpRam.h"
#include "virtualmodule/wires/Board.h"

#include <memory>

namespace VirtualModule {

/// A board that boots badly or not at all, dies or boots by itself, whose interrupt line sticks or bounces,
/// and whose registers say what is not so.
class FaultyBoard : public Board {
public:
    FaultyBoard(Wiring wiring, FaultInjector& faults);

    Phase Look(std::int64_t now) override;
    bool TakeTurn(std::int64_t now, std::int64_t period) override;
    void Indicate(std::initializer_list<std::size_t> registers, unsigned value) override;

private:
    void Boot(std::int64_t now, std::int64_t delay) override;
    void PullInterrupt() override;

    void CountBoot();
    void HoldInReset(std::int64_t now);
    bool RepeatInterrupt();
    void FalsifyIdentity();
    unsigned FalsifyBootIndication(unsigned indication);
    unsigned FalsifyIndication(unsigned indication);

    FaultInjector& _faults;
    std::unique_ptr<FaultyDpRam> _faultyDpRam; // from the first fault on that needs it
    bool _counted = false;                     // the reset that the module is in
    bool _bootloader = false;                  // is what booted last
    bool _interrupted = false;                 // it has done so since
    unsigned _bounces = 0;                     // how often the last interrupt was repeated
};

} // namespace VirtualModule
