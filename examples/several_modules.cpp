// SPDX-License-Identifier: MIT
// Several modules in one process and one thread: none of them waits, and one that fails does not stop the
// others. Each exchanges a byte with its bus. Arguments: the configuration database file, which they share,
// and for each module its DPRAM file and its lines file.
#include "vesk/lines/LinesFile.h"

#include "vesk/Vesk.h"

#include <chrono>
#include <iostream>
#include <list>
#include <thread>

using namespace Vesk::Modules::DPVM;
using System::Array;

/// A module and how far the application has come with it.
class Bus {
public:
    Bus(const char* dpRam, const char* linesFile, const std::shared_ptr<Config::IBusConfig>& config) {
        const auto lines = LinesFile::Open(linesFile);
        _master = Vt22::CreateConfigured(dpRam, 0, lines->VelmoIrq_n(), lines->Reset_n(),
                                         lines->BootloaderEnable_n(), nullptr, nullptr, nullptr, config);
    }

    /// One step; true when there is nothing more to do.
    bool Step() {
        _master->Update();
        if (!_mapped && _master->Configured()) {
            _master->MapInputData(0, _toBus, 0, 1);
            _master->MapOutputData(0, _fromBus, 0, 1);
            _master->BeginInitialization();
            _mapped = true;
        }
        if (!_operating && _master->Initialized()) {
            _master->SetOperationMode(OperationMode_e::OPERATE);
            _toBus->Set(0, 42);
            _operating = true;
        }
        return _fromBus->Get(0) == 42;
    }

private:
    std::shared_ptr<Vt22Module> _master;
    std::shared_ptr<Array<unsigned char>> _toBus = Array<unsigned char>::Create(1);
    std::shared_ptr<Array<unsigned char>> _fromBus = Array<unsigned char>::Create(1);
    bool _mapped = false;
    bool _operating = false;
};

int main(int argc, char** argv) try {
    if (argc < 4 || argc % 2 != 0)
        throw std::runtime_error("usage: several_modules CONFIG DPRAM LINES [DPRAM LINES ...]");
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr; // one file for all of them would tell little
    const auto config = Config::DdbParser::FromPath(argv[1]);
    std::list<std::pair<const char*, Bus>> buses;
    for (int i = 2; i < argc; i += 2)
        buses.emplace_back(argv[i], Bus(argv[i], argv[i + 1], config));

    int failed = 0;
    for (; !buses.empty(); std::this_thread::sleep_for(std::chrono::microseconds(100)))
        buses.remove_if([&](auto& bus) {
            try {
                const bool done = bus.second.Step();
                if (done)
                    std::cout << bus.first << ": 42 went to the bus and came back\n";
                return done;
            } catch (const std::exception& failure) {
                std::cerr << bus.first << ": " << failure.what() << "\n";
                ++failed;
                return true; // its module goes into reset
            }
        });
    return failed == 0 ? 0 : 1;

} catch (const std::exception& failure) {

    std::cerr << failure.what() << "\n";
    return 1;
}
