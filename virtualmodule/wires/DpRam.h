// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/wires/Bytes.h"

#include <array>
#include <optional>

namespace VirtualModule {

/// The DPRAM from the module's side. It remembers what the module wrote and which bytes are the host's at the
/// moment, so that a write of the host to any other byte can be found. All offsets come from the DPRAM map,
/// never from the host.
class DpRam {
public:
    static constexpr std::size_t SIZE = 0x2000;

    struct Range {
        std::size_t offset;
        std::size_t size;
    };

    /// On `memory`, exactly SIZE bytes; std::invalid_argument otherwise.
    explicit DpRam(std::span<volatile std::uint8_t> memory);

    /// Works on `memory` from now on, which holds the same SIZE bytes.
    void MoveTo(std::span<volatile std::uint8_t> memory) { _memory = memory; }

    /// Zeroes everything and makes every byte the module's.
    void Clear();

    std::uint8_t Read8(std::size_t offset) const { return _memory[offset]; }

    Bytes Read(std::size_t offset, std::size_t size) const;
    /// Reads a register of the host; what the host wrote before it is seen afterwards.
    std::uint8_t ReadRegister(std::size_t offset) const;

    void Write8(std::size_t offset, unsigned value);
    void Write16(std::size_t offset, unsigned value);
    void Write32(std::size_t offset, std::uint32_t value);
    void Write(std::size_t offset, ByteView bytes);
    /// Writes a register of the module; the host sees it after everything written before.
    void WriteRegister(std::size_t offset, unsigned value);

    /// From now on the host may write these bytes.
    void GiveToHost(std::size_t offset, std::size_t size);
    /// From now on these bytes, as they stand, are the module's.
    void TakeBack(std::size_t offset, std::size_t size);
    /// The first run at or after `from` of the module's bytes that somebody else has changed. The change is
    /// accepted, so that it is found once.
    std::optional<Range> FindForeignWrite(std::size_t from);

private:
    std::span<volatile std::uint8_t> _memory;
    std::array<std::uint8_t, SIZE> _shadow{};
    std::array<bool, SIZE> _hosts{};
};

} // namespace VirtualModule
