// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace Vesk::DBus {

/// Hands the newest value from one thread to another; neither of them ever waits. There are three copies: the
/// writer has one, the reader has one, and the third goes back and forth between them.
template <class T>
class Latest {
public:
    /// The writer: publishes a copy of `value`.
    void Put(const T& value) {
        _copies[_writers] = value;
        const std::uint8_t before = _middle.exchange(_writers | NEW, std::memory_order_acq_rel);
        _writers = before & PLACE;
    }

    /// The reader: the newest value that was put, the same as before where there is none since. It is the
    /// reader's until the next call.
    const T& Get() {
        if (_middle.load(std::memory_order_relaxed) & NEW)
            _readers = _middle.exchange(_readers, std::memory_order_acq_rel) & PLACE;
        return _copies[_readers];
    }

private:
    static constexpr std::uint8_t NEW = 4;
    static constexpr std::uint8_t PLACE = 3;

    std::array<T, 3> _copies{};
    std::atomic<std::uint8_t> _middle{0};
    std::uint8_t _writers = 1;
    std::uint8_t _readers = 2;
};

} // namespace Vesk::DBus
