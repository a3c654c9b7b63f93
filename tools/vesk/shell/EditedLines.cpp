// SPDX-License-Identifier: MIT
#include "tools/vesk/shell/LineSource.h"

#ifdef VESK_WITH_LIBEDIT

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <editline/readline.h>
#include <exception>
#include <filesystem>
#include <unistd.h>

namespace VeskTool {

namespace {

constexpr int HISTORY_LINES = 1000;

/// Where the history is kept; empty for nowhere.
std::filesystem::path HistoryPath() {
    const char* const state = std::getenv("XDG_STATE_HOME");
    const char* const home = std::getenv("HOME");
    if (state && *state)
        return std::filesystem::path(state) / "vesk" / "history";
    return home && *home ? std::filesystem::path(home) / ".local/state/vesk/history"
                         : std::filesystem::path();
}

/// libedit asks these functions, and knows of no object; there is one.
class TerminalLines : public LineSource {
public:
    explicit TerminalLines(Completion completion)
        : _completion(std::move(completion)), _history(HistoryPath()) {
        self = this;
        rl_readline_name = "vesk";
        rl_getc_function = [](FILE*) { return self->Character(); };
        rl_attempted_completion_function = [](const char* text, int start, int) {
            return self->Complete(text, start);
        };
        rl_initialize();
        stifle_history(HISTORY_LINES);
        if (!_history.empty())
            read_history(_history.c_str());
    }

    ~TerminalLines() override {
        std::error_code ignored; // a history that cannot be kept is none
        if (!_history.empty() && std::filesystem::create_directories(_history.parent_path(), ignored),
            !ignored)
            write_history(_history.c_str());
        self = nullptr;
    }

    std::optional<std::string> Next(const std::function<void()>& meanwhile) override {
        meanwhile();
        _meanwhile = &meanwhile;
        _thrown = nullptr;
        const std::unique_ptr<char, void (*)(void*)> line(readline(PROMPT), std::free);
        if (!line)
            static_cast<void>(::write(STDOUT_FILENO, "\n", 1) == 1); // the prompt's line is still open
        if (_thrown)
            std::rethrow_exception(_thrown);
        if (!line)
            return std::nullopt;
        if (*line != '\0' && _last != line.get())
            add_history(line.get());
        return _last = line.get();
    }

private:
    /// The next character that is typed; -1, the end, also where an exception has to get past libedit.
    int Character() {
        try {
            AwaitInput(*_meanwhile);
        } catch (...) {
            _thrown = std::current_exception();
            return -1;
        }
        unsigned char character = 0;
        return ::read(STDIN_FILENO, &character, 1) == 1 ? character : -1;
    }

    /// The words that begin with `text`, which stands at `start` of the line; libedit frees them. Files are
    /// left to libedit where no command stands.
    char** Complete(const char* text, int start) {
        _words = _completion(std::string(rl_line_buffer, static_cast<std::size_t>(start)));
        rl_attempted_completion_over = start == 0 ? 1 : 0;
        const bool known = std::any_of(_words.begin(), _words.end(),
                                       [&](const std::string& word) { return word.starts_with(text); });
        rl_completion_append_character = known ? int{' '} : 0; // behind a folder none
        return rl_completion_matches(text, [](const char* beginning, int state) -> char* {
            if (state == 0)
                self->_word = 0;
            while (self->_word < self->_words.size())
                if (const std::string& word = self->_words[self->_word++]; word.starts_with(beginning))
                    return strdup(word.c_str());
            return nullptr;
        });
    }

    static inline TerminalLines* self = nullptr;

    Completion _completion;
    std::filesystem::path _history;
    const std::function<void()>* _meanwhile = nullptr;
    std::exception_ptr _thrown;
    std::string _last;
    std::vector<std::string> _words; // of the completion under way
    std::size_t _word = 0;           // the one to look at next
};

} // namespace

std::unique_ptr<LineSource> EditedLines(LineSource::Completion completion) {
    return std::make_unique<TerminalLines>(std::move(completion));
}

} // namespace VeskTool

#else

namespace VeskTool {

std::unique_ptr<LineSource> EditedLines(LineSource::Completion) {
    return nullptr;
}

} // namespace VeskTool

#endif
