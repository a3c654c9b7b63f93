// SPDX-License-Identifier: MIT
#include "virtualmodule/faults/FaultyProcessData.h"

#include "vesk/hostinterface/MasterDpRam.h"

using Vesk::Modules::DPVM::FieldbusChange_t;
using Vesk::Modules::DPVM::ModuleStatus_t;
using Vesk::Modules::DPVM::OutAreaIndication_t;

namespace VirtualModule {

FaultyProcessData::FaultyProcessData(Board& board, Bus& bus, FaultInjector& faults)
    : ProcessData(board, bus), _dpRam(board.dpRam), _faults(faults) {}

unsigned FaultyProcessData::WriteChanges() {
    const unsigned written = ProcessData::WriteChanges();
    return written | FalsifyStatus();
}

/// Writes what a fault makes the status registers say; returns the changes that announce it.
unsigned FaultyProcessData::FalsifyStatus() {
    using namespace Vesk::HostInterface::MasterDpRam;
    unsigned changed = 0;
    const auto sayStatus = [&](unsigned status) {
        _dpRam.Write16(OutArea::OFFSET + OutArea::MODULE_STATUS, status);
        changed |= OutAreaIndication_t::MODULE_STATUS;
    };
    const auto sayChange = [&](unsigned change) {
        const std::uint16_t offset = FieldbusStatus::OFFSET + FieldbusStatus::CHANGE;
        _dpRam.Write16(offset, Word(_dpRam.Read8(offset), _dpRam.Read8(offset + 1)) | change);
        changed |= OutAreaIndication_t::FIELDBUS_STATUS;
    };

    _faults.Count(Counts::OUTPUT_TURNS);
    changed |= _faults.Falsify(FaultId::AREA_RESERVED, 0);
    if (const Fault* fault = _faults.Strike(FaultId::STATUS_RESERVED))
        sayStatus(fault->value);
    if (_faults.Strike(FaultId::OFFLINE_AND_ONLINE))
        sayStatus(ModuleStatus_t::OFFLINE | ModuleStatus_t::ONLINE);
    if (_faults.Strike(FaultId::DOUBLE_ONLINE))
        sayStatus(ModuleStatus_t::ONLINE);
    if (_faults.Strike(FaultId::DOUBLE_OFFLINE))
        sayStatus(ModuleStatus_t::OFFLINE);
    if (const Fault* fault = _faults.Strike(FaultId::CHANGE_RESERVED))
        sayChange(fault->value);
    if (const Fault* fault = _faults.Strike(FaultId::INVALID_MODE)) {
        _dpRam.Write8(FieldbusStatus::OFFSET + FieldbusStatus::MASTER_STATUS, fault->value);
        sayChange(FieldbusChange_t::MASTER_STATUS);
    }
    return changed;
}

} // namespace VirtualModule
