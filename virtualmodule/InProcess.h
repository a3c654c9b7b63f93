// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/Module.h"

namespace VirtualModule {

/// A module in the application's own process, with a DPRAM file of its own that lives as long as the object.
/// The application opens DpRamPath() and hands the three line operations to its driver; reading the interrupt
/// line is what steps the module, so that a whole life is deterministic and single-threaded.
class InProcess {
public:
    /// Makes the DPRAM file under TMPDIR, or /tmp; std::system_error if that fails. The flash outlives the
    /// object.
    InProcess(Flash& flash, Module::Clock clock, Options options = {});
    InProcess(const InProcess&) = delete;
    InProcess& operator=(const InProcess&) = delete;

    /// The file to open as the DPRAM, from offset 0.
    const std::string& DpRamPath() const { return _file.path; }

    /// Steps the module, then reads the interrupt line.
    bool VelmoIrq_n();
    /// Drives the reset line; the module notices a low level at once.
    void Reset_n(bool level);

    void BootloaderEnable_n(bool level) { _lines.DriveBootloaderEnable_n(level); }

    /// The module itself: its violations, its log, its bus.
    Module& GetModule() { return _module; }

private:
    struct File {
        File();
        ~File();
        File(const File&) = delete;
        File& operator=(const File&) = delete;

        std::string path;
        void* memory;
    };

    File _file;
    Lines _lines;
    Module _module;
};

} // namespace VirtualModule
