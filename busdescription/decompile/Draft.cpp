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

static std::string ParameterText(const Gsd::ParameterValue& value) {
    const std::string text = value.text.empty() ? std::to_string(value.value) : Quoted(value.text);
    return value.nameIsUnique
               ? text
               : "{ value = " + text + ", offset = " + std::to_string(value.reference->offset) + " }";
}

std::string ParametersText(const std::vector<Gsd::ParameterValue>& values) {
    std::map<std::string, std::vector<std::string>> byName;
    std::vector<std::string> order;
    for (const Gsd::ParameterValue& value : values) {
        auto& texts = byName[value.parameter->name];
        if (texts.empty())
            order.push_back(value.parameter->name);
        texts.push_back(ParameterText(value));
    }
    std::string text;
    for (const std::string& name : order) {
        std::string list;
        for (const std::string& each : byName[name])
            list += (list.empty() ? "" : ", ") + each;
        text += (text.empty() ? " " : ", ") + Quoted(name) + " = " +
                (byName[name].size() > 1 ? '[' + list + ']' : list);
    }
    return '{' + text + " }";
}

std::string ModulesText(const Gsd::Device& device, const std::vector<const Gsd::Module*>& modules,
                        const std::vector<std::vector<Gsd::ParameterValue>>& settings) {
    std::string text;
    for (std::size_t i = 0; i < modules.size(); ++i) {
        const bool unique = device.ModulesNamed(modules[i]->name).size() == 1;
        const bool set = i + 1 < settings.size() && !settings[i + 1].empty();
        std::string table = Quoted(modules[i]->name);
        if (!unique || set)
            table = "{ name = " + table +
                    (unique ? "" : ", reference = " + std::to_string(modules[i]->reference.value)) +
                    (set ? ", parameters = " + ParametersText(settings[i + 1]) : "") + " }";
        text += (text.empty() ? "" : ", ") + table;
    }
    return '[' + text + ']';
}

} // namespace BusDescription
