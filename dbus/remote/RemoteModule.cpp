// SPDX-License-Identifier: MIT
#include "dbus/remote/RemoteModule.h"

#include "dbus/remote/Names.h"
#include "dbus/remote/RemoteException.h"
#include "vesk/mailbox/Response.h"
#include "vesk/modules/dpvm/Vt22FatalEventException.h"

#include <sdbus-c++/sdbus-c++.h>
#include <utility>

namespace Vesk::DBus {

using namespace Modules::DPVM;

namespace {

constexpr int LIST_SIZE = 16;
constexpr const char* PROPERTIES_INTERFACE = "org.freedesktop.DBus.Properties";

std::shared_ptr<System::IArray<unsigned char>> NewList() {
    return System::Array<unsigned char>::Create(LIST_SIZE);
}

/// Names in the list those of the slaves for which `flag` is set.
void Fill(System::IArray<unsigned char>& list, const std::vector<PlantSlave>& slaves,
          bool PlantSlave::*flag) {
    for (int i = 0; i < list.Count(); ++i)
        list.Set(i, 0);
    for (const PlantSlave& slave : slaves)
        if (slave.*flag && slave.address < 8 * LIST_SIZE)
            list.Data()[slave.address / 8] |= static_cast<unsigned char>(1 << slave.address % 8);
}

} // namespace

std::shared_ptr<RemoteException> RemoteException::Create(System::String typeName,
                                                         const std::string& message) {
    return System::MakeShared<RemoteException>(std::move(typeName),
                                               message.empty() ? System::String() : System::String(message));
}

std::shared_ptr<RemoteModule>
RemoteModule::Create(std::shared_ptr<sdbus::IConnection> bus, const PublishedPlant& plant,
                     std::shared_ptr<System::IFunc<void>> offlineCallback,
                     std::shared_ptr<System::IFunc<void>> onlineCallback,
                     std::shared_ptr<System::IArgFunc<OperationMode_e, void>> operationModeCallback) {
    return System::MakeShared<RemoteModule>(std::move(bus), plant, std::move(offlineCallback),
                                            std::move(onlineCallback), std::move(operationModeCallback));
}

RemoteModule::RemoteModule(std::shared_ptr<sdbus::IConnection> bus, const PublishedPlant& plant,
                           std::shared_ptr<System::IFunc<void>> offlineCallback,
                           std::shared_ptr<System::IFunc<void>> onlineCallback,
                           std::shared_ptr<System::IArgFunc<OperationMode_e, void>> operationModeCallback)
    : _bus(std::move(bus)),
      _published(plant),
      _who("Plant " + plant.name),
      _configured(NewList()),
      _dataTransfer(NewList()),
      _diagnostic(NewList()),
      _dpv1Connection(NewList()),
      _offlineCallback(std::move(offlineCallback)),
      _onlineCallback(std::move(onlineCallback)),
      _operationModeCallback(std::move(operationModeCallback)) {
    try {
        _plant = sdbus::createProxy(*_bus, _published.service, _published.path);
        Subscribe();
        Variants properties;
        _plant->callMethod("GetAll")
            .onInterface(PROPERTIES_INTERFACE)
            .withArguments(std::string(MASTER_INTERFACE))
            .storeResultsTo(properties);
        _properties.Take(properties);
    } catch (const sdbus::Error& error) {
        throw Told(_who, error);
    }
    Report();
}

RemoteModule::~RemoteModule() = default;

/// Before the properties are asked for, so that no change is missed.
void RemoteModule::Subscribe() {
    _plant->uponSignal("PropertiesChanged")
        .onInterface(PROPERTIES_INTERFACE)
        .call([this](const std::string& interface, const Variants& changed,
                     const std::vector<std::string>& invalidated) {
            if (interface == MASTER_INTERFACE)
                _arrived.emplace_back([=, this] { TakeChange(changed, invalidated); });
        });
    _plant->finishRegistration();
    const auto noteOwner = [this](sdbus::Message& message) {
        std::string name;
        std::string before;
        std::string now;
        message >> name >> before >> now;
        _gone = _gone || now.empty();
    };
    _ownerWatch = std::make_shared<sdbus::Slot>(
        _bus->addMatch("type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                       "member='NameOwnerChanged',arg0='" +
                           _published.service + "'",
                       noteOwner));
}

RemoteModule::State_e RemoteModule::State() const {
    for (int state = static_cast<int>(State_e::INITIALIZED); state > 0; --state)
        if (Vt22Module::StateToString(static_cast<State_e>(state)) == System::String(_properties.state))
            return static_cast<State_e>(state);
    return State_e::POWER_OFF;
}

bool RemoteModule::Configured() {
    return !_properties.configurationChecksum.empty() && State() >= State_e::DOWNLOAD_COMPLETE;
}

std::shared_ptr<DatabaseInfo> RemoteModule::GetDatabaseInfo() {
    if (_properties.databaseWords.size() != EXTENDED_SIZE)
        return nullptr;
    const std::string& text = _properties.databaseDescription;
    return DatabaseInfo::FromMailboxResponse(Mailbox::Response::Create(
        Mailbox::ErrorCode::NO_ERROR, System::Array<unsigned short>::Create(_properties.databaseWords),
        System::Array<unsigned char>::Create({text.begin(), text.end()})));
}

// ---- what the plant tells

void RemoteModule::Update() {
    try {
        while (_bus->processPendingRequest()) {
        }
    } catch (const sdbus::Error& error) {
        throw Told("The bus", error);
    }
    if (_gone)
        throw BusException(_who + " has left the bus");
    while (!_arrived.empty()) {
        const auto next = std::move(_arrived.front());
        _arrived.pop_front();
        next();
    }
    ThrowFailure();
}

void RemoteModule::TakeChange(const Variants& changed, const std::vector<std::string>& invalidated) {
    try {
        _properties.Take(changed);
    } catch (const sdbus::Error& error) {
        throw Told(_who, error);
    }
    Report();
    for (const std::string& name : invalidated)
        AskForProperty(name, [] {});
}

void RemoteModule::AskForProperty(const std::string& name, std::function<void()> then) {
    auto call = _plant->createMethodCall(PROPERTIES_INTERFACE, "Get");
    call << MASTER_INTERFACE << name;
    _plant->callMethod(
        call, [this, name, then = std::move(then)](sdbus::MethodReply& reply, const sdbus::Error* error) {
            if (!error) { // otherwise whoever asks next is told
                sdbus::Variant value;
                reply >> value;
                _arrived.emplace_back([this, now = Variants{{name, value}}] { TakeChange(now, {}); });
            }
            _arrived.push_back(then);
        });
}

/// Lets the callbacks and the lists say what the properties do.
void RemoteModule::Report() {
    Fill(*_configured, _properties.slaves, &PlantSlave::configured);
    Fill(*_dataTransfer, _properties.slaves, &PlantSlave::dataTransfer);
    Fill(*_diagnostic, _properties.slaves, &PlantSlave::diagnostic);
    Fill(*_dpv1Connection, _properties.slaves, &PlantSlave::dpv1Connection);
    if (_reportedOnline != _properties.online) {
        _reportedOnline = _properties.online;
        if (const auto& callback = _properties.online ? _onlineCallback : _offlineCallback)
            callback->Invoke();
    }
    if (_reportedMode != _properties.operationMode) {
        _reportedMode = _properties.operationMode;
        if (const auto mode = ModeOf(_reportedMode); mode && _operationModeCallback)
            _operationModeCallback->Invoke(*mode);
    }
}

void RemoteModule::ThrowFailure() const {
    if (!_properties.failure)
        return;
    const PlantFailure& failure = *_properties.failure;
    if (failure.event)
        System::_env_throw(Vt22FatalEventException::Create(failure.event));
    System::_env_throw(RemoteException::Create(failure.type, failure.message));
}

} // namespace Vesk::DBus
