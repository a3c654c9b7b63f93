// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/text/Failure.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace VeskTool {

/// The bytes of the file or pipe at `path`, or of standard input for "-". No more than `most` and one; that
/// one says that there are more. Failure, which names the path, for what cannot be read, a folder or a
/// device.
std::vector<unsigned char> ReadFile(const std::string& path, std::size_t most);

/// Makes the file at `path`, or replaces it. Failure where that is no regular file, or is `source`, which it
/// is made of and which is called `what`.
void WriteFile(const std::string& path, const std::vector<unsigned char>& bytes, const std::string& source,
               const std::string& what);

/// "; it looks like a text", or what else the bytes of a file are, from their beginning; empty where that
/// says nothing.
std::string LooksLike(std::span<const unsigned char> bytes);

/// What `exception` says about the file at `path`, which it does not name; `where`: the place in the file.
Failure FileFailure(const std::string& path, const std::string& where, const std::exception& exception);

} // namespace VeskTool
