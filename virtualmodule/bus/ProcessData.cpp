// SPDX-License-Identifier: MIT
#include "virtualmodule/bus/ProcessData.h"

#include "vesk/hostinterface/MasterDpRam.h"

namespace MasterMap = Vesk::HostInterface::MasterDpRam;

using Vesk::Modules::DPVM::FieldbusChange_t;
using Vesk::Modules::DPVM::ModuleStatus_t;
using Vesk::Modules::DPVM::OutAreaIndication_t;

namespace VirtualModule {

ProcessData::ProcessData(Board& board, Bus& bus)
    : _dpRam(board.dpRam),
      _bus(bus),
      _watch(board.watch),
      _input(MasterMap::INPUT_AREA_SIZE),
      _output(MasterMap::OUTPUT_AREA_SIZE) {}

void ProcessData::Exchange() {
    if (_bus.Running())
        _bus.Exchange(_input, _output);
}

bool ProcessData::HandOverInput() {
    if (!_bus.Running() || _inputHandedOver)
        return false;
    _inputHandedOver = true;
    _dpRam.GiveToHost(MasterMap::INPUT_AREA, MasterMap::INPUT_AREA_SIZE);
    return true;
}

void ProcessData::InputReleased() {
    if (!_inputHandedOver) {
        _watch.Report(Violation::AREA_NOT_HANDED_OVER, "input area");
        return;
    }
    _inputHandedOver = false;
    _dpRam.TakeBack(MasterMap::INPUT_AREA, MasterMap::INPUT_AREA_SIZE);
    _input = _dpRam.Read(MasterMap::INPUT_AREA, MasterMap::INPUT_AREA_SIZE);
}

void ProcessData::OutputReleased() {
    if (!_outputHandedOver)
        _watch.Report(Violation::AREA_NOT_HANDED_OVER, "output area");
    _outputHandedOver = false;
}

bool ProcessData::HandOverOutput() {
    if (!_bus.Running() || _outputHandedOver)
        return false;
    const unsigned changed = WriteChanges();
    if (changed == 0)
        return false;
    _dpRam.Write16(MasterMap::OutArea::OFFSET + MasterMap::OutArea::INDICATION, changed);
    _outputHandedOver = true;
    return true;
}

unsigned ProcessData::WriteChanges() {
    const BusStatus status = _bus.Status();
    const unsigned changed = WriteModuleStatus(status) | WriteFieldbusStatus(status) | WriteOutputData();
    _reported = status;
    return changed;
}

std::uint16_t ProcessData::WriteModuleStatus(const BusStatus& status) {
    if (_reported && _reported->online == status.online)
        return 0;
    _dpRam.Write16(MasterMap::OutArea::OFFSET + MasterMap::OutArea::MODULE_STATUS,
                   status.online ? ModuleStatus_t::ONLINE : ModuleStatus_t::OFFLINE);
    _watch.Log([&] { return std::string(status.online ? "online" : "offline"); });
    return OutAreaIndication_t::MODULE_STATUS;
}

std::uint16_t ProcessData::WriteFieldbusStatus(const BusStatus& status) {
    struct Part {
        StationList BusStatus::*list;
        std::uint16_t change;
        std::uint16_t offset;
    };

    using namespace MasterMap::FieldbusStatus;
    static constexpr std::array PARTS{
        Part{&BusStatus::configured, FieldbusChange_t::SLAVE_CONFIGURED_LIST, SLAVE_CONFIGURED_LIST},
        Part{&BusStatus::dataTransfer, FieldbusChange_t::DATA_TRANSFER_LIST, DATA_TRANSFER_LIST},
        Part{&BusStatus::diagnostic, FieldbusChange_t::SLAVE_DIAGNOSTIC_LIST, SLAVE_DIAGNOSTIC_LIST},
        Part{&BusStatus::connections, FieldbusChange_t::DPV1_CONNECTION_LIST, DPV1_CONNECTION_LIST}};

    unsigned changes = 0;
    for (const Part& part : PARTS) {
        if (!_reported || (*_reported).*part.list != status.*part.list) {
            _dpRam.Write(OFFSET + part.offset, status.*part.list);
            changes |= part.change;
        }
    }
    if (!_reported || _reported->mode != status.mode) {
        _dpRam.Write8(OFFSET + MASTER_STATUS, static_cast<unsigned>(status.mode));
        _watch.Log([&] { return "operation mode " + Hex(static_cast<unsigned>(status.mode)); });
        changes |= FieldbusChange_t::MASTER_STATUS;
    }
    _dpRam.Write16(OFFSET + CHANGE, changes);
    return changes != 0 ? OutAreaIndication_t::FIELDBUS_STATUS : std::uint16_t{0};
}

std::uint16_t ProcessData::WriteOutputData() {
    if (_writtenOutput == _output)
        return 0;
    _dpRam.Write(MasterMap::OUTPUT_AREA, _output);
    _writtenOutput = _output;
    return OutAreaIndication_t::OUTPUT_DATA;
}

} // namespace VirtualModule
