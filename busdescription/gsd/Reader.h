// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/findings/Finding.h"
#include "busdescription/gsd/Device.h"

#include <string>
#include <string_view>

namespace BusDescription::Gsd {

/// Longest file that is read, in bytes.
inline constexpr std::size_t MAX_FILE_SIZE = std::size_t{8} << 20;

/// A device and what was found while its file was read. With errors among the findings the device is not to
/// be used.
struct DeviceFile {
    Device device;
    Findings findings; // in the order of the lines, at most MAX_FINDINGS errors and as many warnings

    bool Usable() const { return !HasErrors(findings); }
};

/// After so many errors the rest of a file is not read; after so many warnings they are only counted.
inline constexpr std::size_t MAX_FINDINGS = 1000;

/// Reads the content of a device description file. `name` is the file's name in the findings. Whatever the
/// content is, nothing is thrown, and the memory that it takes is bounded by its size.
DeviceFile Read(std::string_view content, const std::string& name);

/// Reads the regular file at `path`; that it cannot be read, or is larger than MAX_FILE_SIZE, is a finding.
DeviceFile ReadFile(const std::string& path);

} // namespace BusDescription::Gsd
