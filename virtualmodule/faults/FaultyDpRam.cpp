// SPDX-License-Identifier: MIT
#include "virtualmodule/faults/FaultyDpRam.h"

#include <algorithm>
#include <atomic>

namespace VirtualModule {

namespace {

constexpr std::initializer_list<FaultId> DPRAM_FAULTS{
    FaultId::DPRAM_ONES,     FaultId::DPRAM_ZEROS,   FaultId::DPRAM_RANDOM, FaultId::DPRAM_WRITES_IGNORED,
    FaultId::DPRAM_BIT_HIGH, FaultId::DPRAM_BIT_LOW, FaultId::DPRAM_FLICKER};

std::uint8_t Bit(unsigned value) {
    return static_cast<std::uint8_t>(1u << value % 8);
}

/// The same bytes for the same seed.
void Randomise(Bytes& bytes, std::uint64_t seed) {
    std::uint64_t state = seed;
    for (std::uint8_t& byte : bytes) {
        state = state * 6364136223846793005u + 1442695040888963407u;
        byte = static_cast<std::uint8_t>(state >> 56);
    }
}

} // namespace

bool FaultyDpRam::IsNeeded(const FaultInjector& faults) {
    return faults.HasAnyOf(DPRAM_FAULTS);
}

FaultyDpRam::FaultyDpRam(std::span<volatile std::uint8_t> host, FaultInjector& faults)
    : _host(host), _faults(faults), _module(host.begin(), host.end()), _shown(_module) {}

/// From the highest byte down, because the host writes its register after everything that the register is
/// about.
void FaultyDpRam::TakeHostWrites() {
    ++_steps;
    const bool ignored = _faults.Strike(FaultId::DPRAM_WRITES_IGNORED) != nullptr;
    for (std::size_t i = _host.size(); i-- > 0;) {
        const std::uint8_t now = _host[i];
        if (now != _shown[i]) {
            std::atomic_thread_fence(std::memory_order_acquire);
            _shown[i] = now;
            _module[i] = ignored ? _module[i] : now;
        }
    }
}

/// From the lowest byte up, because the module's register comes after everything that it is about.
void FaultyDpRam::Show() {
    Bytes bytes = _module;
    Falsify(bytes);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] != _shown[i]) {
            std::atomic_thread_fence(std::memory_order_release);
            _shown[i] = bytes[i];
            _host[i] = bytes[i];
        }
    }
}

void FaultyDpRam::Falsify(Bytes& bytes) {
    if (const Fault* fault = _faults.Strike(FaultId::DPRAM_BIT_HIGH))
        bytes[fault->value / 8] |= Bit(fault->value);
    if (const Fault* fault = _faults.Strike(FaultId::DPRAM_BIT_LOW))
        bytes[fault->value / 8] &= static_cast<std::uint8_t>(~Bit(fault->value));
    if (const Fault* fault = _faults.Strike(FaultId::DPRAM_FLICKER)) {
        std::uint8_t& byte = bytes[fault->value];
        byte = static_cast<std::uint8_t>(_steps % 2 != 0 ? ~byte : byte);
    }
    if (const Fault* fault = _faults.Strike(FaultId::DPRAM_RANDOM))
        Randomise(bytes, std::uint64_t{fault->value} << 32 | _faults.Counted(Counts::INTERRUPTS));
    if (_faults.Strike(FaultId::DPRAM_ONES))
        std::fill(bytes.begin(), bytes.end(), std::uint8_t{0xFF});
    if (_faults.Strike(FaultId::DPRAM_ZEROS))
        std::fill(bytes.begin(), bytes.end(), std::uint8_t{0});
}

} // namespace VirtualModule
