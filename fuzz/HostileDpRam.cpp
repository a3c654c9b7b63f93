// SPDX-License-Identifier: MIT
#include "fuzz/HostileDpRam.h"

#include <algorithm>
#include <utility>

namespace Fuzz {

/// A call that touches everything once, and what the registers need beside it.
static constexpr int MOST_ACCESSES = HostileDpRam::SIZE + 256;

/// A register that never settles would keep two of the library's loops busy for ever, as they should be.
static constexpr int MOST_STRIKES = 8;

HostileDpRam::HostileDpRam(Script& script, TestClock& clock, std::vector<Range> hosts)
    : _script(script), _clock(clock), _hosts(std::move(hosts)) {
    Arm();
}

void HostileDpRam::Connect(VirtualModule::Flash& flash, const VirtualModule::Options& options) {
    _peer.emplace(std::span<volatile std::uint8_t>(_bytes.data(), _bytes.size()), _lines, flash,
                  TestClock::Nanoseconds, options);
}

void HostileDpRam::BeginCall() {
    _accesses = 0;
    _strikes = 0;
}

void HostileDpRam::Poke(int offset, std::span<const unsigned char> values) {
    for (const unsigned char value : values)
        if (offset < SIZE)
            _bytes[static_cast<std::size_t>(offset++)] = value;
}

void HostileDpRam::Poke(int offset, std::initializer_list<int> values) {
    for (const int value : values)
        _bytes[static_cast<std::size_t>(offset++)] = static_cast<unsigned char>(value);
}

// ---- what goes wrong

/// How far away the next strike is: near ones count single bytes, far ones skip whole areas.
void HostileDpRam::Arm() {
    const int distance = _script.ByteFromBack();
    _distance = distance < 128 ? distance : (distance - 127) * 64;
}

void HostileDpRam::Access(int offset) {
    Require(++_accesses <= MOST_ACCESSES, "a call makes a bounded number of accesses");
    if (_distance == 0 || _strikes >= MOST_STRIKES || --_distance > 0)
        return;
    _honest = false;
    ++_strikes;
    Strike(offset);
    Arm();
}

void HostileDpRam::Strike(int offset) {
    const unsigned char kind = _script.ByteFromBack();
    const unsigned char value = _script.ByteFromBack();
    auto& byte = _bytes[static_cast<std::size_t>(offset)];
    switch (kind % 6) {
    case 0:
        byte = value;
        break;
    case 1:
        _falseRead = value;
        break;
    case 2:
        _lostWrite = true;
        break;
    case 3:
        _falseIrq = true;
        break;
    case 4:
        _clock.Advance(value * 10'000'000LL);
        break;
    case 5:
        _bytes[static_cast<std::size_t>((kind << 8 | _script.ByteFromBack()) % SIZE)] = value;
        break;
    }
}

// ---- the DPRAM

void HostileDpRam::Read(int offset, const std::shared_ptr<System::IArray<unsigned char>>& array,
                        int arrayOffset, int count) {
    System::CheckRange(array.get(), arrayOffset, count);
    for (int i = 0; i < count; ++i)
        array->Data()[arrayOffset + i] = ReadUInt8(offset + i);
}

unsigned char HostileDpRam::ReadUInt8(int offset) {
    Require(offset >= 0 && offset < SIZE, "accesses stay inside the DPRAM", offset);
    Access(offset);
    return std::exchange(_falseRead, std::nullopt).value_or(_bytes[static_cast<std::size_t>(offset)]);
}

unsigned short HostileDpRam::ReadUInt16(int offset) {
    const unsigned int high = ReadUInt8(offset);
    return static_cast<unsigned short>(high << 8 | ReadUInt8(offset + 1));
}

unsigned int HostileDpRam::ReadUInt32(int offset) {
    const unsigned int high = ReadUInt16(offset);
    return high << 16 | ReadUInt16(offset + 2);
}

void HostileDpRam::Write(int offset, const std::shared_ptr<System::IArray<unsigned char>>& array,
                         int arrayOffset, int count) {
    System::CheckRange(array.get(), arrayOffset, count);
    for (int i = 0; i < count; ++i)
        WriteUInt8(offset + i, array->Data()[arrayOffset + i]);
}

void HostileDpRam::WriteUInt8(int offset, unsigned char value) {
    Require(std::any_of(_hosts.begin(), _hosts.end(),
                        [offset](const Range& range) {
                            return offset >= range.offset && offset < range.offset + range.count;
                        }),
            "the host writes only what is its own", offset);
    Access(offset);
    if (!std::exchange(_lostWrite, false))
        _bytes[static_cast<std::size_t>(offset)] = value;
}

void HostileDpRam::WriteUInt16(int offset, unsigned short value) {
    WriteUInt8(offset, static_cast<unsigned char>(value >> 8));
    WriteUInt8(offset + 1, static_cast<unsigned char>(value & 0xFF));
}

void HostileDpRam::WriteUInt32(int offset, unsigned int value) {
    WriteUInt16(offset, static_cast<unsigned short>(value >> 16));
    WriteUInt16(offset + 2, static_cast<unsigned short>(value & 0xFFFF));
}

// ---- the lines

bool HostileDpRam::VelmoIRQ() {
    Access(0);
    bool asserted = std::exchange(irq, false);
    if (_peer) {
        _peer->Step();
        asserted = !_lines.ReadIrq_n();
    }
    return asserted != std::exchange(_falseIrq, false);
}

void HostileDpRam::BootloaderEnable() {
    _lines.DriveBootloaderEnable_n(false);
}

void HostileDpRam::BootloaderDisable() {
    _lines.DriveBootloaderEnable_n(true);
}

void HostileDpRam::PowerOff() {
    _lines.DriveReset_n(false);
    if (_peer)
        _peer->Step();
}

void HostileDpRam::PowerOn() {
    _lines.DriveReset_n(true);
    if (_peer)
        _peer->Step();
}

} // namespace Fuzz
