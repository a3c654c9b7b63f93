// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/hostinterface/IHostInterface.h"

#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

/// A DPRAM in memory that writes down every access, in order, as a short text: "R8 1ffb", "W16 0010=1234",
/// "R 0176+288", "W 0056+42", "irq", "on", "off", "boot", "app". Single bytes of a test come from Bytes.
class RecordingHostInterface : public Vesk::HostInterface::IHostInterface {
public:
    explicit RecordingHostInterface(int size = 0x2000) : bytes(static_cast<std::size_t>(size)) {}

    /// Puts bytes into the DPRAM without recording.
    void Put(int offset, std::initializer_list<int> values);
    /// Bytes of the DPRAM without recording.
    std::vector<int> Bytes(int offset, int count) const;

    /// The accesses since the last call.
    std::vector<std::string> TakeLog() { return std::exchange(log, {}); }

    void Read(int offset, const std::shared_ptr<System::IArray<unsigned char>>& array, int arrayOffset,
              int count) override;
    void Write(int offset, const std::shared_ptr<System::IArray<unsigned char>>& array, int arrayOffset,
               int count) override;

    unsigned char ReadUInt8(int offset) override { return static_cast<unsigned char>(Load(offset, 1)); }

    unsigned short ReadUInt16(int offset) override { return static_cast<unsigned short>(Load(offset, 2)); }

    unsigned int ReadUInt32(int offset) override { return Load(offset, 4); }

    void WriteUInt8(int offset, unsigned char value) override { Store(offset, 1, value); }

    void WriteUInt16(int offset, unsigned short value) override { Store(offset, 2, value); }

    void WriteUInt32(int offset, unsigned int value) override { Store(offset, 4, value); }

    int Size() override { return static_cast<int>(bytes.size()); }

    bool VelmoIRQ() override {
        log.push_back("irq");
        return irq;
    }

    void BootloaderEnable() override { log.push_back("boot"); }

    void BootloaderDisable() override { log.push_back("app"); }

    void PowerOff() override { log.push_back("off"); }

    void PowerOn() override { log.push_back("on"); }

    std::vector<unsigned char> bytes;
    std::vector<std::string> log;
    bool irq = false;
    /// Called before each single-value access; may change bytes, so that a register differs between two
    /// reads.
    std::function<void(const std::string& access)> beforeAccess;

private:
    void Note(const std::string& access);
    unsigned int Load(int offset, int width);
    void Store(int offset, int width, unsigned int value);
};
