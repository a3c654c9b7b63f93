// SPDX-License-Identifier: MIT
#include "busdescription/decompile/Draft.h"

#include "busdescription/description/Units.h"

namespace BusDescription {

/// Whether people read the number as bits or digits.
static bool IsHexadecimal(const Key& key) {
    return key.field == "identNr" || key.field == "stationStatus" || key.name.ends_with("flags");
}

static std::string NumberText(const Key& key, std::uint32_t number) {
    if (key.kind == KeyKind::DURATION)
        return '"' + DurationText(std::chrono::microseconds(std::int64_t{number} * key.microseconds)) + '"';
    return IsHexadecimal(key) ? HexText(number, key.most > 0xFF ? 4 : 2) : std::to_string(number);
}

void DraftTable::Add(const Key& key, const FieldValue& value) {
    if (const auto* number = std::get_if<std::uint32_t>(&value))
        Add(std::string(key.name), NumberText(key, *number));
    else if (const auto* text = std::get_if<std::string>(&value))
        Add(std::string(key.name), QuotedBytes(*text));
    else if (const auto* bytes = std::get_if<Bytes>(&value))
        Add(std::string(key.name), '"' + BytesText(*bytes) + '"');
}

void DraftTable::Remove(std::string_view key) {
    std::erase_if(_lines, [key](const Line& line) { return line.key == key; });
}

std::string DraftTable::ToString() const {
    std::string text;
    for (const std::string& comment : _comments)
        text += "# " + comment + "\n";
    for (const Line& line : _lines)
        text += line.key + " = " + line.value + "\n";
    return text;
}

static bool IsPlain(char character) {
    return character >= ' ' && character <= '~';
}

static std::string Escaped(char character) {
    if (character == '"' || character == '\\')
        return std::string("\\") + character;
    return IsPlain(character) ? std::string(1, character)
                              : "\\u" + HexText(static_cast<unsigned char>(character), 4).substr(2);
}

std::string QuotedBytes(std::string_view bytes) {
    std::string text;
    for (const char character : bytes)
        text += Escaped(character);
    return '"' + text + '"';
}

std::string Quoted(std::string_view text) {
    std::string quoted;
    for (const char character : text)
        quoted +=
            static_cast<unsigned char>(character) >= 0x80 ? std::string(1, character) : Escaped(character);
    return '"' + quoted + '"';
}

} // namespace BusDescription
