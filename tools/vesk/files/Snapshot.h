// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace VeskTool {

/// The bytes of the DPRAM that begins at `offset` of the file or device at `path`, as they stand. Nothing is
/// written and no line driven, and each byte is read once. The handshake registers at the end are left out,
/// and 0: reading the module's takes an interrupt from the host. Failure where it cannot be mapped.
std::vector<unsigned char> ReadSnapshot(const std::string& path, int offset);

} // namespace VeskTool
