// SPDX-License-Identifier: MIT
#include "tools/vesk/files/ConfigText.h"

#include "busdescription/compile/SlaveCompiler.h"
#include "busdescription/description/Keys.h"
#include "busdescription/description/Units.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Elements.h"
#include "tools/vesk/text/Text.h"

#include <algorithm>

namespace VeskTool {

namespace Bus = BusDescription;
using std::chrono::microseconds;

namespace {

struct BitName {
    std::uint32_t bit;
    const char* name;
};

constexpr BitName SLAVE_FLAGS[] = {{Bus::SlaveFlags::ACTIVE, "active"},
                                   {Bus::SlaveFlags::NEW_PARAMETERS, "new parameters"},
                                   {Bus::SlaveFlags::FAIL_SAFE, "fail-safe"},
                                   {Bus::SlaveFlags::PUBLISHER, "publisher"},
                                   {Bus::SlaveFlags::DPV1, "DP-V1"},
                                   {Bus::SlaveFlags::DPV1_DATA_TYPES, "DP-V1 data types"},
                                   {Bus::SlaveFlags::EXTRA_ALARM_SAP, "extra alarm access point"}};

constexpr BitName STATION_STATUS[] = {{Bus::StationStatus::LOCK, "locked"},
                                      {0x40, "unlocked"},
                                      {Bus::StationStatus::SYNC, "Sync"},
                                      {Bus::StationStatus::FREEZE, "Freeze"},
                                      {Bus::StationStatus::WATCHDOG_ON, "watchdog on"}};

std::string Names(std::span<const BitName> bits, std::uint32_t value) {
    std::vector<std::string> names;
    for (const BitName& each : bits)
        if ((value & each.bit) != 0)
            names.emplace_back(each.name);
    return Joined(names, ", ");
}

std::string Groups(std::uint32_t value) {
    std::vector<int> groups;
    for (int group = 1; group <= 8; ++group)
        if ((value >> (group - 1) & 1) != 0)
            groups.push_back(group);
    return groups.empty() ? "" : "groups " + Addresses(groups);
}

std::string RateName(std::uint32_t code) {
    const Bus::Gsd::Rate* const rate = Bus::Gsd::RateWithCode(code);
    if (rate == nullptr)
        return "";
    const std::string text = Bus::RateText(*rate); // with the "k" or "M" at its end
    return text.substr(0, text.size() - 1) + " " + text.back() + "bit/s";
}

std::string DataWords(const Bus::Gsd::IdentifierData& data) {
    const unsigned int units = data.words ? data.bytes / 2 : data.bytes;
    return std::to_string(units) + (data.words ? " word" : " byte") + (units == 1 ? "" : "s");
}

/// Everything about one record.
class RecordText {
public:
    RecordText(Bus::FieldList fields, std::span<const Bus::Key> keys)
        : _fields(std::move(fields)), _keys(keys) {}

    /// A field's value, and behind it what it means.
    std::string FieldText(const std::string& field) const {
        const Bus::FieldValue& value = At(field);
        const std::string meaning = field == "watchdogFactor1" ? Watchdog() : MeaningOf(field, value);
        return Shown(field, value) + (meaning.empty() ? "" : " (" + meaning + ")");
    }

    std::string ToString() const {
        std::string text;
        for (const auto& [field, value] : _fields) {
            const std::string meaning = MeaningOf(field, value);
            text += "  " + Padded(field, 30) +
                    (meaning.empty() ? Shown(field, value) : Padded(Shown(field, value), 12)) +
                    (meaning.empty() ? "" : "  " + meaning) + "\n";
        }
        return text;
    }

private:
    const Bus::FieldValue& At(const std::string& name) const {
        return std::find_if(_fields.begin(), _fields.end(),
                            [&name](const auto& each) { return each.first == name; })
            ->second;
    }

    std::uint32_t Number(const char* name) const { return std::get<std::uint32_t>(At(name)); }

    static std::string Shown(const std::string& field, const Bus::FieldValue& value) {
        if (const auto* number = std::get_if<std::uint32_t>(&value))
            return field == "identNr" ? Bus::HexText(*number, 4)
                   : field.ends_with("Flags") || field.ends_with("Flag") || field.ends_with("Status") ||
                           field == "groupIdent"
                       ? Bus::HexText(*number, 2)
                       : std::to_string(*number);
        if (const auto* text = std::get_if<std::string>(&value))
            return text->empty() ? "-" : Printable(*text);
        if (const auto* bytes = std::get_if<Bus::Bytes>(&value))
            return bytes->empty() ? "-" : Bus::BytesText(*bytes);
        const auto& places = std::get<Bus::Places>(value);
        return places.empty() ? "-" : Addresses({places.begin(), places.end()});
    }

    std::string Watchdog() const {
        const int base = Bus::HasBase1ms(Number("slaveFlags"), std::get<Bus::Bytes>(At("userParameters")))
                             ? 1'000
                             : 10'000;
        const microseconds time(std::int64_t{base} * Number("watchdogFactor1") * Number("watchdogFactor2"));
        return (Number("stationStatus") & Bus::StationStatus::WATCHDOG_ON) != 0
                   ? "watchdog of " + Bus::DurationText(time)
                   : "watchdog off";
    }

    std::string MeaningOf(const std::string& field, const Bus::FieldValue& value) const {
        if (field == "inputOffsetTable")
            return "to the bus";
        if (field == "outputOffsetTable")
            return "from the bus";
        if (field == "identifierBytes")
            return IdentifiersText(std::get<Bus::Bytes>(value));
        const auto* number = std::get_if<std::uint32_t>(&value);
        if (number == nullptr)
            return "";
        if (field == "dataRate")
            return RateName(*number);
        if (field == "slaveFlags")
            return Names(SLAVE_FLAGS, *number);
        if (field == "stationStatus")
            return Names(STATION_STATUS, *number);
        if (field == "groupIdent")
            return Groups(*number);
        if (field == "watchdogFactor2")
            return Watchdog();
        const Bus::Key* key = KeyOf(_keys, field);
        if (key == nullptr)
            return "";
        return key->kind == Bus::KeyKind::DURATION
                   ? Bus::DurationText(microseconds(std::int64_t{key->microseconds} * *number))
                   : std::string(key->unit);
    }

    Bus::FieldList _fields;
    std::span<const Bus::Key> _keys;
};

} // namespace

std::string IdentifiersText(const Bus::Bytes& bytes) {
    std::vector<std::string> entries;
    for (const Bus::Gsd::Identifier& entry : Bus::Gsd::DecodeIdentifiers(bytes)) {
        if (entry.cutShort)
            entries.emplace_back("cut short");
        else if (!entry.toBus && !entry.fromBus)
            entries.emplace_back("empty");
        if (entry.toBus)
            entries.push_back(DataWords(*entry.toBus) + " to the bus");
        if (entry.fromBus)
            entries.push_back(DataWords(*entry.fromBus) + " from the bus");
    }
    return Joined(entries, ", ");
}

std::string ConfigText(Vesk::Modules::DPVM::Config::IBusConfig& config) {
    const auto addresses = Elements(*config.SlaveAddresses());
    std::string text = "checksum " + ChecksumText(config.Checksum()) + "\n\nmaster\n" +
                       RecordText(Bus::FieldsOf(*config.Master()), Bus::BusKeys()).ToString();
    for (const unsigned char address : addresses)
        text += "\nslave " + std::to_string(address) + "\n" +
                RecordText(Bus::FieldsOf(*config.Slave(address)), Bus::SlaveKeys()).ToString();
    return text;
}

std::string FieldText(Vesk::Modules::DPVM::Config::IBusConfig& config, std::optional<unsigned char> slave,
                      const std::string& field) {
    return slave ? RecordText(Bus::FieldsOf(*config.Slave(*slave)), Bus::SlaveKeys()).FieldText(field)
                 : RecordText(Bus::FieldsOf(*config.Master()), Bus::BusKeys()).FieldText(field);
}

} // namespace VeskTool
