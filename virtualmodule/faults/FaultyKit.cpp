// SPDX-License-Identifier: MIT
#include "virtualmodule/faults/FaultyKit.h"

#include "virtualmodule/faults/FaultyBoard.h"
#include "virtualmodule/faults/FaultyMailbox.h"
#include "virtualmodule/faults/FaultyProcessData.h"

namespace VirtualModule {

std::unique_ptr<Board> FaultyKit::MakeBoard(Board::Wiring wiring) const {
    return std::make_unique<FaultyBoard>(std::move(wiring), _faults);
}

std::unique_ptr<Mailbox> FaultyKit::MakeMailbox(Board& board, std::size_t offset,
                                                Mailbox::Handler handler) const {
    return std::make_unique<FaultyMailbox>(board, offset, std::move(handler), _faults);
}

std::unique_ptr<ProcessData> FaultyKit::MakeProcessData(Board& board, Bus& bus) const {
    return std::make_unique<FaultyProcessData>(board, bus, _faults);
}

} // namespace VirtualModule
