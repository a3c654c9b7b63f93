// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/hostinterface/IHostInterface.h"

namespace Vesk::Modules::DPVM {

/// The master module's identity block, read once per boot. Every value is 0 before the first Update.
class Vt22DeviceIdArea : public System::Object {
public:
    /// The block at DPRAM `offset`. ArgumentNullException without a host interface. Touches no DPRAM.
    static std::shared_ptr<Vt22DeviceIdArea>
    Create(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface);

    /// Reads the block.
    void Update();

    unsigned char BootloaderMajor() const { return static_cast<unsigned char>(_bootloaderVersion >> 8); }

    unsigned char BootloaderMinor() const { return static_cast<unsigned char>(_bootloaderVersion & 0xFF); }

    unsigned int Serial() const { return _serial; }

    unsigned short ModuleType() const { return _moduleType; }

    unsigned short VendorId() const { return _vendorId; }

    unsigned short FieldbusType() const { return _fieldbusType; }

    unsigned char SoftwareMajor() const { return static_cast<unsigned char>(_softwareVersion >> 8); }

    unsigned char SoftwareMinor() const { return static_cast<unsigned char>(_softwareVersion & 0xFF); }

    unsigned char SoftwareBuild() const { return _softwareBuild; }

protected:
    Vt22DeviceIdArea(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface);

private:
    unsigned short _offset;
    std::shared_ptr<HostInterface::IHostInterface> _hostInterface;
    unsigned short _bootloaderVersion = 0;
    unsigned short _unused1 = 0; // read with the block, not interpreted
    unsigned short _unused2 = 0;
    unsigned int _serial = 0;
    unsigned short _moduleType = 0;
    unsigned short _vendorId = 0;
    unsigned short _fieldbusType = 0;
    unsigned short _softwareVersion = 0;
    unsigned char _softwareBuild = 0;
};

} // namespace Vesk::Modules::DPVM
