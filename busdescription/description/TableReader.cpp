// SPDX-License-Identifier: MIT
#include "busdescription/description/TableReader.h"

#include "busdescription/description/Units.h"
#include "busdescription/findings/Nearest.h"

#include <algorithm>

namespace BusDescription {

using std::chrono::microseconds;

void RefuseText() {
    throw UnforeseenText();
}

void Report::Error(Place place, const std::string& text) {
    if (_findings.size() < MAX_TEXT_FINDINGS)
        _findings.push_back({Severity::ERROR, _file, place.line, place.column, text});
}

Place PlaceOf(const toml::source_region& source) {
    return {source.begin.line, source.begin.column};
}

Place PlaceOf(const toml::node& node) {
    return PlaceOf(node.source());
}

/// What stands in the text, as far as it is short.
static std::string Shown(const toml::node& node) {
    constexpr std::size_t longest = 60;
    if (const auto text = node.value<std::string>(); node.is_string() && text->size() <= longest)
        return '"' + *text + '"';
    if (const auto number = node.value<std::int64_t>(); node.is_integer())
        return std::to_string(*number);
    if (const auto flag = node.value<bool>(); node.is_boolean())
        return *flag ? "true" : "false";
    if (node.is_array())
        return "a list";
    if (node.is_table())
        return "a table";
    return node.is_string()           ? "a long text"
           : node.is_floating_point() ? "a number with a point"
                                      : "a date or a time";
}

static std::string RangeText(std::uint32_t least, std::uint32_t most, std::string_view unit) {
    return "a number from " + std::to_string(least) + " to " + std::to_string(most) +
           (unit.empty() ? "" : " (" + std::string(unit) + ")");
}

static std::optional<std::uint32_t> NumberOf(const toml::node& node, std::uint32_t least,
                                             std::uint32_t most) {
    const auto* number = node.as_integer();
    if (number == nullptr || number->get() < least || number->get() > most)
        return std::nullopt;
    return static_cast<std::uint32_t>(number->get());
}

static const std::string* TextOf(const toml::node& node) {
    const auto* text = node.as_string();
    return text == nullptr ? nullptr : &text->get();
}

const toml::node* TableReader::Take(std::string_view name) {
    _known.emplace_back(name);
    return _table.get(name);
}

void TableReader::Unexpected(const toml::node& node, std::string_view name, const std::string& expected) {
    Error(PlaceOf(node), std::string(name) + " is " + Shown(node) + ", expected " + expected);
}

/// Behind what a number is expected to be.
static const char* WithoutQuotes(const toml::node& node) {
    return node.is_string() ? ", without quotes" : "";
}

Given<std::string> TableReader::Text(std::string_view name) {
    const toml::node* node = Take(name);
    if (node == nullptr)
        return {};
    if (const std::string* text = TextOf(*node))
        return {*text, PlaceOf(*node)};
    Unexpected(*node, name, "a text in quotes");
    return {};
}

Given<bool> TableReader::Flag(std::string_view name) {
    const toml::node* node = Take(name);
    if (node == nullptr)
        return {};
    if (const auto* flag = node->as_boolean())
        return {flag->get(), PlaceOf(*node)};
    Unexpected(*node, name, "true or false");
    return {};
}

Given<std::uint32_t> TableReader::Number(std::string_view name, std::uint32_t least, std::uint32_t most) {
    const toml::node* node = Take(name);
    if (node == nullptr)
        return {};
    if (const auto number = NumberOf(*node, least, most))
        return {*number, PlaceOf(*node)};
    Unexpected(*node, name, RangeText(least, most, "") + WithoutQuotes(*node));
    return {};
}

Given<double> TableReader::Real(std::string_view name) {
    const toml::node* node = Take(name);
    if (node == nullptr)
        return {};
    if (const auto number = node->value<double>(); number && !node->is_boolean())
        return {*number, PlaceOf(*node)};
    Unexpected(*node, name, "a number");
    return {};
}

Given<WatchdogSetting> TableReader::Watchdog(std::string_view name) {
    const toml::node* node = Take(name);
    if (node == nullptr)
        return {};
    Given<WatchdogSetting> watchdog{{}, PlaceOf(*node)};
    if (const toml::array* factors = node->as_array(); factors != nullptr && factors->size() == 2) {
        const auto first = NumberOf((*factors)[0], 1, 255);
        const auto second = NumberOf((*factors)[1], 1, 255);
        watchdog.value.factors = {first.value_or(0), second.value_or(0)};
        if (first && second)
            return watchdog;
    } else if (const std::string* text = TextOf(*node)) {
        watchdog.value.time = ParseDuration(*text).value_or(microseconds(0));
        if (*text == "off" || watchdog.value.time.count() > 0)
            return watchdog;
    }
    Unexpected(*node, name, R"(a time such as "100 ms", "off", or two factors from 1 to 255)");
    return {{}, PlaceOf(*node)};
}

Given<std::size_t> TableReader::OneOf(std::string_view name, const std::vector<std::string>& names) {
    const Given<std::string> text = Text(name);
    if (!text)
        return {};
    const auto found = std::find(names.begin(), names.end(), text.value);
    if (found != names.end())
        return {static_cast<std::size_t>(found - names.begin()), text.place};
    std::string list;
    for (const std::string& each : names)
        list += (list.empty() ? "" : &each == &names.back() ? " or " : ", ") + each;
    Error(text.place,
          std::string(name) + " is \"" + text.value + "\", expected " + list + DidYouMean(text.value, names));
    return {};
}

FieldValue TableReader::ValueOf(const Key& key, const toml::node& node) {
    const std::uint32_t least = _report.unchecked ? 0 : key.least;
    const std::uint32_t most = _report.unchecked ? key.most : key.largest;
    const std::string* text = TextOf(node);
    switch (key.kind) {
    case KeyKind::NUMBER:
        if (const auto number = NumberOf(node, least, most))
            return *number;
        Unexpected(node, key.name, RangeText(least, most, key.unit) + WithoutQuotes(node));
        break;
    case KeyKind::DURATION: {
        const auto duration = text == nullptr ? std::nullopt : ParseDuration(*text);
        const auto number = duration && duration->count() % key.microseconds == 0
                                ? duration->count() / key.microseconds
                                : std::int64_t{-1};
        if (number >= least && number <= most)
            return static_cast<std::uint32_t>(number);
        Unexpected(node, key.name,
                   "a time such as \"" + DurationText(microseconds(std::int64_t{key.microseconds} * 100)) +
                       "\", in steps of " + std::string(key.unit) + " up to " +
                       DurationText(microseconds(std::int64_t{key.microseconds} * most)));
        break;
    }
    case KeyKind::TEXT: {
        std::string characters;
        // A character up to U+00FF stands for one byte; UTF-8 has two of them for what is above U+007F.
        bool fits = text != nullptr;
        for (std::size_t at = 0; fits && at < text->size(); ++at) {
            const auto lead = static_cast<unsigned char>((*text)[at]);
            if (lead >= 0x80 && (lead > 0xC3 || ++at >= text->size()))
                fits = false;
            else
                characters += static_cast<char>(
                    lead < 0x80 ? lead : (lead & 3) << 6 | (static_cast<unsigned char>((*text)[at]) & 0x3F));
        }
        if (fits && characters.size() <= key.most)
            return characters;
        Unexpected(node, key.name,
                   "a text of at most " + std::to_string(key.most) + " characters up to U+00FF");
        return std::string();
    }
    case KeyKind::BYTES: {
        auto bytes = text == nullptr ? std::nullopt : ParseBytes(*text);
        if (bytes && bytes->size() >= key.least && bytes->size() <= key.most)
            return *bytes;
        Unexpected(node, key.name,
                   "a text of " + std::to_string(key.least) + " to " + std::to_string(key.most) +
                       " bytes, two hexadecimal digits each, such as \"21 0f\"" +
                       (bytes ? "; it has " + std::to_string(bytes->size()) : ""));
        return Bytes(key.least);
    }
    }
    return key.least;
}

GivenFields TableReader::Fields(std::span<const Key> keys) {
    GivenFields fields;
    for (const Key& key : keys)
        if (const toml::node* node = Take(key.name))
            fields.emplace(key.field, Given<FieldValue>{ValueOf(key, *node), PlaceOf(*node)});
    return fields;
}

void TableReader::ForEach(std::string_view name, const char* expected,
                          const std::function<void(const toml::node&)>& visit) {
    const toml::node* node = Take(name);
    if (node == nullptr)
        return;
    const toml::array* array = node->as_array();
    if (array == nullptr)
        return Unexpected(*node, name, expected);
    for (const toml::node& element : *array)
        visit(element);
}

void TableReader::RefuseOthers() {
    for (const auto& [key, value] : _table)
        if (std::find(_known.begin(), _known.end(), key.str()) == _known.end())
            Error(PlaceOf(key.source()),
                  "unknown key " + std::string(key.str().substr(0, 60)) + DidYouMean(key.str(), _known));
}

} // namespace BusDescription
