// SPDX-License-Identifier: MIT
#include "virtualmodule/wires/Bytes.h"

#include <cinttypes>
#include <cstdio>

namespace VirtualModule {

std::string Hex(std::uint64_t value) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%02" PRIx64, value);
    return text;
}

} // namespace VirtualModule
