// SPDX-License-Identifier: MIT
#pragma once

#include "fuzz/Properties.h"
#include "fuzz/Script.h"

#include "tests/support/TestClock.h"
#include "vesk/hostinterface/IHostInterface.h"
#include "virtualmodule/Module.h"

#include <initializer_list>
#include <optional>

namespace Fuzz {

/// A DPRAM that cannot be trusted: bytes, registers and the interrupt line change at any access, reads are
/// false, writes are lost and time passes, as the back of the script says. The other side is a virtual module
/// or the script alone.
///
/// It holds the library to what it may do: a bounded number of accesses per call, all of them inside the
/// DPRAM, and writes only where they are the host's.
class HostileDpRam : public Vesk::HostInterface::IHostInterface {
public:
    static constexpr int SIZE = 0x2000;

    struct Range {
        int offset;
        int count;
    };

    /// `hosts` are the bytes that the host may write.
    HostileDpRam(Script& script, TestClock& clock, std::vector<Range> hosts);

    /// From now on a virtual module is on the other side.
    void Connect(VirtualModule::Flash& flash, const VirtualModule::Options& options);

    /// Null while the script is alone on the other side.
    VirtualModule::Module* Peer() { return _peer ? &*_peer : nullptr; }

    /// A call of the library begins: it may use the bus anew.
    void BeginCall();

    /// Nothing has gone wrong on the bus yet.
    bool Honest() const { return _honest; }

    /// The other side's access; what leaves the DPRAM is dropped.
    void Poke(int offset, std::span<const unsigned char> values);

    void Poke(int offset, std::initializer_list<int> values);

    unsigned char Peek(int offset) const { return _bytes[static_cast<std::size_t>(offset)]; }

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

    int Size() override { return size; }

    bool VelmoIRQ() override;
    void BootloaderEnable() override;
    void BootloaderDisable() override;
    void PowerOff() override;
    void PowerOn() override;

    /// What it says of its own size.
    int size = SIZE;
    /// The interrupt line while the script is alone; a look at it releases it.
    bool irq = false;

private:
    void Access(int offset);
    void Strike(int offset);
    void Arm();

    Script& _script;
    TestClock& _clock;
    std::vector<Range> _hosts;
    std::vector<unsigned char> _bytes = std::vector<unsigned char>(SIZE);
    VirtualModule::Lines _lines;
    std::optional<VirtualModule::Module> _peer;

    bool _honest = true;
    int _accesses = 0; // of this call
    int _strikes = 0;  // in this call
    int _distance = 0; // accesses up to the next strike; 0: there is none
    std::optional<unsigned char> _falseRead;
    bool _lostWrite = false;
    bool _falseIrq = false;
};

} // namespace Fuzz
