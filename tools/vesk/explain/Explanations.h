// SPDX-License-Identifier: MIT
#pragma once

#include "failures/Outcome.h"

#include <string>
#include <vector>

namespace VeskTool {

/// What one of the module's or the library's words means, and what to do when it turns up.
struct Explanation {
    std::string kind; // "exception", "message", "error code", "operation mode", "register", "register bit",
                      // "field", "diagnosis flag", "bus parameter", "command", "state"
    std::string name; // as it is written elsewhere; in a message "#" stands for a number, "…" for any text
    std::vector<std::string> otherNames;
    std::string meaning;
    std::string check; // a sentence; may be empty, like the next
    std::string next;
};

/// Everything that can be explained.
const std::vector<Explanation>& Explanations();

/// The explanations of a word: of exactly that name; otherwise of the message that it is, with the type of
/// the exception and whatever else is printed before it, or of the messages that begin so; otherwise of the
/// names that begin with it. Upper and lower case are the same.
std::vector<Explanation> Explain(const std::string& word);

/// The names that are most like a word that nothing is known of, the most alike first.
std::vector<std::string> NearestNames(const std::string& word);

/// One failure of the library.
Explanation ExplanationOf(const Failures::Outcome& failure);

} // namespace VeskTool
