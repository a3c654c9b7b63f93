// SPDX-License-Identifier: MIT
#include "busdescription/gsd/Check.h"

#include <algorithm>
#include <unordered_map>

namespace BusDescription::Gsd {

namespace {

/// What the two records of user parameters of a slave hold.
constexpr std::size_t MAX_USER_PARAMETERS = 237 + 244;
constexpr std::size_t DPV1_STATUS_SIZE = 3;

using Indexes = std::unordered_map<std::uint32_t, std::size_t>;

std::string InLine(unsigned int line) {
    return " in line " + std::to_string(line);
}

/// A name for a message: in quotes, and not too long.
std::string Quoted(const std::string& name) {
    static constexpr std::size_t LONGEST = 60;
    std::size_t length = std::min(name.size(), LONGEST);
    while (length < name.size() && (name[length] & 0xC0) == 0x80) // in the middle of a character
        --length;
    return "\"" + name.substr(0, length) + (length < name.size() ? "…\"" : "\"");
}

std::string Count(std::size_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

/// Those of a list of texts whose values are the least and the greatest; null for none.
struct Extremes {
    explicit Extremes(const std::vector<ValueTexts::Entry>& entries) {
        for (const ValueTexts::Entry& entry : entries) {
            least = !least || entry.value < least->value ? &entry : least;
            most = !most || entry.value > most->value ? &entry : most;
        }
    }

    const ValueTexts::Entry* least = nullptr;
    const ValueTexts::Entry* most = nullptr;
};

/// The index of each id in `items`; of two with one id the later counts.
template <class Item>
Indexes IndexesOf(const std::vector<Item>& items, const char* keyword, FindingList& findings) {
    Indexes indexes;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const auto [entry, isNew] = indexes.try_emplace(items[i].id, i);
        if (isNew)
            continue;
        findings.Warning(items[i].line, std::string(keyword) + " " + std::to_string(items[i].id) + " stands" +
                                            InLine(items[entry->second].line) + " too; this one counts");
        entry->second = i;
    }
    return indexes;
}

class Checker {
public:
    Checker(Device& device, FindingList& findings) : _device(device), _findings(findings) {}

    void Check();

private:
    void CheckStation();
    void ResolveTexts();
    void CheckTexts(const Parameter& parameter, const Extremes& texts);
    void TakeUserParameters();
    void CheckPart(ParameterPart& part, const std::string& of, std::size_t most);
    void CheckModule(Module& module);
    void CheckLength(const Module& module, unsigned int length, const Given<unsigned int>& most,
                     const char* keyword);
    void CheckModules();
    void CheckSlots();
    void CheckSlot(const Slot& slot, Interval interval, const std::vector<Interval>& runs);

    Device& _device;
    FindingList& _findings;
    Indexes _parameters;
};

void Checker::Check() {
    CheckStation();
    ResolveTexts();
    _parameters = IndexesOf(_device.parameterTypes, "ExtUserPrmData", _findings);
    TakeUserParameters();
    CheckPart(_device.parameters, "the station", _device.parameters.length.ValueOr(MAX_USER_PARAMETERS));
    for (Module& module : _device.modules)
        CheckModule(module);
    CheckModules();
    CheckSlots();
    if (_device.dpv1.value && _device.Reach(_device.parameters) < DPV1_STATUS_SIZE)
        _findings.Warning(_device.dpv1.line,
                          "the user parameters of a DP-V1 slave begin with three status bytes, "
                          "but those of the station are " +
                              Count(_device.Reach(_device.parameters), "byte"));
}

void Checker::CheckStation() {
    if (!_device.identNumber)
        _findings.Error(0, "Ident_Number is missing");
    if (_device.protocolIdent && _device.protocolIdent.value != 0)
        _findings.Error(_device.protocolIdent.line,
                        "Protocol_Ident is " + std::to_string(_device.protocolIdent.value) +
                            ", expected 0: the device does not speak PROFIBUS DP");
    if (_device.stationType && _device.stationType.value != 0)
        _findings.Error(_device.stationType.line, "Station_Type is " +
                                                      std::to_string(_device.stationType.value) +
                                                      ", expected 0: the device is no slave");
    if (_device.modules.empty())
        _findings.Error(0, "the device has no Module");
    if (!_device.modularStation && _device.Modular())
        _findings.Warning(_device.maxModules.line,
                          "Modular_Station is missing; Max_Module and several modules "
                          "make it a modular station");
    if (!_device.maxDiagnosis)
        _findings.Warning(0, "Max_Diag_Data_Len is missing");
    if (std::none_of(_device.rates.begin(), _device.rates.end(),
                     [](const RateSupport& rate) { return rate.supported.value; }))
        _findings.Warning(0, "the device supports no data rate");
}

void Checker::ResolveTexts() {
    const Indexes indexes = IndexesOf(_device.texts, "PrmText", _findings);
    std::vector<Extremes> extremes;
    for (const ValueTexts& texts : _device.texts)
        extremes.emplace_back(texts.entries);
    for (Parameter& parameter : _device.parameterTypes) {
        if (!parameter.defaultGiven)
            _findings.Warning(parameter.line,
                              "the parameter " + Quoted(parameter.name) + " has no default; 0 is taken");
        if (!parameter.Allows(parameter.defaultValue))
            _findings.Warning(parameter.line, "the default " + std::to_string(parameter.defaultValue) +
                                                  " of the parameter " + Quoted(parameter.name) +
                                                  " is not in its range, " + parameter.RangeText());
        if (!parameter.textsId)
            continue;
        const auto found = indexes.find(*parameter.textsId);
        if (found == indexes.end()) {
            _findings.Warning(parameter.line, "the parameter " + Quoted(parameter.name) +
                                                  " refers to PrmText " + std::to_string(*parameter.textsId) +
                                                  ", which the file does not have");
        } else {
            parameter.texts = found->second;
            CheckTexts(parameter, extremes[found->second]);
        }
    }
}

/// Only the least and the greatest value, for many parameters may share the texts.
void Checker::CheckTexts(const Parameter& parameter, const Extremes& texts) {
    const Interval possible = parameter.TypeRange();
    for (const ValueTexts::Entry* entry : {texts.least, texts.most})
        if (entry && (entry->value < possible.least || entry->value > possible.most)) {
            _findings.Warning(entry->line, "the value " + std::to_string(entry->value) +
                                               " does not fit the type of the parameter " +
                                               Quoted(parameter.name) + InLine(parameter.line) + ", " +
                                               parameter.TypeText());
            return;
        }
}

/// Fixed user parameters count only where nothing says how they are made of parts.
void Checker::TakeUserParameters() {
    const auto& given = _device.userParameters;
    ParameterPart& part = _device.parameters;
    if (!given)
        return;
    const bool parts = !part.constants.empty() || !part.references.empty();
    if (part.length && !parts)
        _findings.Warning(given.line, "User_Prm_Data does not count, because of Max_User_Prm_Data_Len" +
                                          InLine(part.length.line));
    if (part.length || parts)
        return;
    if (_device.userParametersLength && _device.userParametersLength.value != given.value.size())
        _findings.Warning(given.line, "User_Prm_Data has " + Count(given.value.size(), "byte") +
                                          ", but User_Prm_Data_Len is " +
                                          std::to_string(_device.userParametersLength.value));
    part.constants.push_back({0, given.value, given.line});
}

/// `of` has `most` bytes, into which all of the part has to fit.
void Checker::CheckPart(ParameterPart& part, const std::string& of, std::size_t most) {
    const auto checkEnd = [&](std::size_t end, unsigned int line) {
        if (end > most)
            _findings.Error(line, "this reaches to byte " + std::to_string(end) +
                                      " of the user parameters of " + of + ", which have " +
                                      std::to_string(most));
    };
    for (const ParameterConstant& constant : part.constants)
        checkEnd(constant.offset + constant.bytes.size(), constant.line);
    const auto isUnknown = [&](ParameterReference& reference) {
        const auto found = _parameters.find(reference.id);
        if (found == _parameters.end()) {
            _findings.Error(reference.line, "Ext_User_Prm_Data_Ref refers to ExtUserPrmData " +
                                                std::to_string(reference.id) +
                                                ", which the file does not have");
            return true;
        }
        reference.parameter = found->second;
        checkEnd(reference.offset + _device.parameterTypes[found->second].Size(), reference.line);
        return false;
    };
    part.references.erase(std::remove_if(part.references.begin(), part.references.end(), isUnknown),
                          part.references.end());
}

void Checker::CheckModule(Module& module) {
    const std::string name = "the module " + Quoted(module.name);
    ParameterPart& part = module.parameters;
    const auto entries = DecodeIdentifiers(module.identifierBytes);
    if (!entries.empty() && entries.back().cutShort)
        _findings.Error(module.line, "the identifier bytes of " + name + " end too early");
    if (part.length.value > MAX_USER_PARAMETERS)
        _findings.Error(part.length.line, "Ext_Module_Prm_Data_Len is " + std::to_string(part.length.value) +
                                              ", expected at most " + std::to_string(MAX_USER_PARAMETERS));
    if (!part.length && (!part.constants.empty() || !part.references.empty()))
        _findings.Warning(module.line, name + " has user parameters, but no Ext_Module_Prm_Data_Len; as many "
                                              "are taken as its parts reach");
    CheckPart(part, name,
              std::min<std::size_t>(part.length.ValueOr(MAX_USER_PARAMETERS), MAX_USER_PARAMETERS));
    CheckLength(module, module.lengths.fromBus, _device.maxFromBus, "Max_Input_Len");
    CheckLength(module, module.lengths.toBus, _device.maxToBus, "Max_Output_Len");
    CheckLength(module, module.lengths.fromBus + module.lengths.toBus, _device.maxData, "Max_Data_Len");
}

void Checker::CheckLength(const Module& module, unsigned int length, const Given<unsigned int>& most,
                          const char* keyword) {
    if (most && length > most.value)
        _findings.Warning(module.line, "the module " + Quoted(module.name) + " has " + Count(length, "byte") +
                                           ", but " + keyword + " is " + std::to_string(most.value));
}

void Checker::CheckModules() {
    std::unordered_map<std::string_view, const Module*> names;
    std::unordered_map<std::uint32_t, const Module*> references;
    for (const Module& module : _device.modules) {
        const auto [same, isNew] = names.try_emplace(module.name, &module);
        if (!isNew)
            _findings.Warning(module.line, "the name " + Quoted(module.name) + " is that of the module" +
                                               InLine(same->second->line) + " too");
        if (!module.reference)
            continue;
        const auto [other, unused] = references.try_emplace(module.reference.value, &module);
        if (!unused)
            _findings.Warning(module.reference.line,
                              "the reference " + std::to_string(module.reference.value) +
                                  " is that of the module" + InLine(other->second->line) + " too");
    }
}

void Checker::CheckSlots() {
    std::vector<std::int64_t> references;
    for (const Module& module : _device.modules)
        if (module.reference)
            references.push_back(module.reference.value);
    std::sort(references.begin(), references.end());
    std::vector<Interval> runs; // of references without a gap
    for (const std::int64_t reference : references)
        if (!runs.empty() && reference <= runs.back().most + 1)
            runs.back().most = reference;
        else
            runs.push_back({reference, reference});

    for (const Slot& slot : _device.slots) {
        CheckSlot(slot, {slot.defaultReference, slot.defaultReference}, runs);
        for (const Interval& interval : slot.references)
            CheckSlot(slot, interval, runs);
    }
}

/// Names the first reference of the interval that no module has.
void Checker::CheckSlot(const Slot& slot, Interval interval, const std::vector<Interval>& runs) {
    const auto after =
        std::upper_bound(runs.begin(), runs.end(), interval.least,
                         [](std::int64_t least, const Interval& run) { return least < run.least; });
    const bool inside = after != runs.begin() && interval.least <= std::prev(after)->most;
    const std::int64_t first = inside ? std::prev(after)->most + 1 : interval.least;
    if (first <= interval.most)
        _findings.Warning(slot.line, "the slot " + std::to_string(slot.number) + " may have the reference " +
                                         std::to_string(first) + ", which no module has");
}

} // namespace

void Check(Device& device, FindingList& findings) {
    Checker(device, findings).Check();
}

} // namespace BusDescription::Gsd
