// SPDX-License-Identifier: MIT
#include "busdescription/gsd/Encoding.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace BusDescription::Gsd {

/// 0x80 to 0x9F of Windows-1252; the rest is ISO 8859-1. Unassigned ones are themselves.
static constexpr char16_t HIGH[] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

static unsigned int Byte(char character) {
    return static_cast<unsigned char>(character);
}

static bool IsAscii(char character) {
    return Byte(character) < 0x80;
}

/// How many bytes before the first one that is not ASCII; eight at a time, for most files have no other.
static std::size_t AsciiLength(std::string_view text) {
    constexpr std::uint64_t others = 0x8080'8080'8080'8080;
    std::size_t length = 0;
    for (std::uint64_t eight = 0; text.size() - length >= sizeof eight; length += sizeof eight) {
        std::memcpy(&eight, text.data() + length, sizeof eight);
        if ((eight & others) != 0)
            break;
    }
    while (length < text.size() && IsAscii(text[length]))
        ++length;
    return length;
}

/// How many bytes of `text` are its first character in UTF-8; 0 where it does not begin with one.
static std::size_t CharacterLength(std::string_view text) {
    const unsigned int first = Byte(text[0]);
    if (first < 0x80)
        return 1;
    const std::size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
    if (length == 0 || text.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((Byte(text[i]) & 0xC0) != 0x80)
            return 0;
    const unsigned int second = Byte(text[1]);
    const bool overlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
    const bool surrogate = first == 0xED && second > 0x9F;
    const bool beyond = first == 0xF4 && second > 0x8F;
    return overlong || surrogate || beyond ? 0 : length;
}

static bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        text.remove_prefix(AsciiLength(text));
        if (text.empty())
            break;
        const std::size_t length = CharacterLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

static void AppendWindows(std::string& text, char character) {
    const unsigned int byte = Byte(character);
    const unsigned int code = byte >= 0x80 && byte < 0xA0 ? HIGH[byte - 0x80] : byte;
    if (code < 0x800) {
        text += static_cast<char>(0xC0 | code >> 6);
    } else {
        text += static_cast<char>(0xE0 | code >> 12);
        text += static_cast<char>(0x80 | (code >> 6 & 0x3F));
    }
    text += static_cast<char>(0x80 | (code & 0x3F));
}

Encoding TakeEncoding(std::string_view& content) {
    static constexpr std::string_view MARK = "\xEF\xBB\xBF";
    const bool marked = content.starts_with(MARK);
    if (marked)
        content.remove_prefix(MARK.size());
    return marked || IsUtf8(content) ? Encoding::UTF_8 : Encoding::WINDOWS_1252;
}

std::string ToUtf8(std::string_view text, Encoding encoding) {
    if (AsciiLength(text) == text.size())
        return std::string(text);
    std::string converted;
    while (!text.empty()) {
        const std::size_t length =
            encoding == Encoding::UTF_8 || IsAscii(text[0]) ? CharacterLength(text) : 0;
        if (length == 0)
            AppendWindows(converted, text[0]);
        converted += text.substr(0, length);
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return converted;
}

} // namespace BusDescription::Gsd
