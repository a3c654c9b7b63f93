// SPDX-License-Identifier: MIT
#include "tools/vesk/session/Dumps.h"

#include "vesk/hostinterface/RuntimeConfig.h"

#include <array>
#include <ctime>
#include <filesystem>

namespace VeskTool {

static std::string folder;

void Dumps::SetFolder(const std::string& path) {
    folder = path;
}

void Dumps::Keep() {
    std::error_code ignored;
    const std::filesystem::path in =
        folder.empty() ? std::filesystem::temp_directory_path(ignored) : std::filesystem::path(folder);
    const std::time_t now = std::time(nullptr);
    std::array<char, 32> name{};
    std::strftime(name.data(), name.size(), "vesk-%Y%m%d-%H%M%S", std::localtime(&now));
    std::filesystem::path path = in / (std::string(name.data()) + ".bin");
    for (int number = 2; std::filesystem::exists(path, ignored); ++number)
        path = in / (std::string(name.data()) + "-" + std::to_string(number) + ".bin");
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = path.string();
}

void Dumps::KeepNone() {
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;
}

void Dumps::KeptIn(const std::string& path) {
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = path;
}

std::string Dumps::Path() {
    const System::String& path = Vesk::RuntimeConfig::_hostInterfaceDumpPath;
    return path.IsNull() ? "" : path.Value();
}

} // namespace VeskTool
