// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/commands/Kit.h"
#include "virtualmodule/faults/FaultInjector.h"

namespace VirtualModule {

/// Makes parts in which `faults` strike.
class FaultyKit : public Kit {
public:
    explicit FaultyKit(FaultInjector& faults) : _faults(faults) {}

    std::unique_ptr<Board> MakeBoard(Board::Wiring wiring) const override;
    std::unique_ptr<Mailbox> MakeMailbox(Board& board, std::size_t offset,
                                         Mailbox::Handler handler) const override;
    std::unique_ptr<ProcessData> MakeProcessData(Board& board, Bus& bus) const override;

private:
    FaultInjector& _faults;
};

} // namespace VirtualModule
