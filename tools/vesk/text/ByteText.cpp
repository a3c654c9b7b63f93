// SPDX-License-Identifier: MIT
#include "tools/vesk/text/ByteText.h"

#include <algorithm>

namespace VeskTool {

static constexpr std::size_t LINE_SIZE = 16;

static std::string Digits(unsigned int value, unsigned int count) {
    std::string text;
    while (count-- > 0)
        text += "0123456789abcdef"[value >> 4 * count & 0xF];
    return text;
}

static bool IsZero(std::span<const unsigned char> bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](unsigned char byte) { return byte == 0; });
}

std::string Printable(std::string_view text) {
    std::string printable;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        printable += byte >= ' ' && byte <= '~' ? std::string(1, character) : "\\x" + Digits(byte, 2);
    }
    return printable;
}

std::string HexDigits(std::span<const unsigned char> bytes) {
    std::string text;
    for (const unsigned char byte : bytes)
        text += Digits(byte, 2);
    return text;
}

std::string HexOffset(int offset) {
    return "0x" + Digits(static_cast<unsigned int>(offset), 4);
}

/// How many bytes from the start on are lines of nothing but zero.
static std::size_t ZeroLines(std::span<const unsigned char> bytes) {
    std::size_t count = 0;
    while (count < bytes.size() && IsZero(bytes.subspan(count, std::min(LINE_SIZE, bytes.size() - count))))
        count += std::min(LINE_SIZE, bytes.size() - count);
    return count;
}

std::string HexLines(std::span<const unsigned char> bytes, int offset) {
    std::string text;
    while (!bytes.empty()) {
        std::size_t count = ZeroLines(bytes);
        text += HexOffset(offset) + " ";
        if (count > 0) {
            text += " " + std::to_string(count) + (count == 1 ? " byte of zero" : " bytes of zero");
        } else {
            count = std::min(LINE_SIZE, bytes.size());
            for (const unsigned char byte : bytes.first(count))
                text += " " + Digits(byte, 2);
        }
        text += "\n";
        offset += static_cast<int>(count);
        bytes = bytes.subspan(count);
    }
    return text;
}

std::string JsonText(const nlohmann::ordered_json& json) {
    return json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

} // namespace VeskTool
