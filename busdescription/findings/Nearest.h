// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace BusDescription {

/// How many characters are to be put in, taken out or replaced to make one of the other. Upper and lower case
/// make no difference.
std::size_t Distance(std::string_view a, std::string_view b);

/// The one of `names` that `word` is most likely meant to be; empty where none comes near. Upper and lower
/// case make no difference. Of words longer than 64 bytes nothing is near.
std::string Nearest(std::string_view word, const std::vector<std::string>& names);

/// ", did you mean NAME?" for the nearest of `names`, or nothing; the end of a message about `word`.
std::string DidYouMean(std::string_view word, const std::vector<std::string>& names);

} // namespace BusDescription
