// SPDX-License-Identifier: MIT
#include "tools/vesk/explain/Explain.h"

#include "tools/vesk/explain/Explanations.h"
#include "tools/vesk/explain/Nearest.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Failure.h"
#include "tools/vesk/text/Text.h"

#include <algorithm>
#include <iostream>
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
    const std::string pattern = Lower(OneLine(failure.message));
    return Failures::Compare(pattern, text) == Failures::Match::WHOLE ||
           Failures::Compare(pattern.substr(0, pattern.find('*')), text) == Failures::Match::BEGINNING;
}

/// A message behind the type of its exception is one failure; alone it may be several. Those that begin with
/// any text are failures that name a file.
std::vector<Explanation> FindMessage(const std::string& text, bool beginningWithAny) {
    std::vector<Explanation> found;
    std::vector<const Failures::Outcome*> failures = Failures::AllFailures();
    failures.insert(failures.end(), Failures::ToolFailures().begin(), Failures::ToolFailures().end());
    for (const Failures::Outcome* const failure : failures) {
        const std::string type = Lower(std::string(failure->type)) + ": ";
        if (text.starts_with(type) && Says(*failure, text.substr(type.size())))
            return {ExplanationOf(*failure)};
        const bool speaks = failure->message.find_first_not_of("*#") != std::string_view::npos;
        if (speaks && failure->message.starts_with('*') == beginningWithAny &&
            text.size() >= SHORTEST_BEGINNING && Says(*failure, text))
            found.push_back(ExplanationOf(*failure));
    }
    return found;
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
    for (const bool beginningWithAny : {false, true})
        for (std::size_t start = 0; found.empty() && start < text.size();) {
            found = FindExactly(text.substr(start));
            if (found.empty())
                found = FindMessage(text.substr(start), beginningWithAny);
            const auto colon = text.find(": ", start);
            start = colon == text.npos ? text.size() : colon + 2;
        }
    return found.empty() ? FindBeginning(text) : found;
}

std::vector<std::string> NearestNames(const std::string& word) {
    std::vector<std::string> names;
    for (const Explanation& one : Explanations()) {
        names.push_back(one.name);
        names.insert(names.end(), one.otherNames.begin(), one.otherNames.end());
    }
    return Nearest(word, names, NEAREST);
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
