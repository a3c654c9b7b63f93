// SPDX-License-Identifier: MIT
#include "virtualmodule/wires/Board.h"

#include "vesk/hostinterface/MailboxDpRam.h"

namespace VirtualModule {

Board::Board(Wiring wiring) : dpRam(wiring.memory), watch(wiring.watch), _wiring(std::move(wiring)) {}

Board::Phase Board::Look(std::int64_t now) {
    if (_wiring.lines.ResetAsserted())
        return Phase::HELD;
    if (_wiring.lines.Generation() == _generation)
        return Phase::RUNS;
    Boot(now, _wiring.bootDelay);
    return Phase::BOOTS;
}

void Board::Boot(std::int64_t now, std::int64_t delay) {
    _generation = _wiring.lines.Generation();
    _due = now + delay;
}

bool Board::TakeTurn(std::int64_t now, std::int64_t period) {
    if (now < _due)
        return false;
    _due = now + period;
    return true;
}

void Board::Indicate(std::initializer_list<std::size_t> registers, unsigned value) {
    for (const std::size_t place : registers)
        dpRam.WriteRegister(place, value);
    if (_wiring.beforeInterrupt)
        _wiring.beforeInterrupt();
    PullInterrupt();
}

void Board::PullInterrupt() {
    _wiring.lines.AssertIrq(_generation);
}

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
