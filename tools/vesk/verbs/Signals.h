// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/session/DescribedBus.h"
#include "tools/vesk/verbs/Verb.h"

namespace VeskTool {

/// The value of a signal in the bytes of its slave's direction: {"name", "value", "unit", "toBus"}. The value
/// is null where the bytes end before it, or it is no number; bytes are digits, and the unit is null where
/// there is none.
Json SignalToJson(const BusDescription::Signal& signal, std::span<const unsigned char> data);

/// "1200 rpm"; "-" where there is no value.
std::string SignalText(const Json& signal);

/// The description of the module's database; empty without one.
std::string HeldBy(Session& session);

} // namespace VeskTool
