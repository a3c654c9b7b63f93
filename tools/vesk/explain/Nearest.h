// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace VeskTool {

/// Those of `names` that are most like `word`, the most alike first and no more than `most`. Upper and lower
/// case are the same, and what is longer than the word may go on in any way.
std::vector<std::string> Nearest(const std::string& word, const std::vector<std::string>& names,
                                 std::size_t most);

} // namespace VeskTool
