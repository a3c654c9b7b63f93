// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

namespace VeskTool {

class Session;

/// Plants, which are master modules that applications have and publish on D-Bus, and the options of every
/// command that say which one is meant: --plant, and --bus (or VESK_BUS in the environment). Without --bus it
/// is the system bus, and where that has no such plant the session bus.
class PublishedPlants {
public:
    struct Plant {
        std::string name;
        std::string state; // of the module object; empty where the application does not say
        unsigned int process = 0;
        std::string bus;
    };

    static void AddTo(CLI::App& program);

    /// What --plant names; empty for nothing.
    static const std::string& Named();

    /// All of them. Failure where there is no bus, or this program has none.
    static std::vector<Plant> All();

    /// A session with the module of that plant; from then on signals are watched. Failure where there is
    /// none.
    static std::unique_ptr<Session> Open(const std::string& name);

    /// A session with the plant of that process; null where it has none, or more than one, of which nobody
    /// knows the module, or where there is no bus. Signals have to be watched already.
    static std::unique_ptr<Session> OpenThatOf(long process);
};

} // namespace VeskTool
