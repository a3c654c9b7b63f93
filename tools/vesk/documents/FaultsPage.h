// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace VeskTool {

/// docs/faults.md: what the library says when something goes wrong, what that means and what to check first,
/// from the virtual module's table of faults; and what the library cannot say.
std::string FaultsPage();

} // namespace VeskTool
