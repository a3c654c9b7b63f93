// SPDX-License-Identifier: MIT
#include "dbus/Text.h"

#include <string_view>

namespace Vesk::DBus {

/// The length of the UTF-8 character that `text` begins with; 0 where it is none.
static std::size_t CharacterLength(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    const std::size_t length = first < 0x80                     ? 1
                               : first >= 0xC2 && first <= 0xDF ? 2
                               : first >= 0xE0 && first <= 0xEF ? 3
                               : first >= 0xF0 && first <= 0xF4 ? 4
                                                                : 0;
    if (length == 0 || length > text.size())
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
    const bool overlong = (first == 0xE0 && byte(1) < 0xA0) || (first == 0xF0 && byte(1) < 0x90);
    const bool surrogate = first == 0xED && byte(1) > 0x9F;
    const bool beyond = first == 0xF4 && byte(1) > 0x8F;
    return overlong || surrogate || beyond ? 0 : length;
}

std::string BusText(const std::string& text) {
    static constexpr std::string_view DIGITS = "0123456789abcdef";
    std::string_view rest = text.c_str();
    std::string written;
    while (!rest.empty()) {
        const std::size_t length = CharacterLength(rest);
        if (length == 0) {
            const auto byte = static_cast<unsigned char>(rest.front());
            written.append("\\x").append(1, DIGITS[byte >> 4]).append(1, DIGITS[byte & 0xF]);
            rest.remove_prefix(1);
            continue;
        }
        written += rest.substr(0, length);
        rest.remove_prefix(length);
    }
    return written;
}

} // namespace Vesk::DBus
