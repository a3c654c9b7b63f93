// SPDX-License-Identifier: MIT
#include "vesk/hostinterface/Parallel16Bit.h"

#include "vesk/core/FormatArray.h"
#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/system/diagnostics/Trace.h"
#include "vesk/system/io/File.h"

namespace Vesk::HostInterface {

using System::IArgFunc;
using System::IArray;
using System::IFunc;

std::shared_ptr<Parallel16Bit>
Parallel16Bit::FromPath(const System::String& path, int offset, int size,
                        std::shared_ptr<IFunc<bool>> velmoIrq_n,
                        std::shared_ptr<IArgFunc<bool, void>> reset_n,
                        std::shared_ptr<IArgFunc<bool, void>> bootloader_enable_n) {
    if (path.IsNull())
        System::_throw_argument_null_exception("path");
    if (!velmoIrq_n)
        System::_throw_argument_null_exception("velmoIrq_n");
    if (!reset_n)
        System::_throw_argument_null_exception("reset_n");
    if (!bootloader_enable_n)
        System::_throw_argument_null_exception("bootloader_enable_n");
    auto file = System::IO::MemoryMappedFile::CreateFromPath(path, System::IO::FileMode::OPEN, offset, size,
                                                             System::IO::MemoryMappedFileAccess::READ_WRITE);
    return System::MakeShared<Parallel16Bit>(std::move(file), std::move(velmoIrq_n), std::move(reset_n),
                                             std::move(bootloader_enable_n));
}

Parallel16Bit::Parallel16Bit(std::shared_ptr<System::IO::MemoryMappedFile> file,
                             std::shared_ptr<IFunc<bool>> velmoIrq_n,
                             std::shared_ptr<IArgFunc<bool, void>> reset_n,
                             std::shared_ptr<IArgFunc<bool, void>> bootloader_enable_n)
    : _file(std::move(file)),
      _view(_file->CreateViewAccessor(0, _file->Capacity())),
      _velmoIrq_n(std::move(velmoIrq_n)),
      _reset_n(std::move(reset_n)),
      _bootloader_enable_n(std::move(bootloader_enable_n)) {}

/// Runs one of the steps of the end. Each is due, whatever has failed before it.
template <class Step>
static void Attempt(const Step& step) {
    try {
        step();
    } catch (...) {
        // Nobody is left to be told.
    }
}

Parallel16Bit::~Parallel16Bit() {
    Attempt([this] { Dump(); });
    Attempt([this] { Parallel16Bit::PowerOff(); });
    _file->Close();
}

void Parallel16Bit::Dump() {
    const auto snapshot = System::Array<unsigned char>::Create(_view->Capacity());
    _view->ReadArray(0, snapshot, 0, snapshot->Count());
    if (RuntimeConfig::_printHostInterfaceDump)
        Attempt([&] {
            System::Diagnostics::Trace::TraceDebug(
                FormatArray(snapshot, 0, snapshot->Count(), nullptr, 2, 16));
        });
    if (!RuntimeConfig::_hostInterfaceDumpPath.IsNull())
        System::IO::File::WriteAllBytes(RuntimeConfig::_hostInterfaceDumpPath, snapshot);
}

void Parallel16Bit::Read(int offset, const std::shared_ptr<IArray<unsigned char>>& array, int arrayOffset,
                         int count) {
    _view->ReadArray(offset, array, arrayOffset, count);
}

unsigned char Parallel16Bit::ReadUInt8(int offset) {
    return _view->ReadByte(offset);
}

unsigned short Parallel16Bit::ReadUInt16(int offset) {
    const unsigned int high = _view->ReadByte(offset);
    const unsigned int low = _view->ReadByte(offset + 1);
    return static_cast<unsigned short>(high << 8 | low);
}

unsigned int Parallel16Bit::ReadUInt32(int offset) {
    unsigned int value = 0;
    for (int i = 0; i < 4; ++i)
        value = value << 8 | _view->ReadByte(offset + i);
    return value;
}

void Parallel16Bit::Write(int offset, const std::shared_ptr<IArray<unsigned char>>& array, int arrayOffset,
                          int count) {
    _view->WriteArray(offset, array, arrayOffset, count);
}

void Parallel16Bit::WriteUInt8(int offset, unsigned char value) {
    _view->WriteByte(offset, value);
}

void Parallel16Bit::WriteUInt16(int offset, unsigned short value) {
    _view->WriteByte(offset, static_cast<unsigned char>(value >> 8));
    _view->WriteByte(offset + 1, static_cast<unsigned char>(value & 0xFF));
}

void Parallel16Bit::WriteUInt32(int offset, unsigned int value) {
    for (int i = 0; i < 4; ++i)
        _view->WriteByte(offset + i, static_cast<unsigned char>(value >> (24 - 8 * i) & 0xFF));
}

int Parallel16Bit::Size() {
    return _view->Capacity();
}

bool Parallel16Bit::VelmoIRQ() {
    return !_velmoIrq_n->Invoke();
}

void Parallel16Bit::BootloaderEnable() {
    _bootloader_enable_n->Invoke(false);
}

void Parallel16Bit::BootloaderDisable() {
    _bootloader_enable_n->Invoke(true);
}

void Parallel16Bit::PowerOff() {
    _reset_n->Invoke(false);
    for (int offset = 0; offset < Size(); ++offset)
        ReadUInt8(offset);
}

void Parallel16Bit::PowerOn() {
    _reset_n->Invoke(true);
}

} // namespace Vesk::HostInterface
