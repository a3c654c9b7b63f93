// SPDX-License-Identifier: MIT
#include "dbus/remote/PlantProperties.h"

#include "vesk/modules/dpvm/Vt22FatalEventInfo.h"

#include <sdbus-c++/sdbus-c++.h>

namespace Vesk::DBus {

namespace {

using Modules::DPVM::Vt22FatalEventInfo;

/// Puts the value of that name into `value`, if it is there.
template <class T>
void Take(const Variants& values, const char* name, T& value) {
    if (const auto found = values.find(name); found != values.end())
        value = found->second.get<T>();
}

std::shared_ptr<Vt22FatalEventInfo> EventFrom(const Variants& values) {
    std::uint16_t errorCode = 0;
    std::uint16_t errorCause = 0;
    std::uint16_t taskId = 0;
    std::uint16_t sourceLine = 0;
    std::uint64_t timeStamp = 0;
    std::vector<std::uint8_t> additionalInfo;
    std::string sourceFile;
    Take(values, "ErrorCode", errorCode);
    Take(values, "ErrorCause", errorCause);
    Take(values, "TaskId", taskId);
    Take(values, "TimeStamp", timeStamp);
    Take(values, "AdditionalInfo", additionalInfo);
    Take(values, "SourceLine", sourceLine);
    Take(values, "SourceFile", sourceFile);
    return Vt22FatalEventInfo::Create(
        errorCode, errorCause, taskId, System::TimeSpan::Create(static_cast<std::int64_t>(timeStamp)),
        System::Array<unsigned char>::Create(additionalInfo), sourceLine, sourceFile);
}

std::optional<PlantFailure> FailureFrom(const Variants& values) {
    if (values.empty())
        return std::nullopt;
    PlantFailure failure;
    Take(values, "Type", failure.type);
    Take(values, "Message", failure.message);
    Take(values, "Dump", failure.dump);
    if (const auto event = values.find("FatalEvent"); event != values.end())
        failure.event = EventFrom(event->second.get<Variants>());
    return failure;
}

using SlaveValues =
    sdbus::Struct<std::uint8_t, std::string, std::uint16_t, std::uint16_t, bool, bool, bool, bool>;

std::vector<PlantSlave> SlavesFrom(const std::vector<SlaveValues>& values) {
    std::vector<PlantSlave> slaves;
    slaves.reserve(values.size());
    for (const SlaveValues& slave : values)
        slaves.push_back({std::get<0>(slave), std::get<1>(slave), std::get<2>(slave), std::get<3>(slave),
                          std::get<4>(slave), std::get<5>(slave), std::get<6>(slave), std::get<7>(slave)});
    return slaves;
}

/// Count, least, mean and greatest; the spread behind them is for who wants more.
void TakeTime(const Variants& values, const char* name, PlantTime& time) {
    using Values =
        sdbus::Struct<std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t, std::vector<std::uint64_t>>;
    if (const auto found = values.find(name); found != values.end()) {
        const auto measured = found->second.get<Values>();
        time = {std::get<0>(measured), std::get<1>(measured), std::get<2>(measured), std::get<3>(measured)};
    }
}

} // namespace

void PlantProperties::Take(const Variants& properties) {
    const auto take = [&](const char* name, auto& value) { DBus::Take(properties, name, value); };
    take("State", state);
    take("VendorId", vendorId);
    take("FieldbusType", fieldbusType);
    take("ModuleType", moduleType);
    take("Serial", serial);
    take("ConfigurationChecksum", configurationChecksum);
    take("Online", online);
    take("OperationMode", operationMode);
    if (const auto found = properties.find("Software"); found != properties.end()) {
        const auto version = found->second.get<sdbus::Struct<std::uint8_t, std::uint8_t, std::uint8_t>>();
        software = {std::get<0>(version), std::get<1>(version), std::get<2>(version)};
    }
    if (const auto found = properties.find("Bootloader"); found != properties.end()) {
        const auto version = found->second.get<sdbus::Struct<std::uint8_t, std::uint8_t>>();
        bootloader = {std::get<0>(version), std::get<1>(version)};
    }
    if (const auto found = properties.find("Database"); found != properties.end()) {
        const auto database = found->second.get<sdbus::Struct<std::vector<std::uint16_t>, std::string>>();
        databaseWords = std::get<0>(database);
        databaseDescription = std::get<1>(database);
    }
    if (const auto found = properties.find("Slaves"); found != properties.end())
        slaves = SlavesFrom(found->second.get<std::vector<SlaveValues>>());
    if (const auto found = properties.find("LastFailure"); found != properties.end())
        failure = FailureFrom(found->second.get<Variants>());
}

PlantStatistics PlantStatistics::From(const Variants& values) {
    PlantStatistics statistics;
    Take(values, "Updates", statistics.updates);
    Take(values, "Interrupts", statistics.interrupts);
    Take(values, "Messages", statistics.messages);
    Take(values, "TimeOuts", statistics.timeOuts);
    TakeTime(values, "UpdateTime", statistics.updateTime);
    TakeTime(values, "Period", statistics.period);
    return statistics;
}

} // namespace Vesk::DBus
