// SPDX-License-Identifier: MIT
#include "virtualmodule/flash/Firmware.h"

#include <algorithm>
#include <functional>
#include <numeric>

namespace VirtualModule {

Version VersionOf(ByteView image, std::uint8_t replacedMajor) {
    const auto range = image.first(std::min(image.size(), STAMP_RANGE + VERSION_STAMP.size() - 1));
    const auto stamp = std::search(range.begin(), range.end(), VERSION_STAMP.begin(), VERSION_STAMP.end());
    const std::size_t at = static_cast<std::size_t>(stamp - range.begin()) + VERSION_STAMP.size();
    if (stamp != range.end() && at + 3 <= image.size())
        return {image[at], image[at + 1], image[at + 2]};
    const std::uint16_t crc = Crc16(image);
    return {replacedMajor, High(crc), Low(crc)};
}

bool SealHolds(ByteView image) {
    constexpr std::size_t crcSize = 2;
    constexpr int mostWrong = 2;
    if (image.size() < SEAL_MARK.size() + crcSize)
        return true;
    const ByteView sealed = image.first(image.size() - crcSize);
    const ByteView mark = sealed.last(SEAL_MARK.size());
    const int wrong = std::inner_product(mark.begin(), mark.end(), SEAL_MARK.begin(), 0, std::plus<>(),
                                         std::not_equal_to<>());
    return wrong > mostWrong || Crc16(sealed) == Get16(image, sealed.size());
}

std::uint16_t Crc16(ByteView bytes) {
    unsigned crc = 0xFFFF;
    for (const std::uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = crc & 1 ? crc >> 1 ^ 0xA001 : crc >> 1;
    }
    return static_cast<std::uint16_t>(crc);
}

} // namespace VirtualModule
