// SPDX-License-Identifier: MIT
#include "tools/vesk/explain/Explain.h"

#include "tools/vesk/explain/Explanations.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Failure.h"
#include "tools/vesk/text/Text.h"

#include <algorithm>
#include <iostream>
#include <numeric>
#include <string_view>

namespace VeskTool {

namespace {

constexpr std::size_t SHORTEST_BEGINNING = 3;
constexpr std::size_t NEAREST = 5;

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
        return one.kind != "message" &&
               AnyName(one, [&](const std::string& name) { return name.starts_with(word); });
    });
}

/// Whether the text is that failure's message, or begins like it.
bool Says(const Failures::Outcome& failure, const std::string& text) {
    const auto match = Failures::Compare(Lower(OneLine(failure.message)), text);
    return match == Failures::Match::WHOLE ||
           (match == Failures::Match::BEGINNING && !failure.message.starts_with("*"));
}

/// A message behind the type of its exception is one failure; alone it may be several.
std::vector<Explanation> FindMessage(const std::string& text) {
    std::vector<Explanation> found;
    for (const Failures::Outcome* const failure : Failures::AllFailures()) {
        const std::string type = Lower(std::string(failure->type)) + ": ";
        if (text.starts_with(type) && Says(*failure, text.substr(type.size())))
            return {ExplanationOf(*failure)};
        const bool speaks = failure->message.find_first_not_of("*#") != std::string_view::npos;
        if (speaks && text.size() >= SHORTEST_BEGINNING && Says(*failure, text))
            found.push_back(ExplanationOf(*failure));
    }
    return found;
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
            matches.push_back({{"kind", one.kind},
                               {"name", one.name},
                               {"meaning", one.meaning},
                               {"check", one.check},
                               {"next", one.next}});
        std::cout << JsonText({{"word", options.Word()}, {"matches", matches}, {"nearest", nearest}});
        return !found.empty();
    }
    for (const Explanation& one : found) {
        std::cout << one.name << " (" << one.kind << ")\n";
        for (const std::string& sentence : {one.meaning, one.check, one.next})
            std::cout << (sentence.empty() ? "" : "  " + sentence + "\n");
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
    const std::string text = Lower(OneLine(word));
    std::vector<Explanation> found;
    for (std::size_t start = 0; found.empty() && start < text.size();) {
        found = FindExactly(text.substr(start));
        if (found.empty())
            found = FindMessage(text.substr(start));
        const auto colon = text.find(": ", start);
        start = colon == text.npos ? text.size() : colon + 2;
    }
    return found.empty() ? FindBeginning(text) : found;
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
