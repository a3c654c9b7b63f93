// SPDX-License-Identifier: MIT
#include "tools/vesk/session/RemoteSession.h"

#include "tools/vesk/session/Dumps.h"
#include "vesk/modules/dpvm/Vt22FatalEventException.h"

namespace VeskTool {

using namespace Vesk::Modules::DPVM;
using Vesk::DBus::RemoteModule;

RemoteSession::RemoteSession(std::shared_ptr<sdbus::IConnection> bus, Vesk::DBus::PublishedPlant plant)
    : Session(std::chrono::microseconds(500)), _bus(std::move(bus)), _plant(std::move(plant)) {
    RemoteSession::Restart();
}

RemoteModule& RemoteSession::Remote() {
    return dynamic_cast<RemoteModule&>(*_module);
}

void RemoteSession::Restart() {
    const Callbacks callbacks = End();
    Begin(RemoteModule::Create(_bus, _plant, callbacks.offline, callbacks.online, callbacks.mode));
}

Vt22Module& RemoteSession::Own() {
    throw Failure("The module is that of plant " + _plant.name +
                  ", and this is only for the program that has the module");
}

Session::State RemoteSession::ModuleState() const {
    return dynamic_cast<const RemoteModule&>(*_module).State();
}

void RemoteSession::UpdateModule() {
    try {
        _module->Update();
    } catch (const Vt22FatalEventException&) {
        Dumps::KeptIn(Remote().Properties().failure->dump);
        throw;
    }
}

void RemoteSession::Reach(Need need) {
    CheckAlive();
    if (need == Need::NOTHING)
        return;
    Update();
    if (need == Need::BOOTED ? !_module->Booted() : !_module->Initialized())
        throw Failure("The module of plant " + _plant.name + " is in " +
                      Vt22Module::StateToString(ModuleState()).Value() + ", and not yet as far as " +
                      (need == Need::BOOTED ? "BOOTED" : "INITIALIZED"));
}

std::shared_ptr<DatabaseInfo> RemoteSession::AskForDatabase() {
    auto database = Remote().GetDatabaseInfo();
    if (!database)
        throw Failure("Plant " + _plant.name + " has not read yet which database its module holds");
    return database;
}

void RemoteSession::TakePlaces(std::shared_ptr<Config::IBusConfig> places) {
    _inputs.TakePlaces(std::move(places));
}

void RemoteSession::SetInput(unsigned int address, std::size_t offset, std::span<const unsigned char> bytes,
                             std::span<const unsigned char> mask) {
    _inputs.Describe(AskForDatabase()->Description.Value());
    const auto places = _inputs.Places(address, offset, bytes.size());
    std::vector<RemoteModule::HeldBits> held;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        held.push_back({places[i], bytes[i], mask[i]});
    Ask([&](IDPVMModule::ResponseAction action) { Remote().HoldInput(held, action); },
        "to hold bits of the input area");
}

} // namespace VeskTool
