// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/hostinterface/IHostInterface.h"

namespace Vesk::Modules::Bootloader {

/// The control block in which the bootloader tells its version and the module's identity.
class BootloaderCtrl : public System::Object {
public:
    /// The block at DPRAM `offset`; touches no DPRAM. ArgumentNullException without a host interface.
    static std::shared_ptr<BootloaderCtrl>
    Create(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface);

    /// Reads the block; the module has booted.
    void HandleBootEvent();

    /// What HandleBootEvent read last; 0 before the first.
    unsigned char BootloaderMajor() const { return _bootloaderMajor; }

    unsigned char BootloaderMinor() const { return _bootloaderMinor; }

    unsigned int Serial() const { return _serial; }

    unsigned short VendorId() const { return _vendorId; }

    unsigned short FieldbusType() const { return _fieldbusType; }

    unsigned short ModuleType() const { return _moduleType; }

protected:
    BootloaderCtrl(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface);

private:
    unsigned short _offset;
    std::shared_ptr<HostInterface::IHostInterface> _hostInterface;
    unsigned char _bootloaderMajor = 0;
    unsigned char _bootloaderMinor = 0;
    unsigned int _serial = 0;
    unsigned short _vendorId = 0;
    unsigned short _fieldbusType = 0;
    unsigned short _moduleType = 0;
};

} // namespace Vesk::Modules::Bootloader
