// SPDX-License-Identifier: MIT
// Keeps a bus running until it is told to end (SIGTERM, SIGINT): whatever goes wrong is written into a log,
// and a new module object starts over. Arguments: the DPRAM file, the lines file, the configuration database
// file and the log.
#include "Updating.h"
#include "vesk/lines/LinesFile.h"

#include "vesk/Vesk.h"

#include <algorithm>
#include <csignal>
#include <fstream>
#include <iomanip>
#include <iostream>

using namespace Vesk::Modules::DPVM;
using namespace std::chrono;
using Response = std::shared_ptr<Vesk::Mailbox::IResponse>;

static constexpr milliseconds SHORTEST_PAUSE(100);
static constexpr milliseconds LONGEST_PAUSE(10'000);

static volatile std::sig_atomic_t ended = 0;

/// One life of the module, until the program is to end. When it fails, the module object is gone and the
/// module in reset by the time the exception is caught.
static void Live(const char* dpRam, LinesFile& lines, const std::shared_ptr<Config::IBusConfig>& config,
                 const std::function<void()>& started) {
    const auto master = Vt22::CreateConfigured(dpRam, 0, lines.VelmoIrq_n(), lines.Reset_n(),
                                               lines.BootloaderEnable_n(), nullptr, nullptr, nullptr, config);
    UpdateUntil(*master, "the configuration is in the module", [&] { return ended || master->Configured(); });
    if (ended)
        return;
    master->BeginInitialization();
    UpdateUntil(*master, "the module is initialised", [&] { return master->Initialized(); });
    master->SetOperationMode(OperationMode_e::OPERATE);
    started();

    // The live list is asked for once a second, because a module that falls silent says nothing by itself.
    auto due = steady_clock::now();
    bool waiting = false;
    const auto answered = System::ArgFunc<Response, void>::Create([&](const Response&) { waiting = false; });
    for (auto next = due; !ended; std::this_thread::sleep_until(next += milliseconds(1))) {
        master->Update();
        if (!waiting && next >= due) {
            master->GetLiveList(answered);
            waiting = true;
            due = next + seconds(1);
        }
        if (next > due + seconds(10))
            throw std::runtime_error("the module has fallen silent");
    }
}

static void Write(std::ofstream& log, std::string failure) {
    const auto now = system_clock::to_time_t(system_clock::now());
    std::replace_if(
        failure.begin(), failure.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    log << std::put_time(std::gmtime(&now), "%FT%TZ ") << failure << std::endl;
}

int main(int argc, char** argv) try {
    if (argc != 5)
        throw std::runtime_error("usage: fault_log DPRAM LINES CONFIG LOG");
    for (const int signal : {SIGTERM, SIGINT})
        std::signal(signal, [](int) { ended = 1; });
    const auto lines = LinesFile::Open(argv[2]);
    const auto config = Config::DdbParser::FromPath(argv[3]);
    std::ofstream log(argv[4], std::ios::app);
    if (!log)
        throw std::runtime_error(std::string(argv[4]) + " cannot be written");

    for (milliseconds pause = SHORTEST_PAUSE; !ended; pause = std::min(2 * pause, LONGEST_PAUSE)) {
        try {
            Live(argv[1], *lines, config, [&] {
                std::cout << "running" << std::endl;
                pause = SHORTEST_PAUSE;
            });
        } catch (const std::shared_ptr<System::Exception>& failure) {
            Write(log, failure->ToString().Value()); // type and message, and what a fatal event left behind
        } catch (const std::exception& failure) {
            Write(log, failure.what());
        }
        if (!ended)
            std::this_thread::sleep_for(pause);
    }
    return 0;

} catch (const std::exception& failure) {

    std::cerr << failure.what() << "\n";
    return 1;
}
