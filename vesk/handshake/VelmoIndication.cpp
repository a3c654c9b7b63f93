// SPDX-License-Identifier: MIT
#include "vesk/handshake/VelmoIndication.h"

#include "vesk/hostinterface/BitLabels.h"
#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/system/Exception.h"
#include "vesk/system/diagnostics/Trace.h"

namespace Vesk::Handshake {

using System::InvalidOperationException;

std::shared_ptr<VelmoIndication>
VelmoIndication::Create(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface) {
    if (!hostInterface)
        System::_throw_argument_null_exception("hostInterface");
    return System::MakeShared<VelmoIndication>(offset, std::move(hostInterface));
}

VelmoIndication::VelmoIndication(unsigned short offset,
                                 std::shared_ptr<HostInterface::IHostInterface> hostInterface)
    : _offset(offset), _hostInterface(std::move(hostInterface)) {}

void VelmoIndication::HandleBootEvent() {
    UpdateDpRam();
    if (_current.value != 0)
        System::_env_throw(InvalidOperationException::Create("Non-zero handshake on bootup: " +
                                                             std::to_string(_current.value)));
    _previous = _current;
}

std::shared_ptr<VelmoEvent> VelmoIndication::Update() {
    UpdateDpRam();
    if (_current.value == _previous.value)
        return nullptr;
    const VelmoIndication_t changed{static_cast<unsigned char>(_previous.value ^ _current.value)};
    if (RuntimeConfig::_printVelmoHandshake)
        System::Diagnostics::Trace::TraceDebug(ToString(&changed));
    const auto rose = [&](unsigned char bit) { return (changed.value & _current.value & bit) != 0; };
    const auto fell = [&](unsigned char bit) { return (changed.value & _previous.value & bit) != 0; };
    const auto toggled = [&](unsigned char bit) { return (changed.value & bit) != 0; };
    if (fell(VelmoIndication_t::INIT))
        System::_env_throw(InvalidOperationException::Create("Velmo module no longer initialized!"));
    const auto event = VelmoEvent::Create(toggled(VelmoIndication_t::EVENT), rose(VelmoIndication_t::FBCTRL),
                                          fell(VelmoIndication_t::FBCTRL), rose(VelmoIndication_t::IN),
                                          fell(VelmoIndication_t::IN), rose(VelmoIndication_t::INIT),
                                          toggled(VelmoIndication_t::M_IN), toggled(VelmoIndication_t::M_OUT),
                                          rose(VelmoIndication_t::OUT), fell(VelmoIndication_t::OUT));
    _previous = _current;
    return event;
}

void VelmoIndication::UpdateDpRam() {
    unsigned char first;
    do {
        first = _hostInterface->ReadUInt8(_offset);
        _current.value = _hostInterface->ReadUInt8(_offset);
    } while (_current.value != first);
}

System::String VelmoIndication::ToString(const VelmoIndication_t* indication) {
    return HostInterface::BitLabels("VelmoInd:", indication->value, VelmoIndication_t::LABELS);
}

} // namespace Vesk::Handshake
