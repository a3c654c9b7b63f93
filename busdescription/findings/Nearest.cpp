// SPDX-License-Identifier: MIT
#include "busdescription/findings/Nearest.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace BusDescription {

static constexpr std::size_t LONGEST_WORD = 64;

static char Small(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

/// The distance; at least `limit` where it is not less than that. `row` is for its own use.
static std::size_t Distance(std::string_view a, std::string_view b, std::size_t limit,
                            std::vector<std::size_t>& row) {
    row.resize(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        std::size_t least = row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (Small(a[i]) == Small(b[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
            least = std::min(least, row[j + 1]);
        }
        if (least >= limit)
            return least;
    }
    return row.back();
}

std::size_t Distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row;
    return Distance(a, b, std::numeric_limits<std::size_t>::max(), row);
}

std::string Nearest(std::string_view word, const std::vector<std::string>& names) {
    const std::size_t furthest = (word.size() + 2) / 3;
    std::string nearest;
    std::size_t least = furthest + 1;
    std::vector<std::size_t> row;
    for (const std::string& name : names) {
        const std::size_t lengths = std::max(word.size(), name.size()) - std::min(word.size(), name.size());
        if (word.size() > LONGEST_WORD || lengths >= least)
            continue;
        const std::size_t distance = Distance(word, name, least, row);
        if (distance < least) {
            least = distance;
            nearest = name;
        }
    }
    return nearest;
}

std::string DidYouMean(std::string_view word, const std::vector<std::string>& names) {
    const std::string nearest = Nearest(word, names);
    return nearest.empty() ? "" : ", did you mean " + nearest + "?";
}

} // namespace BusDescription
