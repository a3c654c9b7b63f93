// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/verbs/Verb.h"

namespace VeskTool {

/// Highest address of a slave that can take part.
inline constexpr unsigned int HIGHEST_SLAVE = 125;

/// The master's four lists of its slaves, each an array of station addresses.
Json StationListsToJson(Session& session);

/// Whether a list of StationListsToJson has the station.
bool Lists(const Json& list, unsigned int address);

/// The live list: an array of {"address", "kind"} for each station that answers. Kinds: "slave",
/// "master, not ready", "master, ready for the ring", "master in the ring".
Json AskForLiveList(Session& session);

/// Each slave that answers: an array of {"address", "identNumber", "identifiers", "diagnosis"}, each but the
/// first null where it does not say.
Json AskForFoundSlaves(Session& session, const Json& liveList);

/// Whether a live list has the station.
bool Lives(const Json& liveList, unsigned int address);

/// What the module answers about the slave at the "address" of the arguments; Refusal for an error answer.
std::vector<unsigned char> AskAboutSlave(Session& session, const Json& arguments,
                                         Session::SlaveService service, const std::string& what);

/// The same about the slave at `address`; nothing where the module answers with an error.
std::optional<std::vector<unsigned char>> TryAboutSlave(Session& session, unsigned int address,
                                                        Session::SlaveService service);

/// A table with a heading and a row for each of `slaves`, of which it marks those that do not exchange data
/// or have diagnostics; on a terminal no line is longer than that is wide.
std::string SlaveTable(const std::vector<std::vector<std::string>>& rows, const Json& slaves,
                       const Paint& paint);

/// All 128 stations, ten in a row, with a sign for each and a legend.
std::string StationGrid(const Json& lists, const Json& liveList, const Paint& paint);

} // namespace VeskTool
