// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/session/Session.h"

#include <string>
#include <vector>

namespace VeskTool {

/// Why a slave that is configured is not right, in words, from the master's lists and its diagnosis; empty
/// where it exchanges data and has nothing to say.
std::string WhatIsWrong(Session& session, unsigned int address);

/// Failure, which names them and says why, where not all of the slaves exchange data.
void CheckExchange(Session& session, const std::vector<int>& addresses);

} // namespace VeskTool
