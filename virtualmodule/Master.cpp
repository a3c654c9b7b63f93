// SPDX-License-Identifier: MIT
#include "virtualmodule/Master.h"

#include "vesk/hostinterface/MasterDpRam.h"

namespace MasterMap = Vesk::HostInterface::MasterDpRam;

using Vesk::Modules::DPVM::Vt22ApplicationIndication_t;
using Vesk::Modules::DPVM::Vt22VelmoIndication_t;

namespace VirtualModule {

namespace {

// Stands in the companion of the host's register until the host has written both. The host never writes it:
// it has the reserved bits set.
constexpr std::uint8_t NOT_WRITTEN = 0xFF;

} // namespace

Master::Master(Board& board, Flash& flash, Stations& stations, const Options& options, const Kit& kit)
    : _board(board),
      _options(options),
      _bus(stations, options.startMode),
      _initCommands(flash, _bus, board.watch),
      _databaseCommands(flash, board.watch),
      _busCommands(_bus, board.watch),
      _acyclicCommands(_bus, board.watch),
      _mailbox(kit.MakeMailbox(board, MasterMap::MAILBOX_IN,
                               [this](const Message& request) { return Handle(request); })),
      _processData(kit.MakeProcessData(board, _bus)) {
    _board.dpRam.Clear();
    _board.dpRam.GiveToHost(MasterMap::APPLICATION_INDICATION, 1);
    _board.dpRam.GiveToHost(MasterMap::APPLICATION_INDICATION_COMPANION, 1);
    _board.dpRam.WriteRegister(MasterMap::APPLICATION_INDICATION_COMPANION, NOT_WRITTEN);
    WriteIdentity(flash);
}

void Master::WriteIdentity(const Flash& flash) {
    using namespace MasterMap::Identity;
    DpRam& dpRam = _board.dpRam;
    const Version bootloader = flash.bootloader.version;
    const Version software = flash.application.version;
    dpRam.Write16(OFFSET + BOOTLOADER_VERSION, Word(bootloader.major, bootloader.minor));
    dpRam.Write32(OFFSET + SERIAL, flash.serial);
    dpRam.Write16(OFFSET + MODULE_TYPE, _options.moduleType);
    dpRam.Write16(OFFSET + VENDOR_ID, _options.vendorId);
    dpRam.Write16(OFFSET + FIELDBUS_TYPE, _options.fieldbusType);
    dpRam.Write16(OFFSET + SOFTWARE_VERSION, Word(software.major, software.minor));
    dpRam.Write8(OFFSET + SOFTWARE_BUILD, software.build);
}

void Master::Step(std::int64_t now) {
    switch (_state) {
    case State::BOOTING:
    case State::IDLE:
        CheckUnasked();
        Indicate(now);
        return;
    case State::INDICATING:
        if (HostHasWritten()) {
            HandleHostIndication(TakeHostRegister());
            _state = State::IDLE;
            Indicate(now);
        }
        return;
    case State::STOPPED:
        return;
    }
}

void Master::Indicate(std::int64_t now) {
    if (!_board.TakeTurn(now, _options.interruptPeriod))
        return;
    const std::uint8_t indication = NextIndication(now);
    _board.Indicate({MasterMap::VELMO_INDICATION, MasterMap::VELMO_INDICATION_COMPANION}, indication);
    _state = _fatal ? State::STOPPED : State::INDICATING;
    if (indication != 0)
        _board.watch.Log([&] {
            return "velmoIndication " + Hex(indication) + Labels(indication, Vt22VelmoIndication_t::LABELS);
        });
}

std::uint8_t Master::NextIndication(std::int64_t now) {
    if (_fatal)
        return Vt22VelmoIndication_t::FATAL;
    if (!_booted) {
        _booted = true;
        _mailbox->Open();
        return Vt22VelmoIndication_t::POWER_ON;
    }
    // The mailbox first: what a request changes is reported in the same indication as its answer.
    const Mailbox::Turn mail = _mailbox->Step(now);
    _processData->Exchange();
    unsigned indication = (mail.taken ? Vt22VelmoIndication_t::M_IN : 0u) |
                          (mail.updated ? Vt22VelmoIndication_t::M_OUT : 0u) |
                          (_processData->HandOverInput() ? Vt22VelmoIndication_t::IN : 0u) |
                          (_processData->HandOverOutput() ? Vt22VelmoIndication_t::OUT : 0u);
    if (_log) {
        _log = false;
        _logHandedOver = true;
        indication |= Vt22VelmoIndication_t::LOG;
    }
    return Low(indication);
}

bool Master::HostHasWritten() const {
    return _board.dpRam.ReadRegister(MasterMap::APPLICATION_INDICATION_COMPANION) != NOT_WRITTEN;
}

std::uint8_t Master::TakeHostRegister() {
    const std::uint8_t companion = _board.dpRam.ReadRegister(MasterMap::APPLICATION_INDICATION_COMPANION);
    const std::uint8_t value = _board.dpRam.ReadRegister(MasterMap::APPLICATION_INDICATION);
    _board.dpRam.WriteRegister(MasterMap::APPLICATION_INDICATION_COMPANION, NOT_WRITTEN);
    if (value != companion)
        _board.watch.Report(Violation::COMPANION_DIFFERS, Hex(value) + " and " + Hex(companion));
    return value;
}

/// Nobody asked the host; what it wrote is taken back, so that it does not pass for the next answer.
void Master::CheckUnasked() {
    if (HostHasWritten())
        _board.watch.Report(Violation::WITHOUT_INTERRUPT, Hex(TakeHostRegister()));
}

void Master::HandleHostIndication(std::uint8_t value) {
    if (_board.InterruptIsPending())
        _board.watch.Report(Violation::WITHOUT_INTERRUPT, Hex(value) + ", the line was not read");
    if ((value & Vt22ApplicationIndication_t::RESERVED) != 0)
        _board.watch.Report(Violation::RESERVED_BIT, Hex(value));
    _board.CheckMemory(MasterMap::MAILBOX_IN);
    if (value != 0)
        _board.watch.Log([&] {
            return "applicationIndication " + Hex(value) + Labels(value, Vt22ApplicationIndication_t::LABELS);
        });
    if (value & Vt22ApplicationIndication_t::OUT)
        _processData->OutputReleased();
    if (value & Vt22ApplicationIndication_t::IN)
        _processData->InputReleased();
    if (value & Vt22ApplicationIndication_t::M_OUT)
        _mailbox->Acknowledged();
    if (value & Vt22ApplicationIndication_t::M_IN)
        _mailbox->Notified();
    if (value & Vt22ApplicationIndication_t::LOG) {
        if (!_logHandedOver)
            _board.watch.Report(Violation::AREA_NOT_HANDED_OVER, "log area");
        _logHandedOver = false;
    }
}

Answer Master::Handle(const Message& request) {
    std::optional<Answer> answer;
    if (request.type == static_cast<std::uint8_t>(MessageType::APPLICATION)) {
        answer = _initCommands.Handle(request);
    } else if (request.type == static_cast<std::uint8_t>(MessageType::FIELDBUS)) {
        answer = _databaseCommands.Handle(request, _bus.Running());
        answer = answer ? answer : _busCommands.Handle(request);
        answer = answer ? answer : _acyclicCommands.Handle(request);
    } else {
        return ErrorCode::MESSAGE_TYPE;
    }
    return answer.value_or(ErrorCode::COMMAND);
}

void Master::RaiseFatal(const FatalEvent& event) {
    event.Write(_board.dpRam);
    _fatal = true;
}

} // namespace VirtualModule
