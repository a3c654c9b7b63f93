// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/gsd/Reader.h"

#include <map>
#include <string>

namespace BusDescription {

/// Device description files, each read once however many slaves have it.
class DeviceFiles {
public:
    /// `folder`: what relative paths begin from; empty for the current one.
    explicit DeviceFiles(std::string folder) : _folder(std::move(folder)) {}

    /// The file at `path`; what cannot be read is among its findings.
    const Gsd::DeviceFile& Read(const std::string& path);

private:
    std::string _folder;
    std::map<std::string, Gsd::DeviceFile> _files;
};

} // namespace BusDescription
