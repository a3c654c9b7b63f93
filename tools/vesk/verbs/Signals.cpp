// SPDX-License-Identifier: MIT
#include "tools/vesk/verbs/Signals.h"

#include "busdescription/description/SignalValue.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Text.h"

#include <cmath>

namespace VeskTool {

using BusDescription::Signal;

namespace {

Json ValueToJson(const Signal& signal, const BusDescription::SignalValue& value) {
    if (const auto* bytes = std::get_if<BusDescription::Bytes>(&value))
        return HexDigits(*bytes);
    if (const auto* number = std::get_if<double>(&value)) // with no more digits than people see
        return std::isfinite(*number) ? Json::parse(RealText(signal, *number)) : Json();
    if (const auto* flag = std::get_if<bool>(&value))
        return *flag;
    if (const auto* number = std::get_if<std::int64_t>(&value))
        return *number;
    return std::get<std::uint64_t>(value);
}

} // namespace

Json SignalToJson(const Signal& signal, std::span<const unsigned char> data) {
    Json value;
    if (signal.offset + std::size_t{signal.length} <= data.size())
        value = ValueToJson(signal, ValueOf(signal, data));
    return {{"name", signal.name},
            {"value", value},
            {"unit", signal.unit.empty() ? Json() : Json(signal.unit)},
            {"toBus", signal.toBus}};
}

std::string SignalText(const Json& signal) {
    const Json& value = signal["value"];
    const std::string text = value.is_null()     ? "-"
                             : value.is_string() ? value.get<std::string>()
                                                 : value.dump();
    return text + (signal["unit"].is_null() ? "" : " " + Harmless(signal["unit"].get<std::string>()));
}

std::string HeldBy(Session& session) {
    const auto database = session.AskForDatabase();
    return database ? database->Description.Value() : "";
}

} // namespace VeskTool
