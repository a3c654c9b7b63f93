// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/findings/Finding.h"
#include "busdescription/records/RecordFields.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// A bus as a text describes it, before anything is computed. What goes to the bus is `toBus` (the master
/// module calls it input), what comes from there `fromBus`.
namespace BusDescription {

/// Where something stands in the text, counted from 1; 0 where it stands nowhere.
struct Place {
    unsigned int line = 0;
    unsigned int column = 0;
};

template <class T>
struct Given {
    T value{};
    Place place;

    explicit operator bool() const { return place.line > 0; }

    T ValueOr(T other) const { return place.line > 0 ? value : other; }
};

/// The fields that the text gives one by one (Keys.h), by their names in the record.
using GivenFields = std::map<std::string, Given<FieldValue>, std::less<>>;

/// A parameter of a station or of a module.
struct ParameterChoice {
    std::string name;
    Place place;
    std::variant<std::int64_t, std::string> value;
    std::optional<unsigned int> offset; // where several have the name
};

/// A module in the next slot.
struct ModuleChoice {
    std::string name; // empty where the reference says which
    Place place;
    std::optional<std::uint32_t> reference;
    std::vector<ParameterChoice> parameters;
};

enum class SignalType {
    BOOL,
    INT8,
    INT16,
    INT32,
    INT64,
    UINT8,
    UINT16,
    UINT32,
    UINT64,
    FLOAT32,
    FLOAT64,
    BYTES
};

/// A named part of a slave's data.
struct Signal {
    std::string name;
    Place place;
    bool toBus = false;
    unsigned int offset = 0; // of its first byte in the slave's data of that direction
    SignalType type = SignalType::UINT8;
    unsigned int bit = 0;    // of a bool
    unsigned int length = 0; // in bytes
    bool littleEndian = false;
    std::optional<double> scale; // the value is scale × number + zero
    double zero = 0;
    std::string unit;
};

/// Whether it is a letter, then letters, digits, hyphens and underscores, as the names of slaves and signals
/// are.
bool IsName(std::string_view name);

/// When a slave switches itself off: after a time, after as many units as two factors make, or never.
struct WatchdogSetting {
    std::chrono::microseconds time{0};
    std::array<std::uint32_t, 2> factors{0, 0}; // 1 to 255 each; 0 where a time is given

    bool On() const { return time.count() > 0 || factors[0] > 0; }
};

struct SlaveDescription {
    std::string name; // "slave-5" where the text gives none
    Place place;
    Given<unsigned int> address;
    Given<std::string> gsd; // path of the device description file, as the text has it
    std::vector<ModuleChoice> modules;
    Place modulesPlace;
    std::vector<ParameterChoice> parameters;
    Given<WatchdogSetting> watchdog;
    Given<bool> watchdogBase1ms;
    Given<bool> sync, freeze, active, newParameters, failSafe, publisher, dpv1, dpv1DataTypes, extraAlarmSap;
    Given<std::vector<std::string>> alarms;
    Given<std::uint32_t> groups; // a bit each
    Given<Places> toBusAt, fromBusAt;
    bool toBusRun = false, fromBusRun = false; // the place is that of the first byte, the others follow
    GivenFields fields;
    std::vector<Signal> signals;
};

struct Description {
    std::string file;      // for findings
    bool complete = false; // false: the text is no TOML, and nothing is known about the rest
    bool unchecked = false;
    Place busPlace;
    Given<std::uint32_t> rate;       // its code
    Given<WatchdogSetting> watchdog; // of slaves that give none
    GivenFields fields;
    std::vector<SlaveDescription> slaves;
};

/// Longest text that is read, in bytes.
inline constexpr std::size_t MAX_TEXT_SIZE = std::size_t{8} << 20;

/// Of more findings than these the rest is only counted.
inline constexpr std::size_t MAX_TEXT_FINDINGS = 1000;

/// Reads a description. `file` is its name in the findings, to which everything that is wrong with it is
/// added. With errors among them the description is good for nothing but finding more of them: Compile.
Description ReadText(std::string_view text, const std::string& file, Findings& findings);

} // namespace BusDescription
