// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/verbs/Verb.h"

namespace VeskTool {

/// Asks for a slave's data again and again, for that long, and shows the facts of `verb` whenever the bytes
/// are others than before, the first time too. The facts then have "time" and "changed", the numbers of the
/// bytes that changed.
void WatchData(const Verb& verb, Session& session, const Json& arguments, double seconds,
               const std::function<void(const Json& facts)>& show);

/// The "data" of such facts for people: what changed is coloured, or stands in brackets.
std::string ChangedText(const Json& facts, const Paint& paint);

} // namespace VeskTool
