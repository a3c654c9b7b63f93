// SPDX-License-Identifier: MIT
#include "tools/vesk/text/Clock.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>

namespace VeskTool {

static std::string Now(const char* format, std::tm* (*zone)(const std::time_t*)) {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
    const auto seconds = static_cast<std::time_t>(milliseconds / 1000);
    std::array<char, 64> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), format, zone(&seconds));
    std::snprintf(text.data() + length, text.size() - length, ".%03d", static_cast<int>(milliseconds % 1000));
    return text.data();
}

std::string LocalTime() {
    return Now("%Y-%m-%d %H:%M:%S", std::localtime);
}

std::string UniversalTime() {
    return Now("%Y-%m-%dT%H:%M:%S", std::gmtime) + "Z";
}

} // namespace VeskTool
