// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/text/Command.h"

namespace VeskTool {

/// The hidden command for the build and the tests; its documents are about the whole program.
Action AddGenerate(CLI::App& command);

} // namespace VeskTool
