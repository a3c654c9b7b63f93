// SPDX-License-Identifier: MIT
#include "tools/vesk/text/Nearest.h"

#include "tools/vesk/text/Text.h"

#include <algorithm>
#include <numeric>
#include <string_view>

namespace VeskTool {

/// A word of this length in a name is no accident.
static constexpr std::size_t SHORTEST_PART = 3;

/// How many characters have to be added, removed or replaced to make one of the other.
static std::size_t Distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] != b[j]);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

std::vector<std::string> Nearest(const std::string& word, const std::vector<std::string>& names,
                                 std::size_t most) {
    const std::string text = Lower(word);
    std::vector<std::pair<std::size_t, std::string>> found;
    found.reserve(names.size());
    for (const std::string& name : names) {
        const std::string lower = Lower(name);
        const bool part = text.size() >= SHORTEST_PART && lower.find(text) != std::string::npos;
        found.emplace_back(part ? 1 : Distance(text, lower.substr(0, text.size() + 2)), name);
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    std::vector<std::string> nearest;
    for (std::size_t i = 0; i < std::min(most, found.size()); ++i)
        nearest.push_back(found[i].second);
    return nearest;
}

} // namespace VeskTool
