// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/Vt22DeviceIdArea.h"

#include "vesk/hostinterface/MasterDpRam.h"

namespace Vesk::Modules::DPVM {

namespace Identity = HostInterface::MasterDpRam::Identity;

std::shared_ptr<Vt22DeviceIdArea>
Vt22DeviceIdArea::Create(unsigned short offset,
                         std::shared_ptr<HostInterface::IHostInterface> hostInterface) {
    if (!hostInterface)
        System::_throw_argument_null_exception("hostInterface");
    return System::MakeShared<Vt22DeviceIdArea>(offset, std::move(hostInterface));
}

Vt22DeviceIdArea::Vt22DeviceIdArea(unsigned short offset,
                                   std::shared_ptr<HostInterface::IHostInterface> hostInterface)
    : _offset(offset), _hostInterface(std::move(hostInterface)) {}

void Vt22DeviceIdArea::Update() {
    HostInterface::IHostInterface& dpRam = *_hostInterface;
    _bootloaderVersion = dpRam.ReadUInt16(_offset + Identity::BOOTLOADER_VERSION);
    _unused1 = dpRam.ReadUInt16(_offset + Identity::UNUSED_1);
    _unused2 = dpRam.ReadUInt16(_offset + Identity::UNUSED_2);
    _serial = dpRam.ReadUInt32(_offset + Identity::SERIAL);
    _moduleType = dpRam.ReadUInt16(_offset + Identity::MODULE_TYPE);
    _vendorId = dpRam.ReadUInt16(_offset + Identity::VENDOR_ID);
    _fieldbusType = dpRam.ReadUInt16(_offset + Identity::FIELDBUS_TYPE);
    _softwareVersion = dpRam.ReadUInt16(_offset + Identity::SOFTWARE_VERSION);
    _softwareBuild = dpRam.ReadUInt8(_offset + Identity::SOFTWARE_BUILD);
}

} // namespace Vesk::Modules::DPVM
