// SPDX-License-Identifier: MIT
// The text of a bus description: whatever it is, findings come out or records, within memory that the text
// pays for; the same text gives the same records, and what they are decompiled to gives them again.
#include "fuzz/Properties.h"

#include "busdescription/decompile/Decompile.h"
#include "busdescription/header/Header.h"
#include "busdescription/records/DatabaseBytes.h"

using namespace BusDescription;
using Fuzz::Require;

namespace {

/// The records, compiled again for their text, and findings.
constexpr std::size_t FIXED_COST = 8 << 20;
constexpr std::size_t COST_PER_BYTE = 400;

struct Result {
    Description description;
    std::optional<CompiledBus> bus;
    Findings findings;
};

Result Build(std::string_view text) {
    Result result;
    result.description = ReadText(text, "text", result.findings);
    for (SlaveDescription& slave : result.description.slaves)
        slave.gsd = {}; // no other files
    DeviceFiles files("");
    result.bus = Compile(result.description, files, result.findings);
    Require(result.bus.has_value() != HasErrors(result.findings), "there are records, or errors");
    return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Fuzz::AllocationBudget budget(FIXED_COST + COST_PER_BYTE * size);
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    Result result = Build(text);
    if (!result.bus)
        return 0;
    const Bytes bytes = DatabaseBytes(*result.bus->config);
    Require(DatabaseBytes(*Build(text).bus->config) == bytes, "the same text gives the same bytes");
    Header(result.description, *result.bus, "Plant", result.findings);

    DeviceFiles files("");
    const std::string again = Decompile(*result.bus->config, "text", files, {});
    Result rebuilt = Build(again);
    Require(rebuilt.bus && DatabaseBytes(*rebuilt.bus->config) == bytes,
            "what it is decompiled to gives the same bytes", again);
    return 0;
}
