// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/compile/SlaveCompiler.h"

namespace BusDescription {

/// What the modules chosen for a device make.
struct DeviceParts {
    Bytes identifierBytes;
    Bytes userParameters; // the station's part and each module's
};

/// Plugs the modules of `slave` into `device` and sets their parameters; nothing where that is not possible,
/// which is reported then. `gsd` is the file's name for people.
std::optional<DeviceParts> Assemble(const SlaveDescription& slave, const Gsd::Device& device,
                                    CompileReport& report);

} // namespace BusDescription
