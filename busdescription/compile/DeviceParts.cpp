// SPDX-License-Identifier: MIT
#include "busdescription/compile/DeviceParts.h"

#include "busdescription/findings/Nearest.h"
#include "busdescription/gsd/ParameterValues.h"

#include <algorithm>

namespace BusDescription {

namespace {

class Assembler {
public:
    Assembler(const SlaveDescription& slave, const Gsd::Device& device, CompileReport& report)
        : _slave(slave), _device(device), _report(report) {}

    std::optional<DeviceParts> Assemble() {
        Append(Gsd::ParameterValues::OfStation(_device), _slave.parameters);
        if (_slave.modules.empty() && _slave.fields.contains("identifierBytes")) {
            // they stand for the modules
        } else if (_device.Modular()) {
            PlugModules();
        } else {
            UseTheOne();
        }
        CheckLimits();
        return _failed ? std::nullopt : std::optional(std::move(_parts));
    }

private:
    std::string Called() const { return "slave " + _slave.name + ": "; }

    void Error(Place place, const std::string& text) {
        _report.Error(place, Called() + text);
        _failed = true;
    }

    void Append(Gsd::ParameterValues values, const std::vector<ParameterChoice>& choices) {
        for (const ParameterChoice& choice : choices)
            try {
                values.Set(choice.name, choice.value, choice.offset);
            } catch (const Gsd::ParameterError& error) {
                Error(choice.place, error.what());
            }
        const std::vector<std::uint8_t>& bytes = values.Bytes();
        _parts.userParameters.insert(_parts.userParameters.end(), bytes.begin(), bytes.end());
    }

    /// The modules' names, for a message.
    std::string Offer(std::string_view wanted) const {
        std::vector<std::string> names;
        for (const Gsd::Module& module : _device.modules)
            names.push_back(module.name);
        if (!wanted.empty())
            if (std::string hint = DidYouMean(wanted, names); !hint.empty())
                return hint;
        std::string list;
        constexpr std::size_t few = 5;
        for (std::size_t i = 0; i < std::min(names.size(), few); ++i)
            list += (i == 0 ? "" : ", ") + ('"' + names[i] + '"');
        return ", expected one of " + list + (names.size() > few ? " and others: vesk gsd show" : "");
    }

    const Gsd::Module* Find(const ModuleChoice& choice) {
        std::vector<const Gsd::Module*> found = choice.name.empty()
                                                    ? _device.ModulesWithReference(*choice.reference)
                                                    : _device.ModulesNamed(choice.name);
        if (!choice.name.empty() && choice.reference)
            std::erase_if(found, [&](const Gsd::Module* module) {
                return !module->reference || module->reference.value != *choice.reference;
            });
        const std::string called = choice.name.empty() ? "with reference " + std::to_string(*choice.reference)
                                                       : '"' + choice.name + '"';
        if (found.size() == 1 && found[0]->safetyKeyword)
            Error(choice.place, "module " + called + " is for functional safety (" +
                                    found[0]->safetyKeyword.value + "), which this master cannot serve");
        else if (found.size() == 1)
            return found[0];
        else if (found.empty())
            Error(choice.place, "no module " + called + Offer(choice.name));
        else
            Error(choice.place,
                  "several modules " + called + ", add the reference of one: " + References(found));
        return nullptr;
    }

    static std::string References(const std::vector<const Gsd::Module*>& modules) {
        std::string text;
        for (const Gsd::Module* module : modules)
            text += (text.empty() ? "" : ", ") + (module->reference
                                                      ? std::to_string(module->reference.value)
                                                      : "none at line " + std::to_string(module->line));
        return text;
    }

    void Plug(const Gsd::Module& module, const std::vector<ParameterChoice>& choices) {
        _parts.identifierBytes.insert(_parts.identifierBytes.end(), module.identifierBytes.begin(),
                                      module.identifierBytes.end());
        Append(Gsd::ParameterValues::OfModule(_device, module), choices);
        _plugged.push_back(&module);
    }

    void PlugModules() {
        if (_slave.modules.empty())
            return Error(_slave.place, "modules is missing, the module in each slot" + Offer(""));
        for (std::size_t i = 0; i < _slave.modules.size(); ++i) {
            const ModuleChoice& choice = _slave.modules[i];
            if (const Gsd::Module* module = Find(choice)) {
                CheckSlot(*module, i, choice.place);
                Plug(*module, choice.parameters);
            }
        }
        const unsigned int most = _device.maxModules.ValueOr(244);
        if (_slave.modules.size() > most)
            Error(_slave.modulesPlace, "has " + std::to_string(_slave.modules.size()) +
                                           " modules, expected at most " + std::to_string(most));
        WarnOfPresets();
    }

    void CheckSlot(const Gsd::Module& module, std::size_t index, Place place) {
        const unsigned int number = _device.FirstSlot() + static_cast<unsigned int>(index);
        const Gsd::Slot* slot = _device.SlotNumbered(number);
        if (slot != nullptr && !(module.reference && slot->Allows(module.reference.value)))
            Error(place, "module \"" + module.name + "\" may not stand in slot " + std::to_string(number) +
                             " (" + slot->name + ")");
    }

    /// The modules that the device always has stand in the first slots.
    void WarnOfPresets() {
        std::size_t slot = 0;
        for (const Gsd::Module& module : _device.modules) {
            if (!module.preset && !_device.fixedPresetModules.ValueOr(false))
                continue;
            if (slot >= _plugged.size() || _plugged[slot] != &module)
                _report.Warning(_slave.modulesPlace, Called() + "the device always has module \"" +
                                                         module.name + "\" in slot " +
                                                         std::to_string(_device.FirstSlot() + slot));
            ++slot;
        }
    }

    /// A compact device is one module, which need not be named where there is no other.
    void UseTheOne() {
        if (_slave.modules.size() > 1)
            return Error(_slave.modulesPlace, "has several modules, but the device is compact and has one");
        if (!_slave.modules.empty()) {
            if (const Gsd::Module* module = Find(_slave.modules[0]))
                Plug(*module, _slave.modules[0].parameters);
        } else if (_device.modules.size() == 1 && !_device.modules[0].safetyKeyword) {
            Plug(_device.modules[0], {});
        } else {
            Error(_slave.place, "modules is missing, which of its forms the device has" + Offer(""));
        }
    }

    void CheckLimits() {
        const Gsd::DataLengths lengths = Gsd::LengthsOf(_parts.identifierBytes);
        const auto check = [this](unsigned int length, const Gsd::Given<unsigned int>& most,
                                  const char* what) {
            if (length > most.ValueOr(length))
                Error(_slave.modulesPlace.line > 0 ? _slave.modulesPlace : _slave.place,
                      "has " + std::to_string(length) + " bytes " + what + ", expected at most " +
                          std::to_string(most.value));
        };
        check(lengths.toBus, _device.maxToBus, "to the bus");
        check(lengths.fromBus, _device.maxFromBus, "from the bus");
        check(lengths.toBus + lengths.fromBus, _device.maxData, "in both directions together");
        check(static_cast<unsigned int>(_parts.userParameters.size()), _device.parameters.length,
              "of user parameters");
    }

    const SlaveDescription& _slave;
    const Gsd::Device& _device;
    CompileReport& _report;
    DeviceParts _parts;
    std::vector<const Gsd::Module*> _plugged;
    bool _failed = false;
};

} // namespace

std::optional<DeviceParts> Assemble(const SlaveDescription& slave, const Gsd::Device& device,
                                    CompileReport& report) {
    return Assembler(slave, device, report).Assemble();
}

} // namespace BusDescription
