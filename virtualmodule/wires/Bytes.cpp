// SPDX-License-Identifier: MIT
#include "virtualmodule/wires/Bytes.h"

#include <cinttypes>
#include <cstdio>

namespace VirtualModule {

std::string Labels(unsigned value, std::span<const char* const> labels) {
    std::string text;
    for (std::size_t bit = 0; bit < labels.size(); ++bit)
        if (value >> bit & 1)
            text += std::string(" ") + labels[bit];
    return text;
}

std::string Hex(std::uint64_t value) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%02" PRIx64, value);
    return text;
}

} // namespace VirtualModule
