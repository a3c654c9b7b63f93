// SPDX-License-Identifier: MIT
// An application that is published on a bus of its own, and many clients at once: most ask this and that, one
// asks as fast as it can, one asks what makes no sense, and one never reads an answer. The exchange has to go
// on without a mismatch, every request has to end, and the memory must not grow.
//   vesk_clients [--seconds N] [--clients N]
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ModuleLines.h"
#include "tests/support/PrivateBus.h"

#include "vesk/dbus/Plant.h"
#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/modules/dpvm/Vt22.h"

#include "org.libvesk.Control1.proxy.h"
#include "org.libvesk.Master1.proxy.h"
#include <atomic>
#include <iostream>
#include <malloc.h>
#include <random>
#include <thread>

using namespace Vesk::Modules::DPVM;
using System::Array;
using Vesk::DBus::Plant;

static constexpr const char* NAME = "org.libvesk.Master.endured";
static constexpr const char* PATH = "/org/libvesk/Master";
static constexpr std::size_t MAY_GROW = 4 << 20;

static constexpr int UNREAD = 2000; // more would be the growth of the client itself

static std::atomic<bool> over{false}; // for the clients
static std::atomic<bool> applicationOver{false};
static std::atomic<long> answers{0};
static std::atomic<long> busy{0};
static std::atomic<long> wrong{0}; // answers and errors that should not be

/// What the application sees of its own exchange.
struct Exchange {
    long cycles = 0;
    long mismatches = 0;
    Plant::Times times{};
};

static Exchange RunApplication(const std::string& bus, std::atomic<bool>& ready) {
    const auto nanoseconds = [] {
        return std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
    };
    VirtualModule::Flash flash;
    VirtualModule::InProcess module(flash, nanoseconds);
    const auto [irq, reset, boot] = ModuleLines(module);
    const auto slave = DatabaseFileBuilder::SlaveRecord({{0, 1}, {0, 1}});
    const auto config = DatabaseFileBuilder().Master().Slave(3, slave).Read();
    const auto master =
        Vt22::CreateConfigured(module.DpRamPath(), 0, irq, reset, boot, nullptr, nullptr, nullptr, config);
    Vesk::DBus::PlantOptions options;
    options.bus = bus;
    options.control = true;
    options.signals = {{.name = "byte", .slave = 3, .unit = ""}};
    const auto plant = Plant::Publish("endured", master, config, options);
    const auto in = Array<unsigned char>::Create(2);
    const auto out = Array<unsigned char>::Create(2);
    while (!master->Configured())
        plant->Update();
    master->MapInputData(0, in, 0, 2);
    master->MapOutputData(0, out, 0, 2);
    master->BeginInitialization();
    while (!master->Initialized() || !plant->Published())
        plant->Update();
    ready = true;

    Exchange exchange;
    for (auto next = std::chrono::steady_clock::now(); !applicationOver; ++exchange.cycles) {
        plant->Update();
        if (out->Get(0) == in->Get(0))
            in->Set(0, static_cast<unsigned char>(in->Get(0) + 1));
        else if (out->Get(0) != static_cast<unsigned char>(in->Get(0) - 1))
            ++exchange.mismatches;
        std::this_thread::sleep_until(next += std::chrono::milliseconds(1));
    }
    exchange.times = plant->GetTimes();
    return exchange;
}

class Client final
    : public sdbus::ProxyInterfaces<org::libvesk::Master1_proxy, org::libvesk::Control1_proxy> {
public:
    explicit Client(const std::string& bus)
        : ProxyInterfaces(sdbus::createSessionBusConnectionWithAddress(bus), NAME, PATH) {
        registerProxy();
    }

    ~Client() { unregisterProxy(); }

    void AskThisAndThat(unsigned int seed) {
        std::minstd_rand random(seed);
        while (!over)
            Count([&] { Ask(random() % 8, static_cast<std::uint8_t>(seed)); });
    }

private:
    template <class Call>
    static void Count(const Call& call) {
        try {
            call();
            ++answers;
        } catch (const sdbus::Error& error) {
            const bool fair =
                error.getName() == "org.libvesk.Error.Busy" || error.getName() == "org.libvesk.Error.Held";
            ++(fair ? busy : wrong);
            if (!fair)
                std::cerr << error.what() << "\n";
        }
    }

    void Ask(unsigned int what, std::uint8_t record) {
        switch (what) {
        case 0:
            wrong += std::get<1>(GetProcessData()).size() != 2;
            break;
        case 1:
            WriteClass1(3, 1, record, {record});
            wrong += ReadClass1(3, 1, record, 1) != std::vector<std::uint8_t>{record};
            break;
        case 2:
            GetSignal("byte");
            break;
        case 3:
            HoldInput({{1, 7, 0xFF}}); // the same for all: whoever comes second is refused
            break;
        case 4:
            Statistics();
            break;
        default:
            wrong += State() != "INITIALIZED";
        }
    }

    void onSlaveCame(const std::uint8_t&) override {}

    void onSlaveWent(const std::uint8_t&) override {}

    void onModeChanged(const std::string&) override {}

    void onFailed(const std::string&, const std::string&) override {}
};

/// Sends requests until it is over, and looks at answers only where it `reads`.
static void Flood(const std::string& bus, bool reads) {
    const auto connection = sdbus::createSessionBusConnectionWithAddress(bus);
    const auto proxy = sdbus::createProxy(*connection, NAME, PATH);
    proxy->finishRegistration();
    std::atomic<int> outstanding{0};
    if (reads)
        connection->enterEventLoopAsync();
    while (!over)
        try {
            if (outstanding > (reads ? 100 : UNREAD)) {
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
                continue;
            }
            ++outstanding;
            proxy->callMethodAsync("GetProcessData")
                .onInterface("org.libvesk.Master1")
                .uponReplyInvoke([&](const sdbus::Error* error, std::uint64_t,
                                     const std::vector<std::uint8_t>&, const std::vector<std::uint8_t>&) {
                    ++(error ? busy : answers);
                    --outstanding;
                });
        } catch (const sdbus::Error&) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100)); // the bus takes no more of it
        }
    if (reads)
        connection->leaveEventLoop();
}

static void AskNonsense(const std::string& bus) {
    const auto connection = sdbus::createSessionBusConnectionWithAddress(bus);
    const auto proxy = sdbus::createProxy(*connection, NAME, PATH);
    for (int i = 0; !over; ++i)
        try {
            proxy->callMethod(i % 2 == 0 ? "GetSlaveData" : "Nothing")
                .onInterface("org.libvesk.Master1")
                .withArguments(std::string(static_cast<std::size_t>(i % 1000), 'x'));
            ++wrong;
        } catch (const sdbus::Error&) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
}

static int Argument(int argc, char** argv, const std::string& name, int otherwise) {
    for (int i = 1; i + 1 < argc; ++i)
        if (argv[i] == name)
            return std::stoi(argv[i + 1]);
    return otherwise;
}

int main(int argc, char** argv) try {
    const int seconds = Argument(argc, argv, "--seconds", 10);
    const int clients = Argument(argc, argv, "--clients", 50);
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;
    PrivateBus bus;
    std::atomic<bool> ready{false};
    Exchange exchange;
    std::thread application([&] { exchange = RunApplication(bus.Address(), ready); });
    while (!ready)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    std::vector<std::thread> clientThreads;
    for (int i = 0; i < clients; ++i)
        clientThreads.emplace_back(
            [&, i] { Client(bus.Address()).AskThisAndThat(static_cast<unsigned int>(i + 1)); });
    clientThreads.emplace_back([&] { Flood(bus.Address(), true); });
    clientThreads.emplace_back([&] { Flood(bus.Address(), false); });
    clientThreads.emplace_back([&] { AskNonsense(bus.Address()); });

    std::this_thread::sleep_for(std::chrono::seconds(seconds) / 2);
    const std::size_t before = ::mallinfo2().uordblks;
    std::this_thread::sleep_for(std::chrono::seconds(seconds) / 2);
    const std::size_t after = ::mallinfo2().uordblks;
    over = true;
    for (std::thread& thread : clientThreads)
        thread.join();
    applicationOver = true;
    application.join();

    const std::size_t grown = after > before ? after - before : 0;
    std::cout << answers << " answers, " << busy << " refused, " << wrong << " wrong; " << exchange.cycles
              << " cycles, " << exchange.mismatches << " mismatches; an update took "
              << exchange.times.meanUpdate << " ns, at most " << exchange.times.greatestUpdate << "; "
              << grown << " bytes more in the heap\n";
    return wrong == 0 && exchange.mismatches == 0 && answers > 0 && grown < MAY_GROW ? 0 : 1;

} catch (const std::exception& failure) {

    std::cerr << failure.what() << "\n";
    return 1;
}
