// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/compile/DeviceFiles.h"
#include "busdescription/records/RecordFields.h"

#include <optional>

namespace BusDescription {

/// A slave as it was found on a bus.
struct FoundSlave {
    unsigned int address;
    std::optional<std::uint32_t> identNumber; // where it has said
    std::optional<Bytes> identifierBytes;     // the same
    std::string remark;                       // about it, for people; or empty
};

/// Who was found on a bus.
struct FoundBus {
    std::uint32_t rate;  // its code
    unsigned int master; // the station address of the master that has asked
    std::vector<FoundSlave> slaves;
};

/// A description of those slaves, to begin with. Of the device description files `gsds`, which `files` can
/// read, the first one is used that has a slave's ident number and modules. What no slave says of itself is
/// left to the reader, and named in comments; a slave that does not say enough stands there only as a
/// comment.
std::string DraftFoundBus(const FoundBus& bus, DeviceFiles& files, const std::vector<std::string>& gsds);

/// The modules of `device` that make these identifier bytes, by their names: `"4 words", "Encoder"`; empty
/// where none do.
std::string ModuleNames(const Gsd::Device& device, const Bytes& identifierBytes);

/// Whether a slave takes the one list of identifier bytes for the other: some entries are not compared.
bool SameModules(const Bytes& a, const Bytes& b);

} // namespace BusDescription
