// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Array.h"

#include <vector>

namespace VeskTool {

/// The station addresses that a 16-byte bit list names, ascending.
std::vector<int> ListedStations(System::IArray<unsigned char>& list);
/// The station addresses at which a live list shows a device, ascending.
std::vector<int> LiveStations(System::IArray<unsigned char>& liveList);

} // namespace VeskTool
