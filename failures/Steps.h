// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace Failures {

// What to do next where a file is bad.
inline constexpr std::string_view EXPORT = "Export it again from the configuration tool.";
inline constexpr std::string_view FETCH = "Get the file again from where it came.";

} // namespace Failures
