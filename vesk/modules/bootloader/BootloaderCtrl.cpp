// SPDX-License-Identifier: MIT
#include "vesk/modules/bootloader/BootloaderCtrl.h"

#include "vesk/hostinterface/BootloaderDpRam.h"

namespace Vesk::Modules::Bootloader {

namespace Block = HostInterface::BootloaderDpRam::Ctrl;

std::shared_ptr<BootloaderCtrl>
BootloaderCtrl::Create(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface) {
    if (!hostInterface)
        System::_throw_argument_null_exception("hostInterface");
    return System::MakeShared<BootloaderCtrl>(offset, std::move(hostInterface));
}

BootloaderCtrl::BootloaderCtrl(unsigned short offset,
                               std::shared_ptr<HostInterface::IHostInterface> hostInterface)
    : _offset(offset), _hostInterface(std::move(hostInterface)) {}

void BootloaderCtrl::HandleBootEvent() {
    _bootloaderMajor = _hostInterface->ReadUInt8(_offset + Block::BOOTLOADER_MAJOR);
    _bootloaderMinor = _hostInterface->ReadUInt8(_offset + Block::BOOTLOADER_MINOR);
    _serial = _hostInterface->ReadUInt32(_offset + Block::SERIAL);
    _vendorId = _hostInterface->ReadUInt16(_offset + Block::VENDOR_ID);
    _fieldbusType = _hostInterface->ReadUInt16(_offset + Block::FIELDBUS_TYPE);
    _moduleType = _hostInterface->ReadUInt16(_offset + Block::MODULE_TYPE);
}

} // namespace Vesk::Modules::Bootloader
