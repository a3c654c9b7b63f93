// SPDX-License-Identifier: MIT
#include "busdescription/gsd/ParameterValues.h"

#include "busdescription/findings/Nearest.h"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <unordered_set>

namespace BusDescription::Gsd {

namespace {

constexpr std::size_t MOST_NAMED = 12; // of the possible values in a message

using ValueNames = std::unordered_map<std::int64_t, std::string_view>;
using Named = std::pair<std::string_view, std::uint32_t>; // a name and an offset

bool IsBits(const Parameter& parameter) {
    return parameter.type == ParameterType::BIT || parameter.type == ParameterType::BIT_AREA;
}

std::uint32_t Raw(std::span<const std::uint8_t> bytes) {
    std::uint32_t raw = 0;
    for (const std::uint8_t byte : bytes)
        raw = raw << 8 | byte;
    return raw;
}

std::int64_t ValueIn(std::span<const std::uint8_t> bytes, const Parameter& parameter, std::uint32_t offset) {
    const Interval possible = parameter.TypeRange();
    std::int64_t value = Raw(bytes.subspan(offset, parameter.Size()));
    if (IsBits(parameter))
        value = value >> parameter.firstBit & possible.most;
    const std::int64_t count = possible.most - possible.least + 1;
    return value > possible.most ? value - count : value;
}

/// Of each value a text that names no other value.
ValueNames NamesOf(const ValueTexts& texts) {
    std::unordered_map<std::string_view, std::int64_t> values;
    std::unordered_set<std::string_view> ambiguous;
    for (const ValueTexts::Entry& entry : texts.entries)
        if (values.try_emplace(entry.text, entry.value).first->second != entry.value)
            ambiguous.insert(entry.text);
    ValueNames names;
    for (const ValueTexts::Entry& entry : texts.entries)
        if (ambiguous.count(entry.text) == 0)
            names.try_emplace(entry.value, entry.text);
    return names;
}

/// "slow" (0), "fast" (1), …
std::string List(const ValueTexts& texts) {
    std::string list;
    for (std::size_t i = 0; i < std::min(texts.entries.size(), MOST_NAMED); ++i)
        list += (i == 0 ? "\"" : ", \"") + texts.entries[i].text + "\" (" +
                std::to_string(texts.entries[i].value) + ")";
    return texts.entries.size() > MOST_NAMED ? list + ", …" : list;
}

[[noreturn]] void Refuse(const Parameter& parameter, const std::string& value, const std::string& expected) {
    throw ParameterError("the parameter \"" + parameter.name + "\" cannot be " + value + ": expected " +
                         expected);
}

std::string NumberExpected(const Parameter& parameter) {
    return parameter.RangeText() + " (" + parameter.TypeText() + ")";
}

/// The value that has the text.
std::int64_t ValueOf(const Parameter& parameter, const ValueTexts* texts, const std::string& text) {
    if (!texts || texts->entries.empty())
        Refuse(parameter, "\"" + text + "\"", NumberExpected(parameter));
    std::optional<std::int64_t> value;
    std::vector<std::string> all;
    for (const ValueTexts::Entry& entry : texts->entries) {
        all.push_back(entry.text);
        if (entry.text != text)
            continue;
        if (value.value_or(entry.value) != entry.value)
            Refuse(parameter, "\"" + text + "\"",
                   "a number, for " + std::to_string(*value) + " and " + std::to_string(entry.value) +
                       " have that text");
        value = entry.value;
    }
    if (!value)
        Refuse(parameter, "\"" + text + "\"", List(*texts) + DidYouMean(text, all));
    return *value;
}

} // namespace

ParameterValues::ParameterValues(const Device& device, const ParameterPart& part, std::size_t size)
    : _device(device), _part(part), _bytes(size) {
    for (const ParameterConstant& constant : part.constants)
        std::copy(constant.bytes.begin(), constant.bytes.end(),
                  _bytes.begin() + static_cast<std::ptrdiff_t>(constant.offset));
    for (const ParameterReference& reference : part.references)
        Put(reference, device.parameterTypes[reference.parameter].defaultValue);
}

ParameterValues ParameterValues::OfStation(const Device& device) {
    return {device, device.parameters, device.Reach(device.parameters)};
}

ParameterValues ParameterValues::OfModule(const Device& device, const Module& module) {
    const ParameterPart& part = module.parameters;
    return {device, part, part.length ? part.length.value : device.Reach(part)};
}

void ParameterValues::Put(const ParameterReference& reference, std::int64_t value) {
    const Parameter& parameter = _device.parameterTypes[reference.parameter];
    auto raw = static_cast<std::uint32_t>(value);
    if (IsBits(parameter)) {
        const auto mask = static_cast<std::uint32_t>(parameter.TypeRange().most) << parameter.firstBit;
        raw = (_bytes[reference.offset] & ~mask) | (raw << parameter.firstBit & mask);
    }
    for (unsigned int i = parameter.Size(); i-- > 0; raw >>= 8)
        _bytes[reference.offset + i] = static_cast<std::uint8_t>(raw);
}

std::vector<std::string> ParameterValues::Names() const {
    std::vector<std::string> names;
    for (const ParameterReference& reference : _part.references)
        names.push_back(_device.parameterTypes[reference.parameter].name);
    return names;
}

const ParameterReference& ParameterValues::Find(const std::string& name,
                                                std::optional<unsigned int> offset) const {
    std::vector<const ParameterReference*> found;
    std::string offsets;
    for (const ParameterReference& reference : _part.references) {
        if (_device.parameterTypes[reference.parameter].name != name)
            continue;
        offsets += (offsets.empty() ? "" : ", ") + std::to_string(reference.offset);
        if (reference.offset == offset.value_or(reference.offset))
            found.push_back(&reference);
    }
    const std::string quoted = "\"" + name + "\"";
    if (offsets.empty())
        throw ParameterError("there is no parameter " + quoted + DidYouMean(name, Names()));
    if (found.empty())
        throw ParameterError("the parameter " + quoted + " is not at the offset " + std::to_string(*offset) +
                             ", but at " + offsets);
    if (found.size() > 1)
        throw ParameterError("the parameter " + quoted + " is there more than once, at the offsets " +
                             offsets +
                             (offset ? ": it can only be given in raw bytes" : ": say at which one"));
    return *found.front();
}

void ParameterValues::Set(const std::string& name, const Value& value, std::optional<unsigned int> offset) {
    const ParameterReference& reference = Find(name, offset);
    const Parameter& parameter = _device.parameterTypes[reference.parameter];
    if (!parameter.changeable)
        throw ParameterError("the parameter \"" + name + "\" must not be changed");
    const auto* const text = std::get_if<std::string>(&value);
    const std::int64_t number =
        text ? ValueOf(parameter, parameter.texts ? &_device.texts[*parameter.texts] : nullptr, *text)
             : std::get<std::int64_t>(value);
    if (!parameter.Allows(number))
        Refuse(parameter, std::to_string(number), NumberExpected(parameter));
    Put(reference, number);
}

std::vector<ParameterValue> ParameterValues::Values(std::span<const std::uint8_t> bytes) const {
    std::unordered_map<std::string_view, std::size_t> counts;
    for (const ParameterReference& reference : _part.references)
        ++counts[_device.parameterTypes[reference.parameter].name];
    std::unordered_map<std::size_t, ValueNames> names; // of each of the texts that are used

    std::vector<ParameterValue> values;
    for (const ParameterReference& reference : _part.references) {
        const Parameter& parameter = _device.parameterTypes[reference.parameter];
        ParameterValue value{&parameter, &reference, ValueIn(bytes, parameter, reference.offset), "",
                             counts[parameter.name] == 1};
        if (parameter.texts) {
            const auto [entry, isNew] = names.try_emplace(*parameter.texts);
            if (isNew)
                entry->second = NamesOf(_device.texts[*parameter.texts]);
            if (const auto name = entry->second.find(value.value); name != entry->second.end())
                value.text = name->second;
        }
        values.push_back(std::move(value));
    }
    return values;
}

std::optional<std::vector<ParameterValue>>
ParameterValues::SettingsFor(std::span<const std::uint8_t> bytes) const {
    if (bytes.size() != _bytes.size())
        return {};
    ParameterValues reached = *this;
    std::vector<ParameterValue> settings;
    std::map<Named, int> counts; // those that have the same offset too cannot be set
    for (const ParameterReference& reference : _part.references)
        ++counts[{_device.parameterTypes[reference.parameter].name, reference.offset}];
    for (ParameterValue& value : Values(bytes)) {
        const Parameter& parameter = *value.parameter;
        if (value.value == ValueIn(reached._bytes, parameter, value.reference->offset) ||
            !parameter.changeable || !parameter.Allows(value.value) ||
            counts[{parameter.name, value.reference->offset}] > 1)
            continue;
        reached.Put(*value.reference, value.value);
        settings.push_back(std::move(value));
    }
    if (!std::equal(bytes.begin(), bytes.end(), reached._bytes.begin()))
        return {};
    return settings;
}

} // namespace BusDescription::Gsd
