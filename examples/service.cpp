// SPDX-License-Identifier: MIT
// An application as a service of a controller: the module's lines are on a GPIO chip, others may look at the
// plant on the system bus, a cycle of 1 ms runs in real time, and systemd begins the service again when it
// fails or its cycle stands still; packaging/vesk-plant.service is its unit. One conveyor gets a set point.
// Arguments: the DPRAM, the GPIO chip and the numbers of the interrupt, reset and bootloader lines on it, and
// the configuration database file (of examples/plant.toml).
#include "Plant.h"
#include "RealTime.h"
#include "Updating.h"
#include "vesk/dbus/Plant.h"
#include "vesk/lines/GpioLines.h"

#include "vesk/Vesk.h"

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <sysexits.h>
#include <systemd/sd-daemon.h>
#include <utility>

using namespace Vesk::Modules::DPVM;
using Response = std::shared_ptr<Vesk::Mailbox::IResponse>;
using std::chrono::milliseconds;

static constexpr int PRIORITY = 49; // below the kernel's interrupt threads
static constexpr std::int16_t SET_POINT = 1000;
static constexpr std::chrono::seconds SILENCE{70}; // a client's request may keep the module for 60

static volatile std::sig_atomic_t ends = 0;
static int failed = EXIT_FAILURE; // the status after a failure

/// What a signal ends the start with.
struct Ended {};

static void Reach(Vesk::DBus::Plant& plant, const char* what, const std::function<bool()>& reached) {
    UpdateUntil(plant, what, [&] { return ends ? throw Ended() : reached(); });
}

/// A configuration that the module does not take is not tried again and again: each time wears its flash out.
static void Configure(Vesk::DBus::Plant& plant, Vt22Module& master) try {
    Reach(plant, "the configuration is in the module", [&] { return master.Configured(); });

} catch (const std::exception&) {

    if (master.State() == Vt22Module::ModuleState_e::DOWNLOADING)
        failed = EX_CONFIG;
    throw;
}

/// Until a signal comes. Twice a second systemd is told that the cycle is alive, and the module is asked for
/// something, for one that has fallen silent says nothing by itself.
static void Run(Vesk::DBus::Plant& plant, Vt22Module& master, const Plant::Conveyor1& drive) {
    auto next = std::chrono::steady_clock::now();
    auto heard = next;
    bool waiting = false;
    const auto answered = System::ArgFunc<Response, void>::Create([&](const Response&) {
        heard = next;
        waiting = false;
    });
    for (auto due = next; !ends; std::this_thread::sleep_until(next += milliseconds(1))) {
        plant.Update();
        drive.SetSetpoint(SET_POINT);
        if (next < due)
            continue;
        due += milliseconds(500);
        sd_notify(0, "WATCHDOG=1");
        if (next - heard > SILENCE)
            throw std::runtime_error("the module has fallen silent");
        if (!std::exchange(waiting, true))
            master.GetLiveList(answered);
    }
}

int main(int argc, char** argv) try {
    if (argc != 7)
        throw std::runtime_error("usage: service DPRAM CHIP IRQ RESET BOOT CONFIG");
    for (const int signal : {SIGINT, SIGTERM})
        std::signal(signal, [](int) { ends = 1; });
    if (const char* folder = std::getenv("STATE_DIRECTORY")) // where a dump outlives the service
        Vesk::RuntimeConfig::_hostInterfaceDumpPath = folder + std::string("/hostinterface.bin");
    const auto number = [&](int index) { return static_cast<unsigned int>(std::stoul(argv[index])); };
    const auto lines = GpioLines::Open(argv[2], {number(3), number(4), number(5)});
    const auto config = Config::DdbParser::FromPath(argv[6]);
    if (config->Checksum() != Plant::CHECKSUM)
        throw std::runtime_error("the program and the configuration are of different plants");
    const auto master = Vt22::CreateConfigured(
        argv[1], 0, lines->VelmoIrq_n(), lines->Reset_n(), lines->BootloaderEnable_n(), nullptr, nullptr,
        System::ArgFunc<OperationMode_e, void>::Create([](OperationMode_e) {}), config);

    Vesk::DBus::PlantOptions options;
    options.control = true; // for the group that the bus's policy names
    const auto plant = Vesk::DBus::Plant::Publish("plant", master, config, options);
    Configure(*plant, *master);
    const Plant::Conveyor1 drive;
    drive.Map(*master);
    master->BeginInitialization();
    Reach(*plant, "the module is initialised", [&] { return master->Initialized(); });
    master->SetOperationMode(OperationMode_e::OPERATE);
    Reach(*plant, "the bus is in operation",
          [&] { return master->Online() && master->OperationMode() == OperationMode_e::OPERATE; });

    RunInRealTime(PRIORITY); // this thread alone: the bus has one of its own
    sd_notify(0, "READY=1");
    Run(*plant, *master, drive);
    return EXIT_SUCCESS;

} catch (const Ended&) {

    return EXIT_SUCCESS;

} catch (const std::exception& failure) {

    std::cerr << failure.what() << "\n";
    return failed;
}
