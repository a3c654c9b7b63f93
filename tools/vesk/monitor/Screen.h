// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/monitor/Page.h"

namespace VeskTool {

/// What a person wants to see.
enum class Key { NONE, QUIT, NEXT, PREVIOUS, UP, DOWN, PAGE_UP, PAGE_DOWN };

/// The whole terminal, for as long as it lives.
class Screen {
public:
    /// Failure where there is no terminal, or none that can be drawn on.
    Screen();
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    std::size_t Rows() const;
    std::size_t Columns() const;

    void Show(const std::vector<Row>& page) const;

    /// The key that was pressed; waits for one for so long.
    static Key Next(int milliseconds);
};

} // namespace VeskTool
