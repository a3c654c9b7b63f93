// SPDX-License-Identifier: MIT
#include "busdescription/description/Keys.h"

#include <algorithm>

namespace BusDescription {

static constexpr std::uint32_t BYTE = 0xFF;
static constexpr std::uint32_t WORD = 0xFFFF;
static constexpr std::uint32_t DOUBLE_WORD = 0xFFFFFFFF;

static constexpr Key Number(std::string_view name, std::string_view field, std::uint32_t most,
                            std::uint32_t least, std::uint32_t largest, std::string_view unit = "") {
    return {name, field, KeyKind::NUMBER, most, least, largest, 0, unit};
}

/// Any number that the record can hold makes sense: a code or bits of which only the module knows.
static constexpr Key Any(std::string_view name, std::string_view field, std::uint32_t most,
                         std::string_view unit = "") {
    return Number(name, field, most, 0, most, unit);
}

static constexpr Key Duration(std::string_view name, std::string_view field, std::uint32_t microseconds,
                              std::string_view unit) {
    return {name, field, KeyKind::DURATION, WORD, 0, WORD, microseconds, unit};
}

static constexpr std::string_view BIT_TIMES = "bit times";

static constexpr Key BUS_KEYS[] = {
    Number("master", "stationAddress", BYTE, 0, 125),
    Number("slot-time", "slotTime", WORD, 37, 16'383, BIT_TIMES),
    Number("min-station-delay", "minStationDelayTime", WORD, 11, 255, BIT_TIMES),
    Number("max-station-delay", "maxStationDelayTime", WORD, 37, 1'023, BIT_TIMES),
    Number("quiet-time", "quietTime", BYTE, 0, 31, BIT_TIMES),
    Number("setup-time", "setupTime", BYTE, 1, 255, BIT_TIMES),
    Number("target-rotation-time", "targetRotationTime", DOUBLE_WORD, 256, 16'777'215, BIT_TIMES),
    Number("gap-factor", "gapUpdateFactor", BYTE, 1, 100, "rotations"),
    Number("highest-address", "highestStationAddress", BYTE, 0, 126),
    Number("retries", "maxRetryLimit", BYTE, 1, 15),
    Any("bus-flags", "bpFlag", BYTE),
    Duration("min-slave-interval", "minSlaveInterval", 100, "100 us"),
    Duration("poll-timeout", "pollTimeout", 1'000, "1 ms"),
    Duration("data-control-time", "dataControlTime", 10'000, "10 ms"),
    Any("max-alarms", "alarmMax", BYTE),
    Any("max-global-controls", "maxUserGlobalControl", BYTE),
    {"class2-name", "class2Name", KeyKind::TEXT, 32, 0, 32, 0, "characters"},
    Any("idle-time-1", "idleTime1", WORD, BIT_TIMES),
    Any("idle-time-2", "idleTime2", WORD, BIT_TIMES),
    Any("delta-ttr", "deltaT_TR", DOUBLE_WORD, BIT_TIMES),
    Any("repeater", "repeater", WORD),
    Any("group-sync", "groupSync", BYTE),
    Any("group-freeze", "groupFreeze", BYTE),
    Any("ident", "identNr", WORD),
    Any("addressing-mode", "addressingMode", BYTE),
    Any("storage-format", "storageFormat", BYTE),
    Any("t-ct", "t_CT", DOUBLE_WORD),
    Any("max-tsh", "maxT_SH", BYTE),
};

static constexpr Key SLAVE_KEYS[] = {
    Any("ident", "identNr", WORD),
    {"identifier-bytes", "identifierBytes", KeyKind::BYTES, 244, 1, 244, 0, "bytes"},
    {"user-parameters", "userParameters", KeyKind::BYTES, 237, 0, 237, 0, "bytes"},
    {"extended-user-parameters", "extUsrPrmData", KeyKind::BYTES, 244, 0, 244, 0, "bytes"},
    Any("slave-flags", "slaveFlags", BYTE),
    Any("slave-type", "slaveType", BYTE),
    Number("max-diagnosis", "maxDiagnosticDataLength", BYTE, 6, 244, "bytes"),
    Number("max-channel-data", "maxChannelDataLength", BYTE, 0, 244, "bytes"),
    Any("diagnosis-delay", "diagUpdDelay", BYTE),
    Number("alarm-mode", "alarmMode", BYTE, 0, 7),
    Any("additional-flags", "additionalSlaveFlags", BYTE),
    Duration("c1-timeout", "mSAC1Timeout", 10'000, "10 ms"),
    Any("station-status", "stationStatus", BYTE),
    Any("watchdog-factor-1", "watchdogFactor1", BYTE),
    Any("watchdog-factor-2", "watchdogFactor2", BYTE),
    Number("min-station-delay", "minStationDelayTimeResponder", BYTE, 0, 255, BIT_TIMES),
    Any("to-bus-length", "inputDataLength", BYTE, "bytes"),
    Any("from-bus-length", "outputDataLength", BYTE, "bytes"),
};

std::span<const Key> BusKeys() {
    return BUS_KEYS;
}

std::span<const Key> SlaveKeys() {
    return SLAVE_KEYS;
}

const Key* KeyOf(std::span<const Key> keys, std::string_view field) {
    const auto key =
        std::find_if(keys.begin(), keys.end(), [field](const Key& each) { return each.field == field; });
    return key == keys.end() ? nullptr : &*key;
}

} // namespace BusDescription
