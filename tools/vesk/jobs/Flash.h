// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/session/Link.h"
#include "tools/vesk/text/Console.h"
#include "vesk/modules/bootloader/TarnFile.h"

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace VeskTool {

class BootloaderSession;

/// The firmware update: shows the file and the module, boots the module into its bootloader, asks, downloads
/// the file, and starts the module as the master again to see what runs now.
class Flash {
public:
    struct Options {
        std::string firmwarePath;
        bool bootloader = false;       // replace the bootloader instead of the application
        bool yes = false;              // do not ask
        bool dryRun = false;           // do everything but write
        std::set<std::string> force{}; // the checks of Checks() that only warn
    };

    /// The names of what an update is refused for, before anything is erased: "type", "checksum",
    /// "module-id" and "version".
    static const std::vector<std::string>& Checks();

    Flash(Options options, Link link, Console console);

    /// Failure, or an exception of the library, where something does not go well; Interrupted by a signal.
    void Execute();

private:
    /// What the master says about itself.
    struct Versions {
        std::string firmware;
        std::string bootloader;
    };

    /// "application" or "bootloader", what is replaced.
    std::string What() const;
    void Refuse(const std::string& check, const std::string& what) const;
    void CheckFile(Vesk::Modules::Bootloader::FirmwareType_e asked) const;
    void CheckVersion() const;
    void ShowFile();
    Versions RunMaster();
    void ShowMasterBefore();
    void ShowBootloader(BootloaderSession& session);
    void Download(BootloaderSession& session);
    void ShowMasterAfter();

    void Line(const std::string& text);

    Options _options;
    Link _link;
    Console _console;
    std::shared_ptr<Vesk::Modules::Bootloader::TarnFile> _file;
    Versions _before;
    std::optional<std::pair<unsigned int, unsigned int>> _replaced; // version of the program that goes
};

} // namespace VeskTool
