// SPDX-License-Identifier: MIT
#include "virtualmodule/wires/DpRam.h"

#include <algorithm>
#include <atomic>
#include <stdexcept>

namespace VirtualModule {

DpRam::DpRam(std::span<volatile std::uint8_t> memory) : _memory(memory) {
    if (memory.size() != SIZE) {
        throw std::invalid_argument("DPRAM of " + std::to_string(memory.size()) + " bytes, expected " +
                                    std::to_string(SIZE));
    }
    TakeBack(0, SIZE);
}

void DpRam::Clear() {
    _hosts.fill(false);
    for (std::size_t i = 0; i < SIZE; ++i)
        Write8(i, 0);
}

Bytes DpRam::Read(std::size_t offset, std::size_t size) const {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = Read8(offset + i);
    return bytes;
}

std::uint8_t DpRam::ReadRegister(std::size_t offset) const {
    const std::uint8_t value = Read8(offset);
    std::atomic_thread_fence(std::memory_order_acquire);
    return value;
}

void DpRam::Write8(std::size_t offset, unsigned value) {
    _shadow[offset] = Low(value);
    _memory[offset] = Low(value);
}

void DpRam::Write16(std::size_t offset, unsigned value) {
    Write8(offset, High(value));
    Write8(offset + 1, value);
}

void DpRam::Write32(std::size_t offset, std::uint32_t value) {
    Write16(offset, value >> 16);
    Write16(offset + 2, value & 0xFFFF);
}

void DpRam::Write(std::size_t offset, ByteView bytes) {
    for (const std::uint8_t byte : bytes)
        Write8(offset++, byte);
}

void DpRam::WriteRegister(std::size_t offset, unsigned value) {
    std::atomic_thread_fence(std::memory_order_release);
    Write8(offset, value);
}

void DpRam::GiveToHost(std::size_t offset, std::size_t size) {
    std::fill_n(_hosts.begin() + static_cast<std::ptrdiff_t>(offset), size, true);
}

void DpRam::TakeBack(std::size_t offset, std::size_t size) {
    for (std::size_t i = offset; i < offset + size; ++i) {
        _shadow[i] = Read8(i);
        _hosts[i] = false;
    }
}

std::optional<DpRam::Range> DpRam::FindForeignWrite(std::size_t from) {
    const auto adopt = [this](std::size_t i) {
        const std::uint8_t now = Read8(i);
        const bool foreign = !_hosts[i] && now != _shadow[i];
        _shadow[i] = now;
        return foreign;
    };
    for (std::size_t i = from; i < SIZE; ++i) {
        if (Read8(i) != _shadow[i] && adopt(i)) {
            std::size_t end = i + 1;
            while (end < SIZE && adopt(end))
                ++end;
            return Range{i, end - i};
        }
    }
    return std::nullopt;
}

} // namespace VirtualModule
