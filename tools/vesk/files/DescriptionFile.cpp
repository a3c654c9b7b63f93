// SPDX-License-Identifier: MIT
#include "tools/vesk/files/DescriptionFile.h"

#include "tools/vesk/files/FileBytes.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Text.h"

#include <algorithm>
#include <filesystem>
#include <iostream>

namespace VeskTool {

using BusDescription::Finding;
using BusDescription::Severity;

static std::string Count(std::ptrdiff_t number, const std::string& what) {
    return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

void Judge(const std::string& path, const BusDescription::Findings& findings, bool strict) {
    for (const Finding& finding : findings)
        std::cerr << Printable(finding.ToString()) << "\n";
    const auto errors = std::count_if(findings.begin(), findings.end(), [](const Finding& finding) {
        return finding.severity == Severity::ERROR;
    });
    const auto warnings = static_cast<std::ptrdiff_t>(findings.size()) - errors;
    if (errors > 0 || (strict && warnings > 0))
        throw Failure(path + ": has " + (errors > 0 ? Count(errors, "error") : Count(warnings, "warning")) +
                      ", so nothing is made of it");
}

CompiledDescription CompileDescription(const std::string& path, bool strict) {
    const auto bytes = ReadFile(path, BusDescription::MAX_TEXT_SIZE);
    if (bytes.size() > BusDescription::MAX_TEXT_SIZE)
        throw Failure(path + ": has more than 8 MiB, the most that a description can have");
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    BusDescription::Findings findings;
    CompiledDescription compiled{BusDescription::ReadText(text, path, findings), {}};
    BusDescription::DeviceFiles files(std::filesystem::path(path).parent_path().string());
    auto bus = BusDescription::Compile(compiled.description, files, findings);
    Judge(path, findings, strict);
    compiled.bus = std::move(*bus);
    return compiled;
}

std::vector<std::string> DeviceFilesIn(const std::string& folder, const std::filesystem::path& base) {
    std::vector<std::string> paths;
    if (folder.empty())
        return paths;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error))
        if (const std::string ending = Lower(entry.path().extension().string());
            entry.is_regular_file() && ending.size() == 4 && ending.starts_with(".gs"))
            paths.push_back(std::filesystem::proximate(entry.path(), base).string());
    if (error)
        throw Failure(folder + ": cannot be read: " + error.message());
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::filesystem::path FolderOfText(const std::string& output) {
    return std::filesystem::absolute(output.empty() ? "text" : output).parent_path();
}

bool IsDescription(const std::string& path) {
    return std::filesystem::path(path).extension() == ".toml";
}

} // namespace VeskTool
