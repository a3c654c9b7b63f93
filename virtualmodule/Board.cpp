// SPDX-License-Identifier: MIT
#include "virtualmodule/Board.h"

#include "vesk/hostinterface/MailboxDpRam.h"

namespace VirtualModule {

void Board::CheckMemory(std::size_t mailboxIn) {
    std::size_t from = 0;
    while (const auto range = dpRam.FindForeignWrite(from)) {
        const bool mailbox = range->offset >= mailboxIn &&
                             range->offset < mailboxIn + Vesk::HostInterface::MailboxDpRam::AREA_SIZE;
        watch.Report(mailbox ? Violation::WRITTEN_WHILE_FULL : Violation::FOREIGN_WRITE,
                     std::to_string(range->size) + " bytes at " + Hex(range->offset));
        from = range->offset + range->size;
    }
}

} // namespace VirtualModule
