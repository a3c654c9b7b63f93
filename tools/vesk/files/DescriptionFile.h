// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/compile/Compile.h"

#include <filesystem>

namespace VeskTool {

/// A bus description and what it makes.
struct CompiledDescription {
    BusDescription::Description description;
    BusDescription::CompiledBus bus;
};

/// Reads and compiles the bus description at `path`; device description files lie beside it. Warnings go to
/// standard error, a line each, and so do errors before the Failure that counts them. `strict`: warnings are
/// errors.
CompiledDescription CompileDescription(const std::string& path, bool strict = false);

/// Shows findings about the file at `path` on standard error; Failure where there are errors among them, or
/// warnings and it is `strict`.
void Judge(const std::string& path, const BusDescription::Findings& findings, bool strict);

/// The device description files in `folder`, in the order of their names, as seen from `base`; none for no
/// folder. Failure for one that cannot be read.
std::vector<std::string> DeviceFilesIn(const std::string& folder, const std::filesystem::path& base);

/// Where paths in a text at `output` begin, which may be empty: then the text may stand anywhere.
std::filesystem::path FolderOfText(const std::string& output);

/// Whether the file's name is that of a bus description: it ends with ".toml".
bool IsDescription(const std::string& path);

} // namespace VeskTool
