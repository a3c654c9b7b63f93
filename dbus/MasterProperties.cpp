// SPDX-License-Identifier: MIT
#include "dbus/MasterObject.h"

#include "dbus/PlantProblem.h"
#include "dbus/Text.h"

#include <utility>

namespace Vesk::DBus {

using Modules::DPVM::OperationMode_e;
using Modules::DPVM::Vt22Module;

std::string MasterObject::Name() {
    return _module.Name();
}

std::string MasterObject::State() {
    return Vt22Module::StateToString(_module.GetFacts().state).Value();
}

sdbus::Struct<std::string, std::string, std::string> MasterObject::Problem() {
    const auto problem = ProblemIn(_module.GetFacts(), _module.Slaves().Checksum());
    return {BusText(problem.what), BusText(problem.cause), BusText(problem.next)};
}

static std::map<std::string, sdbus::Variant> ToDictionary(Modules::DPVM::IVt22FatalEventInfo& event) {
    const auto additional = event.AdditionalInfo();
    return {{"ErrorCode", std::uint16_t{event.ErrorCode()}},
            {"ErrorCause", std::uint16_t{event.ErrorCause()}},
            {"TaskId", std::uint16_t{event.TaskId()}},
            {"TimeStamp", static_cast<std::uint64_t>(event.TimeStamp()->Nanoseconds())},
            {"AdditionalInfo", std::vector<std::uint8_t>(additional->begin(), additional->end())},
            {"SourceLine", std::uint16_t{event.SourceLine()}},
            {"SourceFile", BusText(event.SourceFile().Value())}};
}

MasterObject::Dictionary MasterObject::LastFailure() {
    const auto& failure = _module.GetFacts().failure;
    if (!failure)
        return {};
    Dictionary facts{{"Time", static_cast<std::uint64_t>(failure->time)},
                     {"Type", BusText(failure->type)},
                     {"Message", BusText(failure->message)},
                     {"Dump", BusText(failure->dump)}};
    if (failure->fatalEvent)
        facts.emplace("FatalEvent", ToDictionary(*failure->fatalEvent));
    return facts;
}

std::uint16_t MasterObject::VendorId() {
    return _module.GetFacts().identity.vendorId;
}

std::uint16_t MasterObject::FieldbusType() {
    return _module.GetFacts().identity.fieldbusType;
}

std::uint16_t MasterObject::ModuleType() {
    return _module.GetFacts().identity.moduleType;
}

std::uint32_t MasterObject::Serial() {
    return _module.GetFacts().identity.serial;
}

sdbus::Struct<std::uint8_t, std::uint8_t, std::uint8_t> MasterObject::Software() {
    const auto& version = _module.GetFacts().identity.software;
    return {version[0], version[1], version[2]};
}

sdbus::Struct<std::uint8_t, std::uint8_t> MasterObject::Bootloader() {
    const auto& version = _module.GetFacts().identity.bootloader;
    return {version[0], version[1]};
}

std::string MasterObject::ConfigurationChecksum() {
    return _module.Slaves().Checksum();
}

std::string MasterObject::ConfigurationName() {
    return BusText(_module.ConfigurationName());
}

sdbus::Struct<std::vector<std::uint16_t>, std::string> MasterObject::Database() {
    const auto& database = _module.GetFacts().database;
    if (!database)
        return {};
    // As they stand in the answer; the number of slaves is its fifth word's upper byte.
    return {{database->TotalOutputLength, database->TotalInputLength, database->InitOutputLength,
             database->InitInputLength, static_cast<std::uint16_t>(database->NoOfSlaves << 8), 0, 0, 0},
            BusText(database->Description.Value())};
}

bool MasterObject::Online() {
    return _module.GetFacts().online;
}

std::string MasterObject::OperationMode() {
    const OperationMode_e mode = _module.GetFacts().mode;
    return mode == OperationMode_e::OFFLINE ? "" : ModeName(mode);
}

std::vector<sdbus::Struct<std::uint8_t, std::string, std::uint16_t, std::uint16_t, bool, bool, bool, bool>>
MasterObject::Slaves() {
    std::vector<
        sdbus::Struct<std::uint8_t, std::string, std::uint16_t, std::uint16_t, bool, bool, bool, bool>>
        slaves;
    const Facts& facts = _module.GetFacts();
    const auto& table = _module.Slaves().Slaves();
    for (unsigned int station = 0; station < 8 * facts.configured.size(); ++station) {
        const auto address = static_cast<std::uint8_t>(station);
        const auto slave = table.find(address);
        if (slave == table.end() && !Has(facts.configured, address))
            continue;
        const SlaveTable::Slave described = slave == table.end() ? SlaveTable::Slave{} : slave->second;
        slaves.emplace_back(
            address, BusText(described.name), static_cast<std::uint16_t>(described.input.size()),
            static_cast<std::uint16_t>(described.output.size()), Has(facts.configured, address),
            Has(facts.exchanging, address), Has(facts.diagnostic, address), Has(facts.connected, address));
    }
    return slaves;
}

static sdbus::Variant ToVariant(const Histogram& histogram) {
    const Histogram::Reading reading = histogram.Read();
    return sdbus::make_struct(reading.count, reading.least, reading.mean, reading.greatest, reading.buckets);
}

MasterObject::Dictionary MasterObject::Statistics() {
    const Cycle::Statistics statistics = _module.GetStatistics();
    return {{"Since", _module.Since()},
            {"Updates", statistics.updates.Read()},
            {"Interrupts", statistics.interrupts.Read()},
            {"Messages", statistics.messages.Read()},
            {"TimeOuts", statistics.timeOuts.Read() + _module.TimedOut().Read()},
            {"UpdateTime", ToVariant(statistics.updateTime)},
            {"Period", ToVariant(statistics.period)}};
}

// ---- what is new

static std::vector<std::string> ChangedProperties(const Facts& before, const Facts& now) {
    std::vector<std::string> names;
    const auto note = [&names](bool changed, std::initializer_list<const char*> properties) {
        if (changed)
            names.insert(names.end(), properties.begin(), properties.end());
    };
    note(before.state != now.state, {"State"});
    note(before.failure != now.failure, {"LastFailure"});
    note(before.identity != now.identity,
         {"VendorId", "FieldbusType", "ModuleType", "Serial", "Software", "Bootloader"});
    note(before.database != now.database, {"Database"});
    note(before.online != now.online, {"Online"});
    note(before.mode != now.mode, {"OperationMode"});
    note(before.configured != now.configured || before.exchanging != now.exchanging ||
             before.diagnostic != now.diagnostic || before.connected != now.connected,
         {"Slaves"});
    return names;
}

void MasterObject::TellChanges(const Facts& before) {
    const Facts& now = _module.GetFacts();
    auto names = ChangedProperties(before, now);
    const std::string& checksum = _module.Slaves().Checksum();
    if (ProblemIn(before, checksum) != ProblemIn(now, checksum))
        names.emplace_back("Problem");
    if (!names.empty())
        getObject().emitPropertiesChangedSignal(INTERFACE_NAME, names);
    for (unsigned int station = 0; station < 8 * now.exchanging.size(); ++station)
        if (const bool is = Has(now.exchanging, station); is != Has(before.exchanging, station)) {
            const auto address = static_cast<std::uint8_t>(station);
            is ? emitSlaveCame(address) : emitSlaveWent(address);
        }
    if (before.mode != now.mode)
        emitModeChanged(OperationMode());
    if (now.failure && now.failure != before.failure)
        emitFailed(BusText(now.failure->type), BusText(now.failure->message));
}

} // namespace Vesk::DBus
