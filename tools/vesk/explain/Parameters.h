// SPDX-License-Identifier: MIT
#pragma once

#include <span>

namespace VeskTool {

/// One field of a configuration's records, under the name that `vesk config show` gives it.
struct ConfigParameter {
    const char* path; // "master.slotTime", "slave.parameterData.identNr"
    const char* meaning;
};

/// All of them, in the order of the records.
std::span<const ConfigParameter> ConfigParameters();

} // namespace VeskTool
