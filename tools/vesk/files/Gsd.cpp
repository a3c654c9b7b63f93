// SPDX-License-Identifier: MIT
#include "busdescription/gsd/ParameterValues.h"
#include "busdescription/gsd/Reader.h"
#include "tools/vesk/files/FileCommands.h"
#include "tools/vesk/files/GsdJson.h"
#include "tools/vesk/files/GsdText.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Failure.h"

#include <algorithm>
#include <iostream>

namespace VeskTool {

using BusDescription::Finding;
using BusDescription::Severity;
using BusDescription::Gsd::DeviceFile;

namespace {

struct GsdOptions {
    std::string path;
    std::vector<std::string> paths;
    bool json = false;
};

std::size_t CountOf(const DeviceFile& file, Severity severity) {
    return static_cast<std::size_t>(
        std::count_if(file.findings.begin(), file.findings.end(),
                      [severity](const Finding& finding) { return finding.severity == severity; }));
}

/// The first error of the file, as a failure.
Failure Unusable(const DeviceFile& file) {
    const auto first = std::find_if(file.findings.begin(), file.findings.end(), [](const Finding& finding) {
        return finding.severity == Severity::ERROR;
    });
    const bool unread = first->text.starts_with("cannot be read: ");
    return Failure(Harmless(first->Place() + ": " + first->text) +
                   (unread ? ""
                           : "; " + Counted(CountOf(file, Severity::ERROR), "error") +
                                 " in the device description file"));
}

void ShowGsd(const GsdOptions& options) {
    const DeviceFile file = BusDescription::Gsd::ReadFile(options.path);
    if (!file.Usable())
        throw Unusable(file);
    if (options.json)
        std::cout << JsonText(DeviceToJson(file.device));
    else
        WriteText(std::cout, file.device);
    if (!file.findings.empty())
        std::cerr << "vesk: " << options.path << ": " << Counted(file.findings.size(), "warning")
                  << "; see vesk gsd check\n";
}

nlohmann::ordered_json FindingsToJson(const DeviceFile& file, const std::string& path) {
    nlohmann::ordered_json findings = nlohmann::ordered_json::array();
    for (const Finding& finding : file.findings)
        findings.push_back({{"severity", finding.severity == Severity::ERROR ? "error" : "warning"},
                            {"line", finding.line},
                            {"column", finding.column},
                            {"text", finding.text}});
    return {{"file", path}, {"usable", file.Usable()}, {"findings", std::move(findings)}};
}

/// Whether every file can be used.
bool CheckGsd(const GsdOptions& options) {
    bool usable = true;
    nlohmann::ordered_json files = nlohmann::ordered_json::array();
    for (const std::string& path : options.paths) {
        const DeviceFile file = BusDescription::Gsd::ReadFile(path);
        usable = usable && file.Usable();
        if (options.json) {
            files.push_back(FindingsToJson(file, path));
            continue;
        }
        for (const Finding& finding : file.findings)
            std::cout << Harmless(finding.ToString()) << "\n";
        std::cout << path << ": " << Counted(CountOf(file, Severity::ERROR), "error") << ", "
                  << Counted(CountOf(file, Severity::WARNING), "warning") << "\n";
    }
    if (options.json)
        std::cout << JsonText({{"usable", usable}, {"files", std::move(files)}});
    return usable;
}

} // namespace

Action AddGsdShow(CLI::App& command) {
    const auto options = std::make_shared<GsdOptions>();
    AddArgument(command, "FILE", options->path, "Device description file (.gsd, .gse, .gsg...)");
    AddJson(command, options->json);
    return [options] {
        ShowGsd(*options);
        return DONE;
    };
}

Action AddGsdCheck(CLI::App& command) {
    const auto options = std::make_shared<GsdOptions>();
    command.add_option("FILE", options->paths, "Device description files")->required()->type_name("");
    AddJson(command, options->json);
    return [options] { return CheckGsd(*options) ? DONE : FAILED; };
}

} // namespace VeskTool
