// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/hostinterface/IHostInterface.h"
#include "vesk/system/Delegates.h"
#include "vesk/system/io/MemoryMappedFile.h"

namespace Vesk::HostInterface {

/// The host interface over a file through which the platform lets the parallel bus be mapped into memory,
/// with the control lines driven by the application's callbacks. All three lines are active low.
///
/// Destroying it takes a dump of the DPRAM (see RuntimeConfig), asserts reset and closes the mapping; what a
/// callback, the trace listener or the dump throws then is swallowed.
class Parallel16Bit : public IHostInterface {
public:
    /// Maps `size` bytes from byte `offset` of the file `path` on. No line is driven and no byte touched.
    /// `velmoIrq_n` returns the level of the interrupt line (true = high), the other two drive their line to
    /// the level that they are given. ArgumentNullException naming the null argument; the failures of
    /// System::IO::MemoryMappedFile::CreateFromPath.
    static std::shared_ptr<Parallel16Bit>
    FromPath(const System::String& path, int offset, int size,
             std::shared_ptr<System::IFunc<bool>> velmoIrq_n,
             std::shared_ptr<System::IArgFunc<bool, void>> reset_n,
             std::shared_ptr<System::IArgFunc<bool, void>> bootloader_enable_n);
    ~Parallel16Bit() override;

    void Read(int offset, const std::shared_ptr<System::IArray<unsigned char>>& array, int arrayOffset,
              int count) override;
    unsigned char ReadUInt8(int offset) override;
    unsigned short ReadUInt16(int offset) override;
    unsigned int ReadUInt32(int offset) override;
    void Write(int offset, const std::shared_ptr<System::IArray<unsigned char>>& array, int arrayOffset,
               int count) override;
    void WriteUInt8(int offset, unsigned char value) override;
    void WriteUInt16(int offset, unsigned short value) override;
    void WriteUInt32(int offset, unsigned int value) override;
    int Size() override;

    bool VelmoIRQ() override;
    void BootloaderEnable() override;
    void BootloaderDisable() override;
    /// Asserts reset, then reads every byte of the DPRAM once.
    void PowerOff() override;
    void PowerOn() override;

protected:
    Parallel16Bit(std::shared_ptr<System::IO::MemoryMappedFile> file,
                  std::shared_ptr<System::IFunc<bool>> velmoIrq_n,
                  std::shared_ptr<System::IArgFunc<bool, void>> reset_n,
                  std::shared_ptr<System::IArgFunc<bool, void>> bootloader_enable_n);

private:
    void Dump();

    std::shared_ptr<System::IO::MemoryMappedFile> _file;
    std::shared_ptr<System::IO::MemoryMappedViewAccessor> _view;
    std::shared_ptr<System::IFunc<bool>> _velmoIrq_n;
    std::shared_ptr<System::IArgFunc<bool, void>> _reset_n;
    std::shared_ptr<System::IArgFunc<bool, void>> _bootloader_enable_n;
};

} // namespace Vesk::HostInterface
