// SPDX-License-Identifier: MIT
#include "virtualmodule/wires/Lines.h"

namespace VirtualModule {

bool Lines::ReadIrq_n() {
    const std::uint8_t irq = _irq;
    if (_reset_n == 0 || irq == 0 || irq != _generation)
        return true;
    _irq = 0;
    // The release must be seen before whatever the host writes to the DPRAM in answer.
    std::atomic_thread_fence(std::memory_order_seq_cst);
    return false;
}

void Lines::OverrideReset() {
    if (_generation == 0)
        _generation = 1;
    _irq = _generation.load();
    _reset_n = 1;
}

void Lines::DriveReset_n(bool level) {
    if (!level) {
        _reset_n = 0;
        _irq = 0;
    } else if (_reset_n == 0) {
        const std::uint8_t last = _generation;
        _irq = 0;
        _generation = last == 255 ? std::uint8_t{1} : static_cast<std::uint8_t>(last + 1);
        _reset_n = 1;
    }
}

} // namespace VirtualModule
