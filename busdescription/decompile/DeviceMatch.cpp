// SPDX-License-Identifier: MIT
#include "busdescription/decompile/DeviceMatch.h"

#include <algorithm>
#include <set>
#include <span>
#include <tuple>

namespace BusDescription {

namespace {

using Gsd::ParameterValues;
using Settings = std::vector<Gsd::ParameterValue>;

/// The bits of the status bytes that a description asks for by keys of their own.
constexpr std::array<std::uint8_t, 3> ASKED{0xE4, 0xFC, 0x07};

/// Looks for modules one behind the other. It goes back where it comes no further, and to no place twice.
class ModuleSearch {
public:
    ModuleSearch(const Gsd::Device& device, const Bytes& identifiers, const Bytes& parameters,
                 bool parametersToo)
        : _device(device),
          _identifiers(identifiers),
          _parameters(parameters),
          _parametersToo(parametersToo) {}

    std::optional<DeviceMatch> From(std::size_t parameterPlace) {
        if (!Fits(0, parameterPlace))
            return std::nullopt;
        std::reverse(_match.modules.begin(), _match.modules.end());
        std::reverse(_match.settings.begin(), _match.settings.end());
        return std::move(_match);
    }

private:
    bool Fits(std::size_t place, std::size_t parameterPlace) {
        if (place == _identifiers.size())
            return _depth > 0 && (!_parametersToo || parameterPlace == _parameters.size());
        if (_depth >= Most() || !_known.emplace(_depth, place, parameterPlace).second)
            return false;
        return std::any_of(_device.modules.begin(), _device.modules.end(), [&](const Gsd::Module& module) {
            return Stands(module, place) && Takes(module, place, parameterPlace);
        });
    }

    std::size_t Most() const { return _device.Modular() ? _device.maxModules.ValueOr(244) : 1; }

    /// Whether the module may be the next one and can be named.
    bool Stands(const Gsd::Module& module, std::size_t place) const {
        const auto& bytes = module.identifierBytes;
        const Gsd::Slot* slot = _device.SlotNumbered(_device.FirstSlot() + static_cast<unsigned int>(_depth));
        return !bytes.empty() && bytes.size() <= _identifiers.size() - place &&
               std::equal(bytes.begin(), bytes.end(),
                          _identifiers.begin() + static_cast<std::ptrdiff_t>(place)) &&
               !module.safetyKeyword && (module.reference || _device.ModulesNamed(module.name).size() == 1) &&
               (slot == nullptr || (module.reference && slot->Allows(module.reference.value)));
    }

    bool Takes(const Gsd::Module& module, std::size_t place, std::size_t parameterPlace) {
        std::optional<Settings> settings;
        std::size_t length = 0;
        if (_parametersToo) {
            const ParameterValues values = ParameterValues::OfModule(_device, module);
            length = values.Bytes().size();
            if (length > _parameters.size() - parameterPlace)
                return false;
            settings = values.SettingsFor(std::span(_parameters).subspan(parameterPlace, length));
            if (!settings)
                return false;
        }
        ++_depth;
        const bool fits = Fits(place + module.identifierBytes.size(), parameterPlace + length);
        --_depth;
        if (!fits)
            return false;
        _match.modules.push_back(&module);
        if (settings)
            _match.settings.push_back(std::move(*settings));
        return true;
    }

    const Gsd::Device& _device;
    const Bytes& _identifiers;
    const Bytes& _parameters;
    bool _parametersToo;
    std::size_t _depth = 0;
    std::set<std::tuple<std::size_t, std::size_t, std::size_t>> _known;
    DeviceMatch _match; // backwards
};

/// The settings of the station's part; `statusBits` get what has to be asked for besides.
std::optional<Settings> StationSettings(const Gsd::Device& device, std::span<const std::uint8_t> bytes,
                                        std::array<std::uint8_t, 3>& statusBits) {
    const ParameterValues values = ParameterValues::OfStation(device);
    if (auto settings = values.SettingsFor(bytes))
        return settings;
    if (!device.dpv1.value || bytes.size() < ASKED.size())
        return std::nullopt;
    Bytes plain(bytes.begin(), bytes.end());
    for (std::size_t i = 0; i < ASKED.size(); ++i) {
        const std::uint8_t own = values.Bytes()[i];
        statusBits[i] = static_cast<std::uint8_t>(bytes[i] & ~own & ASKED[i]);
        plain[i] = static_cast<std::uint8_t>((bytes[i] & ~ASKED[i]) | (own & ASKED[i]));
    }
    return values.SettingsFor(plain);
}

} // namespace

std::optional<DeviceMatch> MatchDevice(const Gsd::Device& device, const Bytes& identifierBytes,
                                       const Bytes& userParameters) {
    const std::size_t length = ParameterValues::OfStation(device).Bytes().size();
    std::array<std::uint8_t, 3> statusBits{};
    if (length <= userParameters.size())
        if (auto station = StationSettings(device, std::span(userParameters).first(length), statusBits))
            if (auto match = ModuleSearch(device, identifierBytes, userParameters, true).From(length)) {
                match->settings.insert(match->settings.begin(), std::move(*station));
                match->statusBits = statusBits;
                return match;
            }
    return ModuleSearch(device, identifierBytes, userParameters, false).From(0);
}

} // namespace BusDescription
