// SPDX-License-Identifier: MIT
#include "tools/vesk/files/GsdJson.h"

#include "busdescription/gsd/ParameterValues.h"
#include "tools/vesk/text/ByteText.h"

namespace VeskTool {

namespace Gsd = BusDescription::Gsd;
using Json = nlohmann::ordered_json;

namespace {

/// Null for what the file does not say.
template <class T>
Json ToJson(const Gsd::Given<T>& given) {
    return given ? Json(given.value) : Json();
}

Json ToJson(const std::vector<Gsd::Interval>& intervals) {
    Json json = Json::array();
    for (const Gsd::Interval& interval : intervals)
        json.push_back({{"least", interval.least}, {"most", interval.most}});
    return json;
}

Json ToJson(const std::vector<Gsd::ValueTexts::Entry>& entries) {
    Json json = Json::array();
    for (const Gsd::ValueTexts::Entry& entry : entries)
        json.push_back({{"value", entry.value}, {"text", entry.text}});
    return json;
}

/// A part of the user parameters; `bytes` are its defaults.
Json ToJson(const Gsd::Device& device, const Gsd::ParameterPart& part,
            const std::vector<std::uint8_t>& bytes) {
    Json references = Json::array();
    for (const Gsd::ParameterReference& reference : part.references)
        references.push_back({{"offset", reference.offset},
                              {"id", reference.id},
                              {"name", device.parameterTypes[reference.parameter].name}});
    return {{"defaults", HexDigits(bytes)}, {"parameters", std::move(references)}};
}

Json ToJson(const Gsd::Parameter& parameter) {
    return {{"id", parameter.id},
            {"name", parameter.name},
            {"type", parameter.TypeText()},
            {"default", parameter.defaultValue},
            {"range", ToJson(parameter.range.empty() ? std::vector{parameter.TypeRange()} : parameter.range)},
            {"texts", parameter.texts ? Json(*parameter.textsId) : Json()},
            {"changeable", parameter.changeable},
            {"visible", parameter.visible}};
}

Json ToJson(const Gsd::Device& device, const Gsd::Module& module) {
    return {{"name", module.name},
            {"reference", ToJson(module.reference)},
            {"toBus", module.lengths.toBus},
            {"fromBus", module.lengths.fromBus},
            {"identifierBytes", HexDigits(module.identifierBytes)},
            {"preset", module.preset},
            {"safety", static_cast<bool>(module.safetyKeyword)},
            {"userParameters",
             ToJson(device, module.parameters, Gsd::ParameterValues::OfModule(device, module).Bytes())}};
}

Json RatesToJson(const Gsd::Device& device) {
    Json rates = Json::array();
    for (std::size_t i = 0; i < Gsd::RATES.size(); ++i)
        if (device.rates[i].supported.value)
            rates.push_back({{"name", Gsd::RATES[i].name},
                             {"bitsPerSecond", Gsd::RATES[i].bitsPerSecond},
                             {"maxTsdr", device.rates[i].maxTsdr.ValueOr(Gsd::RATES[i].maxStationDelay)}});
    return rates;
}

Json Dpv1ToJson(const Gsd::Device& device) {
    Json supported = Json::array();
    Json required = Json::array();
    for (std::size_t i = 0; i < Gsd::ALARM_COUNT; ++i) {
        if (device.alarmSupported[i].value)
            supported.push_back(Gsd::ALARM_NAMES[i]);
        if (device.alarmRequired[i].value)
            required.push_back(Gsd::ALARM_NAMES[i]);
    }
    return {{"class1", device.class1.value},
            {"class1Required", device.class1Required.value},
            {"class1MaxData", ToJson(device.class1MaxData)},
            {"class1ResponseTimeout", ToJson(device.class1ResponseTimeout)},
            {"class2", device.class2.value},
            {"class2MaxData", ToJson(device.class2MaxData)},
            {"class2ResponseTimeout", ToJson(device.class2ResponseTimeout)},
            {"alarmsSupported", std::move(supported)},
            {"alarmsRequired", std::move(required)},
            {"alarmSequenceModeCount", ToJson(device.alarmSequenceModeCount)},
            {"alarmTypeMode", device.alarmTypeMode.value},
            {"extraAlarmSap", device.extraAlarmSap.value},
            {"watchdogBase1ms", device.watchdogBase1ms.value},
            {"checkConfigMode", device.checkConfigMode.value},
            {"dataTypes", device.dpv1DataTypes.value},
            {"publisher", device.publisher.value},
            {"parameterBlocks", device.parameterBlocks.value}};
}

template <class Items, class Convert>
Json Each(const Items& items, Convert convert) {
    Json json = Json::array();
    for (const auto& item : items)
        json.push_back(convert(item));
    return json;
}

} // namespace

Json DeviceToJson(const Gsd::Device& device) {
    return {
        {"vendor", ToJson(device.vendorName)},
        {"model", ToJson(device.modelName)},
        {"identNumber", device.identNumber.value},
        {"revision", ToJson(device.revision)},
        {"hardwareRelease", ToJson(device.hardwareRelease)},
        {"softwareRelease", ToJson(device.softwareRelease)},
        {"orderNumber", ToJson(device.orderNumber)},
        {"infoText", ToJson(device.infoText)},
        {"gsdRevision", ToJson(device.gsdRevision)},
        {"rates", RatesToJson(device)},
        {"freezeMode", device.freezeMode.value},
        {"syncMode", device.syncMode.value},
        {"autoBaud", device.autoBaud.value},
        {"setSlaveAddress", device.setSlaveAddress.value},
        {"failSafe", device.failSafe.value},
        {"minSlaveInterval", ToJson(device.minSlaveInterval)},
        {"modular", device.Modular()},
        {"maxModules", ToJson(device.maxModules)},
        {"firstSlot", device.FirstSlot()},
        {"fixedPresetModules", device.fixedPresetModules.value},
        {"maxToBus", ToJson(device.maxToBus)},
        {"maxFromBus", ToJson(device.maxFromBus)},
        {"maxData", ToJson(device.maxData)},
        {"maxDiagnosis", ToJson(device.maxDiagnosis)},
        {"maxUserParameters", ToJson(device.parameters.length)},
        {"userParameters",
         ToJson(device, device.parameters, Gsd::ParameterValues::OfStation(device).Bytes())},
        {"dpv1", device.dpv1.value ? Dpv1ToJson(device) : Json()},
        {"modules", Each(device.modules, [&](const Gsd::Module& module) { return ToJson(device, module); })},
        {"parameters",
         Each(device.parameterTypes, [](const Gsd::Parameter& parameter) { return ToJson(parameter); })},
        {"texts", Each(device.texts,
                       [](const Gsd::ValueTexts& texts) {
                           return Json{{"id", texts.id}, {"values", ToJson(texts.entries)}};
                       })},
        {"slots", Each(device.slots,
                       [](const Gsd::Slot& slot) {
                           return Json{{"number", slot.number},
                                       {"name", slot.name},
                                       {"default", slot.defaultReference},
                                       {"references", ToJson(slot.references)}};
                       })},
        {"diagnosisBits", Each(device.diagnosisBits,
                               [](const Gsd::DiagnosisBit& bit) {
                                   return Json{{"bit", bit.bit}, {"text", bit.text}, {"help", bit.help}};
                               })},
        {"diagnosisAreas", Each(device.diagnosisAreas, [](const Gsd::DiagnosisArea& area) {
             return Json{
                 {"firstBit", area.firstBit}, {"lastBit", area.lastBit}, {"values", ToJson(area.values)}};
         })}};
}

} // namespace VeskTool
