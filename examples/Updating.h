// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>

/// Calls Update of a module until `reached`, with a limit of its own: the library limits the time of single
/// steps, not of all that lies between. std::runtime_error naming `what` after 30 s, and what Update throws.
template <class Module>
void UpdateUntil(Module& module, const std::string& what, const std::function<bool()>& reached) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    for (; !reached(); std::this_thread::sleep_for(std::chrono::microseconds(100))) {
        if (std::chrono::steady_clock::now() > end)
            throw std::runtime_error("30 s without reaching: " + what);
        module.Update();
    }
}
