// SPDX-License-Identifier: MIT
#include "tools/vesk/explain/Diagnosis.h"

#include "busdescription/gsd/Identifier.h"

#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Numbers.h"
#include "tools/vesk/text/Text.h"

#include <algorithm>
#include <array>

namespace VeskTool {

using Json = nlohmann::ordered_json;
using ByteView = std::span<const unsigned char>;

namespace {

constexpr std::size_t STANDARD_SIZE = 6;
constexpr unsigned int NO_MASTER = 0xFF;

// In the order in which a cause counts more than the next one.
constexpr std::array BITS{
    DiagnosisFlag{0, 0x01, "stationNonExistent", "does not answer on the bus",
                  "it does not answer on the bus: no supply, another address, or the cable"},
    DiagnosisFlag{0, 0x80, "masterLock", "parameterised by another master",
                  "another master has parameterised it"},
    DiagnosisFlag{0, 0x40, "parameterFault", "refused its parameters (ident number, length, content)",
                  "it refuses its parameters: the ident number or a parameter in the configuration is wrong"},
    DiagnosisFlag{0, 0x04, "configurationFault", "has other modules than the configuration says",
                  "it has other modules than the configuration says"},
    DiagnosisFlag{
        0, 0x20, "invalidSlaveResponse", "answered what made no sense",
        "what it answered made no sense: look for a fault of the line or two slaves with one address"},
    DiagnosisFlag{0, 0x10, "notSupported", "does not know a requested function",
                  "the configuration asks for a function that it does not have"},
    DiagnosisFlag{1, 0x80, "deactivated", "taken out of the exchange by the master",
                  "the master has taken it out of the exchange"},
    DiagnosisFlag{1, 0x02, "staticDiagnostics", "has nothing valid to send yet",
                  "it says that it has nothing valid to send"},
    DiagnosisFlag{1, 0x01, "parameterRequest", "has to be parameterised anew",
                  "it waits to be parameterised by the master"},
    DiagnosisFlag{0, 0x02, "stationNotReady", "not ready for the data exchange", "it is not ready yet"},
    DiagnosisFlag{0, 0x08, "extendedDiagnostics", "the extended diagnosis says what is wrong", nullptr},
    DiagnosisFlag{1, 0x08, "watchdogOn", "watches its master", nullptr},
    DiagnosisFlag{1, 0x10, "freezeMode", "has its inputs frozen", nullptr},
    DiagnosisFlag{1, 0x20, "syncMode", "has its outputs synchronised", nullptr},
    DiagnosisFlag{2, 0x80, "extendedDiagnosticsOverflow", "has more to say than fits", nullptr}};

// ---- extended diagnosis

enum class BlockKind : unsigned char { DEVICE = 0, IDENTIFIER = 1, CHANNEL = 2, REVISION = 3 };

constexpr std::size_t CHANNEL_SIZE = 3;

constexpr std::array DIRECTIONS{"reserved", "input", "output", "input and output"};
constexpr std::array DATA_TYPES{"reserved", "bit", "2 bits", "4 bits", "byte", "word", "2 words", "reserved"};
constexpr std::array ERRORS{
    "reserved",        "short circuit", "undervoltage",         "overvoltage",          "overload",
    "overtemperature", "line break",    "upper limit exceeded", "lower limit exceeded", "error"};
constexpr unsigned int MANUFACTURER_ERRORS = 16;

std::string ErrorText(unsigned int error) {
    if (error < ERRORS.size())
        return ERRORS[error];
    return error < MANUFACTURER_ERRORS ? "reserved" : "the manufacturer's own";
}

/// The modules whose bit is set.
Json FaultyModules(ByteView bits) {
    Json modules = Json::array();
    for (std::size_t module = 0; module < 8 * bits.size(); ++module)
        if (bits[module / 8] >> module % 8 & 1)
            modules.push_back(module);
    return modules;
}

Json ChannelBlock(ByteView block) {
    const unsigned int error = block[2] & 0x1Fu;
    return {{"kind", "channel"},
            {"module", block[0] & 0x3F},
            {"channel", block[1] & 0x3F},
            {"direction", DIRECTIONS[block[1] >> 6]},
            {"dataType", DATA_TYPES[block[2] >> 5]},
            {"error", error},
            {"errorText", ErrorText(error)}};
}

/// The block at the start of `bytes`, which is its own length at the least; empty if none is there.
ByteView FirstBlock(ByteView bytes) {
    const auto kind = static_cast<BlockKind>(bytes[0] >> 6);
    const std::size_t length = kind == BlockKind::REVISION  ? 1
                               : kind == BlockKind::CHANNEL ? CHANNEL_SIZE
                                                            : bytes[0] & 0x3Fu;
    return length <= bytes.size() ? bytes.first(length) : ByteView();
}

Json BlockToJson(ByteView block) {
    switch (static_cast<BlockKind>(block[0] >> 6)) {
    case BlockKind::DEVICE:
        return {{"kind", "device"}};
    case BlockKind::IDENTIFIER:
        return {{"kind", "identifier"}, {"modules", FaultyModules(block.subspan(1))}};
    case BlockKind::CHANNEL:
        return ChannelBlock(block);
    case BlockKind::REVISION:
        return {{"kind", "revision"}, {"revision", block[0] & 0x3F}};
    }
    return {{"kind", "rest"}};
}

std::string MessagesText(const Json& messages) {
    std::vector<std::string> texts;
    for (const Json& message : messages)
        texts.push_back(Harmless(message["text"].get<std::string>()));
    return Joined(texts, ", ");
}

std::string BlockText(const Json& block) {
    const auto kind = block["kind"].get<std::string>();
    if (kind == "identifier")
        return "modules with a fault: " + Addresses(block["modules"].get<std::vector<int>>());
    if (kind == "channel")
        return "module " + block["module"].dump() + ", channel " + block["channel"].dump() + " (" +
               block["direction"].get<std::string>() + ", " + block["dataType"].get<std::string>() +
               "): " + block["errorText"].get<std::string>() + " (" + block["error"].dump() + ")";
    if (kind == "revision")
        return "revision of the device's description: " + block["revision"].dump();
    if (block.contains("messages"))
        return MessagesText(block["messages"]);
    return kind == "device" ? "the device as a whole, see its manual" : "no whole block";
}

} // namespace

std::span<const DiagnosisFlag> DiagnosisFlags() {
    return BITS;
}

Diagnosis::Diagnosis(ByteView bytes) : _bytes(bytes.begin(), bytes.end()) {
    for (const DiagnosisFlag& bit : BITS)
        if (bit.byte < bytes.size() && (bytes[bit.byte] & bit.mask) != 0)
            _set.emplace_back(bit.name);
    if (bytes.size() < STANDARD_SIZE)
        return;
    _identNumber = bytes[4] * 256u + bytes[5];
    DecodeBlocks(bytes.subspan(STANDARD_SIZE));
}

void Diagnosis::DecodeBlocks(ByteView bytes) {
    while (!bytes.empty()) {
        ByteView block = FirstBlock(bytes);
        Json json = block.empty() ? Json{{"kind", "rest"}} : BlockToJson(block);
        if (block.empty())
            block = bytes;
        json["data"] = HexDigits(block);
        _blocks.push_back(json);
        bytes = bytes.subspan(block.size());
    }
}

bool Diagnosis::IsSet(const std::string& name) const {
    return std::find(_set.begin(), _set.end(), name) != _set.end();
}

std::string Diagnosis::Cause() const {
    for (const DiagnosisFlag& bit : BITS)
        if (bit.cause && IsSet(bit.name))
            return bit.cause;
    return "";
}

Json Diagnosis::ToJson() const {
    const bool whole = _bytes.size() >= STANDARD_SIZE;
    Json status;
    for (const DiagnosisFlag& bit : BITS)
        status[bit.name] = IsSet(bit.name);
    return {{"identNumber", whole ? Json(_identNumber) : Json()},
            {"masterAddress", whole && _bytes[3] != NO_MASTER ? Json(_bytes[3]) : Json()},
            {"status", status},
            {"blocks", _blocks},
            {"data", HexDigits(_bytes)}};
}

void Diagnosis::AddTexts(Json& json, const BusDescription::Gsd::Device& device) {
    if (json["identNumber"] != device.identNumber.value)
        return;
    for (Json& block : json["blocks"]) {
        if (block["kind"] != "device")
            continue;
        const auto bytes = ParseHex("data", block["data"].get<std::string>());
        Json messages = Json::array();
        for (const auto& [text, help] : device.MessagesOf(std::span(bytes).subspan(1)))
            messages.push_back({{"text", text}, {"help", help.empty() ? Json() : Json(help)}});
        if (!messages.empty())
            block["messages"] = messages;
    }
}

/// A line for each message that says what to do.
static std::string HelpText(const Json& block) {
    std::string text;
    for (const Json& message : block.value("messages", Json::array()))
        if (!message["help"].is_null())
            text += Padded("", 14) + Harmless(message["text"].get<std::string>()) + ": " +
                    Harmless(message["help"].get<std::string>()) + "\n";
    return text;
}

std::string Diagnosis::Text(const Json& json) {
    const Json& ident = json["identNumber"];
    const Json& master = json["masterAddress"];
    std::string text = "Ident number  " + (ident.is_null() ? "-" : Hex(ident.get<unsigned int>())) + "\n" +
                       "Master        " + (master.is_null() ? "none" : master.dump()) + "\n";
    for (const DiagnosisFlag& bit : BITS) {
        const bool set = json["status"][bit.name];
        text += set ? "  [x] " + Padded(bit.name, 29) + bit.meaning + "\n"
                    : std::string("  [ ] ") + bit.name + "\n";
    }
    for (const Json& block : json["blocks"])
        text += Padded(block["kind"].get<std::string>(), 14) + BlockText(block) + "\n" + HelpText(block) +
                Padded("", 14) + block["data"].get<std::string>() + "\n";
    return text + "Bytes         " + json["data"].get<std::string>() + "\n";
}

std::string Diagnosis::Summary(const Json& json) {
    std::vector<std::string> parts;
    for (const auto& [name, isSet] : json["status"].items())
        if (isSet.get<bool>())
            parts.push_back(name);
    for (const Json& block : json["blocks"])
        parts.push_back(BlockText(block));
    return parts.empty() ? "nothing" : Joined(parts, ", ");
}

// ---- configuration identifiers

namespace {

using BusDescription::Gsd::IdentifierData;

Json DataToJson(const std::optional<IdentifierData>& data) {
    return data ? Json{{"length", data->bytes},
                       {"unit", data->words ? "word" : "byte"},
                       {"consistency", data->wholeConsistent ? "whole" : "unit"}}
                : Json();
}

} // namespace

Json DecodeIdentifiers(ByteView bytes) {
    Json modules = Json::array();
    for (const auto& entry : BusDescription::Gsd::DecodeIdentifiers(bytes)) {
        Json module{{"identifier", HexDigits(entry.bytes)}};
        if (entry.cutShort) {
            module["cutShort"] = true;
        } else {
            module["input"] = DataToJson(entry.toBus);
            module["output"] = DataToJson(entry.fromBus);
            if (entry.special)
                module["manufacturerData"] = HexDigits(entry.manufacturer);
        }
        modules.push_back(module);
    }
    return modules;
}

} // namespace VeskTool
