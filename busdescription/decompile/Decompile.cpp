// SPDX-License-Identifier: MIT
#include "busdescription/decompile/Decompile.h"

#include "busdescription/compile/BusTiming.h"
#include "busdescription/compile/SlaveCompiler.h"
#include "busdescription/decompile/DeviceMatch.h"
#include "busdescription/decompile/Draft.h"
#include "busdescription/description/Units.h"

#include <algorithm>
#include <stdexcept>

namespace BusDescription {

using Vesk::Modules::DPVM::Config::IBusConfig;

namespace {

/// A record's fields by name.
class Record {
public:
    explicit Record(FieldList fields) : _fields(std::move(fields)) {}

    const FieldList& Fields() const { return _fields; }

    const FieldValue& At(std::string_view field) const {
        return std::find_if(_fields.begin(), _fields.end(),
                            [field](const auto& each) { return each.first == field; })
            ->second;
    }

    std::uint32_t Number(std::string_view field) const { return std::get<std::uint32_t>(At(field)); }

    const Bytes& BytesAt(std::string_view field) const { return std::get<Bytes>(At(field)); }

private:
    FieldList _fields;
};

std::string RateValue(std::uint32_t code) {
    const Gsd::Rate* const rate = Gsd::RateWithCode(code);
    return rate == nullptr ? std::to_string(code) : '"' + RateText(*rate) + '"';
}

/// The numbers as a list.
template <class Numbers>
std::string ListText(const Numbers& numbers) {
    std::string text;
    for (const auto number : numbers)
        text += (text.empty() ? "" : ", ") + std::to_string(number);
    return '[' + text + ']';
}

std::string GroupsText(std::uint32_t bits) {
    std::vector<int> groups;
    for (int group = 1; group <= 8; ++group)
        if ((bits >> (group - 1) & 1) != 0)
            groups.push_back(group);
    return ListText(groups);
}

/// What was drafted is not what was meant.
class DraftError : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

class Decompiler {
public:
    Decompiler(IBusConfig& config, DeviceFiles& files, std::vector<std::string> gsds)
        : _config(config), _files(files), _gsds(std::move(gsds)) {}

    std::string Text(const std::string& source) {
        const Record master(FieldsOf(*_config.Master()));
        _bus.Add("rate", RateValue(master.Number("dataRate")));
        _bus.Add("master", std::to_string(master.Number("stationAddress")));
        const auto addresses = _config.SlaveAddresses();
        for (int i = 0; i < addresses->Count(); ++i)
            DraftSlave(addresses->Get(i));
        ShareWatchdog();
        DraftAlarms(master);
        while (AddWhatDiffers()) {
        }
        return "# Made of " + Quoted(source) + " by vesk config decompile.\n" + Checks() + Render();
    }

private:
    struct Slave {
        unsigned char address;
        Record record;
        DraftTable table{};
        std::string watchdog{};
        const Gsd::Device* device = nullptr; // null without a file that fits
        std::string plainModules{};          // without parameters
    };

    // The first draft

    void DraftSlave(unsigned char address) {
        Slave slave{address, Record(FieldsOf(*_config.Slave(address)))};
        slave.table.Add("name", "\"slave-" + std::to_string(address) + '"');
        slave.table.Add("address", std::to_string(address));
        DraftDevice(slave);
        if (slave.device == nullptr)
            DraftRaw(slave);
        DraftFlags(slave);
        DraftWatchdog(slave);
        if (const std::uint32_t groups = slave.record.Number("groupIdent"); groups != 0)
            slave.table.Add("groups", GroupsText(groups));
        const Gsd::DataLengths lengths = Gsd::LengthsOf(slave.record.BytesAt("identifierBytes"));
        DraftPlaces(slave, "to-bus-at", "inputOffsetTable", lengths.toBus, _toBus);
        DraftPlaces(slave, "from-bus-at", "outputOffsetTable", lengths.fromBus, _fromBus);
        _slaves.push_back(std::move(slave));
    }

    static void AddField(Slave& slave, const char* field) {
        slave.table.Add(*KeyOf(SlaveKeys(), field), slave.record.At(field));
    }

    static void DraftRaw(Slave& slave) {
        AddField(slave, "identNr");
        AddField(slave, "identifierBytes");
        for (const char* const field : {"userParameters", "extUsrPrmData"})
            if (!slave.record.BytesAt(field).empty())
                AddField(slave, field);
        AddField(slave, "maxDiagnosticDataLength");
    }

    /// Takes the first file whose modules and parameters fit, or else the first whose modules do.
    void DraftDevice(Slave& slave) {
        Bytes parameters = slave.record.BytesAt("userParameters");
        const Bytes& more = slave.record.BytesAt("extUsrPrmData");
        parameters.insert(parameters.end(), more.begin(), more.end());
        std::string path;
        DeviceMatch best;
        for (const std::string& gsd : _gsds) {
            const Gsd::DeviceFile& file = _files.Read(gsd);
            if (!file.Usable() || file.device.identNumber.value != slave.record.Number("identNr"))
                continue;
            auto match = MatchDevice(file.device, slave.record.BytesAt("identifierBytes"), parameters);
            if (!match || (slave.device != nullptr && match->settings.empty()))
                continue;
            slave.device = &file.device;
            path = gsd;
            best = std::move(*match);
            if (!best.settings.empty())
                break;
        }
        if (slave.device == nullptr)
            return;
        slave.table.Add("gsd", Quoted(path));
        slave.plainModules = ModulesText(*slave.device, best.modules, {});
        const bool named = !best.settings.empty();
        slave.table.Add("modules",
                        named ? ModulesText(*slave.device, best.modules, best.settings) : slave.plainModules);
        if (named && !best.settings[0].empty())
            slave.table.Add("parameters", ParametersText(best.settings[0]));
        if (named)
            DraftStatusBits(slave, best.statusBits);
    }

    void DraftStatusBits(Slave& slave, const std::array<std::uint8_t, 3>& bits) {
        if ((bits[0] & 0x04) != 0)
            slave.table.Add("watchdog-base", "\"1 ms\"");
        std::string alarms;
        for (const AlarmRow& row : ALARMS)
            if ((bits[1] & row.bit) != 0)
                alarms += (alarms.empty() ? "\"" : ", \"") + std::string(row.name) + '"';
        if (alarms.empty())
            return;
        slave.table.Add("alarms", '[' + alarms + ']');
        _alarms = true;
    }

    static void DraftFlags(Slave& slave) {
        constexpr std::uint32_t unnamed = 0x01;
        const std::uint32_t flags = slave.record.Number("slaveFlags");
        if ((flags & unnamed) != 0)
            return; // the key of the whole byte will follow
        if ((flags & SlaveFlags::ACTIVE) == 0)
            slave.table.Add("active", "false");
        const bool dpv1 = slave.device != nullptr && slave.device->dpv1.value;
        const bool types = slave.device != nullptr && slave.device->dpv1DataTypes.value;

        const struct {
            const char* key;
            std::uint32_t bit;
            bool unsaid; // what it is without the key
        } named[] = {{"new-parameters", SlaveFlags::NEW_PARAMETERS, false},
                     {"fail-safe", SlaveFlags::FAIL_SAFE, false},
                     {"publisher", SlaveFlags::PUBLISHER, false},
                     {"dpv1", SlaveFlags::DPV1, dpv1 && !IsDpv1Enabled(slave)},
                     {"dpv1-data-types", SlaveFlags::DPV1_DATA_TYPES, types},
                     {"extra-alarm-sap", SlaveFlags::EXTRA_ALARM_SAP, false}};

        for (const auto& [key, bit, unsaid] : named)
            if (const bool set = (flags & bit) != 0; set != unsaid)
                slave.table.Add(key, set ? "true" : "false");
        if ((flags & SlaveFlags::DPV1) == 0 || slave.device != nullptr)
            return;
        AddField(slave, "maxChannelDataLength");
        AddField(slave, "mSAC1Timeout");
    }

    /// Whether the slave's first status byte says so.
    static bool IsDpv1Enabled(const Slave& slave) {
        const Bytes& parameters = slave.record.BytesAt("userParameters");
        return !parameters.empty() && (parameters[0] & 0x80) != 0;
    }

    static void DraftWatchdog(Slave& slave) {
        const std::uint32_t status = slave.record.Number("stationStatus");
        const std::uint32_t first = slave.record.Number("watchdogFactor1");
        const std::uint32_t second = slave.record.Number("watchdogFactor2");
        const bool on = (status & StationStatus::WATCHDOG_ON) != 0 && first * second > 0;
        constexpr std::uint32_t named = StationStatus::SYNC | StationStatus::FREEZE;
        if ((status & ~named) == (StationStatus::LOCK | (on ? StationStatus::WATCHDOG_ON : 0))) {
            if ((status & StationStatus::SYNC) != 0)
                slave.table.Add("sync", "true");
            if ((status & StationStatus::FREEZE) != 0)
                slave.table.Add("freeze", "true");
        } // else the key of the whole byte will follow
        const std::int64_t base =
            HasBase1ms(slave.record.Number("slaveFlags"), slave.record.BytesAt("userParameters")) ? 1'000
                                                                                                  : 10'000;
        if (!on)
            slave.watchdog = "\"off\"";
        else if (WatchdogFactors(first * second) == std::pair(first, second))
            slave.watchdog = '"' + DurationText(std::chrono::microseconds(base * first * second)) + '"';
        else
            slave.watchdog = ListText(std::vector{first, second});
    }

    static void DraftPlaces(Slave& slave, const char* key, const char* field, std::size_t length,
                            Area& area) {
        const auto& places = std::get<Places>(slave.record.At(field));
        const bool run = !places.empty() && places == Run(places[0], length);
        if (places != area.Next(length))
            slave.table.Add(key, run ? std::to_string(places[0]) : ListText(places));
        area.Take(places);
    }

    /// A watchdog that all slaves have stands in the table of the bus.
    void ShareWatchdog() {
        const auto same = [this](const Slave& slave) { return slave.watchdog == _slaves[0].watchdog; };
        const bool shared = _slaves.size() > 1 && std::all_of(_slaves.begin(), _slaves.end(), same);
        if (shared)
            _bus.Add("watchdog", _slaves[0].watchdog);
        for (Slave& slave : _slaves)
            if (!shared)
                slave.table.Add("watchdog", slave.watchdog);
    }

    /// The number of alarms has to be given where there are some, even if it is the default.
    void DraftAlarms(const Record& master) {
        if (_alarms)
            _bus.Add(*KeyOf(BusKeys(), "alarmMax"), master.At("alarmMax"));
    }

    // What it still has to say

    std::string Render() const {
        std::string text = "\n[bus]\n" + _bus.ToString();
        for (const Slave& slave : _slaves)
            text += "\n[[slave]]\n" + slave.table.ToString();
        return text;
    }

    std::optional<CompiledBus> CompileText(const std::string& text, Findings& findings) const {
        return Compile(ReadText(text, "description", findings), _files, findings);
    }

    /// Compiles the draft and adds a key for each field that comes out otherwise; whether there was one.
    bool AddWhatDiffers() {
        Findings findings;
        const auto compiled = CompileText("unchecked = true\n" + Render(), findings);
        if (!compiled)
            throw DraftError("a draft is no description: " + findings.at(0).ToString());
        bool differs = false;
        for (Slave& slave : _slaves)
            differs |=
                AddDifferences(slave.record.Fields(), FieldsOf(*compiled->config->Slave(slave.address)),
                               slave.table, SlaveKeys());
        // Much of the master's comes from the slaves.
        return differs || AddDifferences(FieldsOf(*_config.Master()), FieldsOf(*compiled->config->Master()),
                                         _bus, BusKeys());
    }

    /// Where names do not bring about the user parameters, they will stand there in raw form.
    static void TakeParametersBack(Slave& slave, const FieldList& made) {
        const Record other(made);
        if (other.At("userParameters") == slave.record.At("userParameters") &&
            other.At("extUsrPrmData") == slave.record.At("extUsrPrmData"))
            return;
        slave.table.Comment("The file's names do not give these user parameters.");
        for (const char* const key : {"parameters", "alarms", "watchdog-base", "modules"})
            slave.table.Remove(key);
        slave.table.Add("modules", slave.plainModules);
    }

    static bool AddDifferences(const FieldList& wanted, const FieldList& made, DraftTable& table,
                               std::span<const Key> keys) {
        bool differs = false;
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            if (wanted[i].second == made[i].second)
                continue;
            const Key* key = KeyOf(keys, wanted[i].first);
            if (key == nullptr)
                throw DraftError("no key brings about " + wanted[i].first);
            table.Add(*key, wanted[i].second);
            differs = true;
        }
        return differs;
    }

    /// Where the checks refuse what the database has, they are left out, and it is said why.
    std::string Checks() const {
        Findings findings;
        CompileText(Render(), findings);
        std::string reasons;
        for (const Finding& finding : findings)
            if (finding.severity == Severity::ERROR)
                reasons += "#   " + finding.text + "\n";
        return reasons.empty() ? ""
                               : "#\n# Nothing is checked, for the database has what no check lets pass:\n" +
                                     reasons + "unchecked = true\n";
    }

    IBusConfig& _config;
    DeviceFiles& _files;
    const std::vector<std::string> _gsds;
    bool _alarms = false;
    DraftTable _bus;
    std::vector<Slave> _slaves;
    Area _toBus;
    Area _fromBus;
};

} // namespace

std::string Decompile(IBusConfig& config, const std::string& source, DeviceFiles& files,
                      const std::vector<std::string>& gsds) {
    try {
        return Decompiler(config, files, gsds).Text(source);
    } catch (const DraftError&) {
        return Decompiler(config, files, {}).Text(source); // the database goes beyond what a file allows
    }
}

} // namespace BusDescription
