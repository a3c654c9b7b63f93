// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace VeskTool {

/// Where the lines of a shell come from: standard input.
class LineSource {
public:
    /// The words that may follow the beginning of a line, whatever the last one begins with.
    using Completion = std::function<std::vector<std::string>(const std::string& beginning)>;

    /// A terminal, where lines are edited, completed and kept in a history, as far as the program was built
    /// for that; or a pipe or a file.
    static std::unique_ptr<LineSource> Standard(Completion completion);

    virtual ~LineSource() = default;

    /// The next line without its end; nothing at the end of the input. Calls `meanwhile` at the beginning,
    /// and about each millisecond while there is nothing to read; what that throws abandons the line.
    virtual std::optional<std::string> Next(const std::function<void()>& meanwhile) = 0;

    /// Whether a person types the lines.
    static bool Person();

protected:
    static constexpr auto* PROMPT = "vesk> ";

    /// Waits until there is something to read.
    static void AwaitInput(const std::function<void()>& meanwhile);
};

/// Lines of a terminal that are edited, with a history in $XDG_STATE_HOME/vesk or ~/.local/state/vesk; null
/// where the program was built without libedit.
std::unique_ptr<LineSource> EditedLines(LineSource::Completion completion);

} // namespace VeskTool
