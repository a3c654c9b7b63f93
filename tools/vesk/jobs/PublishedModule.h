// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/Module.h"

#include <memory>
#include <string>

namespace VeskTool {

/// A virtual module on D-Bus, as dbus/org.libvesk.VirtualModule1.xml says, so that a model of the plant, in
/// any language, plays its slaves. The object /org/libvesk/VirtualModule has the name
/// org.libvesk.VirtualModule.NAME. Everything happens in Serve(): no thread, so nothing comes between two
/// steps of the module.
class PublishedModule {
public:
    struct Options {
        std::string name;            // NAME; empty: the module is not published
        std::string bus = "session"; // or "system", or the address of another one
    };

    /// What is wrong with NAME; empty for nothing.
    static std::string CheckName(const std::string& name);

    /// Connects. The module outlives the object and takes faults on request. Failure if D-Bus does not let
    /// it, if somebody has the name, or if this program was built without D-Bus.
    PublishedModule(const Options& options, VirtualModule::Module& module);
    ~PublishedModule();
    PublishedModule(const PublishedModule&) = delete;
    PublishedModule& operator=(const PublishedModule&) = delete;

    /// Answers what has come in and tells what has changed; never waits. Failure if the bus is gone.
    void Serve();

private:
    class Object;

    std::unique_ptr<Object> _object;
};

} // namespace VeskTool
