// SPDX-License-Identifier: MIT
#include "vesk/handshake/ApplicationIndication.h"

#include "vesk/hostinterface/BitLabels.h"
#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/system/diagnostics/Trace.h"

#include <utility>

namespace Vesk::Handshake {

static constexpr std::int64_t WRITE_SPACING_NANOSECONDS = 500'000;

std::shared_ptr<ApplicationIndication>
ApplicationIndication::Create(unsigned short offset,
                              std::shared_ptr<HostInterface::IHostInterface> hostInterface) {
    if (!hostInterface)
        System::_throw_argument_null_exception("hostInterface");
    return System::MakeShared<ApplicationIndication>(offset, std::move(hostInterface));
}

ApplicationIndication::ApplicationIndication(unsigned short offset,
                                             std::shared_ptr<HostInterface::IHostInterface> hostInterface)
    : _offset(offset), _hostInterface(std::move(hostInterface)) {}

void ApplicationIndication::Update() {
    if (!_actions && !AreaCommandDue())
        return;
    if ((System::DateTime::Now() - _lastWriteTime).Nanoseconds() < WRITE_SPACING_NANOSECONDS)
        return;
    const unsigned char command = TakeAreaCommand();
    _next.value = command | _actions;
    if (RuntimeConfig::_printApplicationHandshake)
        PrintHandshake(); // shows which actions are taken, which the levels of the toggle bits do not
    constexpr unsigned char TOGGLES =
        ApplicationIndication_t::EVENT | ApplicationIndication_t::M_OUT | ApplicationIndication_t::M_IN;
    _next.value = static_cast<unsigned char>(command | ((_lastWritten.value ^ _actions) & TOGGLES));
    _actions = 0;
    UpdateDpRam();
    _lastWriteTime = System::DateTime::Now();
}

void ApplicationIndication::UpdateDpRam() {
    do
        _hostInterface->WriteUInt8(_offset, _next.value);
    while (_hostInterface->ReadUInt8(_offset) != _next.value);
    _lastWritten = _next;
}

void ApplicationIndication::PrintHandshake() const {
    System::Diagnostics::Trace::TraceDebug(
        HostInterface::BitLabels("ApplicationInd:", _next.value, ApplicationIndication_t::LABELS));
}

unsigned char ApplicationIndication::TakeAreaCommand() {
    if (!AreaCommandDue())
        return 0;
    _indicationReceived = false;
    if (_releases)
        return std::exchange(_releases, {}) | ApplicationIndication_t::LOCK;
    return std::exchange(_requests, {}) | ApplicationIndication_t::LOCK | ApplicationIndication_t::ACTION;
}

} // namespace Vesk::Handshake
