// SPDX-License-Identifier: MIT
#include "tools/vesk/text/Text.h"

#include "vesk/system/Convert.h"

#include <algorithm>
#include <cstdio>

namespace VeskTool {

std::string Hex(unsigned int value) {
    return "0x" + System::Convert::ToString(value, 16).Value();
}

std::string ByteText(unsigned char byte) {
    return "0x" + System::Convert::ToString(static_cast<unsigned int>(byte), 16).PadLeft(2, '0').Value();
}

std::string HexBytes(System::IArray<unsigned char>& bytes) {
    std::string text;
    for (int i = 0; i < bytes.Count(); ++i)
        text += (i ? " " : "") + System::Convert::ToString(bytes.Get(i), 16).PadLeft(2, '0').Value();
    return text.empty() ? "-" : text;
}

std::string ChecksumText(unsigned int checksum) {
    return System::Convert::ToString(checksum, 16).PadLeft(8, '0').Value();
}

std::string Version(std::initializer_list<unsigned int> parts) {
    std::string text;
    for (const unsigned int part : parts)
        text += (text.empty() ? "" : ".") + std::to_string(part);
    return text;
}

std::string Milliseconds(double milliseconds) {
    char text[64];
    std::snprintf(text, sizeof text, "%.1f ms", milliseconds);
    return text;
}

std::string Padded(const std::string& text, std::size_t width) {
    const auto characters = static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char character) { return (character & 0xC0) != 0x80; }));
    return characters < width ? text + std::string(width - characters, ' ') : text;
}

std::string Addresses(const std::vector<int>& stations) {
    std::string text;
    for (std::size_t i = 0; i < stations.size(); ++i) {
        const std::size_t first = i;
        while (i + 1 < stations.size() && stations[i + 1] == stations[i] + 1)
            ++i;
        text += (text.empty() ? "" : ", ") + std::to_string(stations[first]);
        if (i > first)
            text += "-" + std::to_string(stations[i]);
    }
    return text.empty() ? "none" : text;
}

std::vector<std::string> TableLines(const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size() + 2);
    }
    std::vector<std::string> lines;
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += Padded(row[i], widths[i]);
        lines.push_back(line.substr(0, line.find_last_not_of(' ') + 1));
    }
    return lines;
}

std::string Joined(const std::vector<std::string>& parts, const std::string& separator) {
    std::string text;
    for (const std::string& part : parts)
        text += (text.empty() ? "" : separator) + part;
    return text;
}

std::string Lower(std::string text) {
    for (char& character : text)
        if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character - 'A' + 'a');
    return text;
}

} // namespace VeskTool
