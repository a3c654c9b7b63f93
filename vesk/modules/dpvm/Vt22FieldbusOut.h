// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/hostinterface/IHostInterface.h"
#include "vesk/hostinterface/MasterDpRam.h"
#include "vesk/modules/dpvm/OperationMode_e.h"
#include "vesk/system/Delegates.h"

namespace Vesk::Modules::DPVM {

/// The fieldbus status section: the bus as the master sees it. The lists are bit lists, one bit per station
/// address; they are filled in place, so that who holds one sees every change.
class Vt22FieldbusOut : public System::Object {
public:
    /// The section at DPRAM `offset`. `operationModeCallback` is called from Update with each new operation
    /// mode; it may be null. ArgumentNullException without a host interface. Touches no DPRAM.
    static std::shared_ptr<Vt22FieldbusOut>
    Create(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface,
           std::shared_ptr<System::IArgFunc<OperationMode_e, void>> operationModeCallback);

    /// Reads what the change register names. ModuleStateException for a reserved bit in it and for a mode
    /// that is none.
    void Update();

    /// The operation mode last reported, if there is a callback for it; OFFLINE before the first report.
    OperationMode_e OperationMode() const { return static_cast<OperationMode_e>(_masterStatus->Get(0)); }

    /// 16 bytes each.
    std::shared_ptr<System::IArray<unsigned char>> SlaveConfiguredList() const {
        return _slaveConfiguredList;
    }

    std::shared_ptr<System::IArray<unsigned char>> DataTransferList() const { return _dataTransferList; }

    std::shared_ptr<System::IArray<unsigned char>> SlaveDiagnosticList() const {
        return _slaveDiagnosticList;
    }

    std::shared_ptr<System::IArray<unsigned char>> Dpv1ConnectionLiveList() const {
        return _dpv1ConnectionLiveList;
    }

protected:
    Vt22FieldbusOut(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface,
                    std::shared_ptr<System::IArgFunc<OperationMode_e, void>> operationModeCallback);

private:
    void ReadList(int field, const std::shared_ptr<System::IArray<unsigned char>>& list);
    void UpdateMasterStatus();

    unsigned short _offset;
    std::shared_ptr<HostInterface::IHostInterface> _hostInterface;
    std::shared_ptr<System::IArray<unsigned char>> _slaveConfiguredList;
    std::shared_ptr<System::IArray<unsigned char>> _dataTransferList;
    std::shared_ptr<System::IArray<unsigned char>> _slaveDiagnosticList;
    std::shared_ptr<System::IArray<unsigned char>> _dpv1ConnectionLiveList;
    std::shared_ptr<System::IArray<unsigned char>> _masterStatus; // byte 0: the operation mode
    std::shared_ptr<System::IArgFunc<OperationMode_e, void>> _operationModeCallback;
};

} // namespace Vesk::Modules::DPVM
