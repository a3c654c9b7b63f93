// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace VeskTool {

/// The words of a line, as a shell splits them: at blanks, but not in '...' or "...", nor behind a backslash,
/// which both stand for the next character as it is; in '...' everything does. A word that begins with # and
/// what follows are left out. CLI::ParseError for a quote without its end.
std::vector<std::string> SplitWords(const std::string& line);

} // namespace VeskTool
