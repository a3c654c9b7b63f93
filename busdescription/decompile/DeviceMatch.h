// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/gsd/ParameterValues.h"
#include "busdescription/records/RecordFields.h"

#include <array>
#include <optional>
#include <vector>

namespace BusDescription {

/// The modules of a device that make a slave's identifier bytes, and how parameters have to be set.
struct DeviceMatch {
    std::vector<const Gsd::Module*> modules;

    /// What has to be set in the station's part, and then in that of each module; empty where no setting of
    /// parameters gives the user parameters.
    std::vector<std::vector<Gsd::ParameterValue>> settings;
    std::array<std::uint8_t, 3> statusBits{}; // that the status bytes have beside those of the file
};

/// How `device` can be what a slave's record says; nothing where its modules do not fit. `userParameters` are
/// all of them, the extended ones included. Of several ways the first in the order of the file.
std::optional<DeviceMatch> MatchDevice(const Gsd::Device& device, const Bytes& identifierBytes,
                                       const Bytes& userParameters);

} // namespace BusDescription
