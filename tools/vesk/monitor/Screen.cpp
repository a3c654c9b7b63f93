// SPDX-License-Identifier: MIT
#include "tools/vesk/monitor/Screen.h"

#include "tools/vesk/text/Failure.h"

#ifdef VESK_WITH_NCURSES

#define NCURSES_NOMACROS
#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <ncurses.h>
#include <unistd.h>

namespace VeskTool {

static constexpr short GOOD_PAIR = 1;
static constexpr short BAD_PAIR = 2;

/// On a terminal without colours what is bad is bold, and what has changed stands in brackets anyway.
static attr_t AttributeOf(Look look) {
    const bool colours = has_colors();
    switch (look) {
    case Look::PLAIN:
        return A_NORMAL;
    case Look::BAR:
        return A_REVERSE;
    case Look::GOOD:
        return colours ? static_cast<attr_t>(COLOR_PAIR(GOOD_PAIR)) : A_NORMAL;
    case Look::BAD:
        return colours ? static_cast<attr_t>(COLOR_PAIR(BAD_PAIR)) : A_BOLD;
    case Look::CHANGED:
        return A_BOLD;
    }
    return A_NORMAL;
}

Screen::Screen() {
    if (isatty(STDIN_FILENO) != 1 || isatty(STDOUT_FILENO) != 1)
        throw Failure("There is no terminal for the monitor; vesk monitor --once prints it");
    std::setlocale(LC_CTYPE, "");
    if (!newterm(nullptr, stdout, stdin))
        throw Failure("The monitor cannot draw on this terminal; vesk monitor --once prints it");
    cbreak();
    noecho();
    keypad(stdscr, true);
    curs_set(0);
    const char* const noColour = std::getenv("NO_COLOR");
    if (has_colors() && (noColour == nullptr || *noColour == 0)) {
        start_color();
        use_default_colors();
        init_pair(GOOD_PAIR, COLOR_GREEN, -1);
        init_pair(BAD_PAIR, COLOR_RED, -1);
    }
}

Screen::~Screen() {
    endwin();
}

std::size_t Screen::Rows() const {
    return static_cast<std::size_t>(getmaxy(stdscr));
}

std::size_t Screen::Columns() const {
    return static_cast<std::size_t>(getmaxx(stdscr));
}

/// The last row keeps its place where there is no room for all, for it says how to get out.
void Screen::Show(const std::vector<Row>& page) const {
    werase(stdscr);
    const std::size_t rows = Rows();
    for (std::size_t row = 0; row < std::min(rows, page.size()); ++row) {
        const bool last = row + 1 == std::min(rows, page.size());
        wmove(stdscr, static_cast<int>(row), 0);
        for (const Piece& piece : last ? page.back() : page[row]) {
            wattrset(stdscr, static_cast<int>(AttributeOf(piece.look)));
            waddstr(stdscr, piece.text.c_str());
        }
    }
    wattrset(stdscr, A_NORMAL);
    wrefresh(stdscr);
}

Key Screen::Next(int milliseconds) {
    wtimeout(stdscr, milliseconds);
    switch (wgetch(stdscr)) {
    case 'q':
    case 'Q':
        return Key::QUIT;
    case KEY_RIGHT:
    case 'n':
    case '\t':
        return Key::NEXT;
    case KEY_LEFT:
    case 'p':
        return Key::PREVIOUS;
    case KEY_UP:
    case 'k':
        return Key::UP;
    case KEY_DOWN:
    case 'j':
        return Key::DOWN;
    case KEY_PPAGE:
    case '-':
        return Key::PAGE_UP;
    case KEY_NPAGE:
    case '+':
    case ' ':
        return Key::PAGE_DOWN;
    default:
        return Key::NONE;
    }
}

} // namespace VeskTool

#else

namespace VeskTool {

Screen::Screen() {
    throw Failure("this vesk was built without ncurses, which the monitor needs");
}

Screen::~Screen() = default;

std::size_t Screen::Rows() const {
    return 0;
}

std::size_t Screen::Columns() const {
    return 0;
}

void Screen::Show(const std::vector<Row>&) const {}

Key Screen::Next(int) {
    return Key::QUIT;
}

} // namespace VeskTool

#endif
