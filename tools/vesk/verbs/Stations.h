// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/verbs/Verb.h"

namespace VeskTool {

/// The master's four lists of its slaves, each an array of station addresses.
Json StationListsToJson(Session& session);

/// Whether a list of StationListsToJson has the station.
bool Lists(const Json& list, unsigned int address);

/// The live list: an array of {"address", "kind"} for each station that answers. Kinds: "slave",
/// "master, not ready", "master, ready for the ring", "master in the ring".
Json AskForLiveList(Session& session);

/// Whether a live list has the station.
bool Lives(const Json& liveList, unsigned int address);

/// All 128 stations, ten in a row, with a sign for each and a legend.
std::string StationGrid(const Json& lists, const Json& liveList, const Paint& paint);

} // namespace VeskTool
