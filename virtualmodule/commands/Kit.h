// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/bus/ProcessData.h"
#include "virtualmodule/commands/Mailbox.h"
#include "virtualmodule/wires/Board.h"

#include <memory>

namespace VirtualModule {

/// Makes the parts with which a module meets its host.
class Kit {
public:
    virtual ~Kit() = default;

    virtual std::unique_ptr<Board> MakeBoard(Board::Wiring wiring) const;
    /// Mailbox-in at `offset`; `handler` carries out the requests.
    virtual std::unique_ptr<Mailbox> MakeMailbox(Board& board, std::size_t offset,
                                                 Mailbox::Handler handler) const;
    virtual std::unique_ptr<ProcessData> MakeProcessData(Board& board, Bus& bus) const;
};

} // namespace VirtualModule
