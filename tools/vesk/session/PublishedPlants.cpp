// SPDX-License-Identifier: MIT
#include "tools/vesk/session/PublishedPlants.h"

#include "tools/vesk/session/LinkOptions.h"
#include "tools/vesk/session/Session.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Failure.h"
#include "tools/vesk/text/Interruption.h"
#include "tools/vesk/text/Text.h"

#ifdef VESK_WITH_DBUS
#include "dbus/remote/Bus.h"
#include "tools/vesk/session/RemoteSession.h"
#endif

#include <functional>
#include <iostream>

namespace VeskTool {

static std::string named;
static std::string chosenBus;

void PublishedPlants::AddTo(CLI::App& program) {
    program
        .add_option("--plant", named,
                    "Ask the application that has published its module under this name; see vesk plants")
        ->type_name("NAME");
    program
        .add_option("--bus", chosenBus,
                    "The D-Bus of the plants: system, session or an address (system, then session)")
        ->envname("VESK_BUS")
        ->type_name("BUS");
}

const std::string& PublishedPlants::Named() {
    return named;
}

#ifdef VESK_WITH_DBUS

namespace {

using Bus = std::shared_ptr<sdbus::IConnection>;

std::vector<std::string> Buses() {
    return chosenBus.empty() ? std::vector<std::string>{"system", "session"}
                             : std::vector<std::string>{chosenBus};
}

/// Calls `look` for each plant on each bus until it returns true. BusException where no bus can be used, and
/// what `look` throws.
void ForEach(const std::function<bool(const Bus& bus, const Vesk::DBus::PublishedPlant& plant,
                                      const std::string& busName)>& look) {
    std::exception_ptr wrong;
    bool any = false;
    for (const std::string& name : Buses()) {
        Bus bus;
        std::vector<Vesk::DBus::PublishedPlant> plants;
        try {
            bus = Vesk::DBus::OpenBus(name);
            plants = Vesk::DBus::ListPlants(*bus);
        } catch (const Vesk::DBus::BusException&) {
            StopIfSignalled([](int) { return "while it looked for plants"; }); // which ends a call, too
            wrong = wrong ? wrong : std::current_exception();
            continue;
        }
        any = true;
        for (const auto& plant : plants)
            if (look(bus, plant, name))
                return;
    }
    if (!any)
        std::rethrow_exception(wrong);
}

std::unique_ptr<Session> OpenPlant(const Bus& bus, const Vesk::DBus::PublishedPlant& plant) {
    auto session = std::make_unique<RemoteSession>(bus, plant);
    LinkOptions::NoteOpened("plant " + plant.name);
    std::cerr << "vesk: the application of plant " << Harmless(plant.name) << " is asked, nothing is reset"
              << std::endl;
    return session;
}

} // namespace

std::vector<PublishedPlants::Plant> PublishedPlants::All() {
    std::vector<Plant> plants;
    ForEach([&](const Bus&, const Vesk::DBus::PublishedPlant& plant, const std::string& bus) {
        plants.push_back({plant.name, plant.state, plant.process, bus});
        return false;
    });
    return plants;
}

std::unique_ptr<Session> PublishedPlants::Open(const std::string& name) {
    WatchSignals();
    std::vector<std::string> others;
    std::unique_ptr<Session> session;
    ForEach([&](const Bus& bus, const Vesk::DBus::PublishedPlant& plant, const std::string&) {
        others.push_back(plant.name);
        if (plant.name == name)
            session = OpenPlant(bus, plant);
        return session != nullptr;
    });
    if (!session)
        throw Failure("No plant is published as " + name +
                      (others.empty() ? ", nor is any other" : "; there is " + Joined(others, ", ")));
    return session;
}

std::unique_ptr<Session> PublishedPlants::OpenThatOf(long process) {
    try {
        std::vector<std::pair<Bus, Vesk::DBus::PublishedPlant>> found;
        ForEach([&](const Bus& bus, const Vesk::DBus::PublishedPlant& plant, const std::string&) {
            if (plant.process == process)
                found.emplace_back(bus, plant);
            return false;
        });
        return found.size() == 1 ? OpenPlant(found[0].first, found[0].second) : nullptr;
    } catch (const Vesk::DBus::BusException&) {
        return nullptr; // then nobody has published it
    }
}

#else

static Failure NoBus() {
    return Failure("this vesk was built without sdbus-c++, which plants need");
}

std::vector<PublishedPlants::Plant> PublishedPlants::All() {
    throw NoBus();
}

std::unique_ptr<Session> PublishedPlants::Open(const std::string&) {
    throw NoBus();
}

std::unique_ptr<Session> PublishedPlants::OpenThatOf(long) {
    return nullptr;
}

#endif

} // namespace VeskTool
