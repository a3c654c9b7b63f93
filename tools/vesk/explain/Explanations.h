// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace VeskTool {

/// What one of the module's or the library's words means, and what to look at when it turns up.
struct Explanation {
    std::string
        kind; // "exception", "message", "error code", "operation mode", "register bit", "command", "state"
    std::string name; // as it is written elsewhere; in a message "#" stands for a value
    std::vector<std::string> otherNames;
    std::string meaning;
    std::string check; // what to check; may be empty
};

/// Everything that can be explained.
const std::vector<Explanation>& Explanations();

/// The explanations of a word: of exactly that name, otherwise of the names that begin with it, and of the
/// message and exception type with which a line of output begins. Upper and lower case are the same.
std::vector<Explanation> Explain(const std::string& word);

/// The names that are most like a word that nothing is known of, the most alike first.
std::vector<std::string> NearestNames(const std::string& word);

/// The exceptions and the messages of the library: a part of Explanations().
std::vector<Explanation> FailureExplanations();

} // namespace VeskTool
