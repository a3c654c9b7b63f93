// SPDX-License-Identifier: MIT
#include "busdescription/compile/SlaveCompiler.h"

#include "busdescription/compile/DeviceParts.h"
#include "busdescription/description/Units.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <tuple>

namespace BusDescription {

using std::chrono::microseconds;

namespace {

// Bits of the first status byte of a DP-V1 slave, the first of its user parameters.
constexpr std::uint8_t STATUS_DPV1 = 0x80;
constexpr std::uint8_t STATUS_FAIL_SAFE = 0x40;
constexpr std::uint8_t STATUS_PUBLISHER = 0x20;
constexpr std::uint8_t STATUS_BASE_1MS = 0x04;
constexpr std::size_t STATUS_BYTES = 3;

constexpr std::size_t MAX_USER_PARAMETERS = 237; // the others are extended ones
constexpr std::size_t MAX_DATA = 244;            // bytes of one slave in one direction

const Bytes& BytesAt(const RecordPlan& record, std::string_view field) {
    return std::get<Bytes>(record.At(field));
}

const Places& PlacesAt(const RecordPlan& record, std::string_view field) {
    return std::get<Places>(record.At(field));
}

} // namespace

Places Run(std::size_t first, std::size_t length) {
    Places places(length);
    std::iota(places.begin(), places.end(), static_cast<std::uint16_t>(first));
    return places;
}

Places Area::Next(std::size_t length) const {
    return Run(_next, length);
}

void Area::Take(const Places& places) {
    if (!places.empty())
        _next = *std::max_element(places.begin(), places.end()) + std::size_t{1};
}

CompileReport::CompileReport(const Description& description, Findings& findings)
    : _description(description), _findings(findings) {
    for (const Finding& finding : findings)
        _wrongValues.emplace(finding.line, finding.column);
    // What is wrong with a whole table says nothing about what it has.
    _wrongValues.erase({description.busPlace.line, description.busPlace.column});
    for (const SlaveDescription& slave : description.slaves)
        _wrongValues.erase({slave.place.line, slave.place.column});
}

void CompileReport::Add(Severity severity, Place place, const std::string& text) {
    if (!IsWrong(place) && _findings.size() < MAX_TEXT_FINDINGS)
        _findings.push_back({severity, _description.file, place.line, place.column, text});
}

std::string CompileReport::Origin(Place place) const {
    return _description.file + ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
}

SlaveCompiler::SlaveCompiler(const Description& description, const SlaveDescription& slave,
                             const Gsd::DeviceFile* file, CompileReport& report)
    : _description(description),
      _slave(slave),
      _device(file != nullptr && file->Usable() ? &file->device : nullptr),
      _report(report) {}

std::string SlaveCompiler::FileOrigin(unsigned int line) const {
    return _slave.gsd.value + (line > 0 ? ":" + std::to_string(line) : "");
}

void SlaveCompiler::ProposeFields(RecordPlan& record) {
    for (const auto& [field, given] : _slave.fields)
        record.Propose(field, given.value, _report.Origin(given.place));
    ProposeIdentity(record);
    ProposeFlags(record);
    ProposeAcyclic(record);
    ProposeWatchdog(record);
    ProposeStationStatus(record);
    record.Propose("groupIdent", _slave.groups.value,
                   _slave.groups ? _report.Origin(_slave.groups.place) : DEFAULT);
    record.Propose("minStationDelayTimeResponder", 11U, DEFAULT);
    for (const char* const field : {"slaveType", "diagUpdDelay", "alarmMode", "additionalSlaveFlags"})
        record.Propose(field, 0U, DEFAULT);
}

// What the slave is

void SlaveCompiler::ProposeIdentity(RecordPlan& record) {
    if (_device != nullptr)
        ProposeDevice(record);
    else if (!_slave.modules.empty() || !_slave.parameters.empty())
        _report.Error(_slave.modules.empty() ? _slave.parameters[0].place : _slave.modulesPlace,
                      Called() + "modules and parameters need a gsd, the slave's device description file");
    const auto require = [&](std::string_view field, FieldValue instead, const char* what) {
        if (!record.Has(field) && !_slave.gsd)
            _report.Error(_slave.place, Called() + what);
        record.Propose(field, std::move(instead), DEFAULT);
    };
    require("identNr", 0U, "ident is missing, the slave's ident number such as 0x2a14, or a gsd");
    require("identifierBytes", Bytes(1), "identifier-bytes is missing, such as \"21 11\", or a gsd");
    record.Propose("userParameters", Bytes(), DEFAULT);
    record.Propose("extUsrPrmData", Bytes(), DEFAULT);
    if (!record.Has("maxDiagnosticDataLength"))
        _report.Implausible(_slave.place, Called() + "max-diagnosis is missing, the most bytes of diagnosis "
                                                     "that the slave sends, from 6 to 244");
    record.Propose("maxDiagnosticDataLength", 0U, DEFAULT);
}

void SlaveCompiler::ProposeDevice(RecordPlan& record) {
    const auto& ident = _device->identNumber;
    if (record.Has("identNr") && record.Number("identNr") != ident.value)
        _report.Implausible(_slave.fields.at("identNr").place,
                            Called() + "ident is " + HexText(record.Number("identNr"), 4) + ", and " +
                                FileOrigin(ident.line) + " has " + HexText(ident.value, 4));
    record.Propose("identNr", std::uint32_t{ident.value}, FileOrigin(ident.line));
    if (_device->maxDiagnosis)
        record.Propose("maxDiagnosticDataLength", std::uint32_t{_device->maxDiagnosis.value},
                       FileOrigin(_device->maxDiagnosis.line));

    const bool rawModules = record.Has("identifierBytes") && _slave.modules.empty();
    const bool rawParameters = record.Has("userParameters") && _slave.parameters.empty();
    if (rawModules && rawParameters)
        return;
    const auto parts = Assemble(_slave, *_device, _report);
    _hasParts = parts.has_value();
    if (!_hasParts)
        return;
    record.Propose("identifierBytes", parts->identifierBytes, FileOrigin(0) + ", its modules");
    ProposeUserParameters(record, parts->userParameters, FileOrigin(0) + ", its parameters");
}

/// Adds what is asked for to the status bytes of a DP-V1 slave.
void SlaveCompiler::ProposeUserParameters(RecordPlan& record, Bytes bytes, const std::string& origin) {
    std::array<std::uint8_t, STATUS_BYTES> status{};
    const auto set = [&status](const Given<bool>& wanted, std::uint8_t bit) {
        status[0] |= wanted.value ? bit : 0;
    };
    set(_slave.dpv1, STATUS_DPV1);
    set(_slave.failSafe, STATUS_FAIL_SAFE);
    set(_slave.publisher, STATUS_PUBLISHER);
    set(_slave.watchdogBase1ms, STATUS_BASE_1MS);
    for (const AlarmRow& row : ALARMS)
        if (std::find(_slave.alarms.value.begin(), _slave.alarms.value.end(), row.name) !=
            _slave.alarms.value.end()) {
            status[1] |= row.bit;
            if (!_device->alarmSupported[static_cast<std::size_t>(row.alarm)].value)
                _report.Implausible(_slave.alarms.place, Called() + "the device has no alarm " +
                                                             std::string(row.name) + ", by " + FileOrigin(0));
        }
    if (const auto mode = _slave.fields.find("alarmMode"); mode != _slave.fields.end())
        status[2] = static_cast<std::uint8_t>(std::get<std::uint32_t>(mode->second.value) & 7);
    const bool any = std::any_of(status.begin(), status.end(), [](std::uint8_t byte) { return byte != 0; });
    if (any && _device->dpv1.value) {
        bytes.resize(std::max(bytes.size(), STATUS_BYTES));
        for (std::size_t i = 0; i < STATUS_BYTES; ++i)
            bytes[i] |= status[i];
    }
    const std::size_t split = std::min(bytes.size(), MAX_USER_PARAMETERS);
    if (bytes.size() > MAX_USER_PARAMETERS + MAX_DATA)
        _report.Error(_slave.place, Called() + "has " + std::to_string(bytes.size()) +
                                        " bytes of user parameters, expected at most 481");
    const auto middle = bytes.begin() + static_cast<std::ptrdiff_t>(split);
    record.Propose("extUsrPrmData", Bytes(middle, bytes.end()), origin);
    record.Propose("userParameters", Bytes(bytes.begin(), middle), origin);
}

// What it does

void SlaveCompiler::RequireSupport(const Given<bool>& wanted, const Gsd::Given<bool>& supported,
                                   const std::string& key) {
    if (wanted.value && _device != nullptr && !supported.value)
        _report.Implausible(wanted.place, Called() + key + " is true, and the device does not have it, by " +
                                              FileOrigin(supported.line));
}

void SlaveCompiler::ProposeFlags(RecordPlan& record) {
    if (_device != nullptr) {
        RequireSupport(_slave.failSafe, _device->failSafe, "fail-safe");
        RequireSupport(_slave.publisher, _device->publisher, "publisher");
        RequireSupport(_slave.dpv1, _device->dpv1, "dpv1");
        RequireSupport(_slave.extraAlarmSap, _device->extraAlarmSap, "extra-alarm-sap");
    }
    const bool dpv1 = _slave.dpv1.ValueOr(_device != nullptr && _device->dpv1.value);
    const bool types = _slave.dpv1DataTypes.ValueOr(_device != nullptr && _device->dpv1DataTypes.value);
    const std::uint32_t flags = (_slave.active.ValueOr(true) ? SlaveFlags::ACTIVE : 0) |
                                (_slave.newParameters.value ? SlaveFlags::NEW_PARAMETERS : 0) |
                                (_slave.failSafe.value ? SlaveFlags::FAIL_SAFE : 0) |
                                (_slave.publisher.value ? SlaveFlags::PUBLISHER : 0) |
                                (dpv1 ? SlaveFlags::DPV1 : 0) | (types ? SlaveFlags::DPV1_DATA_TYPES : 0) |
                                (_slave.extraAlarmSap.value ? SlaveFlags::EXTRA_ALARM_SAP : 0);
    record.Propose("slaveFlags", flags, "computed from active, dpv1 and so on");
}

bool SlaveCompiler::UsesDpv1(const RecordPlan& record) const {
    return (record.Number("slaveFlags") & SlaveFlags::DPV1) != 0;
}

void SlaveCompiler::ProposeAcyclic(RecordPlan& record) {
    if (_device != nullptr && UsesDpv1(record) && _device->class1.value) {
        if (const auto& length = _device->class1MaxData)
            record.Propose("maxChannelDataLength", std::uint32_t{length.value}, FileOrigin(length.line));
        if (const auto& timeout = _device->class1ResponseTimeout)
            record.Propose("mSAC1Timeout", std::uint32_t{timeout.value}, FileOrigin(timeout.line));
    }
    const bool silent = !UsesDpv1(record) || (_device != nullptr && !_device->class1.value);
    const auto require = [&](std::string_view field, const char* what) {
        if (!record.Has(field) && !silent)
            _report.Implausible(_slave.place, Called() + what);
        record.Propose(field, 0U, silent ? "no acyclic services" : DEFAULT);
    };
    require("maxChannelDataLength",
            "max-channel-data is missing, the most bytes of an acyclic service, from 0 to 244");
    require("mSAC1Timeout", "c1-timeout is missing, how long an acyclic service may take, such as \"1 s\"");
}

const Given<WatchdogSetting>& SlaveCompiler::Setting() const {
    return _slave.watchdog ? _slave.watchdog : _description.watchdog;
}

bool HasBase1ms(std::uint32_t slaveFlags, const Bytes& userParameters) {
    return (slaveFlags & SlaveFlags::DPV1) != 0 && !userParameters.empty() &&
           (userParameters[0] & STATUS_BASE_1MS) != 0;
}

bool SlaveCompiler::Base1ms(const RecordPlan& record) const {
    return HasBase1ms(record.Number("slaveFlags"), BytesAt(record, "userParameters"));
}

void SlaveCompiler::ProposeWatchdog(RecordPlan& record) {
    const bool raw = record.Has("watchdogFactor1") && record.Has("watchdogFactor2");
    const Place place = WatchdogPlace();
    if (place.line == 0 && !raw)
        _report.Error(_slave.place, Called() + R"(watchdog is missing, a time such as "100 ms", or "off")");
    if (_slave.watchdogBase1ms && _slave.watchdogBase1ms.value != Base1ms(record))
        _report.Implausible(_slave.watchdogBase1ms.place,
                            Called() +
                                "watchdog-base and the user parameters differ; a base of 1 ms needs dpv1 "
                                "and bit 2 of the first user parameter");
    if (_device != nullptr && _slave.watchdogBase1ms.value && !_device->watchdogBase1ms.value)
        _report.Implausible(_slave.watchdogBase1ms.place,
                            Called() + "the device has no watchdog base of 1 ms, by " + FileOrigin(0));
    const WatchdogSetting& wanted = Setting().value;
    std::uint32_t first = wanted.factors[0];
    std::uint32_t second = wanted.factors[1];
    const int base = Base1ms(record) ? 1'000 : 10'000;
    if (first == 0)
        std::tie(first, second) =
            WatchdogFactors(static_cast<std::uint64_t>((wanted.time.count() + base - 1) / base));
    if (first == 0)
        _report.Error(place, Called() + "watchdog is " + DurationText(wanted.time) + ", expected at most " +
                                 DurationText(microseconds(std::int64_t{base} * 255 * 255)));
    const std::string origin =
        wanted.On() ? "computed from watchdog, " + _report.Origin(place) : "watchdog is off";
    record.Propose("watchdogFactor1", first, origin);
    record.Propose("watchdogFactor2", second, origin);
}

void SlaveCompiler::ProposeStationStatus(RecordPlan& record) {
    if (_device != nullptr) {
        RequireSupport(_slave.sync, _device->syncMode, "sync");
        RequireSupport(_slave.freeze, _device->freezeMode, "freeze");
    }
    const bool factors = _slave.fields.contains("watchdogFactor1") && WatchdogPlace().line == 0;
    record.Propose("stationStatus",
                   StationStatus::LOCK | (_slave.sync.value ? StationStatus::SYNC : 0) |
                       (_slave.freeze.value ? StationStatus::FREEZE : 0) |
                       (factors || Setting().value.On() ? StationStatus::WATCHDOG_ON : 0),
                   "computed from watchdog, sync and freeze");
}

microseconds SlaveCompiler::Watchdog(const RecordPlan& record) const {
    if ((record.Number("stationStatus") & StationStatus::WATCHDOG_ON) == 0)
        return microseconds(0);
    return microseconds(std::int64_t{Base1ms(record) ? 1'000 : 10'000} * record.Number("watchdogFactor1") *
                        record.Number("watchdogFactor2"));
}

// Where its data lies

void SlaveCompiler::ProposePlaces(RecordPlan& record, Area& toBus, Area& fromBus) {
    const Gsd::DataLengths lengths = Gsd::LengthsOf(BytesAt(record, "identifierBytes"));
    const auto propose = [&](const char* field, const char* lengthField, const Given<Places>& given, bool run,
                             std::size_t length, Area& area) {
        const Places places = !given ? area.Next(length) : run ? Run(given.value[0], length) : given.value;
        area.Take(places);
        record.Propose(lengthField, static_cast<std::uint32_t>(places.size()),
                       "computed from the identifier bytes");
        record.Propose(field, places, given ? _report.Origin(given.place) : "behind the slave before it");
    };
    propose("inputOffsetTable", "inputDataLength", _slave.toBusAt, _slave.toBusRun, lengths.toBus, toBus);
    propose("outputOffsetTable", "outputDataLength", _slave.fromBusAt, _slave.fromBusRun, lengths.fromBus,
            fromBus);
}

void SlaveCompiler::CheckDataLengths(const RecordPlan& record) {
    const Bytes& identifiers = BytesAt(record, "identifierBytes");
    const Gsd::DataLengths lengths = Gsd::LengthsOf(identifiers);
    const auto raw = _slave.fields.find("identifierBytes");
    const Place place = raw == _slave.fields.end() ? _slave.place : raw->second.place;
    for (const Gsd::Identifier& entry : Gsd::DecodeIdentifiers(identifiers))
        if (entry.cutShort)
            _report.Implausible(place, Called() + "the identifier bytes end within the entry " +
                                           BytesText(Bytes(entry.bytes.begin(), entry.bytes.end())));
    const auto check = [&](const Places& places, unsigned int length, const Given<Places>& given,
                           const char* direction) {
        if (places.size() > MAX_DATA)
            _report.Error(place, Called() + "exchanges " + std::to_string(places.size()) + " bytes " +
                                     direction + " the bus, expected at most 244");
        if (places.size() != length)
            _report.Implausible(given.place, Called() + std::to_string(places.size()) + " places " +
                                                 direction +
                                                 " the bus are given, and the identifier bytes say " +
                                                 std::to_string(length) + " bytes");
    };
    check(PlacesAt(record, "inputOffsetTable"), lengths.toBus, _slave.toBusAt, "to");
    check(PlacesAt(record, "outputOffsetTable"), lengths.fromBus, _slave.fromBusAt, "from");
    if (PlacesAt(record, "inputOffsetTable").empty() && PlacesAt(record, "outputOffsetTable").empty())
        _report.Error(place, Called() + "exchanges no data, expected at least one byte in one direction");
}

void SlaveCompiler::Check(const RecordPlan& record) {
    const auto raw = _slave.fields.find("identifierBytes");
    if (raw == _slave.fields.end() ? !_hasParts : _report.IsWrong(raw->second.place))
        return; // nobody knows which data it has
    CheckDataLengths(record);
    const ExchangedData data = Data(record);
    for (const Signal& signal : _slave.signals) {
        const unsigned int end = signal.offset + signal.length;
        const unsigned int most = signal.toBus ? data.toBus : data.fromBus;
        if (end > most)
            _report.Error(signal.place, Called() + "signal " + signal.name + " ends at byte " +
                                            std::to_string(end) + ", and the slave has " +
                                            std::to_string(most) +
                                            (signal.toBus ? " bytes to the bus" : " bytes from the bus"));
    }
}

// What bus parameters depend on

ExchangedData SlaveCompiler::Data(const RecordPlan& record) const {
    return {static_cast<unsigned int>(PlacesAt(record, "inputOffsetTable").size()),
            static_cast<unsigned int>(PlacesAt(record, "outputOffsetTable").size())};
}

unsigned int SlaveCompiler::MaxStationDelay(unsigned int rateCode) const {
    const Gsd::Rate* const rate = Gsd::RateWithCode(rateCode);
    if (_device == nullptr || rate == nullptr)
        return 0;
    const Gsd::RateSupport& support = _device->rates.at(static_cast<std::size_t>(rate - Gsd::RATES.data()));
    if (!support.supported.value)
        _report.Warning(_slave.gsd.place, Called() + "the device does not have the rate " +
                                              std::string(rate->name) + " of the bus, by " + FileOrigin(0));
    return support.maxTsdr.ValueOr(0);
}

unsigned int SlaveCompiler::MinInterval() const {
    return _device == nullptr ? 0 : _device->minSlaveInterval.ValueOr(0);
}

} // namespace BusDescription
