// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/text/Command.h"

namespace VeskTool {

Action AddExplain(CLI::App& command);

} // namespace VeskTool
