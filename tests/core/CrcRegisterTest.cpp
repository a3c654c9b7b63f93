// SPDX-License-Identifier: MIT
#include "vesk/core/CrcRegister.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

/// The definition: one bit of the message after the other, each divided by the polynomial.
unsigned int BitByBit(unsigned int value, int bits, unsigned int polynomial, bool reflected,
                      const std::vector<unsigned char>& message) {
    const unsigned int first = reflected ? 1 : 1u << (bits - 1);
    for (const unsigned int byte : message)
        for (int i = 0; i < 8; ++i) {
            const bool bit = (byte >> (reflected ? i : 7 - i) & 1) != 0;
            const bool subtract = ((value & first) != 0) != bit;
            value = reflected ? value >> 1 : value << 1 & ((first << 1) - 1);
            value ^= subtract ? polynomial : 0;
        }
    return value;
}

TEST(CrcRegisterTest, TakesEightBytesAtATimeAsBitByBit) {
    using Msb32 = Vesk::CrcRegister<unsigned int, 0x04C11DB7, false>;
    using Lsb16 = Vesk::CrcRegister<unsigned short, 0xA001, true>;
    std::mt19937 random(1);
    for (std::size_t size = 0; size < 200; ++size) {
        std::vector<unsigned char> message(size);
        for (unsigned char& byte : message)
            byte = static_cast<unsigned char>(random());
        const auto start = static_cast<unsigned int>(random());
        EXPECT_EQ(Msb32::Shift(start, message.data(), size), BitByBit(start, 32, 0x04C11DB7, false, message));
        EXPECT_EQ(Lsb16::Shift(static_cast<unsigned short>(start), message.data(), size),
                  BitByBit(start & 0xFFFF, 16, 0xA001, true, message));
    }
}

} // namespace
