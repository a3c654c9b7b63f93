// SPDX-License-Identifier: MIT
#include "virtualmodule/commands/Kit.h"

namespace VirtualModule {

std::unique_ptr<Board> Kit::MakeBoard(Board::Wiring wiring) const {
    return std::make_unique<Board>(std::move(wiring));
}

std::unique_ptr<Mailbox> Kit::MakeMailbox(Board& board, std::size_t offset, Mailbox::Handler handler) const {
    return std::make_unique<Mailbox>(board, offset, std::move(handler));
}

std::unique_ptr<ProcessData> Kit::MakeProcessData(Board& board, Bus& bus) const {
    return std::make_unique<ProcessData>(board, bus);
}

} // namespace VirtualModule
