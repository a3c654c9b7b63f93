// SPDX-License-Identifier: MIT
#include "tools/vesk/shell/LineSource.h"

#include <array>
#include <cerrno>
#include <iostream>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace VeskTool {

namespace {

/// Lines as they come.
class PlainLines : public LineSource {
public:
    std::optional<std::string> Next(const std::function<void()>& meanwhile) override {
        if (Person())
            std::cout << PROMPT << std::flush;
        meanwhile();
        std::size_t end = _read.find('\n');
        for (; end == std::string::npos; end = _read.find('\n')) {
            AwaitInput(meanwhile);
            if (!Read())
                break;
        }
        if (_read.empty())
            return std::nullopt;
        const std::string line = _read.substr(0, end);
        _read.erase(0, line.size() + 1);
        return line;
    }

private:
    /// More of the input; false at its end.
    bool Read() {
        std::array<char, 4096> part{};
        const ::ssize_t count = ::read(STDIN_FILENO, part.data(), part.size());
        if (count < 0 && errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "standard input");
        if (count > 0)
            _read.append(part.data(), static_cast<std::size_t>(count));
        return count != 0;
    }

    std::string _read;
};

} // namespace

bool LineSource::Person() {
    return ::isatty(STDIN_FILENO) == 1;
}

void LineSource::AwaitInput(const std::function<void()>& meanwhile) {
    constexpr int milliseconds = 1;
    pollfd input{STDIN_FILENO, POLLIN, 0};
    while (::poll(&input, 1, milliseconds) <= 0)
        meanwhile();
}

std::unique_ptr<LineSource> LineSource::Standard(Completion completion) {
    std::unique_ptr<LineSource> edited;
    if (Person() && ::isatty(STDOUT_FILENO) == 1)
        edited = EditedLines(std::move(completion));
    return edited ? std::move(edited) : std::make_unique<PlainLines>();
}

} // namespace VeskTool
