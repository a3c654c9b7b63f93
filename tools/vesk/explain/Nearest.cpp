// SPDX-License-Identifier: MIT
#include "tools/vesk/explain/Nearest.h"

#include "busdescription/findings/Nearest.h"
#include "tools/vesk/text/Text.h"

#include <algorithm>

namespace VeskTool {

/// A word of this length in a name is no accident.
static constexpr std::size_t SHORTEST_PART = 3;

std::vector<std::string> Nearest(const std::string& word, const std::vector<std::string>& names,
                                 std::size_t most) {
    const std::string text = Lower(word);
    std::vector<std::pair<std::size_t, std::string>> found;
    found.reserve(names.size());
    for (const std::string& name : names) {
        const std::string lower = Lower(name);
        const bool part = text.size() >= SHORTEST_PART && lower.find(text) != std::string::npos;
        found.emplace_back(part ? 1 : BusDescription::Distance(text, lower.substr(0, text.size() + 2)), name);
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    std::vector<std::string> nearest;
    for (std::size_t i = 0; i < std::min(most, found.size()); ++i)
        nearest.push_back(found[i].second);
    return nearest;
}

} // namespace VeskTool
