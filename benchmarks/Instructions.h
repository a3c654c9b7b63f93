// SPDX-License-Identifier: MIT
#pragma once

/// Counting of instructions in place of time: what counts, callgrind or a plugin of the emulator, begins at
/// zero in each call of Begin and writes down in each call of End. Both are empty, and there to be found by
/// their names.
class Instructions {
public:
    /// Whether they are counted in this run.
    static inline bool counted = false;

    static void Begin();
    static void End();

    /// Counts `calls` calls, after as many that nobody counts.
    template <class Callable>
    static void Count(int calls, Callable& callable) {
        for (int i = 0; i < calls; ++i)
            callable();
        Begin();
        for (int i = 0; i < calls; ++i)
            callable();
        End();
    }
};
