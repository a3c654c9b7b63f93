// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/Vt22OutArea.h"

#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/CheckReservedBits.h"

namespace Vesk::Modules::DPVM {

namespace OutArea = HostInterface::MasterDpRam::OutArea;

std::shared_ptr<Vt22OutArea>
Vt22OutArea::Create(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface,
                    std::shared_ptr<System::IFunc<void>> offlineCallback,
                    std::shared_ptr<System::IFunc<void>> onlineCallback,
                    std::shared_ptr<System::IArgFunc<OperationMode_e, void>> operationModeCallback) {
    if (!hostInterface)
        System::_throw_argument_null_exception("hostInterface");
    return System::MakeShared<Vt22OutArea>(offset, std::move(hostInterface), std::move(offlineCallback),
                                           std::move(onlineCallback), std::move(operationModeCallback));
}

Vt22OutArea::Vt22OutArea(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface,
                         std::shared_ptr<System::IFunc<void>> offlineCallback,
                         std::shared_ptr<System::IFunc<void>> onlineCallback,
                         std::shared_ptr<System::IArgFunc<OperationMode_e, void>> operationModeCallback)
    : _offset(offset),
      _hostInterface(std::move(hostInterface)),
      _outputData(IO::OutArea::Create(static_cast<unsigned short>(offset + OutArea::OUTPUT_AREA),
                                      HostInterface::MasterDpRam::OUTPUT_AREA_SIZE, _hostInterface)),
      _fieldbusOut(Vt22FieldbusOut::Create(static_cast<unsigned short>(offset + OutArea::FIELDBUS_STATUS),
                                           _hostInterface, std::move(operationModeCallback))),
      _offlineCallback(std::move(offlineCallback)),
      _onlineCallback(std::move(onlineCallback)) {}

void Vt22OutArea::Update() {
    const OutAreaIndication_t indication{_hostInterface->ReadUInt16(_offset + OutArea::INDICATION)};
    CheckReservedBits(indication.value, OutAreaIndication_t::RESERVED, "indication register");
    if (indication.value & OutAreaIndication_t::MODULE_STATUS)
        UpdateModuleStatus();
    if (indication.value & OutAreaIndication_t::FIELDBUS_STATUS) {
        _fieldbusOut->Update();
        ++_reports;
    }
    if (indication.value & OutAreaIndication_t::OUTPUT_DATA)
        _outputData->Update();
}

void Vt22OutArea::UpdateModuleStatus() {
    const ModuleStatus_t status{_hostInterface->ReadUInt16(_offset + OutArea::MODULE_STATUS)};
    CheckReservedBits(status.value, ModuleStatus_t::RESERVED, "module status register");
    const bool offline = (status.value & ModuleStatus_t::OFFLINE) != 0;
    const bool online = (status.value & ModuleStatus_t::ONLINE) != 0;
    if (offline && online)
        System::_env_throw(ModuleStateException::Create("Simultaneous offline and online indication"));
    if (offline) {
        if (_status.value & ModuleStatus_t::OFFLINE)
            System::_env_throw(ModuleStateException::Create("Double offline indication received"));
        if (_offlineCallback)
            _offlineCallback->Invoke();
    }
    if (online) {
        if (_status.value & ModuleStatus_t::ONLINE)
            System::_env_throw(ModuleStateException::Create("Double online indication received"));
        if (_onlineCallback)
            _onlineCallback->Invoke();
    }
    _status = status;
    ++_reports;
}

} // namespace Vesk::Modules::DPVM
