// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/text/Command.h"

namespace VeskTool {

/// `vesk monitor`.
Action AddMonitor(CLI::App& app);

} // namespace VeskTool
