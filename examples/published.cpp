// SPDX-License-Identifier: MIT
// An application whose module others can look at while it runs: a control loop of 1 ms, published on D-Bus.
// It counts up a byte that the slave sends back, and tells every few seconds, and at its end, how often
// another one came back, and how long the loop takes. Arguments: the DPRAM file, the lines file, the
// configuration database file, the bus ("system", "session" or an address), and for how many seconds it runs;
// without the last, until it is interrupted.
#include "Updating.h"
#include "vesk/dbus/Plant.h"
#include "vesk/lines/LinesFile.h"

#include "vesk/Vesk.h"

#include <csignal>
#include <iostream>
#include <limits>

using namespace Vesk::Modules::DPVM;
using System::Array;
using Vesk::DBus::Plant;
using Vesk::DBus::PlantOptions;

static constexpr int FIGURES_SECONDS = 10;

static volatile std::sig_atomic_t interrupted = 0;

static PlantOptions Options(const std::string& bus) {
    PlantOptions options;
    options.bus = bus;
    options.control = true; // whoever the bus lets may write records and hold bytes
    options.configurationName = "plant";
    options.slaveNames = {{3, "conveyor1"}};
    options.signals = {
        {.name = "conveyor1.speed", .type = Vesk::DBus::Signal::Type::INT16, .slave = 3, .unit = "rpm"}};
    return options;
}

/// Writes a new byte whenever the last one has come back, and counts what is neither of the two.
class Counting {
public:
    explicit Counting(Vt22Module& master) {
        master.MapInputData(0, _toBus, 0, 4);
        master.MapOutputData(0, _fromBus, 0, 4);
    }

    void Step() {
        const unsigned char back = _fromBus->Get(0);
        const unsigned char sent = _toBus->Get(0);
        if (back == sent)
            _toBus->Set(0, static_cast<unsigned char>(sent + 1));
        else if (back != static_cast<unsigned char>(sent - 1))
            ++mismatches;
    }

    long mismatches = 0;

private:
    std::shared_ptr<Array<unsigned char>> _toBus = Array<unsigned char>::Create(4);
    std::shared_ptr<Array<unsigned char>> _fromBus = Array<unsigned char>::Create(4);
};

static void PrintFigures(const Plant& plant, const Counting& counting) {
    const Plant::Times times = plant.GetTimes();
    std::cout << times.updates << " updates, " << counting.mismatches << " mismatches; an update took "
              << times.meanUpdate << " ns, at most " << times.greatestUpdate << "; the period was "
              << times.meanPeriod << " ns, " << times.leastPeriod << " to " << times.greatestPeriod << "\n"
              << std::flush;
}

int main(int argc, char** argv) try {
    if (argc != 5 && argc != 6)
        throw std::runtime_error("usage: published DPRAM LINES CONFIG BUS [SECONDS]");
    for (const int signal : {SIGINT, SIGTERM})
        std::signal(signal, [](int) { interrupted = 1; });
    const double seconds = argc == 6 ? std::stod(argv[5]) : std::numeric_limits<double>::infinity();
    const auto lines = LinesFile::Open(argv[2]);
    const auto config = Config::DdbParser::FromPath(argv[3]);
    const auto master = Vt22::CreateConfigured(
        argv[1], 0, lines->VelmoIrq_n(), lines->Reset_n(), lines->BootloaderEnable_n(), nullptr, nullptr,
        System::ArgFunc<OperationMode_e, void>::Create([](OperationMode_e) {}), config);

    const auto plant = Plant::Publish("plant", master, config, Options(argv[4]));
    UpdateUntil(*plant, "the configuration is in the module", [&] { return master->Configured(); });
    Counting counting(*master);
    master->BeginInitialization();
    UpdateUntil(*plant, "the module is initialised", [&] { return master->Initialized(); });
    master->SetOperationMode(OperationMode_e::OPERATE);

    using Clock = std::chrono::steady_clock;
    const auto begin = Clock::now();
    auto next = begin;
    auto figures = begin + std::chrono::seconds(FIGURES_SECONDS);
    do {
        plant->Update();
        counting.Step();
        if (next >= figures) {
            PrintFigures(*plant, counting);
            figures += std::chrono::seconds(FIGURES_SECONDS);
        }
        std::this_thread::sleep_until(next += std::chrono::milliseconds(1));
    } while (!interrupted && std::chrono::duration<double>(next - begin).count() < seconds);
    PrintFigures(*plant, counting);
    return counting.mismatches == 0 ? 0 : 1;

} catch (const std::exception& failure) {

    std::cerr << failure.what() << "\n";
    return 1;
}
