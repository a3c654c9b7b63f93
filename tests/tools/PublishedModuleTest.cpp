// SPDX-License-Identifier: MIT
// A module in software on a D-Bus of the test's own, driven through each of its methods.
#ifdef VESK_WITH_SDBUS
#include "tests/support/ModuleFiles.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/RunTool.h"
#include "virtualmodule/faults/Faults.h"

#include <poll.h>
#include <regex>
#include <sdbus-c++/sdbus-c++.h>
#include <set>

namespace {

using testing::HasSubstr;
using Bytes = std::vector<std::uint8_t>;
using Slave = sdbus::Struct<std::uint8_t, std::uint16_t, bool, bool>;

constexpr const char* INTERFACE = "org.libvesk.VirtualModule1";
constexpr std::uint8_t PUMP = 5;

struct PublishedModuleTest : testing::Test, ModuleFiles {
    PublishedModuleTest() {
        proxy->uponSignal("InputChanged")
            .onInterface(INTERFACE)
            .call([this](std::uint8_t address, const Bytes& data) { inputs[address].insert(data); });
        proxy->uponSignal("PropertiesChanged")
            .onInterface("org.freedesktop.DBus.Properties")
            .call([this](const std::string&, const std::map<std::string, sdbus::Variant>& changed,
                         const std::vector<std::string>&) {
                for (const Slave& slave : changed.at("Slaves").get<std::vector<Slave>>())
                    exchanged |= slave.get<0>() == PUMP && slave.get<3>();
            });
        proxy->finishRegistration();
    }

    template <class... Arguments>
    void Call(const char* method, const Arguments&... arguments) {
        proxy->callMethod(method).onInterface(INTERFACE).withArguments(arguments...);
    }

    template <class Value>
    Value Get(const char* property) {
        return proxy->getProperty(property).onInterface(INTERFACE).template get<Value>();
    }

    /// Takes in signals until `reached`, for as long as a Process is waited for.
    void Await(const std::function<bool()>& reached) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(2);
        while (!reached()) {
            ASSERT_LT(std::chrono::steady_clock::now(), end);
            const auto waits = connection->getEventLoopPollData();
            pollfd socket{waits.fd, waits.events, 0};
            if (!connection->processPendingRequest())
                ::poll(&socket, 1, 100);
        }
    }

    nlohmann::json Diagnosis(unsigned address) {
        return RunTool::Json(With({"diag", std::to_string(address)}))["data"];
    }

    PrivateBus bus;
    std::unique_ptr<Process> module = StartModule({"--publish", "plant", "--bus", bus.Address()});
    std::unique_ptr<sdbus::IConnection> connection =
        sdbus::createSessionBusConnectionWithAddress(bus.Address());
    std::unique_ptr<sdbus::IProxy> proxy =
        sdbus::createProxy(*connection, "org.libvesk.VirtualModule.plant", "/org/libvesk/VirtualModule");
    std::map<unsigned, std::set<Bytes>> inputs;
    bool exchanged = false;
};

/// Every element of the interface with its attributes, those in alphabetical order.
std::vector<std::string> Elements(std::string xml) {
    xml = std::regex_replace(xml, std::regex("<!--[^]*?-->"), "");
    xml = xml.substr(xml.find("<interface name=\"" + std::string(INTERFACE)));
    xml = xml.substr(0, xml.find("</interface>"));
    std::vector<std::string> elements;
    const std::regex element("<(\\w+)([^>]*)>"), attribute("\\w+=\"[^\"]*\"");
    for (std::sregex_iterator i(xml.begin(), xml.end(), element), end; i != end; ++i) {
        const std::string all = (*i)[2];
        const std::set<std::string> attributes(std::sregex_token_iterator(all.begin(), all.end(), attribute),
                                               {});
        elements.push_back((*i)[1].str() + testing::PrintToString(attributes));
    }
    std::sort(elements.begin(), elements.end());
    return elements;
}

TEST_F(PublishedModuleTest, IsWhatItsDescriptionSays) {
    std::string xml;
    proxy->callMethod("Introspect").onInterface("org.freedesktop.DBus.Introspectable").storeResultsTo(xml);
    EXPECT_EQ(Elements(xml),
              Elements(TemporaryFolder::Read(SOURCE_DIR "/dbus/org.libvesk.VirtualModule1.xml")));
    const auto faults = Get<std::vector<std::string>>("Faults");
    for (const auto& kind : VirtualModule::Faults())
        EXPECT_EQ(std::count(faults.begin(), faults.end(), kind.name), 1);

    const std::pair<RunTool::Arguments, const char*> refused[]{
        {{"--publish", "plant", "--bus", bus.Address()}, "another program has this name"},
        {{"--publish", "plant", "--bus", "unix:path=/nowhere"}, "on the bus \"unix:path=/nowhere\": "},
        {{"--publish", "1st"}, "\"1st\" is not a name"}};
    for (const auto& [arguments, message] : refused)
        EXPECT_THAT(
            RunTool::Run(Process::Join({"module", "--dpram", folder.Path("d"), "--lines", folder.Path("l")},
                                       arguments))
                .err,
            HasSubstr(message));
    bus.End();
    EXPECT_EQ(module->Wait(), 1);
    EXPECT_THAT(module->Err(), HasSubstr("the connection to D-Bus is lost"));
}

TEST_F(PublishedModuleTest, AModelPlaysTheSlaves) {
    const auto refusal = [&](auto&&... call) {
        try {
            Call(call...);
        } catch (const sdbus::Error& error) {
            return error.getName() + ": " + error.getMessage();
        }
        return std::string("nothing is wrong");
    };
    const std::string invalid = "org.libvesk.Error.InvalidArgument: ";
    EXPECT_EQ(refusal("RemoveSlave", PUMP),
              invalid + "there is no slave 5: the module holds no database yet");
    RunTool::Text(With({"download", PLANT}));
    EXPECT_THAT(refusal("GetInput", std::uint8_t{6}),
                HasSubstr(invalid + "there is no slave 6: the slaves are 3, 4, 5, 8,"));
    EXPECT_EQ(refusal("SetOutput", PUMP, Bytes(13)), invalid + "slave 5: it sends 12 bytes, not 13");
    EXPECT_THAT(refusal("SetDiagnosis", PUMP, Bytes(239)),
                HasSubstr(invalid + "slave 5: a diagnosis has at most 238"));
    EXPECT_THAT(refusal("SetConfiguration", PUMP, Bytes()),
                HasSubstr(invalid + "slave 5: a configuration has 1 to 244"));
    EXPECT_THAT(refusal("Strike", std::string("daed"), 1u),
                HasSubstr(invalid + "fault \"daed\": there is no \"daed\""));

    Call("RemoveSlave", std::uint8_t{9});
    Call("SetIdentNumber", std::uint8_t{8}, std::uint16_t{0x1234});
    Call("SetConfiguration", std::uint8_t{14}, Bytes{0x20});
    Call("SetDiagnosis", PUMP, Bytes{2, 7});
    EXPECT_EQ(Diagnosis(9), "010000ff0000");
    EXPECT_EQ(Diagnosis(8), "420500ff1234");
    EXPECT_EQ(Diagnosis(14), "060500ff4b09");
    EXPECT_EQ(Diagnosis(PUMP), "080400012a140207");
    EXPECT_EQ(Get<std::vector<Slave>>("Slaves")[4], Slave(9, 0x31C4, false, false));
    Call("InsertSlave", std::uint8_t{9});
    EXPECT_EQ(Diagnosis(9), "0004000131c4");

    const Bytes sent{10, 11, 12, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    RunTool::Text(With({"set", "5", "0a0b0c", "--config", PLANT}));
    Await([&] { return inputs[PUMP].contains(sent) && exchanged; });
    Bytes got;
    proxy->callMethod("GetInput").onInterface(INTERFACE).withArguments(PUMP).storeResultsTo(got);
    EXPECT_EQ(got, sent);
    Call("SetOutput", PUMP, Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    EXPECT_THAT(RunTool::Text(With({"output", "5"})), HasSubstr("01 02 03 04 05 06 07 08 09 0a 0b 0c"));

    Call("Strike", std::string("boot-empty"), 0u);
    EXPECT_THAT(RunTool::Run(With({"identify"})).err, HasSubstr("Empty indication at bootup!"));
    Call("ClearFaults");
    const auto host = Start({"output", "5", "--watch", "--seconds", "3600"});
    ASSERT_TRUE(host->WaitForOut("01 02 03"));
    Call("PowerCycle");
    EXPECT_EQ(host->Wait(), 1);
    EXPECT_THAT(host->Err(), HasSubstr("ower")) << "it has booted again";
    ExpectRightHost(*module);
}

#ifdef EXAMPLES
TEST_F(PublishedModuleTest, ADriveThatIsLostDoesNotStandStill) {
    RunTool::Text(With({"download", PLANT}));
    constexpr std::uint8_t drive = 3;
    Call("SetOutput", drive, Bytes{0x03, 0xE8, 0, 0}); // 1000 rpm, whatever it is told
    Process example(EXAMPLES "/cyclic_control", {dpRam, lines, PLANT});
    Await([&] { return inputs[drive].contains({0x03, 0xB6, 0, 0}); }); // it is to slow down
    Call("RemoveSlave", drive);
    EXPECT_EQ(example.Wait(), 1);
    EXPECT_EQ(example.Out() + example.Err(),
              "running at 1000 rpm\nthe drive is lost, and may not stand still\n");
}
#endif

TEST_F(PublishedModuleTest, TheExampleFollowsItsSetPoint) {
    constexpr const char* python = "/usr/bin/python3";
    if (RunTool::Run({"-c", "import dbus, gi"}, python).status != 0)
        GTEST_SKIP() << "python3-dbus and python3-gi are not there";
    Process model(python, {SOURCE_DIR "/examples/plant_model.py", "plant", bus.Address()});
    ASSERT_TRUE(model.WaitForOut("ready")) << model.Err();
    RunTool::Text(With({"download", PLANT}));
    const std::string script =
        "(echo set 3 0064ffff; while sleep 0.05; do echo output 3; done) | exec " VESK_TOOL
        " shell --config " +
        std::string(PLANT) + " --dpram " + dpRam + " --lines " + lines;
    Process host("/bin/sh", {"-c", script});
    EXPECT_TRUE(host.WaitForOut("00 64 00 00 ")) << host.Out() << host.Err() << model.Err();
    host.End(SIGKILL);
}

} // namespace
#endif
