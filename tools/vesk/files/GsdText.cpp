// SPDX-License-Identifier: MIT
#include "tools/vesk/files/GsdText.h"

#include "busdescription/gsd/ParameterValues.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Text.h"

#include <algorithm>

namespace VeskTool {

namespace Gsd = BusDescription::Gsd;

std::string Counted(std::size_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

namespace {

constexpr std::size_t LABEL = 16;

class Writer {
public:
    Writer(std::ostream& out, const Gsd::Device& device) : _out(out), _device(device) {}

    void Write();

private:
    void Row(const std::string& label, const std::string& text);
    void WriteIdentity();
    void WriteStation();
    void WriteDpv1();
    void WriteModules();
    void WritePart(const Gsd::ParameterPart& part, const std::vector<std::uint8_t>& bytes,
                   const std::string& indent);
    void WriteSlots();
    void WriteDiagnosis();
    std::string RateNames() const;

    std::ostream& _out;
    const Gsd::Device& _device;
};

/// Names of what is there, with commas between.
struct Flag {
    bool set;
    std::string name;
};

std::string NamesOf(const std::vector<Flag>& flags) {
    std::vector<std::string> names;
    for (const Flag& flag : flags)
        if (flag.set)
            names.push_back(flag.name);
    return Joined(names, ", ");
}

std::string UpTo(const Gsd::Given<unsigned int>& most, const std::string& what = "byte") {
    return most ? "up to " + Counted(most.value, what) : "not said";
}

std::string Ranges(const std::vector<Gsd::Interval>& intervals) {
    std::string text;
    for (const Gsd::Interval& interval : intervals)
        text += (text.empty() ? "" : ", ") + std::to_string(interval.least) +
                (interval.least == interval.most ? "" : "-" + std::to_string(interval.most));
    return text;
}

std::string Pairs(const std::vector<std::uint8_t>& bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes)
        text += (text.empty() ? "" : " ") + HexDigits({&byte, 1});
    return text;
}

/// Nothing is written without a text.
void Writer::Row(const std::string& label, const std::string& text) {
    if (!text.empty())
        _out << Padded(label, LABEL) << Harmless(text) << "\n";
}

void Writer::Write() {
    WriteIdentity();
    WriteStation();
    WriteDpv1();
    const auto bytes = Gsd::ParameterValues::OfStation(_device).Bytes();
    _out << "\nUser parameters of the station\n";
    WritePart(_device.parameters, bytes, "  ");
    WriteModules();
    WriteSlots();
    WriteDiagnosis();
}

void Writer::WriteIdentity() {
    Row("Model", _device.modelName.value);
    Row("Vendor", _device.vendorName.value);
    Row("Ident number", HexOffset(static_cast<int>(_device.identNumber.value)));
    Row("Order number", _device.orderNumber.value);
    Row("Revision", _device.revision.value);
    Row("Hardware", _device.hardwareRelease.value);
    Row("Software", _device.softwareRelease.value);
    Row("Information", _device.infoText.value);
}

/// With the maximum station delay, where it is not the usual one.
std::string Writer::RateNames() const {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < Gsd::RATES.size(); ++i) {
        if (!_device.rates[i].supported.value)
            continue;
        const unsigned int delay = _device.rates[i].maxTsdr.ValueOr(Gsd::RATES[i].maxStationDelay);
        names.push_back(std::string(Gsd::RATES[i].name) + (delay == Gsd::RATES[i].maxStationDelay
                                                               ? ""
                                                               : " (delay " + std::to_string(delay) + ")"));
    }
    return names.empty() ? "none" : Joined(names, ", ");
}

void Writer::WriteStation() {
    Row("Data rates", RateNames());
    Row("Station", _device.Modular() ? "modular, " + UpTo(_device.maxModules, "module") +
                                           ", the first slot is " + std::to_string(_device.FirstSlot())
                                     : std::string("compact"));
    Row("To the bus", UpTo(_device.maxToBus));
    Row("From the bus", UpTo(_device.maxFromBus));
    Row("Together", UpTo(_device.maxData));
    Row("Diagnosis", UpTo(_device.maxDiagnosis));
    Row("Interval",
        _device.minSlaveInterval
            ? "at least " + std::to_string(_device.minSlaveInterval.value * 100) + " us between exchanges"
            : "not said");
    Row("Abilities", NamesOf({{_device.freezeMode.value, "freeze"},
                              {_device.syncMode.value, "sync"},
                              {_device.autoBaud.value, "finds the data rate"},
                              {_device.setSlaveAddress.value, "takes an address"},
                              {_device.failSafe.value, "fail-safe"},
                              {_device.fixedPresetModules.value, "preset modules"}}));
}

void Writer::WriteDpv1() {
    if (!_device.dpv1.value)
        return;
    Row("DP-V1", NamesOf({{true, "yes"},
                          {_device.class1.value, "class 1 " + UpTo(_device.class1MaxData)},
                          {_device.class2.value, "class 2 " + UpTo(_device.class2MaxData)},
                          {_device.watchdogBase1ms.value, "watchdog base 1 ms"},
                          {_device.checkConfigMode.value, "check-cfg mode"},
                          {_device.extraAlarmSap.value, "extra alarm access point"},
                          {_device.dpv1DataTypes.value, "data types"},
                          {_device.publisher.value, "publisher"},
                          {_device.parameterBlocks.value, "parameter blocks"}}));
    std::vector<Flag> alarms;
    for (std::size_t i = 0; i < Gsd::ALARM_COUNT; ++i)
        alarms.push_back(
            {_device.alarmSupported[i].value,
             Gsd::ALARM_NAMES[i] + std::string(_device.alarmRequired[i].value ? " (required)" : "")});
    Row("Alarms", NamesOf(alarms));
}

void Writer::WritePart(const Gsd::ParameterPart& part, const std::vector<std::uint8_t>& bytes,
                       const std::string& indent) {
    _out << indent << (bytes.empty() ? "none" : Counted(bytes.size(), "byte") + " by default: ")
         << Pairs(bytes) << "\n";
    for (const Gsd::ParameterReference& reference : part.references) {
        const Gsd::Parameter& parameter = _device.parameterTypes[reference.parameter];
        _out << indent << "at " << Padded(std::to_string(reference.offset), 4)
             << Padded(Harmless(parameter.name), 32) << " " << parameter.TypeText() << ", "
             << parameter.RangeText() << ", default " << parameter.defaultValue
             << (parameter.changeable ? "" : ", fixed") << (parameter.visible ? "" : ", hidden") << "\n";
        if (!parameter.texts)
            continue;
        for (const Gsd::ValueTexts::Entry& entry : _device.texts[*parameter.texts].entries)
            _out << indent << "       " << Padded(std::to_string(entry.value), 4) << Harmless(entry.text)
                 << "\n";
    }
}

void Writer::WriteModules() {
    _out << "\nModules, with the bytes that they send to the bus and get from it\n";
    for (const Gsd::Module& module : _device.modules) {
        _out << "  " << Padded(Harmless(module.name), 40) << " to "
             << Padded(std::to_string(module.lengths.toBus), 3) << " from "
             << Padded(std::to_string(module.lengths.fromBus), 3) << " " << Pairs(module.identifierBytes)
             << (module.reference ? ", reference " + std::to_string(module.reference.value) : "")
             << (module.preset ? ", preset" : "")
             << (module.safetyKeyword ? ", for functional safety: cannot be used" : "") << "\n";
        const auto bytes = Gsd::ParameterValues::OfModule(_device, module).Bytes();
        if (!bytes.empty())
            WritePart(module.parameters, bytes, "    ");
    }
}

void Writer::WriteSlots() {
    if (!_device.slots.empty())
        _out << "\nSlots, with the references of the modules that may be there\n";
    for (const Gsd::Slot& slot : _device.slots)
        _out << "  " << Padded(std::to_string(slot.number), 4) << Padded(Harmless(slot.name), 32)
             << " default " << slot.defaultReference << (slot.references.empty() ? "" : ", or ")
             << Ranges(slot.references) << "\n";
}

void Writer::WriteDiagnosis() {
    if (!_device.diagnosisBits.empty() || !_device.diagnosisAreas.empty())
        _out << "\nBits of the device-related diagnosis\n";
    for (const Gsd::DiagnosisBit& bit : _device.diagnosisBits)
        _out << "  " << Padded(std::to_string(bit.bit), 8) << Harmless(bit.text)
             << (bit.help.empty() ? "" : " (" + Harmless(bit.help) + ")") << "\n";
    for (const Gsd::DiagnosisArea& area : _device.diagnosisAreas)
        for (const Gsd::ValueTexts::Entry& entry : area.values)
            _out << "  " << Padded(std::to_string(area.firstBit) + "-" + std::to_string(area.lastBit), 8)
                 << entry.value << " " << Harmless(entry.text) << "\n";
}

} // namespace

void WriteText(std::ostream& out, const Gsd::Device& device) {
    Writer(out, device).Write();
}

} // namespace VeskTool
