// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Array.h"

#include <array>
#include <memory>

namespace Vesk::Modules::Bootloader {

/// The checksum of program images: CRC-16/MODBUS (polynomial 0x8005, reflected, from 0xFFFF on, no final
/// XOR). It takes bytes in their order and can be read at any time.
class CRC16 : public System::Object {
public:
    static std::shared_ptr<CRC16> Create();

    /// Takes the low eight bits of `b`.
    void Digest(int b) { _register = static_cast<unsigned short>(_register >> 8 ^ TABLE[Index(b)]); }

    /// Takes `count` bytes of `array` from `offset` on; nothing when `count` is not above 0.
    /// ArgumentOutOfRangeException, with nothing taken, for a range outside the array.
    void Digest(const std::shared_ptr<System::IArray<unsigned char>>& array, int offset, int count);
    /// Takes every byte of `array`. ArgumentNullException without an array.
    void Digest(const std::shared_ptr<System::IArray<unsigned char>>& array);

    /// The checksum of the bytes so far.
    unsigned short Value() const { return _register; }

    /// What each value of a byte contributes.
    static constexpr std::array<unsigned short, 256> TABLE = []() {
        constexpr unsigned int REFLECTED_POLYNOMIAL = 0xA001;
        std::array<unsigned short, 256> table{};
        for (unsigned int i = 0; i < table.size(); ++i) {
            unsigned int entry = i;
            for (int bit = 0; bit < 8; ++bit)
                entry = entry & 1 ? entry >> 1 ^ REFLECTED_POLYNOMIAL : entry >> 1;
            table[i] = static_cast<unsigned short>(entry);
        }
        return table;
    }();

protected:
    CRC16() = default;

private:
    std::size_t Index(int b) const { return (static_cast<unsigned int>(b) ^ _register) & 0xFF; }

    unsigned short _register = 0xFFFF;
};

} // namespace Vesk::Modules::Bootloader
