// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/Vt22FieldbusOut.h"

#include "vesk/core/TextOf.h"
#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/CheckReservedBits.h"

namespace Vesk::Modules::DPVM {

namespace FieldbusStatus = HostInterface::MasterDpRam::FieldbusStatus;
using System::Array;

std::shared_ptr<Vt22FieldbusOut>
Vt22FieldbusOut::Create(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface,
                        std::shared_ptr<System::IArgFunc<OperationMode_e, void>> operationModeCallback) {
    if (!hostInterface)
        System::_throw_argument_null_exception("hostInterface");
    return System::MakeShared<Vt22FieldbusOut>(offset, std::move(hostInterface),
                                               std::move(operationModeCallback));
}

Vt22FieldbusOut::Vt22FieldbusOut(
    unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface,
    std::shared_ptr<System::IArgFunc<OperationMode_e, void>> operationModeCallback)
    : _offset(offset),
      _hostInterface(std::move(hostInterface)),
      _slaveConfiguredList(Array<unsigned char>::Create(FieldbusStatus::LIST_SIZE)),
      _dataTransferList(Array<unsigned char>::Create(FieldbusStatus::LIST_SIZE)),
      _slaveDiagnosticList(Array<unsigned char>::Create(FieldbusStatus::LIST_SIZE)),
      _dpv1ConnectionLiveList(Array<unsigned char>::Create(FieldbusStatus::LIST_SIZE)),
      _masterStatus(Array<unsigned char>::Create(FieldbusStatus::MASTER_STATUS_SIZE)),
      _operationModeCallback(std::move(operationModeCallback)) {}

void Vt22FieldbusOut::Update() {
    const FieldbusChange_t change{_hostInterface->ReadUInt16(_offset + FieldbusStatus::CHANGE)};
    CheckReservedBits(change.value, FieldbusChange_t::RESERVED, "indication register");
    if (change.value & FieldbusChange_t::SLAVE_CONFIGURED_LIST)
        ReadList(FieldbusStatus::SLAVE_CONFIGURED_LIST, _slaveConfiguredList);
    if (change.value & FieldbusChange_t::DATA_TRANSFER_LIST)
        ReadList(FieldbusStatus::DATA_TRANSFER_LIST, _dataTransferList);
    if (change.value & FieldbusChange_t::SLAVE_DIAGNOSTIC_LIST)
        ReadList(FieldbusStatus::SLAVE_DIAGNOSTIC_LIST, _slaveDiagnosticList);
    if (change.value & FieldbusChange_t::DPV1_CONNECTION_LIST)
        ReadList(FieldbusStatus::DPV1_CONNECTION_LIST, _dpv1ConnectionLiveList);
    if (change.value & FieldbusChange_t::MASTER_STATUS && _operationModeCallback)
        UpdateMasterStatus();
}

void Vt22FieldbusOut::ReadList(int field, const std::shared_ptr<System::IArray<unsigned char>>& list) {
    _hostInterface->Read(_offset + field, list, 0, list->Count());
}

void Vt22FieldbusOut::UpdateMasterStatus() {
    const unsigned char previous = _masterStatus->Get(0);
    ReadList(FieldbusStatus::MASTER_STATUS, _masterStatus);
    const unsigned char mode = _masterStatus->Get(0);
    if (mode == previous)
        return;
    switch (const auto known = static_cast<OperationMode_e>(mode)) {
    case OperationMode_e::STOP:
    case OperationMode_e::CLEAR:
    case OperationMode_e::OPERATE:
        _operationModeCallback->Invoke(known);
        return;
    case OperationMode_e::OFFLINE: // a module that is offline has no mode to report
        break;
    }
    System::_env_throw(ModuleStateException::Create(TextOf("Invalid operation mode: ", InHex{mode})));
}

} // namespace Vesk::Modules::DPVM
