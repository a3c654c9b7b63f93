// SPDX-License-Identifier: MIT
#include "tools/vesk/text/Progress.h"

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

TEST(Progress, WritesALineForEachTenthOrDrawsABar) {
    std::ostringstream lines;
    VeskTool::Progress plain({lines, lines, std::cin}, "requests", 20, 4096);
    for (const int answered : {0, 1, 2, 3})
        plain.Show(answered, 0, answered); // 3 s for erasing
    plain.Show(9, 1024, 3.5);
    plain.Show(19, 4096, 5);
    plain.Show(20, 4096, 15); // 10 s for checking
    plain.End();
    EXPECT_EQ(lines.str(), "   10 %  2/20 requests, 0/4096 bytes\n"
                           "   40 %  9/20 requests, 1024/4096 bytes, 2.0 KiB/s, 1.5 s left\n"
                           "   90 %  19/20 requests, 4096/4096 bytes, 2.0 KiB/s, 0.0 s left\n"
                           "  100 %  20/20 requests, 4096/4096 bytes, 2.0 KiB/s, 0.0 s left\n");

    std::ostringstream terminal;
    static std::size_t columns = 80;
    VeskTool::Progress bar({terminal, terminal, std::cin, false, true, [] { return columns; }}, "requests",
                           20, 4096);
    bar.Show(0, 0, 0);
    bar.Show(1, 0, 0.09); // too soon to draw again
    bar.Show(9, 1024, 0.59);
    bar.End();
    EXPECT_EQ(terminal.str(), "\r[..........] 0/20 requests, 0/4096 bytes\033[K"
                              "\r[####......] 9/20 requests, 1024/4096 bytes, 2.0 KiB/s, 1.5 s left\033[K\n");
    for (columns = 1; columns < 80; ++columns) { // it never reaches the last column
        terminal.str("");
        bar.Show(9, 1024, 1.0 * static_cast<double>(columns) + 1);
        EXPECT_LT(terminal.str().size(), columns + std::string_view("\r\033[K").size()) << terminal.str();
    }
    bar.End();
}
