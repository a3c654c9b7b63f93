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
#include <iostream>
#include <systemd/sd-daemon.h>

using namespace Vesk::Modules::DPVM;
using std::chrono::milliseconds;

static constexpr int PRIORITY = 49; // below the kernel's interrupt threads
static constexpr std::int16_t SET_POINT = 1000;

static volatile std::sig_atomic_t ends = 0;

/// Until a signal comes. Each second systemd is told several times that the cycle is alive.
static void Run(Vesk::DBus::Plant& plant, const Plant::Conveyor1& drive) {
    auto next = std::chrono::steady_clock::now();
    auto sign = next;
    while (!ends) {
        plant.Update();
        drive.SetSetpoint(SET_POINT);
        if (next >= sign) {
            sd_notify(0, "WATCHDOG=1");
            sign += milliseconds(250);
        }
        std::this_thread::sleep_until(next += milliseconds(1));
    }
}

int main(int argc, char** argv) try {
    if (argc != 7)
        throw std::runtime_error("usage: service DPRAM CHIP IRQ RESET BOOT CONFIG");
    for (const int signal : {SIGINT, SIGTERM})
        std::signal(signal, [](int) { ends = 1; });
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
    UpdateUntil(*plant, "the configuration is in the module", [&] { return master->Configured(); });
    const Plant::Conveyor1 drive;
    drive.Map(*master);
    master->BeginInitialization();
    UpdateUntil(*plant, "the module is initialised", [&] { return master->Initialized(); });
    master->SetOperationMode(OperationMode_e::OPERATE);

    RunInRealTime(PRIORITY); // this thread alone: the bus has one of its own
    sd_notify(0, "READY=1");
    Run(*plant, drive);
    return 0;

} catch (const std::exception& failure) {

    std::cerr << failure.what() << "\n";
    return 1;
}
