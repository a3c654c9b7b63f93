// SPDX-License-Identifier: MIT
#include "vesk/handshake/ApplicationIndication.h"

#include "vesk/hostinterface/BitLabels.h"
#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/system/diagnostics/Trace.h"

#include <utility>

namespace Vesk::Handshake {

using Bits = ApplicationIndication_t;

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
    constexpr unsigned char TOGGLES = Bits::EVENT | Bits::M_OUT | Bits::M_IN;
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
        HostInterface::BitLabels("ApplicationInd:", _next.value, Bits::LABELS));
}

unsigned char ApplicationIndication::TakeAreaCommand() {
    if (!AreaCommandDue())
        return 0;
    _indicationReceived = false;
    if (_releases)
        return std::exchange(_releases, {}) | Bits::LOCK;
    return std::exchange(_requests, {}) | Bits::LOCK | Bits::ACTION;
}

} // namespace Vesk::Handshake
