// SPDX-License-Identifier: MIT
// A master without polling, for a controller that has other work: it sleeps until the module raises its
// interrupt, and calls Update then. A number of values goes to the bus, each one as soon as the one before
// has come back. Arguments: the DPRAM, the GPIO chip and the numbers of the interrupt, reset and bootloader
// lines on it, the configuration database file, and how many values; with "polled" as the last one it looks
// at the line each millisecond instead, for comparison.
#include "vesk/lines/GpioLines.h"

#include "vesk/Vesk.h"

#include <cerrno>
#include <chrono>
#include <functional>
#include <iostream>
#include <stdexcept>

using namespace Vesk::Modules::DPVM;
using System::Array;
using Clock = std::chrono::steady_clock;

static bool polled = false;

/// Calls Update when there is something to do, until `reached`: at once, because the interrupt may be there
/// already and the application may have changed something; then for each interrupt; each millisecond while
/// its answer is still to come; and after `rest` in any case, because the library looks at its time-outs only
/// then.
static void UpdateOnInterrupt(Vt22Module& master, const GpioLines& lines, std::chrono::milliseconds rest,
                              const std::function<bool()>& reached) {
    const auto end = Clock::now() + std::chrono::seconds(30);
    while (true) {
        lines.TakeInterrupts(); // those up to here: the Update that follows sees their level
        master.Update();
        if (reached())
            return;
        if (Clock::now() > end)
            throw std::runtime_error("30 s without getting on");
        const int interrupt = polled ? -1 : lines.InterruptDescriptor(); // poll passes over -1
        pollfd waiting{interrupt, POLLIN, 0}; // and the descriptors of the other work
        const auto sleep = master.OwesAnswer() ? std::chrono::milliseconds(1) : rest;
        if (poll(&waiting, 1, static_cast<int>(sleep.count())) < 0 && errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "poll");
    }
}

int main(int argc, char** argv) try {
    polled = argc == 9 && argv[8] == std::string("polled");
    if (argc != (polled ? 9 : 8))
        throw std::runtime_error("usage: event_driven DPRAM CHIP IRQ RESET BOOT CONFIG VALUES [polled]");
    const auto number = [&](int index) { return static_cast<unsigned int>(std::stoul(argv[index])); };
    const auto lines =
        GpioLines::Open(argv[2], {number(3), number(4), number(5)}, GpioLines::Interrupt::AWAITED);
    const auto config = Config::DdbParser::FromPath(argv[6]);
    const auto master =
        Vt22::CreateConfigured(argv[1], 0, lines->VelmoIrq_n(), lines->Reset_n(), lines->BootloaderEnable_n(),
                               nullptr, nullptr, nullptr, config);

    // The start goes from step to step without an interrupt too, so it gets a short rest.
    constexpr std::chrono::milliseconds starting{1};
    UpdateOnInterrupt(*master, *lines, starting, [&] { return master->Configured(); });
    const auto toBus = Array<unsigned char>::Create(1);
    const auto fromBus = Array<unsigned char>::Create(1);
    master->MapInputData(0, toBus, 0, 1);
    master->MapOutputData(0, fromBus, 0, 1);
    master->BeginInitialization();
    UpdateOnInterrupt(*master, *lines, starting, [&] { return master->Initialized(); });
    master->SetOperationMode(OperationMode_e::OPERATE);

    // In the cycle only time-outs of seconds are left.
    const std::chrono::milliseconds operating{polled ? 1 : 100};
    for (unsigned int value = 1; value <= number(7); ++value) {
        toBus->Set(0, static_cast<unsigned char>(value));
        UpdateOnInterrupt(*master, *lines, operating,
                          [&] { return fromBus->Get(0) == static_cast<unsigned char>(value); });
    }
    std::cout << number(7) << " values went to the bus and came back\n";
    return 0;

} catch (const std::exception& failure) {

    std::cerr << failure.what() << "\n";
    return 1;
}
