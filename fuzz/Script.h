// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

namespace Fuzz {

/// The input of a fuzzer as the script of a life: what is done next is taken from its front, what goes wrong
/// on the bus meanwhile from its back, until the two meet. What is taken beyond that is zero.
class Script {
public:
    explicit Script(std::span<const std::uint8_t> input) : _rest(input) {}

    bool AtEnd() const { return _rest.empty(); }

    unsigned char Byte() {
        if (_rest.empty())
            return 0;
        const unsigned char byte = _rest.front();
        _rest = _rest.subspan(1);
        return byte;
    }

    /// Most significant byte first.
    unsigned short Word() {
        const unsigned int high = Byte();
        return static_cast<unsigned short>(high << 8 | Byte());
    }

    std::vector<unsigned char> Take(std::size_t count) {
        const auto taken = _rest.first(std::min(count, _rest.size()));
        _rest = _rest.subspan(taken.size());
        return {taken.begin(), taken.end()};
    }

    unsigned char ByteFromBack() {
        if (_rest.empty())
            return 0;
        const unsigned char byte = _rest.back();
        _rest = _rest.first(_rest.size() - 1);
        return byte;
    }

private:
    std::span<const std::uint8_t> _rest;
};

} // namespace Fuzz
