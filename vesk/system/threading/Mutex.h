// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>

namespace System::Threading {

/// A lock that one thread holds at a time; taken with std::lock_guard.
using Mutex = std::mutex;

} // namespace System::Threading
