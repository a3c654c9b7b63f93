// SPDX-License-Identifier: MIT
#include "busdescription/compile/Compile.h"

#include "busdescription/compile/BusTiming.h"
#include "busdescription/compile/SlaveCompiler.h"
#include "busdescription/description/Keys.h"
#include "busdescription/description/Units.h"
#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/config/BusConfig.h"
#include "vesk/system/io/MemoryStream.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace BusDescription {

using std::chrono::microseconds;
using Vesk::Modules::DPVM::Config::BusConfig;

namespace {

/// What the bus has at a code that is no rate; only descriptions without checks have one.
constexpr const Gsd::Rate& FASTEST = Gsd::RATES.back();

const Gsd::Rate& RateOf(std::uint32_t code) {
    const Gsd::Rate* const rate = Gsd::RateWithCode(code);
    return rate == nullptr ? FASTEST : *rate;
}

class Compiler {
public:
    Compiler(const Description& description, DeviceFiles& files, Findings& findings)
        : _description(description), _files(files), _findings(findings), _report(description, findings) {}

    std::optional<CompiledBus> Compile() {
        for (const SlaveDescription& slave : _description.slaves)
            CompileSlave(slave);
        CheckAddresses();
        ProposeMaster();
        CheckMaster();
        CheckAreas();
        std::stable_sort(_findings.begin(), _findings.end(), [](const Finding& a, const Finding& b) {
            return std::tie(a.file, a.line, a.column) < std::tie(b.file, b.line, b.column);
        });
        if (HasErrors(_findings))
            return std::nullopt;
        return Build();
    }

private:
    // The slaves

    const Gsd::DeviceFile* FileOf(const SlaveDescription& slave) {
        if (!slave.gsd)
            return nullptr;
        const Gsd::DeviceFile& file = _files.Read(slave.gsd.value);
        if (!file.Usable()) {
            _report.Error(slave.gsd.place,
                          "slave " + slave.name + ": gsd cannot be used, see " + slave.gsd.value);
            if (_reported.insert(&file).second)
                std::copy_if(file.findings.begin(), file.findings.end(), std::back_inserter(_findings),
                             [](const Finding& finding) { return finding.severity == Severity::ERROR; });
        }
        return &file;
    }

    void CompileSlave(const SlaveDescription& slave) {
        CompiledSlave& compiled = _slaves.emplace_back(
            CompiledSlave{slave.name, static_cast<unsigned char>(slave.address.value), {}});
        const Gsd::DeviceFile* file = FileOf(slave);
        SlaveCompiler& compiler = _compilers.emplace_back(_description, slave, file, _report);
        compiler.ProposeFields(compiled.record);
        compiler.ProposePlaces(compiled.record, _toBus, _fromBus);
        if (file == nullptr || file->Usable()) {
            compiler.Check(compiled.record);
            CheckRecord(slave, compiled.record);
        }
    }

    /// That the module takes the record.
    void CheckRecord(const SlaveDescription& slave, const RecordPlan& record) {
        if (HasErrors(_findings))
            return;
        try {
            MakeSlaveRecord(record.Values())->ToStream(System::IO::MemoryStream::Create());
        } catch (const Vesk::ConfigException& exception) {
            _report.Error(slave.place, "slave " + slave.name +
                                           ": its record has a length that no module takes (" +
                                           exception.Message().Value() +
                                           "); one more byte of user parameters makes it longer");
        }
    }

    void CheckAddresses() {
        std::map<unsigned int, const SlaveDescription*> known;
        std::map<std::string, const SlaveDescription*> names;
        const auto master = _description.fields.find("stationAddress");
        for (const SlaveDescription& slave : _description.slaves) {
            if (!slave.address)
                continue;
            const unsigned int address = slave.address.value;
            if (const auto other = known.emplace(address, &slave); !other.second)
                _report.Error(slave.address.place, "slave " + slave.name + ": address " +
                                                       std::to_string(address) + " is that of slave " +
                                                       other.first->second->name);
            if (master != _description.fields.end() &&
                std::get<std::uint32_t>(master->second.value) == address)
                _report.Implausible(slave.address.place, "slave " + slave.name + ": address " +
                                                             std::to_string(address) +
                                                             " is that of the master");
            if (!names.emplace(slave.name, &slave).second)
                _report.Error(slave.place, "slave " + slave.name + ": another slave has this name");
        }
    }

    /// That the data of no two slaves lie in the same place, nor behind the areas.
    void CheckAreas() {
        CheckArea("inputOffsetTable", "to the bus", &SlaveDescription::toBusAt);
        CheckArea("outputOffsetTable", "from the bus", &SlaveDescription::fromBusAt);
    }

    void CheckArea(const char* field, const std::string& direction, Given<Places> SlaveDescription::*given) {
        std::map<unsigned int, const SlaveDescription*> owners;
        for (std::size_t i = 0; i < _slaves.size(); ++i) {
            const SlaveDescription& slave = _description.slaves[i];
            const Place place = slave.*given ? (slave.*given).place : slave.place;
            for (const unsigned int byte : std::get<Places>(_slaves[i].record.At(field))) {
                const auto owner = owners.emplace(byte, &slave);
                if (owner.second && byte < AREA_LENGTH)
                    continue;
                _report.Implausible(place, "slave " + slave.name + ": its data " + direction +
                                               (owner.second
                                                    ? " reach byte " + std::to_string(byte) +
                                                          ", and the area ends at byte 3499"
                                                    : " lie on those of slave " + owner.first->second->name +
                                                          " at byte " + std::to_string(byte)));
                break;
            }
        }
    }

    // The master

    std::vector<ExchangedData> Exchanged() const {
        std::vector<ExchangedData> data;
        for (std::size_t i = 0; i < _slaves.size(); ++i)
            data.push_back(_compilers[i].Data(_slaves[i].record));
        return data;
    }

    void ProposeMaster() {
        for (const auto& [field, given] : _description.fields)
            _master.Propose(field, given.value, _report.Origin(given.place));
        _master.Propose("dataRate", _description.rate.value, _report.Origin(_description.rate.place));
        _master.Propose("stationAddress", 0U, DEFAULT);
        ProposeTimes();
        ProposeIntervals();
        _master.Propose("gapUpdateFactor", 10U, DEFAULT);
        _master.Propose("highestStationAddress", 126U, DEFAULT);
        _master.Propose("maxRetryLimit", 1U, DEFAULT);
        _master.Propose("pollTimeout", 1'000U, DEFAULT);
        _master.Propose("class2Name", std::string(), DEFAULT);
        ProposeAlarms();
        for (const Key& key : BusKeys())
            _master.Propose(key.field, 0U, DEFAULT);
    }

    void ProposeAlarms() {
        for (const SlaveDescription& slave : _description.slaves)
            if (!slave.alarms.value.empty() && !_master.Has("alarmMax"))
                return _report.Implausible(
                    _description.busPlace,
                    "bus: max-alarms is missing, the number of alarms that the master takes "
                    "at a time, for slave " +
                        slave.name + " has alarms");
    }

    void ProposeTimes() {
        const Gsd::Rate& rate = RateOf(_master.Number("dataRate"));
        const RateParameters table = ParametersAt(rate.bitsPerSecond);
        const std::string origin = "the table of " + std::string(rate.name);
        std::uint32_t delay = table.maxStationDelay;
        std::string delayOrigin = origin;
        for (SlaveCompiler& slave : _compilers)
            if (const unsigned int own = slave.MaxStationDelay(rate.code); own > delay) {
                delay = own;
                delayOrigin = slave.Text().gsd.value + ", slave " + slave.Text().name;
            }
        _master.Propose("quietTime", std::uint32_t{table.quietTime}, origin);
        _master.Propose("setupTime", std::uint32_t{table.setupTime}, origin);
        _master.Propose("minStationDelayTime", std::uint32_t{table.minStationDelay}, origin);
        _master.Propose("maxStationDelayTime", delay, delayOrigin);
        const std::uint32_t least = _master.Number("maxStationDelayTime") + 15;
        if (least > table.slotTime)
            _master.Propose("slotTime", std::min(least, 16'383U), "computed from the maximum station delay");
        _master.Propose("slotTime", std::uint32_t{table.slotTime}, origin);
    }

    CycleParameters Cycle() const {
        return {_master.Number("slotTime"), _master.Number("maxStationDelayTime"),
                _master.Number("quietTime"), _master.Number("setupTime")};
    }

    void ProposeIntervals() {
        const unsigned int bitsPerSecond = RateOf(_master.Number("dataRate")).bitsPerSecond;
        const std::vector<ExchangedData> data = Exchanged();
        _rotation = RotationTime(Cycle(), data);
        _master.Propose("targetRotationTime", static_cast<std::uint32_t>(_rotation),
                        "computed from the data of all slaves");

        const auto exchange = BitTimes(ExchangeTime(Cycle(), data), bitsPerSecond).count();
        auto interval = static_cast<std::uint32_t>((exchange + 99) / 100);
        std::string origin = "computed from the data of all slaves";
        for (const SlaveCompiler& slave : _compilers)
            if (slave.MinInterval() > interval) {
                interval = slave.MinInterval();
                origin = slave.Text().gsd.value + ", slave " + slave.Text().name;
            }
        _master.Propose("minSlaveInterval", std::min(interval, 0xFFFFU), origin);
        _interval = interval;

        std::int64_t longest = 0;
        for (std::size_t i = 0; i < _slaves.size(); ++i)
            longest = std::max<std::int64_t>(longest, _compilers[i].Watchdog(_slaves[i].record).count());
        if (longest == 0)
            _master.Propose("dataControlTime", 100U, DEFAULT);
        _controlTime =
            static_cast<std::uint32_t>(std::min<std::int64_t>((6 * longest + 9'999) / 10'000, 0xFFFF));
        _master.Propose("dataControlTime", _controlTime, "six times the longest watchdog");
    }

    Place PlaceOf(std::string_view field) const {
        const auto given = _description.fields.find(field);
        return given == _description.fields.end() ? _description.busPlace : given->second.place;
    }

    /// An error unless least <= value <= most; the place is that of the field, or of the table.
    void CheckRange(std::string_view field, std::uint32_t least, std::uint32_t most, const std::string& why) {
        const std::uint32_t value = _master.Number(field);
        const Key* key = KeyOf(BusKeys(), field);
        if (value < least || value > most)
            _report.Implausible(PlaceOf(field), "bus: " + std::string(key->name) + " is " +
                                                    std::to_string(value) + ", expected " +
                                                    std::to_string(least) + " to " + std::to_string(most) +
                                                    " " + why);
    }

    void CheckMaster() {
        const std::uint32_t delay = _master.Number("maxStationDelayTime");
        const std::uint32_t least = _master.Number("minStationDelayTime");
        CheckRange("slotTime", delay + 15, 16'383, "(from max-station-delay + 15)");
        CheckRange("maxStationDelayTime", 35 + 2 * _master.Number("setupTime") + _master.Number("quietTime"),
                   1'023, "(from 35 + 2 setup-time + quiet-time)");
        CheckRange("minStationDelayTime", 11, std::min(255U, std::max(delay, 1U) - 1),
                   "(below max-station-delay)");
        CheckRange("quietTime", 0, std::min(31U, std::max(least, 1U) - 1), "(below min-station-delay)");
        CheckRange("highestStationAddress", _master.Number("stationAddress"), 126,
                   "(from the master's own address)");
        if (const std::uint32_t rotation = _master.Number("targetRotationTime"); rotation < _rotation)
            _report.Warning(PlaceOf("targetRotationTime"),
                            "bus: target-rotation-time is " + std::to_string(rotation) +
                                " bit times, and one rotation may take " + std::to_string(_rotation));
        WarnBelow("minSlaveInterval", std::min(_interval, 0xFFFFU),
                  "one exchange with every slave, or what a slave asks for, is ");
        WarnBelow("dataControlTime", _controlTime, "six times the longest watchdog are ");
        WarnOfWatchdogs();
    }

    void WarnBelow(std::string_view field, std::uint32_t least, const std::string& why) {
        const Key* key = KeyOf(BusKeys(), field);
        const auto shown = [key](std::uint32_t units) {
            return DurationText(microseconds(std::int64_t{key->microseconds} * units));
        };
        if (const std::uint32_t value = _master.Number(field); value < least)
            _report.Warning(PlaceOf(field), "bus: " + std::string(key->name) + " is " + shown(value) +
                                                ", and " + why + shown(least));
    }

    void WarnOfWatchdogs() {
        const unsigned int bitsPerSecond = RateOf(_master.Number("dataRate")).bitsPerSecond;
        const microseconds rotations = 3 * BitTimes(_master.Number("targetRotationTime"), bitsPerSecond);
        for (std::size_t i = 0; i < _slaves.size(); ++i) {
            const microseconds watchdog = _compilers[i].Watchdog(_slaves[i].record);
            if (watchdog.count() == 0 || watchdog >= rotations)
                continue;
            const Place place = _compilers[i].WatchdogPlace();
            _report.Warning(place.line > 0 ? place : _description.slaves[i].place,
                            _compilers[i].Called() + "a watchdog of " + DurationText(watchdog) +
                                " switches it off for no reason, expected at least three target rotations, " +
                                DurationText(rotations));
        }
    }

    CompiledBus Build() {
        const auto builder = BusConfig::Builder::Create();
        builder->Master(MakeMasterRecord(_master.Values()));
        for (const CompiledSlave& slave : _slaves)
            builder->Slave(slave.address, MakeSlaveRecord(slave.record.Values()));
        return {std::move(_master), std::move(_slaves), builder->Build()};
    }

    const Description& _description;
    DeviceFiles& _files;
    Findings& _findings;
    CompileReport _report;
    std::set<const Gsd::DeviceFile*> _reported;
    RecordPlan _master;
    std::uint64_t _rotation = 0;    // the least target rotation time
    std::uint32_t _interval = 0;    // the least slave interval
    std::uint32_t _controlTime = 0; // the least data control time
    std::vector<CompiledSlave> _slaves;
    std::vector<SlaveCompiler> _compilers;
    Area _toBus;
    Area _fromBus;
};

} // namespace

std::optional<CompiledBus> Compile(const Description& description, DeviceFiles& files, Findings& findings) {
    return description.complete ? Compiler(description, files, findings).Compile() : std::nullopt;
}

} // namespace BusDescription
