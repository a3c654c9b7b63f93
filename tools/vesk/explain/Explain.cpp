// SPDX-License-Identifier: MIT
#include "tools/vesk/explain/Explain.h"

#include "tools/vesk/explain/Explanations.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Text.h"

#include <algorithm>
#include <iostream>
#include <numeric>
#include <string_view>

namespace VeskTool {

namespace {

constexpr std::size_t SHORTEST_BEGINNING = 3;
constexpr std::size_t NEAREST = 5;

/// Whether one of the two begins with the other; "#" in the pattern stands for any number.
bool Fits(std::string_view pattern, std::string_view text) {
    constexpr std::string_view number = "0123456789abcdef-";
    while (!pattern.empty() && !text.empty()) {
        if (pattern.front() == '#') {
            const auto end = text.find_first_not_of(number);
            text.remove_prefix(std::min(end, text.size()));
        } else if (pattern.front() != text.front()) {
            return false;
        } else {
            text.remove_prefix(1);
        }
        pattern.remove_prefix(1);
    }
    return true;
}

template <class Predicate>
bool AnyName(const Explanation& explanation, Predicate predicate) {
    return predicate(Lower(explanation.name)) ||
           std::any_of(explanation.otherNames.begin(), explanation.otherNames.end(),
                       [&](const std::string& name) { return predicate(Lower(name)); });
}

template <class Predicate>
std::vector<Explanation> Find(Predicate predicate) {
    std::vector<Explanation> found;
    for (const Explanation& explanation : Explanations())
        if (predicate(explanation))
            found.push_back(explanation);
    return found;
}

std::vector<Explanation> FindExactly(const std::string& word) {
    return Find([&](const Explanation& one) {
        return AnyName(one, [&](const std::string& name) { return name == word; });
    });
}

std::vector<Explanation> FindBeginning(const std::string& word) {
    if (word.size() < SHORTEST_BEGINNING)
        return {};
    return Find([&](const Explanation& one) {
        if (one.kind == "message")
            return Fits(Lower(one.name), word);
        return AnyName(one, [&](const std::string& name) { return name.starts_with(word); });
    });
}

/// How many characters have to be added, removed or replaced to make one of the other.
std::size_t Distance(std::string_view a, std::string_view b) {
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

struct ExplainOptions {
    std::vector<std::string> words;
    bool json = false;

    std::string Word() const { return Joined(words, " "); }
};

/// Whether something is known.
bool ShowExplanations(const ExplainOptions& options) {
    const auto found = Explain(options.Word());
    const auto nearest = found.empty() ? NearestNames(options.Word()) : std::vector<std::string>();
    if (options.json) {
        nlohmann::ordered_json matches = nlohmann::ordered_json::array();
        for (const Explanation& one : found)
            matches.push_back(
                {{"kind", one.kind}, {"name", one.name}, {"meaning", one.meaning}, {"check", one.check}});
        std::cout << JsonText({{"word", options.Word()}, {"matches", matches}, {"nearest", nearest}});
        return !found.empty();
    }
    for (const Explanation& one : found) {
        std::cout << one.name << " (" << one.kind << ")\n  " << one.meaning << "\n";
        if (!one.check.empty())
            std::cout << "  Check: " << one.check << "\n";
    }
    if (found.empty()) {
        std::cerr << "vesk: nothing is known of \"" << Printable(options.Word()) << "\"; nearest:\n";
        for (const std::string& name : nearest)
            std::cerr << "  " << name << "\n";
    }
    return !found.empty();
}

} // namespace

std::vector<Explanation> Explain(const std::string& word) {
    std::string text = Lower(word);
    if (text.starts_with("vesk: "))
        text.erase(0, 6);
    auto found = FindExactly(text);
    if (!found.empty())
        return found;
    // A line as it is printed: the type of the exception, and its message.
    const auto colon = text.find(": ");
    const auto type = colon == text.npos ? found : FindExactly(text.substr(0, colon));
    found = FindBeginning(type.empty() ? text : text.substr(colon + 2));
    found.insert(found.end(), type.begin(), type.end());
    return found;
}

std::vector<std::string> NearestNames(const std::string& word) {
    const std::string text = Lower(word);
    std::vector<std::pair<std::size_t, std::string>> names;
    for (const Explanation& one : Explanations()) {
        // Of a long message, what was typed may be the beginning.
        const auto note = [&](const std::string& name) {
            names.emplace_back(Distance(text, Lower(name).substr(0, text.size() + 2)), name);
        };
        note(one.name);
        std::for_each(one.otherNames.begin(), one.otherNames.end(), note);
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    std::vector<std::string> nearest;
    for (std::size_t i = 0; i < std::min(NEAREST, names.size()); ++i)
        nearest.push_back(names[i].second);
    return nearest;
}

Action AddExplain(CLI::App& command) {
    const auto options = std::make_shared<ExplainOptions>();
    command.add_option("WORD", options->words, "What to explain; several words are one")
        ->required()
        ->type_name("");
    AddJson(command, options->json);
    return [options] { return ShowExplanations(*options) ? DONE : FAILED; };
}

} // namespace VeskTool
