// SPDX-License-Identifier: MIT
#include "virtualmodule/Bootloader.h"

#include "vesk/hostinterface/BootloaderDpRam.h"

namespace BootloaderMap = Vesk::HostInterface::BootloaderDpRam;

using Vesk::Handshake::ApplicationIndication_t;
using Vesk::Handshake::VelmoIndication_t;

namespace VirtualModule {

namespace {

constexpr std::uint8_t AREA_BITS = ApplicationIndication_t::FBCTRL | ApplicationIndication_t::OUT |
                                   ApplicationIndication_t::IN | ApplicationIndication_t::LOCK |
                                   ApplicationIndication_t::ACTION;

} // namespace

Bootloader::Bootloader(Board& board, std::int64_t now)
    : _board(board),
      _commands(board.flash, board.options, board.watch),
      _mailbox(board.dpRam, board.watch, board.faults, BootloaderMap::MAILBOX_IN,
               [this](const Message& request) { return _commands.Handle(request); }),
      _bootAt(now + board.BootDelay()) {
    _board.dpRam.Clear();
    _board.dpRam.GiveToHost(BootloaderMap::APPLICATION_INDICATION, 1);
    WriteControlBlock();
}

void Bootloader::WriteControlBlock() {
    using namespace BootloaderMap::Ctrl;
    DpRam& dpRam = _board.dpRam;
    const Version version = _board.flash.bootloader.version;
    FaultInjector& faults = _board.faults;
    dpRam.Write8(OFFSET + BOOTLOADER_MAJOR, faults.Value(FaultId::BOOTLOADER_MAJOR, version.major));
    dpRam.Write8(OFFSET + BOOTLOADER_MINOR, version.minor);
    dpRam.Write32(OFFSET + SERIAL, _board.flash.serial);
    dpRam.Write16(OFFSET + VENDOR_ID,
                  faults.Value(FaultId::WRONG_VENDOR_ID, _board.options.bootloaderVendorId));
    dpRam.Write16(OFFSET + FIELDBUS_TYPE,
                  faults.Value(FaultId::WRONG_FIELDBUS_TYPE, _board.options.bootloaderFieldbusType));
    dpRam.Write16(OFFSET + MODULE_TYPE,
                  faults.Value(FaultId::WRONG_MODULE_TYPE, _board.options.bootloaderModuleType));
}

void Bootloader::Step(std::int64_t now) {
    if (!_booted) {
        Boot(now);
        return;
    }
    TakeHostRegister();
    Indicate(_mailbox.Step(now));
}

void Bootloader::Boot(std::int64_t now) {
    if (now >= _bootAt) {
        _booted = true;
        _mailbox.Open();
        _module = Low(_board.faults.Value(FaultId::BOOT_HANDSHAKE, _module));
        RaiseInterrupt();
    }
}

void Bootloader::TakeHostRegister() {
    const std::uint8_t value = _board.dpRam.ReadRegister(BootloaderMap::APPLICATION_INDICATION);
    const unsigned changed = value ^ _host;
    if (changed == 0)
        return;
    _host = value;
    _board.CheckMemory(BootloaderMap::MAILBOX_IN);
    _board.watch.Log([&] { return "host " + Hex(value); });
    if ((value & AREA_BITS) != 0)
        _board.watch.Report(Violation::AREA_COMMAND, Hex(value));
    if (changed & ApplicationIndication_t::EVENT)
        _board.watch.Report(Violation::EVENT_NOT_REPORTED, Hex(value));
    if (changed & ApplicationIndication_t::M_OUT)
        _mailbox.Acknowledged();
    if (changed & ApplicationIndication_t::M_IN)
        _mailbox.Notified();
}

void Bootloader::Indicate(Mailbox::Turn mail) {
    const unsigned toggled =
        (mail.taken ? VelmoIndication_t::M_IN : 0u) | (mail.updated ? VelmoIndication_t::M_OUT : 0u);
    if (toggled != 0) {
        _module = Low(_module ^ toggled);
        RaiseInterrupt();
    }
}

void Bootloader::RaiseInterrupt() {
    if (!_board.ComesToInterrupt())
        return;
    _board.dpRam.WriteRegister(BootloaderMap::VELMO_INDICATION, _module);
    _board.RaiseInterrupt();
    _board.watch.Log([&] { return "indication " + Hex(_module); });
}

} // namespace VirtualModule
