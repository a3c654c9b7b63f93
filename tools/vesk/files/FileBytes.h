// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/text/Failure.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace VeskTool {

/// The bytes of the regular file at `path`. `check` gets their number first, and may throw; the library's
/// exceptions for a file that cannot be read pass through.
std::vector<unsigned char> ReadFile(const std::string& path,
                                    const std::function<void(std::int64_t length)>& check);

/// What `exception` says, in words that name the file at `path`; those of opening a file do so themselves,
/// and to all others `hint` is added.
Failure FileFailure(const std::string& path, const std::exception& exception,
                    const std::function<std::string()>& hint);

} // namespace VeskTool
