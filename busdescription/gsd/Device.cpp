// SPDX-License-Identifier: MIT
#include "busdescription/gsd/Device.h"

#include <algorithm>

namespace BusDescription::Gsd {

const Rate* RateWithCode(unsigned int code) {
    const auto* const rate =
        std::find_if(RATES.begin(), RATES.end(), [code](const Rate& each) { return each.code == code; });
    return rate == RATES.end() ? nullptr : rate;
}

static bool Within(const std::vector<Interval>& intervals, std::int64_t value) {
    return std::any_of(intervals.begin(), intervals.end(), [value](const Interval& interval) {
        return value >= interval.least && value <= interval.most;
    });
}

unsigned int Parameter::Size() const {
    switch (type) {
    case ParameterType::UNSIGNED16:
    case ParameterType::SIGNED16:
        return 2;
    case ParameterType::UNSIGNED32:
    case ParameterType::SIGNED32:
        return 4;
    case ParameterType::UNSIGNED8:
    case ParameterType::SIGNED8:
    case ParameterType::BIT:
    case ParameterType::BIT_AREA:
        break;
    }
    return 1;
}

Interval Parameter::TypeRange() const {
    switch (type) {
    case ParameterType::SIGNED8:
        return {INT8_MIN, INT8_MAX};
    case ParameterType::SIGNED16:
        return {INT16_MIN, INT16_MAX};
    case ParameterType::SIGNED32:
        return {INT32_MIN, INT32_MAX};
    case ParameterType::UNSIGNED16:
        return {0, UINT16_MAX};
    case ParameterType::UNSIGNED32:
        return {0, UINT32_MAX};
    case ParameterType::BIT:
    case ParameterType::BIT_AREA:
        return {0, (2 << (lastBit - firstBit)) - 1};
    case ParameterType::UNSIGNED8:
        break;
    }
    return {0, UINT8_MAX};
}

std::string Parameter::TypeText() const {
    const std::string first = std::to_string(firstBit);
    switch (type) {
    case ParameterType::UNSIGNED16:
        return "Unsigned16";
    case ParameterType::UNSIGNED32:
        return "Unsigned32";
    case ParameterType::SIGNED8:
        return "Signed8";
    case ParameterType::SIGNED16:
        return "Signed16";
    case ParameterType::SIGNED32:
        return "Signed32";
    case ParameterType::BIT:
        return "Bit(" + first + ")";
    case ParameterType::BIT_AREA:
        return "BitArea(" + first + "-" + std::to_string(lastBit) + ")";
    case ParameterType::UNSIGNED8:
        break;
    }
    return "Unsigned8";
}

std::string Parameter::RangeText() const {
    std::string text;
    for (const Interval& interval : range.empty() ? std::vector<Interval>{TypeRange()} : range)
        text += (text.empty() ? "" : ", ") + std::to_string(interval.least) +
                (interval.least == interval.most ? "" : " to " + std::to_string(interval.most));
    return text;
}

bool Parameter::Allows(std::int64_t value) const {
    const Interval possible = TypeRange();
    return value >= possible.least && value <= possible.most && (range.empty() || Within(range, value));
}

bool Slot::Allows(std::uint32_t reference) const {
    return reference == defaultReference || Within(references, reference);
}

std::size_t Device::Reach(const ParameterPart& part) const {
    std::size_t reach = 0;
    for (const ParameterConstant& constant : part.constants)
        reach = std::max(reach, constant.offset + constant.bytes.size());
    for (const ParameterReference& reference : part.references)
        reach = std::max<std::size_t>(reach, reference.offset + parameterTypes[reference.parameter].Size());
    return reach;
}

bool Device::Modular() const {
    return modularStation ? modularStation.value : maxModules.ValueOr(1) > 1 && modules.size() > 1;
}

std::vector<const Module*> Device::ModulesNamed(std::string_view name) const {
    const auto begin = std::min(name.find_first_not_of(" \t"), name.size());
    name = name.substr(begin, name.find_last_not_of(" \t") + 1 - begin);
    std::vector<const Module*> found;
    for (const Module& module : modules)
        if (module.name == name)
            found.push_back(&module);
    return found;
}

std::vector<const Module*> Device::ModulesWithReference(std::uint32_t reference) const {
    std::vector<const Module*> found;
    for (const Module& module : modules)
        if (module.reference && module.reference.value == reference)
            found.push_back(&module);
    return found;
}

const Slot* Device::SlotNumbered(unsigned int number) const {
    const auto slot = std::find_if(slots.begin(), slots.end(),
                                   [number](const Slot& candidate) { return candidate.number == number; });
    return slot == slots.end() ? nullptr : &*slot;
}

static bool BitOf(std::span<const std::uint8_t> bytes, unsigned int bit) {
    return bit / 8 < bytes.size() && (bytes[bit / 8] >> bit % 8 & 1) != 0;
}

/// The bits of the area as a number, which are all there; those above 63 do not count.
static std::int64_t NumberIn(std::span<const std::uint8_t> bytes, const DiagnosisArea& area) {
    std::int64_t number = 0;
    for (unsigned int bit = std::min(area.lastBit, area.firstBit + 62) + 1; bit-- > area.firstBit;)
        number = number << 1 | (BitOf(bytes, bit) ? 1 : 0);
    return number;
}

std::vector<DiagnosisMessage> Device::MessagesOf(std::span<const std::uint8_t> diagnosis) const {
    std::vector<DiagnosisMessage> messages;
    for (const DiagnosisBit& bit : diagnosisBits)
        if (BitOf(diagnosis, bit.bit))
            messages.push_back({bit.text, bit.help});
    for (const DiagnosisArea& area : diagnosisAreas) {
        if (area.lastBit / 8 >= diagnosis.size())
            continue;
        const std::int64_t number = NumberIn(diagnosis, area);
        const auto entry =
            std::find_if(area.values.begin(), area.values.end(),
                         [number](const ValueTexts::Entry& each) { return each.value == number; });
        if (entry != area.values.end())
            messages.push_back({entry->text, ""});
        else if (number != 0)
            messages.push_back({"bits " + std::to_string(area.firstBit) + " to " +
                                    std::to_string(area.lastBit) + " are " + std::to_string(number),
                                ""});
    }
    return messages;
}

} // namespace BusDescription::Gsd
