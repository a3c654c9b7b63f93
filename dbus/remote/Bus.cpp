// SPDX-License-Identifier: MIT
#include "dbus/remote/Bus.h"

#include "dbus/Connect.h"
#include "dbus/remote/Names.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <map>
#include <sdbus-c++/sdbus-c++.h>

namespace Vesk::DBus {

namespace {

constexpr const char* DAEMON = "org.freedesktop.DBus";
constexpr auto CALL_TIMEOUT = std::chrono::seconds(5);

using Interfaces = std::map<std::string, std::map<std::string, sdbus::Variant>>;
using Objects = std::map<sdbus::ObjectPath, Interfaces>;

/// All that an application has on the bus; nothing where it does not answer.
Objects ObjectsOf(sdbus::IConnection& bus, const std::string& service) {
    Objects objects;
    try {
        const auto root = sdbus::createProxy(bus, service, ROOT_PATH);
        root->callMethod("GetManagedObjects")
            .onInterface("org.freedesktop.DBus.ObjectManager")
            .storeResultsTo(objects);
    } catch (const sdbus::Error&) {
        objects.clear();
    }
    return objects;
}

void AddPlants(std::vector<PublishedPlant>& plants, sdbus::IConnection& bus, const std::string& service,
               unsigned int process) {
    const Objects objects = ObjectsOf(bus, service);
    if (objects.empty()) // whoever asks it is told why
        plants.push_back({service.substr(NAME_PREFIX.size()), "", service, FIRST_PATH, false, process});
    for (const auto& [path, interfaces] : objects) {
        const auto master = interfaces.find(MASTER_INTERFACE);
        if (master == interfaces.end())
            continue;
        const auto text = [&](const char* property) {
            const auto found = master->second.find(property);
            return found == master->second.end() ? std::string() : found->second.get<std::string>();
        };
        plants.push_back(
            {text("Name"), text("State"), service, path, interfaces.contains(CONTROL_INTERFACE), process});
    }
}

} // namespace

std::shared_ptr<sdbus::IConnection> OpenBus(const std::string& bus) {
    try {
        std::shared_ptr<sdbus::IConnection> connection = Connect(bus);
        connection->setMethodCallTimeout(CALL_TIMEOUT);
        return connection;
    } catch (const sdbus::Error& error) {
        const bool named = bus == "system" || bus == "session";
        throw Told(named ? "The " + bus + " bus" : "The bus at " + bus, error);
    }
}

std::vector<PublishedPlant> ListPlants(sdbus::IConnection& bus) {
    try {
        const auto daemon = sdbus::createProxy(bus, DAEMON, "/org/freedesktop/DBus");
        std::vector<std::string> names;
        daemon->callMethod("ListNames").onInterface(DAEMON).storeResultsTo(names);
        std::sort(names.begin(), names.end());
        std::vector<PublishedPlant> plants;
        for (const std::string& name : names) {
            if (!name.starts_with(NAME_PREFIX))
                continue;
            std::uint32_t process = 0;
            daemon->callMethod("GetConnectionUnixProcessID")
                .onInterface(DAEMON)
                .withArguments(name)
                .storeResultsTo(process);
            AddPlants(plants, bus, name, process);
        }
        return plants;
    } catch (const sdbus::Error& error) {
        throw Told("The bus", error);
    }
}

static std::string WordsFor(const sdbus::Error& error) {
    const std::string& name = error.getName();
    const std::string& message = error.getMessage();
    const std::string answer = name.substr(name.rfind('.') + 1);
    if (answer == "AccessDenied")
        return " does not let this user do that: " + message;
    if (answer == "NoReply" && message.find("disconnected") != std::string::npos)
        return " has left the bus";
    if (answer == "NoReply" || answer == "Timeout" || answer == "ETIMEDOUT")
        return " does not answer";
    if (answer == "ServiceUnknown" || answer == "NameHasNoOwner")
        return " is not on the bus";
    return " cannot be used: " + answer + (message.empty() ? "" : ", " + message);
}

BusException Told(const std::string& who, const sdbus::Error& error) {
    BusException told(who + WordsFor(error));
    return told;
}

} // namespace Vesk::DBus
