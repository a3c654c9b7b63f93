// SPDX-License-Identifier: MIT
#include "tools/vesk/text/ByteText.h"

#include "tools/vesk/text/Series.h"

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

/// The bytes of the character at the start of `text`, or 0 where it has to be escaped.
static std::size_t HarmlessCharacter(std::string_view text) {
    const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    if (byte(0) < 0x80)
        return byte(0) >= ' ' && byte(0) != 0x7F ? 1 : 0;
    const std::size_t size = byte(0) >= 0xF0 ? 4 : byte(0) >= 0xE0 ? 3 : 2;
    if (byte(0) < 0xC2 || byte(0) > 0xF4 || text.size() < size)
        return 0;
    for (std::size_t at = 1; at < size; ++at)
        if ((byte(at) & 0xC0) != 0x80)
            return 0;
    const bool control = byte(0) == 0xC2 && byte(1) < 0xA0;
    const bool turns = byte(0) == 0xE2 && // U+2028 to U+202E and U+2066 to U+2069
                       ((byte(1) == 0x80 && byte(2) >= 0xA8 && byte(2) <= 0xAE) ||
                        (byte(1) == 0x81 && byte(2) >= 0xA6 && byte(2) <= 0xA9));
    return control || turns ? 0 : size;
}

std::string Harmless(std::string_view text) {
    std::string harmless;
    while (!text.empty()) {
        const std::size_t size = HarmlessCharacter(text);
        harmless += size > 0 ? std::string(text.substr(0, size)) : Printable(text.substr(0, 1));
        text.remove_prefix(std::max<std::size_t>(size, 1));
    }
    return harmless;
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

static std::string Dump(const nlohmann::ordered_json& json, int indent) {
    return json.dump(indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

std::string JsonText(const nlohmann::ordered_json& json) {
    return Series::Current() ? JsonLine(json) : Dump(json, 2);
}

std::string JsonLine(const nlohmann::ordered_json& json) {
    nlohmann::ordered_json line = Series::Current() ? Series::Current()->Members() : json;
    line.update(json);
    return Dump(line, -1);
}

} // namespace VeskTool
