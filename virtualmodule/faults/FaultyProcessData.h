// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/bus/ProcessData.h"
#include "virtualmodule/faults/FaultInjector.h"

namespace VirtualModule {

/// Process data whose status section says what is not so.
class FaultyProcessData : public ProcessData {
public:
    FaultyProcessData(Board& board, Bus& bus, FaultInjector& faults);

private:
    unsigned WriteChanges() override;
    unsigned FalsifyStatus();

    DpRam& _dpRam;
    FaultInjector& _faults;
};

} // namespace VirtualModule
