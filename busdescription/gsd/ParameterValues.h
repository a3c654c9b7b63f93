// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/gsd/Device.h"

#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace BusDescription::Gsd {

/// A parameter cannot be set so; says which, the value and what was expected.
class ParameterError : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
};

/// One parameter of a part and its value.
struct ParameterValue {
    const Parameter* parameter;
    const ParameterReference* reference; // its place
    std::int64_t value;
    std::string text;  // of the value, where that text names no other value; or empty
    bool nameIsUnique; // in the part; else the offset has to be given too
};

/// The user parameters of the station or of one module, being put together: constants first, then the
/// defaults of the references, then what is set. The device has to outlive it and must come from a file that
/// is usable.
class ParameterValues {
public:
    /// The part of the station, as long as its constants and references reach.
    static ParameterValues OfStation(const Device& device);
    /// The part of a module of the device, as long as its file says.
    static ParameterValues OfModule(const Device& device, const Module& module);

    const std::vector<std::uint8_t>& Bytes() const { return _bytes; }

    /// What a parameter is set to: a number, or one of its texts.
    using Value = std::variant<std::int64_t, std::string>;

    /// Sets the parameter `name`; `offset` says which one where several have that name. ParameterError where
    /// there is none or more than one, where it must not be changed, and where it does not take the value.
    void Set(const std::string& name, const Value& value, std::optional<unsigned int> offset = {});

    /// Each parameter, in the order of the file, with the value that `bytes` give it. `bytes` are as many as
    /// Bytes().
    std::vector<ParameterValue> Values(std::span<const std::uint8_t> bytes) const;

    /// What has to be set so that `bytes` come out; nothing where no setting of parameters can bring them
    /// about.
    std::optional<std::vector<ParameterValue>> SettingsFor(std::span<const std::uint8_t> bytes) const;

private:
    ParameterValues(const Device& device, const ParameterPart& part, std::size_t size);
    std::vector<std::string> Names() const;
    const ParameterReference& Find(const std::string& name, std::optional<unsigned int> offset) const;
    void Put(const ParameterReference& reference, std::int64_t value);

    const Device& _device;
    const ParameterPart& _part;
    std::vector<std::uint8_t> _bytes;
};

} // namespace BusDescription::Gsd
