// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace BusDescription {

/// The one of `names` that `word` is most likely meant to be; empty where none comes near. Upper and lower
/// case make no difference. Of words longer than 64 bytes nothing is near.
std::string Nearest(std::string_view word, const std::vector<std::string>& names);

/// ", did you mean NAME?" for the nearest of `names`, or nothing; the end of a message about `word`.
std::string DidYouMean(std::string_view word, const std::vector<std::string>& names);

} // namespace BusDescription
