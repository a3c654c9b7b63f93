// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/gsd/Device.h"
#include "busdescription/gsd/FindingList.h"

namespace BusDescription::Gsd {

/// What can be said of a device once all of its file is read: makes indexes of the references to parameters
/// and texts, wherever they stand, and finds what does not fit together.
void Check(Device& device, FindingList& findings);

} // namespace BusDescription::Gsd
