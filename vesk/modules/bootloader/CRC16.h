// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/core/CrcRegister.h"
#include "vesk/system/Array.h"

#include <memory>

namespace Vesk::Modules::Bootloader {

/// The checksum of program images: CRC-16/MODBUS (polynomial 0x8005, reflected, from 0xFFFF on, no final
/// XOR). It takes bytes in their order and can be read at any time.
class CRC16 : public System::Object {
public:
    using Register = CrcRegister<unsigned short, 0xA001, true>;

    /// What each value of a byte contributes.
    static constexpr std::array<unsigned short, 256> TABLE = Register::SLICES[0];

    static std::shared_ptr<CRC16> Create();

    /// Takes the low eight bits of `b`.
    void Digest(int b) { Value = Register::Shift(Value, static_cast<unsigned char>(b)); }

    /// Takes `count` bytes of `array` from `offset` on; nothing when `count` is not above 0.
    /// ArgumentOutOfRangeException, with nothing taken, for a range outside the array.
    void Digest(const std::shared_ptr<System::IArray<unsigned char>>& array, int offset, int count);
    /// Takes every byte of `array`. ArgumentNullException without an array.
    void Digest(const std::shared_ptr<System::IArray<unsigned char>>& array);

    /// The register: the checksum of the bytes so far.
    unsigned short Value = 0xFFFF;

protected:
    CRC16() = default;
};

} // namespace Vesk::Modules::Bootloader
