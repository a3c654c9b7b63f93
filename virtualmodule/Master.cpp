// SPDX-License-Identifier: MIT
#include "virtualmodule/Master.h"

#include "vesk/hostinterface/MasterDpRam.h"

#include <algorithm>

namespace MasterMap = Vesk::HostInterface::MasterDpRam;

using Vesk::Modules::DPVM::Vt22ApplicationIndication_t;
using Vesk::Modules::DPVM::Vt22VelmoIndication_t;

namespace VirtualModule {

namespace {

// Stands in the companion of the host's register until the host has written both. The host never writes it:
// it has the reserved bits set.
constexpr std::uint8_t NOT_WRITTEN = 0xFF;

/// A fatal event that has something in each of its fields.
FatalEvent FullEvent(std::uint16_t errorCode) {
    FatalEvent event;
    event.errorCode = errorCode;
    event.errorCause = 0x0304;
    event.taskId = 5;
    event.timeStamp = 86'400'000;
    event.additionalInfo = {0xDE, 0xAD, 0xBE, 0xEF};
    event.sourceLine = 142;
    event.sourceFile = "dpmaster.c";
    return event;
}

} // namespace

Master::Master(Board& board, std::int64_t now)
    : _board(board),
      _bus(board.stations, board.options.startMode),
      _initCommands(board.flash, _bus, board.watch),
      _databaseCommands(board.flash, board.watch, board.faults),
      _busCommands(_bus, board.watch),
      _acyclicCommands(_bus, board.watch),
      _mailbox(board.dpRam, board.watch, board.faults, MasterMap::MAILBOX_IN,
               [this](const Message& request) { return Handle(request); }),
      _processData(board.dpRam, _bus, board.watch, board.faults),
      _due(now + board.BootDelay()) {
    _board.dpRam.Clear();
    _board.dpRam.GiveToHost(MasterMap::APPLICATION_INDICATION, 1);
    _board.dpRam.GiveToHost(MasterMap::APPLICATION_INDICATION_COMPANION, 1);
    _board.dpRam.WriteRegister(MasterMap::APPLICATION_INDICATION_COMPANION, NOT_WRITTEN);
    WriteIdentity();
}

void Master::WriteIdentity() {
    using namespace MasterMap::Identity;
    DpRam& dpRam = _board.dpRam;
    const Version bootloader = _board.flash.bootloader.version;
    const Version software = _board.flash.application.version;
    const Options& options = _board.options;
    FaultInjector& faults = _board.faults;
    dpRam.Write16(OFFSET + BOOTLOADER_VERSION, Word(bootloader.major, bootloader.minor));
    dpRam.Write32(OFFSET + SERIAL, _board.flash.serial);
    dpRam.Write16(OFFSET + MODULE_TYPE, faults.Value(FaultId::WRONG_MODULE_TYPE, options.moduleType));
    dpRam.Write16(OFFSET + VENDOR_ID, faults.Value(FaultId::WRONG_VENDOR_ID, options.vendorId));
    dpRam.Write16(OFFSET + FIELDBUS_TYPE, faults.Value(FaultId::WRONG_FIELDBUS_TYPE, options.fieldbusType));
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
    if (now < _due || !_board.ComesToInterrupt() || Reboots())
        return;
    const FaultId fatal = _booted ? FaultId::FATAL : FaultId::BOOT_FATAL;
    if (const Fault* fault = _board.faults.Strikes(fatal))
        RaiseFatal(FullEvent(Word(fault->value >> 8, fault->value & 0xFF)));
    const std::uint8_t indication = NextIndication(now);
    if (!_board.faults.Failing())
        RaiseInterrupt(indication, now);
}

bool Master::Reboots() {
    const bool reboots = _booted && _board.faults.Strikes(FaultId::REBOOT);
    if (reboots)
        _board.faults.Fail(FaultInjector::Outage::REBOOT);
    return reboots;
}

std::uint8_t Master::BootIndication() {
    FaultInjector& faults = _board.faults;
    if (faults.Strikes(FaultId::BOOT_EMPTY))
        return 0;
    const unsigned powerOn = faults.Value(FaultId::BOOT_NO_POWER_ON, Vt22VelmoIndication_t::POWER_ON);
    return Low(powerOn | faults.Value(FaultId::BOOT_EXTRA_BITS, 0));
}

std::uint8_t Master::NextIndication(std::int64_t now) {
    if (_fatal)
        return Vt22VelmoIndication_t::FATAL;
    if (!_booted) {
        _booted = true;
        _mailbox.Open();
        return BootIndication();
    }
    // The mailbox first: what a request changes is reported in the same indication as its answer.
    const Mailbox::Turn mail = _mailbox.Step(now);
    _processData.Exchange();
    unsigned indication = (mail.taken ? Vt22VelmoIndication_t::M_IN : 0u) |
                          (mail.updated ? Vt22VelmoIndication_t::M_OUT : 0u) |
                          (_processData.HandOverInput() ? Vt22VelmoIndication_t::IN : 0u) |
                          (_processData.HandOverOutput() ? Vt22VelmoIndication_t::OUT : 0u);
    if (_log) {
        _log = false;
        _logHandedOver = true;
        indication |= Vt22VelmoIndication_t::LOG;
    }
    return Low(indication);
}

void Master::RaiseInterrupt(std::uint8_t indication, std::int64_t now) {
    if (_board.faults.Strikes(FaultId::INDICATION_RESERVED))
        indication |= Vt22VelmoIndication_t::RESERVED;
    _board.dpRam.WriteRegister(MasterMap::VELMO_INDICATION, indication);
    _board.dpRam.WriteRegister(MasterMap::VELMO_INDICATION_COMPANION, indication);
    _board.RaiseInterrupt();
    _due = now + _board.options.interruptPeriod;
    _state = _fatal ? State::STOPPED : State::INDICATING;
    if (indication != 0)
        _board.watch.Log([&] { return "indication " + Hex(indication); });
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
    if (_board.lines.IrqAsserted(_board.generation))
        _board.watch.Report(Violation::WITHOUT_INTERRUPT, Hex(value) + ", the line was not read");
    if ((value & Vt22ApplicationIndication_t::RESERVED) != 0)
        _board.watch.Report(Violation::RESERVED_BIT, Hex(value));
    _board.CheckMemory(MasterMap::MAILBOX_IN);
    if (value != 0)
        _board.watch.Log([&] { return "host " + Hex(value); });
    if (value & Vt22ApplicationIndication_t::OUT)
        _processData.OutputReleased();
    if (value & Vt22ApplicationIndication_t::IN)
        _processData.InputReleased();
    if (value & Vt22ApplicationIndication_t::M_OUT)
        _mailbox.Acknowledged();
    if (value & Vt22ApplicationIndication_t::M_IN)
        _mailbox.Notified();
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
    using namespace MasterMap::FatalEvent;
    Bytes info = event.additionalInfo;
    info.resize(ADDITIONAL_INFO_SIZE);
    Bytes file(event.sourceFile.begin(), event.sourceFile.end());
    file.resize(SOURCE_FILE_SIZE);

    DpRam& dpRam = _board.dpRam;
    dpRam.Write16(OFFSET + ERROR_CODE, event.errorCode);
    dpRam.Write16(OFFSET + ERROR_CAUSE, event.errorCause);
    dpRam.Write16(OFFSET + TASK_ID, event.taskId);
    dpRam.Write32(OFFSET + TIME_STAMP_HIGH, static_cast<std::uint32_t>(event.timeStamp >> 32));
    dpRam.Write32(OFFSET + TIME_STAMP_LOW, static_cast<std::uint32_t>(event.timeStamp));
    dpRam.Write(OFFSET + ADDITIONAL_INFO, info);
    dpRam.Write16(OFFSET + SOURCE_LINE, event.sourceLine);
    dpRam.Write(OFFSET + SOURCE_FILE, file);
    _fatal = true;
}

} // namespace VirtualModule
