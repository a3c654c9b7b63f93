// SPDX-License-Identifier: MIT
#include "tools/vesk/session/StationLists.h"

namespace VeskTool {

/// The byte of a live list that says that a station does not answer.
static constexpr unsigned char NO_STATION = 0x04;

std::vector<int> ListedStations(System::IArray<unsigned char>& list) {
    std::vector<int> stations;
    for (int address = 0; address < 8 * list.Count(); ++address)
        if (list.Get(address / 8) >> address % 8 & 1)
            stations.push_back(address);
    return stations;
}

std::vector<int> LiveStations(System::IArray<unsigned char>& liveList) {
    std::vector<int> stations;
    for (int address = 0; address < liveList.Count(); ++address)
        if (liveList.Get(address) != NO_STATION)
            stations.push_back(address);
    return stations;
}

} // namespace VeskTool
