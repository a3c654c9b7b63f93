// SPDX-License-Identifier: MIT
// A device description file, and the user parameters that are made of it. The first bytes of the input, as
// many as there are of parameters, are what the parameters are to be.
#include "fuzz/Properties.h"

#include "busdescription/gsd/ParameterValues.h"
#include "busdescription/gsd/Reader.h"

#include <algorithm>

using Fuzz::Bytes;
using Fuzz::Require;
using namespace BusDescription::Gsd;

namespace {

constexpr std::size_t MAX_PARAMETERS = 237 + 244;

void CheckFindings(const DeviceFile& file) {
    Require(file.findings.size() <= 2 * MAX_FINDINGS + 2, "findings are bounded");
    for (const BusDescription::Finding& finding : file.findings)
        Require(finding.text.size() < 10'000, "a finding is short", finding.ToString());
}

/// Bytes that settings can bring about come out when the settings are made, by name.
void CheckPart(const ParameterValues& defaults, const Bytes& input) {
    Require(defaults.Bytes().size() <= MAX_PARAMETERS, "user parameters fit into their records");
    Bytes wanted(input);
    wanted.resize(defaults.Bytes().size());
    ParameterValues changed = defaults;
    for (const ParameterValue& value : defaults.Values(wanted))
        try {
            changed.Set(value.parameter->name, value.value, value.reference->offset);
        } catch (const ParameterError&) {
            continue;
        }
    const auto settings = defaults.SettingsFor(changed.Bytes());
    if (!settings)
        return; // where parameters lie upon each other it can be impossible
    ParameterValues again = defaults;
    for (const ParameterValue& value : *settings) {
        const ParameterValues::Value to =
            value.text.empty() ? ParameterValues::Value(value.value) : ParameterValues::Value(value.text);
        again.Set(value.parameter->name, to,
                  value.nameIsUnique ? std::nullopt : std::optional(value.reference->offset));
    }
    Require(again.Bytes() == changed.Bytes(), "the settings for bytes make these bytes");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view content(reinterpret_cast<const char*>(data), size);
    static const DeviceFile first =
        Read("#Profibus_DP\nUnknown = 1\n", "first"); // makes the tables of keywords
    DeviceFile file;
    {
        const Fuzz::AllocationBudget budget(65'536 + 64 * size);
        file = Read(content, "fuzz");
    }
    CheckFindings(file);
    if (!file.Usable())
        return 0;
    const Bytes input(data, data + std::min(size, MAX_PARAMETERS));
    CheckPart(ParameterValues::OfStation(file.device), input);
    for (const Module& module : file.device.modules) {
        Require(!module.identifierBytes.empty() && !DecodeIdentifiers(module.identifierBytes).back().cutShort,
                "identifier bytes are whole");
        CheckPart(ParameterValues::OfModule(file.device, module), input);
    }
    return 0;
}
