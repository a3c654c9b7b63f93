// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace VirtualModule {

/// The three lines between host and module: four bytes, each read and written atomically, in private memory
/// or in a file that two processes map. All zero is the state before the first power-on: held in reset.
class Lines {
public:
    static constexpr std::size_t SIZE = 4;

    Lines() = default;
    Lines(const Lines&) = delete;
    Lines& operator=(const Lines&) = delete;

    /// The lines in `memory`: SIZE bytes of a shared mapping that outlives the reference.
    static Lines& At(void* memory) { return *static_cast<Lines*>(memory); }

    /// Host: the level of the interrupt line. Reading it low releases the interrupt.
    bool ReadIrq_n();
    /// Host: drives the reset line; a rise starts a new generation, in which the module boots.
    void DriveReset_n(bool level);

    /// Host: drives the bootloader-enable line; it counts at the module's next boot.
    void DriveBootloaderEnable_n(bool level) { _bootloaderEnable_n = level ? 1 : 0; }

    /// Module: it is held in reset.
    bool ResetAsserted() const { return _reset_n == 0; }

    /// Module: it is to stay in its bootloader.
    bool BootloaderEnabled() const { return _bootloaderEnable_n == 0; }

    /// Module: which release of reset this is, 1 to 255 over and over; 0 before the first.
    std::uint8_t Generation() const { return _generation; }

    /// Module: pulls the interrupt line low, which counts only while `generation` lasts.
    void AssertIrq(std::uint8_t generation) { _irq = generation; }

    /// Module: the interrupt stays asserted although the host holds reset. Because the line counts only out
    /// of reset, the host finds that its level of reset has come to nothing too.
    void OverrideReset();

    /// Module: the host has not yet taken the interrupt.
    bool IrqAsserted(std::uint8_t generation) const { return _irq == generation; }

private:
    std::atomic<std::uint8_t> _irq{0};
    std::atomic<std::uint8_t> _reset_n{0};
    std::atomic<std::uint8_t> _bootloaderEnable_n{0};
    std::atomic<std::uint8_t> _generation{0};
};

static_assert(sizeof(Lines) == Lines::SIZE && std::is_standard_layout_v<Lines>);
static_assert(std::atomic<std::uint8_t>::is_always_lock_free);

} // namespace VirtualModule
