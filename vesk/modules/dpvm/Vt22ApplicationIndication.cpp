// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/Vt22ApplicationIndication.h"

#include "vesk/hostinterface/BitLabels.h"
#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/system/Exception.h"
#include "vesk/system/diagnostics/Trace.h"

namespace Vesk::Modules::DPVM {

/// How long the module waits for marks before it gets an empty write.
static constexpr std::int64_t EMPTY_WRITE_NANOSECONDS = 2'000'000;

std::shared_ptr<Vt22ApplicationIndication>
Vt22ApplicationIndication::Create(unsigned short offset, unsigned short companionOffset,
                                  std::shared_ptr<HostInterface::IHostInterface> hostInterface) {
    if (!hostInterface)
        System::_throw_argument_null_exception("hostInterface");
    return System::MakeShared<Vt22ApplicationIndication>(offset, companionOffset, std::move(hostInterface));
}

Vt22ApplicationIndication::Vt22ApplicationIndication(
    unsigned short offset, unsigned short companionOffset,
    std::shared_ptr<HostInterface::IHostInterface> hostInterface)
    : _offset(offset),
      _companionOffset(companionOffset),
      _hostInterface(std::move(hostInterface)),
      _timer(Timer::Create()) {
    _timer->_nanoseconds = EMPTY_WRITE_NANOSECONDS;
}

void Vt22ApplicationIndication::Unlock() {
    if (!_locked)
        System::_env_throw(System::InvalidOperationException::Create("Application handshake not locked"));
    _locked = false;
    _timer->Start();
}

void Vt22ApplicationIndication::Update() {
    if (_locked)
        return;
    if (_indication.value != 0) {
        UpdateDpRam();
        if (RuntimeConfig::_printApplicationHandshake)
            PrintHandshake();
        _indication.value = 0;
    } else if (_timer->Expired()) {
        UpdateDpRam();
        _timer->Stop();
    }
}

void Vt22ApplicationIndication::UpdateDpRam() {
    _hostInterface->WriteUInt8(_offset, _indication.value);
    _hostInterface->WriteUInt8(_companionOffset, _indication.value);
    _locked = true;
}

void Vt22ApplicationIndication::PrintHandshake() const {
    const System::String text =
        HostInterface::BitLabels("ApplicationInd:", _indication.value, Vt22ApplicationIndication_t::LABELS);
    const bool reserved = (_indication.value & Vt22ApplicationIndication_t::RESERVED) != 0;
    System::Diagnostics::Trace::TraceDebug(reserved ? text.Value() + " reserved" : text);
}

} // namespace Vesk::Modules::DPVM
