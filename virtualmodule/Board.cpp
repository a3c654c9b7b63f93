// SPDX-License-Identifier: MIT
#include "virtualmodule/Board.h"

#include "vesk/hostinterface/MailboxDpRam.h"

namespace VirtualModule {

Board::Board(std::span<volatile std::uint8_t> memory, Lines& theLines, Flash& theFlash, Options theOptions)
    : lines(theLines),
      flash(theFlash),
      options(std::move(theOptions)),
      faults(options.faults, watch),
      faultyDpRam(FaultyDpRam::Needed(options.faults) ? std::make_unique<FaultyDpRam>(memory, faults)
                                                      : nullptr),
      dpRam(faultyDpRam ? faultyDpRam->ModuleSide() : memory) {}

std::int64_t Board::BootDelay() {
    constexpr std::int64_t millisecond = 1'000'000;
    const Fault* late = faults.Strikes(FaultId::BOOT_LATE);
    return late != nullptr ? late->value * millisecond : options.bootDelay;
}

bool Board::ComesToInterrupt() {
    faults.Count(Counts::INTERRUPTS);
    if (faults.Strikes(FaultId::DEAD))
        faults.Fail(FaultInjector::Outage::DEAD);
    return !faults.Failing();
}

void Board::RaiseInterrupt() {
    if (options.beforeInterrupt)
        options.beforeInterrupt();
    if (faultyDpRam)
        faultyDpRam->Show();
    lines.AssertIrq(generation);
    interrupted = true;
    bounces = 0;
}

bool Board::RepeatInterrupt() {
    const bool stuck = faults.Strikes(FaultId::IRQ_STUCK) != nullptr;
    const unsigned most = stuck ? 1 : faults.Value(FaultId::IRQ_BOUNCE, 0);
    const bool taken = !lines.IrqAsserted(generation);
    const bool standsStill = interrupted && (taken ? bounces < most : bounces > 0 && bounces <= most);
    if (interrupted && taken && (standsStill || stuck)) {
        lines.AssertIrq(generation);
        ++bounces;
    }
    return standsStill;
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
