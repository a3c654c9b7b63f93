// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/Vt22VelmoIndication.h"

#include "vesk/hostinterface/BitLabels.h"
#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/system/diagnostics/Trace.h"

#include <array>

namespace Vesk::Modules::DPVM {

namespace {

/// The event of every register value but 0, which is none; made before the first cycle.
class Events {
public:
    Events() {
        for (unsigned int value = 1; value < _events.size(); ++value)
            _events[value] = Decode(value);
    }

    const std::shared_ptr<Vt22VelmoEvent>& Of(Vt22VelmoIndication_t indication) const {
        return _events[indication.value];
    }

private:
    static std::shared_ptr<Vt22VelmoEvent> Decode(unsigned int value) {
        const auto has = [value](unsigned char bit) { return (value & bit) != 0; };
        using Bits = Vt22VelmoIndication_t;
        return Vt22VelmoEvent::Create(has(Bits::FATAL), has(Bits::IN), has(Bits::M_IN), has(Bits::M_OUT),
                                      has(Bits::OUT), has(Bits::POWER_ON), has(Bits::LOG));
    }

    std::array<std::shared_ptr<Vt22VelmoEvent>, 256> _events;
};

const Events& AllEvents() {
    static const Events& events = *new Events; // never destroyed: a module may be updated to the last
    return events;
}

} // namespace

std::shared_ptr<Vt22VelmoIndication>
Vt22VelmoIndication::Create(unsigned short offset, unsigned short companionOffset,
                            std::shared_ptr<HostInterface::IHostInterface> hostInterface) {
    if (!hostInterface)
        System::_throw_argument_null_exception("hostInterface");
    AllEvents();
    return System::MakeShared<Vt22VelmoIndication>(offset, companionOffset, std::move(hostInterface));
}

Vt22VelmoIndication::Vt22VelmoIndication(unsigned short offset, unsigned short companionOffset,
                                         std::shared_ptr<HostInterface::IHostInterface> hostInterface)
    : _offset(offset), _companionOffset(companionOffset), _hostInterface(std::move(hostInterface)) {}

void Vt22VelmoIndication::UpdateDpRam() {
    _indication.value = _hostInterface->ReadUInt8(_offset);
    _hostInterface->ReadUInt8(_companionOffset);
}

const std::shared_ptr<Vt22VelmoEvent>& Vt22VelmoIndication::Update() {
    UpdateDpRam();
    if (_indication.value != 0 && RuntimeConfig::_printVelmoHandshake)
        System::Diagnostics::Trace::TraceDebug(ToString(&_indication));
    return AllEvents().Of(_indication);
}

System::String Vt22VelmoIndication::ToString(const Vt22VelmoIndication_t* indication) {
    return HostInterface::BitLabels("VelmoInd:", indication->value, Vt22VelmoIndication_t::LABELS);
}

} // namespace Vesk::Modules::DPVM
