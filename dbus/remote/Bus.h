// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace sdbus {
class Error;
class IConnection;
} // namespace sdbus

namespace Vesk::DBus {

/// What goes wrong between a program and a plant, on the bus or at the plant, in a sentence.
class BusException : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A plant that is published: an application's master module.
struct PublishedPlant {
    std::string name;
    std::string state;   ///< of the module object, "INITIALIZED"; empty where its application does not answer
    std::string service; ///< its application's name on the bus, "org.libvesk.Master.press"
    std::string path;    ///< of its object there
    bool controls = false; ///< whether it lets others change something
    unsigned int process = 0;
};

/// A connection to a bus: "system", "session", or the one at an address such as "unix:path=/run/bus". No
/// thread serves it. BusException where it cannot be made.
std::shared_ptr<sdbus::IConnection> OpenBus(const std::string& bus);

/// The plants on it, by application. BusException where the bus does not tell.
std::vector<PublishedPlant> ListPlants(sdbus::IConnection& bus);

/// The same error in words for people; `who` begins the sentence.
BusException Told(const std::string& who, const sdbus::Error& error);

} // namespace Vesk::DBus
