// SPDX-License-Identifier: MIT
#pragma once

#include "dbus/remote/RemoteModule.h"
#include "tools/vesk/session/ProcessData.h"
#include "tools/vesk/session/Session.h"

namespace VeskTool {

/// A session with the module of a plant, which an application has: it resets nothing and takes the module
/// nowhere. Where the life of the application's module has ended, so has nothing here: each Update says why,
/// until the application goes on. BusException where the plant does not answer or has gone.
class RemoteSession final : public Session {
public:
    RemoteSession(std::shared_ptr<sdbus::IConnection> bus, Vesk::DBus::PublishedPlant plant);

    const std::string& Name() const { return _plant.name; }

    Vesk::DBus::RemoteModule& Remote();

    /// Looks at the plant anew, which may be another application by now.
    void Restart() override;

    bool Owns() const override { return false; }

    Vesk::Modules::DPVM::Vt22Module& Own() override;

    State ModuleState() const override;

    /// Waits for nothing; Failure where the module is not as far as that.
    void Reach(Need need) override;

    std::shared_ptr<Vesk::Modules::DPVM::DatabaseInfo> AskForDatabase() override;

    void TakePlaces(std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> places) override;
    void SetInput(unsigned int address, std::size_t offset, std::span<const unsigned char> bytes,
                  std::span<const unsigned char> mask) override;

protected:
    void UpdateModule() override;

    std::string AfterSignal(int) const override { return "; the module is the application's"; }

private:
    std::shared_ptr<sdbus::IConnection> _bus;
    Vesk::DBus::PublishedPlant _plant;
    InputData _inputs;
};

} // namespace VeskTool
