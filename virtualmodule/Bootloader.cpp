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

Bootloader::Bootloader(Board& board, Flash& flash, const Options& options, const Kit& kit)
    : _board(board),
      _commands(flash, board.watch, options.eraseTime, options.burnTime),
      _mailbox(kit.MakeMailbox(board, BootloaderMap::MAILBOX_IN,
                               [this](const Message& request) { return _commands.Handle(request); })) {
    _board.dpRam.Clear();
    _board.dpRam.GiveToHost(BootloaderMap::APPLICATION_INDICATION, 1);
    WriteControlBlock(flash, options);
}

void Bootloader::WriteControlBlock(const Flash& flash, const Options& options) {
    using namespace BootloaderMap::Ctrl;
    DpRam& dpRam = _board.dpRam;
    const Version version = flash.bootloader.version;
    dpRam.Write8(OFFSET + BOOTLOADER_MAJOR, version.major);
    dpRam.Write8(OFFSET + BOOTLOADER_MINOR, version.minor);
    dpRam.Write32(OFFSET + SERIAL, flash.serial);
    dpRam.Write16(OFFSET + VENDOR_ID, options.bootloaderVendorId);
    dpRam.Write16(OFFSET + FIELDBUS_TYPE, options.bootloaderFieldbusType);
    dpRam.Write16(OFFSET + MODULE_TYPE, options.bootloaderModuleType);
}

void Bootloader::Step(std::int64_t now) {
    if (!_booted) {
        Boot(now);
        return;
    }
    TakeHostRegister();
    Indicate(_mailbox->Step(now), now);
}

void Bootloader::Boot(std::int64_t now) {
    if (_board.TakeTurn(now, 0)) {
        _booted = true;
        _mailbox->Open();
        Indicate();
    }
}

void Bootloader::TakeHostRegister() {
    const std::uint8_t value = _board.dpRam.ReadRegister(BootloaderMap::APPLICATION_INDICATION);
    const unsigned changed = value ^ _host;
    if (changed == 0)
        return;
    _host = value;
    _board.CheckMemory(BootloaderMap::MAILBOX_IN);
    _board.watch.Log([&] {
        return "applicationIndication " + Hex(value) + Labels(value, ApplicationIndication_t::LABELS);
    });
    if ((value & AREA_BITS) != 0)
        _board.watch.Report(Violation::AREA_COMMAND, Hex(value));
    if (changed & ApplicationIndication_t::EVENT)
        _board.watch.Report(Violation::EVENT_NOT_REPORTED, Hex(value));
    if (changed & ApplicationIndication_t::M_OUT)
        _mailbox->Acknowledged();
    if (changed & ApplicationIndication_t::M_IN)
        _mailbox->Notified();
}

void Bootloader::Indicate(Mailbox::Turn mail, std::int64_t now) {
    const unsigned toggled =
        (mail.taken ? VelmoIndication_t::M_IN : 0u) | (mail.updated ? VelmoIndication_t::M_OUT : 0u);
    if (toggled != 0 && _board.TakeTurn(now, 0)) {
        _module = Low(_module ^ toggled);
        Indicate();
    }
}

void Bootloader::Indicate() {
    _board.Indicate({BootloaderMap::VELMO_INDICATION}, _module);
    _board.watch.Log(
        [&] { return "velmoIndication " + Hex(_module) + Labels(_module, VelmoIndication_t::LABELS); });
}

} // namespace VirtualModule
