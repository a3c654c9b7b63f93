// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/io/OutArea.h"
#include "vesk/modules/dpvm/Vt22FieldbusOut.h"

namespace Vesk::Modules::DPVM {

/// What the master module hands to the host together with the output area: its own status, the fieldbus
/// status section and the output process data.
class Vt22OutArea : public System::Object {
public:
    /// The block at DPRAM `offset`. The callbacks are called from Update when the module goes offline or
    /// online and when its operation mode changes; each may be null. ArgumentNullException without a host
    /// interface. Touches no DPRAM.
    static std::shared_ptr<Vt22OutArea>
    Create(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface,
           std::shared_ptr<System::IFunc<void>> offlineCallback,
           std::shared_ptr<System::IFunc<void>> onlineCallback,
           std::shared_ptr<System::IArgFunc<OperationMode_e, void>> operationModeCallback);

    /// The module has handed the area over: reads what its indication register names as changed.
    /// ModuleStateException for a reserved bit in a register, for offline and online at once, for the same of
    /// the two twice in a row and for an operation mode that is none; what comes after the failure is not
    /// done.
    void Update();

    /// Reads the module status register and calls the callback that it asks for.
    void UpdateModuleStatus();

    /// The module is on the bus; false before its first report.
    bool Online() const { return (_status.value & ModuleStatus_t::ONLINE) != 0; }

    /// How often the module has reported its own status or the bus's.
    unsigned int Reports() const { return _reports; }

    const std::shared_ptr<IO::OutArea>& OutputData() const { return _outputData; }

    const std::shared_ptr<Vt22FieldbusOut>& FieldbusOut() const { return _fieldbusOut; }

protected:
    Vt22OutArea(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface,
                std::shared_ptr<System::IFunc<void>> offlineCallback,
                std::shared_ptr<System::IFunc<void>> onlineCallback,
                std::shared_ptr<System::IArgFunc<OperationMode_e, void>> operationModeCallback);

private:
    unsigned short _offset;
    std::shared_ptr<HostInterface::IHostInterface> _hostInterface;
    std::shared_ptr<IO::OutArea> _outputData;
    std::shared_ptr<Vt22FieldbusOut> _fieldbusOut;
    std::shared_ptr<System::IFunc<void>> _offlineCallback;
    std::shared_ptr<System::IFunc<void>> _onlineCallback;
    ModuleStatus_t _status; // the last one read
    unsigned int _reports = 0;
};

} // namespace Vesk::Modules::DPVM
