// SPDX-License-Identifier: MIT
#include "tools/vesk/shell/Words.h"

#include <CLI/CLI.hpp>
#include <optional>
#include <utility>

namespace VeskTool {

std::vector<std::string> SplitWords(const std::string& line) {
    std::vector<std::string> words;
    std::optional<std::string> word; // "" is one too
    char quote = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char character = line[i];
        const bool blank = character == ' ' || character == '\t' || character == '\r';
        if (quote == 0 && !word && character == '#')
            break;
        if (quote == 0 && blank) {
            if (word)
                words.push_back(*std::exchange(word, std::nullopt));
            continue;
        }
        if (!word)
            word = "";
        if (character == quote)
            quote = 0;
        else if (quote == 0 && (character == '\'' || character == '"'))
            quote = character;
        else if (character == '\\' && quote != '\'' && i + 1 < line.size())
            *word += line[++i];
        else
            *word += character;
    }
    if (quote != 0)
        throw CLI::ValidationError("the line has a " + std::string(1, quote) + " without a second one",
                                   CLI::ExitCodes::ValidationError);
    if (word)
        words.push_back(*word);
    return words;
}

} // namespace VeskTool
