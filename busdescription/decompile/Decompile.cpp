// SPDX-License-Identifier: MIT
#include "busdescription/decompile/Decompile.h"

#include "busdescription/compile/BusTiming.h"
#include "busdescription/compile/SlaveCompiler.h"
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

std::string RateText(std::uint32_t code) {
    for (const Gsd::Rate& rate : Gsd::RATES)
        if (rate.code == code)
            return '"' + std::string(rate.name) + (rate.bitsPerSecond < 1'000'000 ? "k\"" : "\"");
    return std::to_string(code);
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

class Decompiler {
public:
    Decompiler(IBusConfig& config, DeviceFiles& files) : _config(config), _files(files) {}

    std::string Text(const std::string& source) {
        const Record master(FieldsOf(*_config.Master()));
        _bus.Add("rate", RateText(master.Number("dataRate")));
        _bus.Add("master", std::to_string(master.Number("stationAddress")));
        const auto addresses = _config.SlaveAddresses();
        for (int i = 0; i < addresses->Count(); ++i)
            DraftSlave(addresses->Get(i));
        ShareWatchdog();
        while (AddWhatDiffers()) {
        }
        return "# Made of " + Quoted(source) + " by vesk config decompile.\n" + Checks() + Render();
    }

private:
    struct Slave {
        unsigned char address;
        Record record;
        DraftTable table;
        std::string watchdog;
    };

    // The first draft

    void DraftSlave(unsigned char address) {
        Slave slave{address, Record(FieldsOf(*_config.Slave(address))), {}, {}};
        slave.table.Add("name", "\"slave-" + std::to_string(address) + '"');
        slave.table.Add("address", std::to_string(address));
        AddField(slave, "identNr");
        AddField(slave, "identifierBytes");
        for (const char* const field : {"userParameters", "extUsrPrmData"})
            if (!slave.record.BytesAt(field).empty())
                AddField(slave, field);
        AddField(slave, "maxDiagnosticDataLength");
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

    static void DraftFlags(Slave& slave) {
        constexpr std::uint32_t unnamed = 0x01;
        const std::uint32_t flags = slave.record.Number("slaveFlags");
        if ((flags & unnamed) != 0)
            return; // the key of the whole byte will follow
        if ((flags & SlaveFlags::ACTIVE) == 0)
            slave.table.Add("active", "false");
        const std::pair<std::uint32_t, const char*> named[] = {
            {SlaveFlags::NEW_PARAMETERS, "new-parameters"},
            {SlaveFlags::FAIL_SAFE, "fail-safe"},
            {SlaveFlags::PUBLISHER, "publisher"},
            {SlaveFlags::DPV1, "dpv1"},
            {SlaveFlags::DPV1_DATA_TYPES, "dpv1-data-types"},
            {SlaveFlags::EXTRA_ALARM_SAP, "extra-alarm-sap"}};
        for (const auto& [bit, key] : named)
            if ((flags & bit) != 0)
                slave.table.Add(key, "true");
        if ((flags & SlaveFlags::DPV1) == 0)
            return;
        AddField(slave, "maxChannelDataLength");
        AddField(slave, "mSAC1Timeout");
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
            throw std::logic_error("a draft is no description: " + findings.at(0).ToString());
        bool differs = false;
        for (Slave& slave : _slaves)
            differs |=
                AddDifferences(slave.record.Fields(), FieldsOf(*compiled->config->Slave(slave.address)),
                               slave.table, SlaveKeys());
        // Much of the master's comes from the slaves.
        return differs || AddDifferences(FieldsOf(*_config.Master()), FieldsOf(*compiled->config->Master()),
                                         _bus, BusKeys());
    }

    static bool AddDifferences(const FieldList& wanted, const FieldList& made, DraftTable& table,
                               std::span<const Key> keys) {
        bool differs = false;
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            if (wanted[i].second == made[i].second)
                continue;
            const Key* key = KeyOf(keys, wanted[i].first);
            if (key == nullptr)
                throw std::logic_error("no key brings about " + wanted[i].first);
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
    DraftTable _bus;
    std::vector<Slave> _slaves;
    Area _toBus;
    Area _fromBus;
};

} // namespace

std::string Decompile(IBusConfig& config, const std::string& source, DeviceFiles& files,
                      const std::vector<std::string>&) {
    return Decompiler(config, files).Text(source);
}

} // namespace BusDescription
