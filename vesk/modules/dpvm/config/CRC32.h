// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Array.h"

namespace Vesk::Modules::DPVM::Config {

/// The checksum engine: the register of the CRC-32 with polynomial 0x04C11DB7, most significant bit first,
/// not reflected.
class CRC32 : public System::Object {
public:
    /// The register starts at 0xFFFFFFFF.
    static std::shared_ptr<CRC32> Create();

    /// Shifts one byte into the register.
    void Digest(unsigned char b);

    /// Shifts `count` bytes of `array` from `offset` on into the register; nothing when `count` is not
    /// positive. ArgumentNullException without an array, ArgumentOutOfRangeException for a range outside it.
    void Digest(const std::shared_ptr<System::IArray<unsigned char>>& array, int offset, int count);

    /// The register.
    unsigned int Value = 0xFFFFFFFF;

protected:
    CRC32() = default;
};

} // namespace Vesk::Modules::DPVM::Config
