// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/verbs/Verb.h"

namespace VeskTool {

/// Where a module stands on its way onto the bus. Takes the session as far as the module lets it, and throws
/// nothing. `arguments` may have a "checksum", the description that the database should have.
///
/// The facts: "ok"; "steps", each with "name", "state" ("ok", "wrong" or "not reached") and "detail";
/// "problem", the first thing that is not right, with "step", "what", "cause" and "next", and with
/// "fatalEvent" and "dump" where it is one, or null; "alive", whether the session can go on; "mode";
/// "slaves", each configured one, with the "cause" where something is not right.
Json ExamineStartUp(Session& session, const Json& arguments);

/// The facts for people.
std::string StartUpText(const Json& facts, const Paint& paint);

/// Examines and shows again and again, with `seconds` in between in which the session goes on, or begins anew
/// where it has come to its end. Ends with what `show` throws, or a signal.
[[noreturn]] void WatchStartUp(Session& session, const Json& arguments, double seconds,
                               const std::function<void(const Json& facts)>& show);

} // namespace VeskTool
