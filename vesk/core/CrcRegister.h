// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>

namespace Vesk {

/// The steps of a cyclic redundancy check's register, eight bytes at a time where there are as many, by
/// tables that are made when this is compiled. `REFLECTED`: the least significant bit of a byte comes first,
/// and the polynomial is turned round.
template <class Register, Register POLYNOMIAL, bool REFLECTED>
class CrcRegister {
    static constexpr int BITS = 8 * sizeof(Register);
    static constexpr std::size_t SLICE_COUNT = 8;

public:
    /// SLICES[n][b] is what the byte b does to the register when n bytes follow it.
    static constexpr auto SLICES = [] {
        constexpr Register LEAVES = REFLECTED ? 1 : Register{1} << (BITS - 1);
        std::array<std::array<Register, 256>, SLICE_COUNT> slices{};
        for (unsigned int byte = 0; byte < 256; ++byte) {
            auto value = static_cast<Register>(byte << (REFLECTED ? 0 : BITS - 8));
            for (auto& slice : slices) {
                for (int bit = 0; bit < 8; ++bit) {
                    const bool subtract = (value & LEAVES) != 0;
                    value = static_cast<Register>(REFLECTED ? value >> 1 : value << 1);
                    value = static_cast<Register>(value ^ (subtract ? POLYNOMIAL : 0));
                }
                slice[byte] = value;
            }
        }
        return slices;
    }();

    /// The register after one more byte.
    static constexpr Register Shift(Register value, unsigned char byte) {
        const auto shifted = static_cast<Register>(REFLECTED ? value >> 8 : value << 8);
        return static_cast<Register>(shifted ^ SLICES[0][ByteOf(value, 0) ^ byte]);
    }

    /// The register after `count` more bytes.
    static constexpr Register Shift(Register value, const unsigned char* bytes, std::size_t count) {
        for (; count >= SLICE_COUNT; count -= SLICE_COUNT, bytes += SLICE_COUNT) {
            unsigned int next = 0;
            for (std::size_t i = 0; i < SLICE_COUNT; ++i)
                next ^= SLICES[SLICE_COUNT - 1 - i][bytes[i] ^ ByteOf(value, i)];
            value = static_cast<Register>(next);
        }
        for (; count > 0; --count)
            value = Shift(value, *bytes++);
        return value;
    }

private:
    /// The byte of the register that meets byte `i` of the message; zero behind its end.
    static constexpr unsigned char ByteOf(Register value, std::size_t i) {
        const int shift = 8 * static_cast<int>(i);
        return static_cast<unsigned char>(shift < BITS ? value >> (REFLECTED ? shift : BITS - 8 - shift) : 0);
    }
};

} // namespace Vesk
