// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/compile/BusTiming.h"
#include "busdescription/compile/Compile.h"

#include <array>
#include <set>

namespace BusDescription {

namespace SlaveFlags {
inline constexpr std::uint32_t ACTIVE = 0x80;
inline constexpr std::uint32_t NEW_PARAMETERS = 0x40;
inline constexpr std::uint32_t FAIL_SAFE = 0x20;
inline constexpr std::uint32_t PUBLISHER = 0x10;
inline constexpr std::uint32_t DPV1 = 0x08;
inline constexpr std::uint32_t DPV1_DATA_TYPES = 0x04;
inline constexpr std::uint32_t EXTRA_ALARM_SAP = 0x02;
} // namespace SlaveFlags

namespace StationStatus {
inline constexpr std::uint32_t LOCK = 0x80;
inline constexpr std::uint32_t SYNC = 0x20;
inline constexpr std::uint32_t FREEZE = 0x10;
inline constexpr std::uint32_t WATCHDOG_ON = 0x08;
} // namespace StationStatus

/// An alarm as descriptions call it, and its bit in the second status byte.
struct AlarmRow {
    std::string_view name;
    Gsd::Alarm alarm;
    std::uint8_t bit;
};

inline constexpr std::array<AlarmRow, 6> ALARMS{{{"pull-plug", Gsd::Alarm::PULL_PLUG, 0x80},
                                                 {"process", Gsd::Alarm::PROCESS, 0x40},
                                                 {"diagnostic", Gsd::Alarm::DIAGNOSTIC, 0x20},
                                                 {"manufacturer", Gsd::Alarm::MANUFACTURER, 0x10},
                                                 {"status", Gsd::Alarm::STATUS, 0x08},
                                                 {"update", Gsd::Alarm::UPDATE, 0x04}}};

/// Whether a slave's watchdog counts in 1 ms, and not in 10 ms.
bool HasBase1ms(std::uint32_t slaveFlags, const Bytes& userParameters);

/// `length` places one behind the other.
Places Run(std::size_t first, std::size_t length);

/// Where the data of all slaves lie in one of the two areas.
class Area {
public:
    /// The places of `length` bytes behind what was placed last.
    Places Next(std::size_t length) const;
    /// Goes on behind `places`.
    void Take(const Places& places);

private:
    std::size_t _next = 0;
};

/// Adds findings about a description.
class CompileReport {
public:
    CompileReport(const Description& description, Findings& findings);

    /// What cannot be at all.
    void Error(Place place, const std::string& text) { Add(Severity::ERROR, place, text); }

    /// What makes no sense, unless the description asks for no checks.
    void Implausible(Place place, const std::string& text) {
        if (!_description.unchecked)
            Error(place, text);
    }

    void Warning(Place place, const std::string& text) {
        if (!_description.unchecked)
            Add(Severity::WARNING, place, text);
    }

    /// "plant.toml:12:8".
    std::string Origin(Place place) const;

    /// Whether the value at that place was refused before.
    bool IsWrong(Place place) const { return _wrongValues.contains({place.line, place.column}); }

private:
    void Add(Severity severity, Place place, const std::string& text);

    const Description& _description;
    Findings& _findings;
    std::set<std::pair<unsigned int, unsigned int>> _wrongValues; // of which there is no more to say
};

/// Computes the record of one slave, up to where its data lies.
class SlaveCompiler {
public:
    SlaveCompiler(const Description& description, const SlaveDescription& slave, const Gsd::DeviceFile* file,
                  CompileReport& report);

    /// Proposes every field but the places of the data.
    void ProposeFields(RecordPlan& record);
    /// Places the slave's data.
    void ProposePlaces(RecordPlan& record, Area& toBus, Area& fromBus);
    /// Checks that the record can be written and that signals lie within the data.
    void Check(const RecordPlan& record);

    /// What bus parameters depend on.
    ExchangedData Data(const RecordPlan& record) const;
    /// Maximum station delay at a rate in bit times, 0 where nobody says.
    unsigned int MaxStationDelay(unsigned int rateCode) const;
    /// Shortest time between two exchanges, unit 100 µs.
    unsigned int MinInterval() const;
    /// 0: none.
    std::chrono::microseconds Watchdog(const RecordPlan& record) const;

    Place WatchdogPlace() const { return Setting().place; }

    const SlaveDescription& Text() const { return _slave; }

    std::string Called() const { return "slave " + _slave.name + ": "; }

private:
    void ProposeIdentity(RecordPlan& record);
    void ProposeDevice(RecordPlan& record);
    void ProposeUserParameters(RecordPlan& record, Bytes bytes, const std::string& origin);
    void ProposeFlags(RecordPlan& record);
    void ProposeAcyclic(RecordPlan& record);
    void ProposeWatchdog(RecordPlan& record);
    void ProposeStationStatus(RecordPlan& record);
    void RequireSupport(const Given<bool>& wanted, const Gsd::Given<bool>& supported, const std::string& key);
    /// Its own watchdog, or that of all slaves.
    const Given<WatchdogSetting>& Setting() const;
    bool Base1ms(const RecordPlan& record) const;
    bool UsesDpv1(const RecordPlan& record) const;
    std::string FileOrigin(unsigned int line) const;
    void CheckDataLengths(const RecordPlan& record);

    const Description& _description;
    const SlaveDescription& _slave;
    const Gsd::Device* _device = nullptr; // null without a device description file
    CompileReport& _report;
    bool _hasParts = true; // its modules are known
};

} // namespace BusDescription
