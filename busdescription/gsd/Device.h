// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/gsd/Identifier.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// What a device description file (GSD) says about a slave. All text is UTF-8 and without blanks at its ends.
/// Files call what goes to the bus an output; here it is `toBus`, and what comes from there `fromBus`.
namespace BusDescription::Gsd {

/// A value and the line of the file that gives it, 0 where the file does not.
template <class T>
struct Given {
    T value{};
    unsigned int line = 0;

    explicit operator bool() const { return line > 0; }

    T ValueOr(T other) const { return line > 0 ? value : other; }
};

/// A data rate as files name it, and what the bus parameters begin from at that rate.
struct Rate {
    std::string_view name;        // "93.75", "1.5M"
    unsigned int bitsPerSecond;   // 93750, 1500000
    unsigned char code;           // in the master's record
    unsigned int maxStationDelay; // of a slave that does not say, in bit times
};

/// Every data rate, the slowest first.
inline constexpr std::array<Rate, 11> RATES{{{"9.6", 9'600, 0, 60},
                                             {"19.2", 19'200, 1, 60},
                                             {"31.25", 31'250, 10, 60},
                                             {"45.45", 45'450, 11, 60},
                                             {"93.75", 93'750, 2, 60},
                                             {"187.5", 187'500, 3, 60},
                                             {"500", 500'000, 4, 100},
                                             {"1.5M", 1'500'000, 6, 150},
                                             {"3M", 3'000'000, 7, 250},
                                             {"6M", 6'000'000, 8, 450},
                                             {"12M", 12'000'000, 9, 800}}};

/// The one of the RATES that has the code; null for a code that is no rate.
const Rate* RateWithCode(unsigned int code);

/// What a device does at one of the RATES.
struct RateSupport {
    Given<bool> supported;
    Given<unsigned int> maxTsdr; // maximum station delay, in bit times
};

enum class Alarm { DIAGNOSTIC, PROCESS, PULL_PLUG, STATUS, UPDATE, MANUFACTURER };
inline constexpr std::size_t ALARM_COUNT = 6;
/// The name of each Alarm.
inline constexpr std::array<const char*, ALARM_COUNT> ALARM_NAMES{"diagnostic", "process", "pull/plug",
                                                                  "status",     "update",  "manufacturer"};

/// The values of a parameter in words (PrmText).
struct ValueTexts {
    struct Entry {
        std::int64_t value;
        std::string text;
        unsigned int line;
    };

    std::uint32_t id;
    unsigned int line;
    std::vector<Entry> entries; // in the order of the file; neither values nor texts need be unique
};

/// From `least` to `most`, both included.
struct Interval {
    std::int64_t least;
    std::int64_t most;
};

enum class ParameterType { UNSIGNED8, UNSIGNED16, UNSIGNED32, SIGNED8, SIGNED16, SIGNED32, BIT, BIT_AREA };

/// A parameter that stations and modules refer to (ExtUserPrmData).
struct Parameter {
    std::uint32_t id = 0;
    std::string name;
    ParameterType type = ParameterType::UNSIGNED8;
    unsigned int firstBit = 0; // of a bit or a bit area, 0 to 7
    unsigned int lastBit = 0;
    std::int64_t defaultValue = 0;
    bool defaultGiven = true;
    std::vector<Interval> range; // the values that it may have; empty: all that the type has
    std::optional<std::uint32_t> textsId;
    std::optional<std::size_t> texts; // index into Device::texts
    bool changeable = true;
    bool visible = true;
    unsigned int line = 0;

    /// Bytes that the type covers: 1, 2 or 4.
    unsigned int Size() const;
    /// The values that the type has.
    Interval TypeRange() const;
    /// "Unsigned8", "Bit(3)", "BitArea(4-7)".
    std::string TypeText() const;
    /// "0 to 255", "0, 1, 4 to 7": the range, or that of the type.
    std::string RangeText() const;
    /// Whether the type has the value, and the range if there is one.
    bool Allows(std::int64_t value) const;
};

/// Constant bytes of a part of the user parameters.
struct ParameterConstant {
    std::uint32_t offset;
    std::vector<std::uint8_t> bytes;
    unsigned int line;
};

/// The place of a parameter in a part of the user parameters.
struct ParameterReference {
    std::uint32_t offset;
    std::uint32_t id;
    std::size_t parameter; // index into Device::parameterTypes
    unsigned int line;
};

/// The user parameters of the station or of a module, offsets from the start of the part.
struct ParameterPart {
    Given<unsigned int>
        length; // of a module: its bytes; of the station: the most that all parts have together
    std::vector<ParameterConstant> constants;
    std::vector<ParameterReference> references;
};

/// A module that may be plugged; a compact station is one.
struct Module {
    std::string name; // not unique in some files
    unsigned int line = 0;
    Given<std::uint32_t> reference;
    std::vector<std::uint8_t> identifierBytes;
    DataLengths lengths; // of its process data
    ParameterPart parameters;
    bool preset = false;              // the device always has it
    Given<std::string> safetyKeyword; // a module for functional safety, which is not to be used
};

/// What may be plugged into a slot.
struct Slot {
    std::uint32_t number;
    std::string name;
    std::uint32_t defaultReference;
    std::vector<Interval> references; // besides the default
    unsigned int line;

    bool Allows(std::uint32_t reference) const;
};

/// A bit of the device-related diagnosis, counted from the first bit behind the block's header.
struct DiagnosisBit {
    unsigned int bit;
    std::string text;
    std::string help;
    unsigned int line;
};

/// Neighbouring bits of the device-related diagnosis that are a number.
struct DiagnosisArea {
    unsigned int firstBit;
    unsigned int lastBit;
    unsigned int line;
    std::vector<ValueTexts::Entry> values;
};

/// What a device says in the words of its file.
struct DiagnosisMessage {
    std::string text;
    std::string help; // or empty
};

/// A slave as its file describes it.
struct Device {
    Given<unsigned int> gsdRevision;
    Given<std::string> vendorName;
    Given<std::string> modelName;
    Given<std::string> revision;
    Given<std::string> hardwareRelease;
    Given<std::string> softwareRelease;
    Given<std::string> orderNumber;
    Given<std::string> infoText;
    Given<unsigned int> identNumber;
    Given<unsigned int> protocolIdent;
    Given<unsigned int> stationType;

    std::array<RateSupport, RATES.size()> rates; // one for each of RATES
    Given<bool> freezeMode;
    Given<bool> syncMode;
    Given<bool> autoBaud;
    Given<bool> setSlaveAddress;
    Given<bool> failSafe;
    Given<unsigned int> minSlaveInterval; // shortest time between two exchanges, unit 100 µs

    Given<bool> modularStation; // as the file has it; see Modular
    Given<unsigned int> maxModules;
    Given<unsigned int> moduleOffset; // number of the first slot; see FirstSlot
    Given<bool> fixedPresetModules;
    Given<unsigned int> maxFromBus; // bytes (Max_Input_Len)
    Given<unsigned int> maxToBus;   // bytes (Max_Output_Len)
    Given<unsigned int> maxData;    // bytes in both directions together
    Given<unsigned int> maxDiagnosis;

    Given<unsigned int> userParametersLength;        // User_Prm_Data_Len
    Given<std::vector<std::uint8_t>> userParameters; // User_Prm_Data, which count only without parts
    ParameterPart parameters;                        // of the station; User_Prm_Data where those count

    Given<bool> dpv1;
    Given<bool> class1;
    Given<bool> class1Required;
    Given<unsigned int> class1MaxData;         // bytes
    Given<unsigned int> class1ResponseTimeout; // unit 10 ms
    Given<bool> class2;
    Given<unsigned int> class2MaxData;                   // bytes
    Given<unsigned int> class2ResponseTimeout;           // unit 10 ms
    std::array<Given<bool>, ALARM_COUNT> alarmSupported; // one for each Alarm
    std::array<Given<bool>, ALARM_COUNT> alarmRequired;
    Given<unsigned int> alarmSequenceModeCount;
    Given<bool> alarmTypeMode;
    Given<bool> extraAlarmSap;
    Given<bool> watchdogBase1ms;
    Given<bool> checkConfigMode;
    Given<bool> dpv1DataTypes;
    Given<bool> publisher;
    Given<bool> parameterBlocks;

    std::vector<Module> modules;
    std::vector<Parameter> parameterTypes; // ExtUserPrmData, in the order of the file
    std::vector<ValueTexts> texts;
    std::vector<Slot> slots;
    std::vector<DiagnosisBit> diagnosisBits;
    std::vector<DiagnosisArea> diagnosisAreas;

    /// How far the constants and the references of a part reach, in bytes.
    std::size_t Reach(const ParameterPart& part) const;

    /// Whether modules are plugged; of a compact station exactly one is used.
    bool Modular() const;

    /// Number of the first slot.
    unsigned int FirstSlot() const { return moduleOffset.ValueOr(1); }

    /// Every module of that name; the name is compared exactly, without blanks at its ends.
    std::vector<const Module*> ModulesNamed(std::string_view name) const;
    /// Every module that has the reference.
    std::vector<const Module*> ModulesWithReference(std::uint32_t reference) const;
    /// The slot of that number, null where the file does not restrict it.
    const Slot* SlotNumbered(unsigned int number) const;
    /// What the bytes of a device-related diagnosis behind the block's header say: a message for each bit
    /// that is set and has a text, and for each area that is not 0 or has a text for it.
    std::vector<DiagnosisMessage> MessagesOf(std::span<const std::uint8_t> diagnosis) const;
};

} // namespace BusDescription::Gsd
