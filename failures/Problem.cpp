// SPDX-License-Identifier: MIT
#include "failures/Problem.h"

#include "failures/Outcome.h"

#include <algorithm>

namespace Failures {

namespace Problems {

constinit const ProblemWords COMING_UP{"The module is on its way: *", "It was started a moment ago, or again",
                                       "Wait; where it stays so, see that the application goes on"};

constinit const ProblemWords NO_DATABASE{"The module holds no database",
                                         "Nothing was downloaded, or a download was not ended",
                                         "vesk download CONFIG.ddb"};

constinit const ProblemWords NO_CHECKSUM{
    "The module describes its database by \"*\", which is no checksum",
    "Another tool has written it, or the DPRAM garbles what it carries",
    "Check the data lines of the DPRAM; vesk identify shows whether other answers arrive whole"};

constinit const ProblemWords OTHER_DATABASE{"The module holds the database * instead of *",
                                            "Another configuration was downloaded",
                                            "vesk download CONFIG.ddb"};

constinit const ProblemWords OFF_BUS{"The master is not on the bus",
                                     "It was taken off the bus or has left it on its own",
                                     "vesk mode operate; check the bus connector and its termination"};

constinit const ProblemWords OTHER_MODE{
    "The operation mode is *", "Somebody asked for it, or the master fell back to it because of an error",
    "vesk mode operate"};

constinit const ProblemWords NO_EXCHANGE{"Slave * does not exchange data", "*", "vesk diag *"};

constinit const ProblemWords DIAGNOSIS{"Slave * has diagnostics", "*", "vesk diag *"};

constinit const std::string_view REPORTS_DIAGNOSIS = "it reports a diagnosis";
constinit const std::string_view NOT_EXCHANGING = "its diagnosis says why";

} // namespace Problems

Problem ProblemWords::With(const std::vector<std::string>& values) const {
    auto value = values.begin();
    const auto fill = [&](std::string_view words) {
        std::string text;
        for (const char character : words)
            text += character == '*' && value != values.end() ? *value++ : std::string(1, character);
        return text;
    };
    Problem problem;
    problem.what = fill(what);
    problem.cause = fill(cause);
    problem.next = fill(next);
    return problem;
}

/// The sentences that do not send to where the reader is.
static std::string WithoutStatus(std::string_view sentences) {
    std::string kept;
    for (std::size_t start = 0; start < sentences.size();) {
        const std::size_t end = std::min(sentences.find(". ", start), sentences.size() - 1) + 1;
        const std::string_view sentence = sentences.substr(start, end - start);
        if (sentence.find("vesk status") == std::string_view::npos)
            kept.append(kept.empty() ? "" : " ").append(sentence);
        start = end + 1;
    }
    return kept;
}

Problem ProblemOf(std::string_view told, std::string_view cause, std::string_view next) {
    return {std::string(told), std::string(cause), WithoutStatus(next)};
}

Problem ProblemOf(std::string_view type, std::string_view message) {
    const std::string line = OneLine(message);
    std::string told = std::string(type) + (line.empty() ? "" : ": " + line.substr(0, line.find("; ")));
    const Outcome* const known = FindFailure(type, message);
    if (!known)
        return {std::move(told), "", ""};
    const std::string next(known->next);
    return ProblemOf(told, known->means, std::string(known->check) + (next.empty() ? "" : " " + next));
}

bool IsChecksum(std::string_view description) {
    return description.size() == 8 &&
           description.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

std::string OneLine(std::string_view text) {
    std::string line;
    for (const char character : text)
        if (character != '\n')
            line += character;
        else if (!line.empty() && line.back() != ' ')
            line += "; ";
    while (!line.empty() && (line.back() == ' ' || line.back() == ';'))
        line.pop_back();
    return line;
}

} // namespace Failures
