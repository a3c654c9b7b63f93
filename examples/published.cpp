// SPDX-License-Identifier: MIT
// An application whose module others can look at while it runs: a control loop of 1 ms, published on D-Bus.
// One conveyor gets a set point; to the other it counts up a byte, which comes back. Every few seconds, and
// at its end, it tells how often another one came back, and how long the loop takes. Arguments: the DPRAM
// file, the lines file, the configuration database file (of examples/plant.toml), the bus ("system",
// "session" or an address), and for how many seconds it runs; without the last, until it is interrupted.
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
    options.slaveNames = {{3, "conveyor1"}, {4, "conveyor2"}};
    options.signals = {
        {.name = "conveyor1.speed", .type = Vesk::DBus::Signal::Type::INT16, .slave = 3, .unit = "rpm"}};
    return options;
}

/// The bytes of both conveyors, four each. Writes a new byte to the second one whenever the last one has come
/// back, and counts what is neither of the two. A lost slave's bytes are 0, which therefore is never sent.
class Counting {
public:
    explicit Counting(Vt22Module& master) {
        master.MapInputData(0, _toBus, 0, 8);
        master.MapOutputData(0, _fromBus, 0, 8);
        _toBus->Set(0, SET_POINT >> 8);
        _toBus->Set(1, SET_POINT & 0xFF);
    }

    void Step() {
        const unsigned char back = _fromBus->Get(4);
        if (back == _sent) {
            _before = _sent;
            _sent = static_cast<unsigned char>(_sent % 255 + 1);
            _toBus->Set(4, _sent);
        } else if (back != _before && back != 0) {
            ++mismatches;
        }
    }

    long mismatches = 0;

private:
    static constexpr int SET_POINT = 1000; // rpm

    std::shared_ptr<Array<unsigned char>> _toBus = Array<unsigned char>::Create(8);
    std::shared_ptr<Array<unsigned char>> _fromBus = Array<unsigned char>::Create(8);
    unsigned char _sent = 0, _before = 0;
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
