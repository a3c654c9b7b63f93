// SPDX-License-Identifier: MIT
#include "tools/vesk/files/DatabaseFile.h"

#include "tools/vesk/files/FileBytes.h"
#include "vesk/modules/dpvm/config/DdbParser.h"
#include "vesk/system/io/FileStream.h"

namespace VeskTool {

/// What the format says about a file of this length that the library's number alone does not explain; or
/// nothing.
static std::string LengthHint(const std::string& path) {
    constexpr std::int64_t line = 9;
    constexpr std::int64_t message = 288;
    const auto file =
        System::IO::FileStream::Create(path, System::IO::FileMode::OPEN, System::IO::FileAccess::READ);
    const std::int64_t length = file->Length();
    if (length >= line + message && (length - line) % message == 0)
        return "";
    return " (" + std::to_string(length) + " bytes; a database file has a checksum line of " +
           std::to_string(line) + " and messages of " + std::to_string(message) +
           ", so it is cut short or something else)";
}

std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> LoadDatabaseFile(const std::string& path) {
    try {
        return Vesk::Modules::DPVM::Config::DdbParser::FromPath(path);
    } catch (const std::exception& exception) {
        throw FileFailure(path, exception, [&path] { return LengthHint(path); });
    }
}

} // namespace VeskTool
