// SPDX-License-Identifier: MIT
// An application that publishes its module on a bus of the test's own, and clients that ask it.
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ModuleLines.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TestClock.h"

#include "vesk/dbus/Plant.h"
#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/modules/dpvm/Vt22.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "org.libvesk.Control1.proxy.h"
#include "org.libvesk.Master1.proxy.h"
#include <algorithm>
#include <filesystem>
#include <future>
#include <list>
#include <regex>
#include <sched.h>
#include <set>

using namespace Vesk::Modules::DPVM;
using System::Array;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Vesk::DBus::Plant;
using Vesk::DBus::PlantOptions;
using Bytes = std::vector<std::uint8_t>;
using HeldBits = sdbus::Struct<std::uint16_t, std::uint8_t, std::uint8_t>; // offset, value, mask

namespace {

/// Waits for what another thread or process does.
template <class Condition>
bool Comes(const Condition& condition) {
    for (const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(2); !condition();
         std::this_thread::sleep_for(std::chrono::milliseconds(1)))
        if (std::chrono::steady_clock::now() > end)
            return false;
    return true;
}

/// A client of the first module, with a connection of its own. Signals come in a thread of theirs.
class Client final
    : public sdbus::ProxyInterfaces<org::libvesk::Master1_proxy, org::libvesk::Control1_proxy> {
public:
    explicit Client(const PrivateBus& bus, const std::string& path = "/org/libvesk/Master")
        : ProxyInterfaces(sdbus::createSessionBusConnectionWithAddress(bus.Address()),
                          "org.libvesk.Master.plant", path) {
        registerProxy();
    }

    ~Client() { unregisterProxy(); }

    std::string Seen() const {
        const std::lock_guard lock(_mutex);
        return _seen;
    }

private:
    void onSlaveCame(const std::uint8_t& address) override { See("came " + std::to_string(address)); }

    void onSlaveWent(const std::uint8_t& address) override { See("went " + std::to_string(address)); }

    void onModeChanged(const std::string& mode) override { See("mode " + mode); }

    void onFailed(const std::string& type, const std::string& message) override {
        See("failed " + type + ": " + message);
    }

    void See(const std::string& what) {
        const std::lock_guard lock(_mutex);
        _seen += what + "\n";
    }

    mutable std::mutex _mutex;
    std::string _seen;
};

/// The error that a call ends with: its name and message.
template <class Call>
std::string ErrorOf(const Call& call) {
    try {
        call();
        return "none";
    } catch (const sdbus::Error& error) {
        return error.getName() + ": " + error.getMessage();
    }
}

VirtualModule::Options WithFaults() {
    VirtualModule::Options options;
    options.faultsOnRequest = true;
    return options;
}

/// A module in software and the application with it, whose thread updates the plant while it runs. Time
/// passes with the updates.
class Application {
public:
    explicit Application(const PrivateBus& bus, PlantOptions options = {}) {
        Vesk::RuntimeConfig::_hostInterfaceDumpPath = "/dump";
        options.bus = bus.Address();
        options.control = true;
        options.requestTime =
            options.requestTime == PlantOptions().requestTime ? std::chrono::hours(1) : options.requestTime;
        Begin();
        plant = Plant::Publish("plant", master, config, options);
        while (!master->Configured())
            Step();
        Map();
        master->BeginInitialization();
        while (!master->Initialized() || !online)
            Step();
        for (int i = 0; i < 100; ++i)
            Step();
        EXPECT_TRUE(Comes([&] { return plant->Published(); })) << plant->Trouble();
    }

    ~Application() {
        Pause();
        Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;
    }

    void Step() {
        clock.Advance(250'000);
        plant->Update();
    }

    void Run() {
        _runs = true;
        _thread = std::thread([this] {
            while (_runs) {
                try {
                    Step();
                } catch (const std::exception& failure) {
                    _failure = failure.what();
                    _runs = false;
                }
                std::this_thread::yield();
            }
        });
    }

    /// What ended the running, if something did.
    std::string Pause() {
        _runs = false;
        if (_thread.joinable())
            _thread.join();
        return std::exchange(_failure, "");
    }

    std::string WaitForFailure() {
        EXPECT_TRUE(Comes([this] { return !_runs; }));
        return Pause();
    }

    /// Updates until the module has one more request, whose answer that fault strikes.
    void StepUntilRequest(const std::string& fault) {
        const auto requests = [this] { return module.GetModule().Counted(VirtualModule::Counts::REQUESTS); };
        module.GetModule().Strike(fault, 1);
        const unsigned before = requests();
        EXPECT_TRUE(Comes([&] {
            Step();
            return requests() != before;
        }));
    }

    void Begin() {
        const auto [irq, reset, boot] = ModuleLines(module);
        master = Vt22::CreateConfigured(
            module.DpRamPath(), 0, irq, reset, boot, nullptr,
            System::Func<void>::Create([this] { online = true; }),
            System::ArgFunc<OperationMode_e, void>::Create([](OperationMode_e) {}), config);
    }

    void Map() {
        master->MapInputData(0, in, 0, 4);
        master->MapOutputData(0, out, 0, 4);
    }

    TestClock clock;
    VirtualModule::Flash flash;
    VirtualModule::InProcess module{flash, TestClock::Nanoseconds, WithFaults()};
    const std::shared_ptr<Config::IBusConfig> config =
        DatabaseFileBuilder()
            .Master()
            .Slave(3, DatabaseFileBuilder::SlaveRecord({{1, 0}, {0, 1}}))
            .Slave(9, DatabaseFileBuilder::SlaveRecord({{2, 3}, {2, 3}}))
            .Read();
    const std::shared_ptr<Array<unsigned char>> in = Array<unsigned char>::Create({0xFF, 0x38, 5, 6});
    const std::shared_ptr<Array<unsigned char>> out = Array<unsigned char>::Create(4);
    std::shared_ptr<Vt22Module> master;
    std::shared_ptr<Plant> plant;
    bool online = false;

private:
    std::thread _thread;
    std::atomic<bool> _runs{false};
    std::string _failure;
};

PlantOptions Described() {
    using Vesk::DBus::Signal;
    PlantOptions options;
    options.configurationName = "line";
    options.slaveNames = {{3, "drive"}, {77, "spare"}};
    options.signals = {
        {.name = "drive.speed", .type = Signal::Type::INT16, .slave = 3, .scale = 0.5, .unit = "rpm"},
        {.name = "drive.setpoint",
         .direction = Signal::Direction::TO_BUS,
         .type = Signal::Type::INT16,
         .slave = 3,
         .littleEndian = true},
        {.name = "ready", .type = Signal::Type::BIT, .offset = 2, .bit = 2},
        {.name = "raw", .type = Signal::Type::BYTES, .offset = 2, .length = 2},
        {.name = "beyond", .type = Signal::Type::UINT32, .offset = 2},
    };
    return options;
}

TEST(PlantTest, ShowsAndChangesARunningModule) {
    const PrivateBus bus;
    Application application(bus, Described());
    application.master->Class2Initiate(9, nullptr); // it has a connection of its own, beside those of clients
    application.Run();
    Client client(bus);

    EXPECT_EQ(client.Name(), "plant");
    EXPECT_EQ(client.State(), "INITIALIZED");
    EXPECT_EQ(client.Problem(), (sdbus::Struct<std::string, std::string, std::string>()));
    EXPECT_THAT(client.LastFailure(), IsEmpty());
    EXPECT_EQ(client.ModuleType(), 0x0201);
    EXPECT_EQ(client.ConfigurationChecksum(), client.Database().get<1>());
    EXPECT_THAT(client.Database().get<0>(), ElementsAre(4, 4, 4, 4, 0x200, 0, 0, 0));
    EXPECT_EQ(client.ConfigurationName(), "line");
    EXPECT_TRUE(client.Online());
    EXPECT_EQ(client.OperationMode(), "OPERATE");
    using Slave =
        sdbus::Struct<std::uint8_t, std::string, std::uint16_t, std::uint16_t, bool, bool, bool, bool>;
    EXPECT_THAT(client.Slaves(), ElementsAre(Slave(3, "drive", 2, 2, true, true, false, true),
                                             Slave(9, "", 2, 2, true, true, false, true),
                                             Slave(77, "spare", 0, 0, false, false, false, false)));

    EXPECT_THAT(std::get<1>(client.GetProcessData()), ElementsAre(0xFF, 0x38, 5, 6));
    EXPECT_THAT(std::get<2>(client.GetProcessData()), ElementsAre(0x38, 0xFF, 5, 6)); // the slave's own order
    EXPECT_THAT(std::get<1>(client.GetSlaveData(3)), ElementsAre(0x38, 0xFF));
    EXPECT_THAT(std::get<2>(client.GetSlaveData(3)), ElementsAre(0x38, 0xFF));
    const auto now = std::chrono::system_clock::now().time_since_epoch() / std::chrono::hours(1);
    EXPECT_NEAR(static_cast<double>(std::get<0>(client.GetProcessData()) / 3'600'000'000'000ULL),
                static_cast<double>(now), 1);
    EXPECT_EQ(client.ListSignals().size(), 5);
    EXPECT_EQ(std::get<1>(client.GetSignal("drive.speed")).get<double>(), 0x38FF / 2.0);
    EXPECT_EQ(std::get<1>(client.GetSignal("drive.setpoint")).get<std::int64_t>(), -200);
    EXPECT_TRUE(std::get<1>(client.GetSignal("ready")).get<bool>());
    EXPECT_THAT(std::get<1>(client.GetSignal("raw")).get<Bytes>(), ElementsAre(5, 6));

    client.WriteClass1(3, 1, 2, {1, 2, 3});
    EXPECT_THAT(client.ReadClass1(3, 1, 2, 10), ElementsAre(1, 2, 3));
    client.WriteClass2(9, 1, 2, {4, 5});
    EXPECT_THAT(client.ReadClass2(9, 1, 2, 2), ElementsAre(4, 5));
    EXPECT_THAT(client.GetSlaveConfiguration(3), ElementsAre(0xC0));
    EXPECT_THAT(client.ReadSlaveInput(3), ElementsAre(0x38, 0xFF));
    EXPECT_GE(client.GetSlaveDiagnosis(3).size(), 6);
    EXPECT_FALSE(client.GetLiveList().empty());
    client.StopSlaves({9});
    EXPECT_TRUE(Comes([&] { return client.Seen().ends_with("went 9\n"); })) << client.Seen();
    EXPECT_EQ(client.Problem().get<0>(), "Slave 9 does not exchange data");
    client.StartSlaves({9});
    EXPECT_TRUE(Comes([&] { return client.Seen().ends_with("went 9\ncame 9\n"); })) << client.Seen();
    client.SetOperationMode("CLEAR");
    EXPECT_TRUE(Comes([&] { return client.OperationMode() == "CLEAR"; }));
    EXPECT_EQ(client.Problem().get<0>(), "The operation mode is CLEAR");

    auto statistics = client.Statistics();
    const auto messages = statistics["Messages"].get<std::uint64_t>();
    EXPECT_GT(messages, 10);
    EXPECT_GT(statistics["Interrupts"].get<std::uint64_t>(), messages) << "one for each, and those of data";
    const auto period = statistics["Period"]
                            .get<sdbus::Struct<std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t,
                                               std::vector<std::uint64_t>>>();
    EXPECT_EQ(period.get<1>(), 250'000);
    EXPECT_EQ(period.get<4>()[17], period.get<0>()) << "of 2^17 to below 2^18 ns, every one";
    EXPECT_EQ(application.Pause(), "");
    application.master->Class2Read(9, 1, 2, 2, nullptr);
    for (int i = 0; i < 100; ++i) // which a refusal would end
        application.Step();
}

TEST(PlantTest, RefusesWhatCannotBe) {
    const PrivateBus bus;
    Application application(bus, Described());
    application.Run();
    Client client(bus);
    const std::pair<std::string, std::function<void()>> CASES[]{
        {"org.libvesk.Error.Refused: 135: ", [&] { client.ReadClass1(50, 1, 2, 4); }},
        {"org.libvesk.Error.Refused: 135: ", [&] { client.ReadClass2(50, 1, 2, 4); }},
        {"org.freedesktop.DBus.Error.InvalidArgs: 127", [&] { client.GetSlaveDiagnosis(127); }},
        {"org.freedesktop.DBus.Error.InvalidArgs: 256 bytes",
         [&] { client.WriteClass1(3, 1, 2, Bytes(256)); }},
        {"org.freedesktop.DBus.Error.InvalidArgs: address 126", [&] { client.StopSlaves({126}); }},
        {"org.freedesktop.DBus.Error.InvalidArgs: \"UP\" is none", [&] { client.SetOperationMode("UP"); }},
        {"org.freedesktop.DBus.Error.InvalidArgs: slave 4 is not", [&] { client.GetSlaveData(4); }},
        {"org.freedesktop.DBus.Error.InvalidArgs: no signal has", [&] { client.GetSignal("nothing"); }},
        {"org.libvesk.Error.NotReady: the application does not map", [&] { client.GetSignal("beyond"); }},
        {"org.freedesktop.DBus.Error.InvalidArgs: offset 4 of",
         [&] {
             client.HoldInput({{2, 9, 0xFF}, {3, 9, 0xFF}, {4, 9, 0xFF}});
         }},
        {"org.freedesktop.DBus.Error.InvalidArgs: offset 2 is there twice",
         [&] {
             client.HoldInput({{2, 9, 0x0F}, {2, 9, 0xF0}});
         }},
        {"org.freedesktop.DBus.Error.InvalidArgs: offset 2 has a mask without",
         [&] {
             client.HoldInput({{2, 9, 0}});
         }},
        {"org.freedesktop.DBus.Error.InvalidArgs: 257 bytes",
         [&] { client.HoldInput(std::vector<HeldBits>(257)); }},
        {"org.freedesktop.DBus.Error.InvalidArgs: offset 3500 is behind", [&] { client.ReleaseInput(3500); }},
    };
    for (const auto& [error, call] : CASES)
        EXPECT_THAT(ErrorOf(call), HasSubstr(error));
    application.Pause();

    PlantOptions options;
    options.signals = {{.name = "a", .offset = 2, .slave = 3, .unit = ""}};
    const auto publish = [&](const char* name) {
        Plant::Publish(name, application.master, application.config, options);
    };
    EXPECT_THROW(publish("plant"), System::ArgumentException);
    options.signals.clear();
    EXPECT_THROW(publish("4plants"), System::ArgumentException);
    EXPECT_THROW(Plant::Publish("plant", nullptr, nullptr), System::ArgumentNullException);
}

TEST(PlantTest, HoldsBytesUntilTheirHolderLeaves) {
    const PrivateBus bus;
    Application application(bus);
    application.Run();
    Client watcher(bus);
    const auto input = [&] { return std::get<1>(watcher.GetProcessData()); };
    std::future<std::string> unanswered;
    {
        Client holder(bus);
        holder.HoldInput({{2, 99, 0xFF}, {3, 98, 0xFF}});
        EXPECT_THAT(ErrorOf([&] {
                        watcher.HoldInput({{1, 1, 0xFF}, {2, 1, 0xFF}});
                    }),
                    HasSubstr("Error.Held: offset 2 is held by :"));
        holder.HoldInput({{1, 0x39, 0x03}}); // the others are the application's
        holder.HoldInput({{1, 0x80, 0x82}});
        EXPECT_THAT(ErrorOf([&] {
                        holder.HoldInput({{2, 1, 0xFF}, {1, 0x00, 0x81}, {0, 1, 0xFF}, {4, 1, 0xFF}});
                    }),
                    HasSubstr("offset 4 of"));
        EXPECT_TRUE(Comes([&] { return input() == Bytes{0xFF, 0xB9, 99, 98}; }));
        EXPECT_EQ(watcher.Held().size(), 3);
        EXPECT_EQ(watcher.Held().front().get<1>(), 0x81);
        EXPECT_EQ(watcher.Held().front().get<2>(), 0x83);
        watcher.ReleaseInput(3);
        EXPECT_TRUE(Comes([&] { return input() == Bytes{0xFF, 0xB9, 99, 6}; }));
        application.Pause();
        const auto take = [](Client& client) { return ErrorOf([&] { client.HoldInput({{0, 1, 0x80}}); }); };
        Client rival(bus);
        auto one = std::async(std::launch::async, take, std::ref(rival));
        auto two = std::async(std::launch::async, take, std::ref(watcher));
        const auto ends = [](auto& call) {
            return call.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
        };
        EXPECT_TRUE(Comes([&] { return ends(one) || ends(two); })) << "while the application stands still";
        application.Run();
        EXPECT_NE(one.get() == "none", two.get() == "none");
        watcher.ReleaseInput(0);
        application.Pause();
        auto late = std::async(std::launch::async, [&] { return ErrorOf([&] { watcher.ReleaseInput(1); }); });
        while (late.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
            application.clock.Advance(3'600'000'000'000);
        EXPECT_THAT(late.get(), HasSubstr("Error.TimedOut"));
        application.Run();
        EXPECT_TRUE(Comes([&] {
            return input() == Bytes{0xFF, 0x38, 99, 6};
        })) << "it is released all the same";
        application.Pause();
        unanswered =
            std::async(std::launch::async, [&] { return ErrorOf([&] { Client(bus).GetLiveList(); }); });
        application.StepUntilRequest("mailbox-no-answer");
    }
    EXPECT_TRUE(Comes([&] {
        application.Step(); // for less time than a client's request has
        Bytes bytes(4);
        application.master->CopyInputData(bytes);
        return bytes == Bytes{0xFF, 0x38, 5, 6};
    }));
    EXPECT_THAT(watcher.Held(), IsEmpty());
    application.plant = nullptr;
    EXPECT_THAT(unanswered.get(), HasSubstr("Error.Failed"));
}

TEST(PlantTest, ShowsAFailureUntilTheApplicationGoesOn) {
    const PrivateBus bus;
    Application application(bus);
    Client client(bus);
    auto pending =
        std::async(std::launch::async, [&] { return ErrorOf([&] { Client(bus).GetLiveList(); }); });
    const auto fail = [&] {
        VirtualModule::FatalEvent event{};
        event.errorCode = 7;
        application.module.GetModule().RaiseFatal(event);
        application.Run();
        return application.WaitForFailure();
    };
    std::this_thread::sleep_for(std::chrono::milliseconds(100)); // more often than not the request is there
    EXPECT_THAT(fail(), HasSubstr("Vt22FatalEventException"));
    EXPECT_THAT(pending.get(),
                HasSubstr("org.libvesk.Error.Failed: Vesk.Modules.DPVM.Vt22FatalEventException"));
    EXPECT_TRUE(Comes([&] { return !client.LastFailure().empty(); }));
    auto failure = client.LastFailure();
    EXPECT_EQ(failure["Type"].get<std::string>(), "Vesk.Modules.DPVM.Vt22FatalEventException");
    EXPECT_EQ(failure["Dump"].get<std::string>(), "/dump");
    auto event = failure["FatalEvent"].get<std::map<std::string, sdbus::Variant>>();
    EXPECT_EQ(event["ErrorCode"].get<std::uint16_t>(), 7);
    EXPECT_THAT(client.Problem().get<1>(), HasSubstr("stopped itself"));
    EXPECT_TRUE(Comes([&] { return client.Seen().find("failed Vesk.Modules.DPVM.") != std::string::npos; }));

    application.master = nullptr;
    application.plant->SetMaster(nullptr);
    application.Begin();
    application.plant->SetMaster(application.master);
    while (!application.master->Configured())
        application.Step();
    application.Map();
    EXPECT_THAT(ErrorOf([&] { // the module is there, and not yet in use
                    auto asked = std::async(std::launch::async, [&] { client.GetLiveList(); });
                    while (asked.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
                        application.Step();
                    asked.get();
                }),
                HasSubstr("org.libvesk.Error.NotReady: the module is DOWNLOAD_COMPLETE"));
    EXPECT_TRUE(Comes([&] { return client.LastFailure().empty(); }));
    EXPECT_THAT(client.Problem().get<0>(), HasSubstr("on its way: DOWNLOAD_COMPLETE"));
}

TEST(PlantTest, LetsGoOfTheModuleInItsCallback) {
    const PrivateBus bus;
    Application application(bus);
    Client client(bus);
    const auto master = application.master;
    const auto inputAfter = [&](const auto& updated) {
        for (int i = 0; i < 100; ++i) { // until the module has taken it
            application.clock.Advance(250'000);
            updated->Update();
        }
        Bytes input(4);
        master->CopyInputData(input);
        return input;
    };
    const auto inCallback = [&](const std::function<void()>& letGo) {
        bool done = false;
        master->GetLiveList(System::ArgFunc<std::shared_ptr<Vesk::Mailbox::IResponse>, void>::Create(
            [&](const std::shared_ptr<Vesk::Mailbox::IResponse>&) {
                letGo();
                done = true;
            }));
        while (!done)
            application.Step();
        EXPECT_EQ(inputAfter(master), (Bytes{0xFF, 0x38, 5, 6})) << "the module lives on";
    };
    application.Run();
    client.HoldInput({{2, 99, 0xFF}});
    EXPECT_EQ(application.Pause(), "");
    EXPECT_EQ(inputAfter(application.plant), (Bytes{0xFF, 0x38, 99, 6}));
    inCallback([&] { application.plant->SetMaster(nullptr); });
    EXPECT_TRUE(Comes([&] { return client.State() == "POWER_OFF"; }));
    EXPECT_FALSE(client.Online());
    EXPECT_NE(client.Problem().get<0>(), "");
    application.plant->SetMaster(master);
    EXPECT_EQ(inputAfter(application.plant), (Bytes{0xFF, 0x38, 99, 6}));
    EXPECT_TRUE(Comes([&] { return client.Online(); }));
    inCallback([&] { application.plant = nullptr; });
}

/// Calls of a client that nobody answers yet.
struct Pending {
    Pending(const PrivateBus& bus, int calls)
        : client(sdbus::createSessionBusConnectionWithAddress(bus.Address())) {
        proxy = sdbus::createProxy(*client, "org.libvesk.Master.plant", "/org/libvesk/Master");
        proxy->finishRegistration();
        for (int i = 0; i < calls; ++i)
            proxy->callMethodAsync("GetProcessData")
                .onInterface("org.libvesk.Master1")
                .withTimeout(std::chrono::hours(1))
                .uponReplyInvoke(
                    [this](const sdbus::Error* error, std::uint64_t, const Bytes&, const Bytes&) {
                        const std::lock_guard lock(mutex);
                        answers.insert(error ? error->getName() : "");
                    });
        client->enterEventLoopAsync();
    }

    ~Pending() { client->leaveEventLoop(); }

    std::multiset<std::string> Answers() {
        const std::lock_guard lock(mutex);
        return answers;
    }

    std::unique_ptr<sdbus::IConnection> client;
    std::unique_ptr<sdbus::IProxy> proxy;
    std::mutex mutex;
    std::multiset<std::string> answers;
};

TEST(PlantTest, LetsNobodyPushTheOthersOut) {
    const PrivateBus bus;
    PlantOptions options;
    options.waitingRequests = 10;
    options.waitingOfOneClient = 4;
    options.requestTime = std::chrono::seconds(4);
    Application application(bus, options);
    // While the application stands still: one request is with the cycle, and four wait.
    Pending greedy(bus, 100); // a bus has limits of its own for more
    EXPECT_TRUE(Comes([&] { return greedy.Answers().size() == 95; }));
    EXPECT_THAT(greedy.Answers(), testing::Each("org.libvesk.Error.Busy"));
    std::list<Pending> others;
    for (int i = 0; i < 6; ++i)
        others.emplace_back(bus, 1);
    Pending late(bus, 1);
    EXPECT_TRUE(Comes([&] {
        return late.Answers().count("org.libvesk.Error.Busy") == 1 ||
               others.back().Answers().count("org.libvesk.Error.Busy") == 1;
    }));
    for (int i = 0; i < 1000; ++i)
        application.Step();
    application.Run();
    EXPECT_TRUE(Comes([&] {
        return greedy.Answers().count("") == 5 && late.Answers().size() == 1 &&
               std::ranges::all_of(others, [](Pending& other) { return other.Answers().size() == 1; });
    }));
    application.Pause();
    // And where it goes on to stand still, time ends what waits.
    Pending vain(bus, 2);
    EXPECT_TRUE(Comes([&] {
        application.clock.Advance(6'000'000'000); // nobody sees when the requests are there
        return vain.Answers().count("org.libvesk.Error.TimedOut") == 2;
    }));
    EXPECT_EQ(Client(bus).Statistics()["TimeOuts"].get<std::uint64_t>(), 2);
}

TEST(PlantTest, IsBackWhenTheBusIs) {
    PrivateBus bus;
    Application application(bus);
    application.Run();
    Client(bus).HoldInput({{2, 99, 0xFF}});
    application.Pause();
    auto asked = std::async(std::launch::async, [&] {
        const auto connection = sdbus::createSessionBusConnectionWithAddress(bus.Address());
        const auto proxy = sdbus::createProxy(*connection, "org.libvesk.Master.plant", "/org/libvesk/Master");
        return ErrorOf([&] { proxy->callMethod("GetLiveList").onInterface("org.libvesk.Master1"); });
    });
    application.StepUntilRequest("answer-late=20"); // when nobody waits for it any more
    bus.End();
    EXPECT_NE(asked.get(), "none");
    EXPECT_TRUE(Comes([&] { return !application.plant->Published(); }));
    EXPECT_NE(application.plant->Trouble(), "");
    application.Run();
    bus.Begin();
    EXPECT_TRUE(Comes([&] { return application.plant->Published(); })) << application.plant->Trouble();
    Client client(bus);
    EXPECT_EQ(client.State(), "INITIALIZED");
    EXPECT_TRUE(Comes([&] { return std::get<1>(client.GetProcessData()) == Bytes{0xFF, 0x38, 5, 6}; }));
    EXPECT_EQ(application.Pause(), "") << "it has not noticed";
}

TEST(PlantTest, LeavesTheSchedulingToTheCycle) {
    const PrivateBus bus;
    const sched_param none{};
    ASSERT_EQ(sched_setscheduler(0, SCHED_BATCH, &none), 0); // as SCHED_FIFO, but any user may
    const Application application(bus);
    std::multiset<int> policies;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task"))
        policies.insert(sched_getscheduler(std::stoi(thread.path().filename())));
    EXPECT_THAT(policies, ElementsAre(SCHED_OTHER, SCHED_BATCH));
    ASSERT_EQ(sched_setscheduler(0, SCHED_OTHER, &none), 0);
}

TEST(PlantTest, PublishesSeveralModulesOfAProcess) {
    const PrivateBus bus;
    Application application(bus);
    const auto sink = System::ArgFunc<bool, void>::Create([](bool) {});
    const TemporaryFolder folder;
    const auto other = Vt22::CreateUnconfigured(folder.Put("dpram", std::string(0x2000, 0)), 0,
                                                System::Func<bool>::Create([] { return true; }), sink, sink);
    auto beside = application.plant->PublishBeside("press", other, nullptr);
    EXPECT_THROW(application.plant->PublishBeside("press", other, nullptr), System::ArgumentException);
    const auto connection = sdbus::createSessionBusConnectionWithAddress(bus.Address());
    const auto manager = sdbus::createProxy(*connection, "org.libvesk.Master.plant", "/org/libvesk");
    std::map<sdbus::ObjectPath, std::map<std::string, std::map<std::string, sdbus::Variant>>> objects;
    EXPECT_TRUE(Comes([&] {
        manager->callMethod("GetManagedObjects")
            .onInterface("org.freedesktop.DBus.ObjectManager")
            .storeResultsTo(objects);
        return objects.size() == 2;
    }));
    auto& press = objects["/org/libvesk/Master/press"];
    EXPECT_EQ(press["org.libvesk.Master1"]["State"].get<std::string>(), "POWER_OFF");
    EXPECT_EQ(press.count("org.libvesk.Control1"), 0) << "nobody asked for it";
    EXPECT_EQ(objects["/org/libvesk/Master"].count("org.libvesk.Control1"), 1);
    beside = nullptr;
    EXPECT_TRUE(
        Comes([&] { return ErrorOf([&] { Client(bus, "/org/libvesk/Master/press").State(); }) != "none"; }));
}

/// Each element of an interface in a line: what a client may build on.
std::vector<std::string> Elements(std::string xml, const std::string& interface) {
    xml = std::regex_replace(xml, std::regex("<!--[^]*?-->"), "");
    const std::size_t begin = xml.find("<interface name=\"" + interface);
    xml = xml.substr(begin, xml.find("</interface>", begin) - begin);
    std::vector<std::string> elements;
    std::string owner;
    const std::regex element("<(method|signal|property|arg|annotation) ([^>]*?)/?>");
    const std::regex attribute("\\w+=\"[^\"]*\"");
    for (std::sregex_iterator match(xml.begin(), xml.end(), element), end; match != end; ++match) {
        const std::string attributes = (*match)[2];
        std::set<std::string> sorted;
        for (std::sregex_iterator one(attributes.begin(), attributes.end(), attribute); one != end; ++one)
            sorted.insert(one->str());
        std::string line = (*match)[1].str();
        for (const std::string& one : sorted)
            line += " " + one;
        if ((*match)[1] != "arg" && (*match)[1] != "annotation")
            elements.push_back(owner = line);
        else if (line.find("Method.Async") == std::string::npos)
            elements.push_back(owner + ": " + line);
    }
    return elements;
}

TEST(PlantTest, IsWhatTheInterfacesSay) {
    const PrivateBus bus;
    const Application application(bus);
    const auto connection = sdbus::createSessionBusConnectionWithAddress(bus.Address());
    const auto proxy = sdbus::createProxy(*connection, "org.libvesk.Master.plant", "/org/libvesk/Master");
    std::string xml;
    proxy->callMethod("Introspect").onInterface("org.freedesktop.DBus.Introspectable").storeResultsTo(xml);
    for (const char* interface : {"org.libvesk.Master1", "org.libvesk.Control1"}) {
        const auto file = TemporaryFolder::Read(std::string(SOURCE_DIR "/dbus/") + interface + ".xml");
        EXPECT_GT(Elements(file, interface).size(), 10);
        EXPECT_THAT(Elements(xml, interface), testing::UnorderedElementsAreArray(Elements(file, interface)));
    }
}

} // namespace
