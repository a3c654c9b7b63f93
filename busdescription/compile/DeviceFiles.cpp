// SPDX-License-Identifier: MIT
#include "busdescription/compile/DeviceFiles.h"

#include <filesystem>

namespace BusDescription {

const Gsd::DeviceFile& DeviceFiles::Read(const std::string& path) {
    const std::string whole = (std::filesystem::path(_folder) / path).string();
    const auto known = _files.find(whole);
    return known != _files.end() ? known->second : _files.emplace(whole, Gsd::ReadFile(whole)).first->second;
}

} // namespace BusDescription
