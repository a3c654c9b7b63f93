// SPDX-License-Identifier: MIT
#include "tools/vesk/text/Numbers.h"

#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Text.h"
#include "vesk/system/Convert.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <string_view>

namespace VeskTool {

unsigned int ParseNumber(const std::string& name, const std::string& text, unsigned int least,
                         unsigned int most) {
    const bool hex = text.rfind("0x", 0) == 0 || text.rfind("0X", 0) == 0;
    try {
        const std::uint64_t value = System::Convert::ToUInt64(hex ? text.substr(2) : text, hex ? 16 : 10);
        if (value >= least && value <= most)
            return static_cast<unsigned int>(value);
    } catch (const std::exception&) {
        // it is no number at all, which has the same message
    }
    throw CLI::ValidationError(name, text + " is not a number from " + std::to_string(least) + " to " +
                                         std::to_string(most) + (most > 255 ? " (" + Hex(most) + ")" : ""));
}

static unsigned int DigitValue(const std::string& name, char digit) {
    const std::size_t value =
        std::string_view("0123456789abcdef").find(static_cast<char>(std::tolower(digit)));
    if (value == std::string_view::npos)
        throw CLI::ValidationError(name,
                                   "\"" + Printable(std::string(1, digit)) + "\" is no hexadecimal digit");
    return static_cast<unsigned int>(value);
}

std::vector<unsigned char> ParseHex(const std::string& name, const std::string& text) {
    std::vector<unsigned char> bytes;
    for (std::size_t i = text.find_first_not_of(' '); i < text.size();
         i = text.find_first_not_of(' ', i + 2)) {
        const bool first = i == 0 || text[i - 1] == ' ';
        if (first && (text.compare(i, 2, "0x") == 0 || text.compare(i, 2, "0X") == 0))
            continue;
        if (i + 1 == text.size() || text[i + 1] == ' ')
            throw CLI::ValidationError(name,
                                       "\"" + Printable(text) + "\" has half a byte; each has two digits");
        bytes.push_back(
            static_cast<unsigned char>(DigitValue(name, text[i]) * 16 + DigitValue(name, text[i + 1])));
    }
    return bytes;
}

std::string HexDump(std::span<const unsigned char> bytes) {
    constexpr std::size_t lineSize = 16;
    std::string text;
    for (std::size_t offset = 0; offset < bytes.size(); offset += lineSize) {
        std::string hex;
        std::string characters;
        for (const unsigned char byte : bytes.subspan(offset, std::min(lineSize, bytes.size() - offset))) {
            hex += HexDigits({&byte, 1}) + " ";
            characters += byte >= ' ' && byte <= '~' ? static_cast<char>(byte) : '.';
        }
        text +=
            HexOffset(static_cast<int>(offset)) + "  " + Padded(hex, 3 * lineSize) + " " + characters + "\n";
    }
    return text;
}

} // namespace VeskTool
