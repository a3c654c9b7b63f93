// SPDX-License-Identifier: MIT
#include "tools/vesk/jobs/Run.h"

#include "tools/vesk/explain/SlaveState.h"
#include "tools/vesk/files/DatabaseFile.h"
#include "tools/vesk/jobs/Jobs.h"
#include "tools/vesk/session/LinkOptions.h"
#include "tools/vesk/session/OwnSession.h"
#include "tools/vesk/session/PlantFlash.h"
#include "tools/vesk/session/StationLists.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Elements.h"
#include "tools/vesk/text/Failure.h"
#include "tools/vesk/text/Progress.h"
#include "tools/vesk/text/Text.h"

#include <algorithm>
#include <ostream>

namespace VeskTool {

using namespace Vesk::Modules::DPVM;
using Bytes = std::shared_ptr<System::IArray<unsigned char>>;
using ResponseAction = IDPVMModule::ResponseAction;

// A record that the test of the services may overwrite: slot 1 is the first module of a slave, and 200 lies
// in the indexes that manufacturers use for themselves.
static constexpr unsigned char TEST_SLOT = 1;
static constexpr unsigned char TEST_INDEX = 200;

static constexpr auto EXCHANGE_TIMEOUT = std::chrono::seconds(5);

static nlohmann::json StatesToJson(const Session& session) {
    nlohmann::json states = nlohmann::json::array();
    for (const Session::Step& step : session.Steps())
        states.push_back(
            {{"state", Vt22Module::StateToString(step.state).Value()}, {"milliseconds", step.milliseconds}});
    return states;
}

Run::Run(Options options, std::shared_ptr<Config::IBusConfig> config, Link link, const Console& console)
    : _options(std::move(options)), _config(std::move(config)), _link(std::move(link)), _console(console) {}

void Run::Execute() {
    const std::string name = _options.configPath.empty() ? "the plant of the examples" : _options.configPath;
    if (_link.machine)
        AskAtMachine(name);
    _report["config"] = name;
    _report["link"] = _link.description;
    Line("vesk run " + Harmless(name) + ", " + std::to_string(_config->SlaveAddresses()->Count()) +
         " slaves, on a " + _link.description);
    if (_options.priority != 0) {
        const int processor = RunInRealTime(_options.priority);
        Line("real-time priority " + std::to_string(_options.priority) + " on processor " +
             std::to_string(processor));
        _report["realTime"] = {{"priority", _options.priority}, {"processor", processor}};
    }
    FirstLife();
    SecondLife();
    Summarize();
}

void Run::AskAtMachine(const std::string& name) const {
    const std::string what = "replace the database of the " + _link.description + " by " + Harmless(name) +
                             ", and drive every output of every slave with a test pattern";
    if (!_options.yes && !_console.asks)
        throw CLI::ValidationError("this would " + what +
                                       ", and there is no terminal to ask at; give --yes to do it without "
                                       "being asked, or --virtual to take a virtual module",
                                   CLI::ExitCodes::RequiredError);
    _console.Confirm(_options.yes, "This would " + what + ". Do it?");
}

void Run::FirstLife() {
    Line("\nFirst life");
    OwnSession session(_link, _config);
    BringUp(session);
    ShowModule(session);
    ProcessImage image(*_config, session.Module());
    session.Reach(Need::INITIALISED);
    session.Reach(Need::OPERATING);
    CheckExchange(session, Configured());
    Line("  online, operation mode OPERATE");
    Exchange(session, image);
    UseServices(session);
    ShowBus(session);
    _report["firstLife"]["states"] = StatesToJson(session);
}

void Run::SecondLife() {
    Line("\nSecond life, on the same flash");
    OwnSession session(_link, _config);
    BringUp(session);
    session.Reach(Need::INITIALISED);
    if (session.Downloads() != 0)
        throw Failure("The second life downloaded the configuration " + std::to_string(session.Downloads()) +
                      " times instead of 0");
    Line("  nothing was downloaded");
    _report["secondLife"]["states"] = StatesToJson(session);
}

void Run::BringUp(Session& session) {
    session.OnState([this](const Session::Step& step) {
        Line("  " + Padded(Vt22Module::StateToString(step.state).Value(), 18) +
             Milliseconds(step.milliseconds));
    });
    session.Reach(Need::CONFIGURED);
}

void Run::ShowModule(Session& session) {
    IDPVMModule& module = session.Module();
    Line("  module type " + Hex(module.ModuleType()) + ", fieldbus type " + Hex(module.FieldbusType()) +
         ", vendor " + Hex(module.VendorId()) + ", serial " + Hex(module.Serial()) + ", firmware " +
         session.FirmwareVersion() + ", bootloader " + session.BootloaderVersion());
    _report["module"] = {
        {"moduleType", module.ModuleType()},     {"fieldbusType", module.FieldbusType()},
        {"vendorId", module.VendorId()},         {"serial", module.Serial()},
        {"software", session.FirmwareVersion()}, {"bootloader", session.BootloaderVersion()}};
    const auto database = module.GetDatabaseInfo();
    Line("  database " + Printable(database->Description.Value()) + ": " +
         std::to_string(database->NoOfSlaves) + " slaves, " + std::to_string(database->TotalInputLength) +
         " bytes in, " + std::to_string(database->TotalOutputLength) + " bytes out");
    _report["database"] = {{"description", database->Description.Value()},
                           {"slaves", database->NoOfSlaves},
                           {"inputLength", database->TotalInputLength},
                           {"outputLength", database->TotalOutputLength}};
}

void Run::Exchange(Session& session, ProcessImage& image) {
    const bool shows = !_options.json && _options.cycles > Options().cycles; // the usual number is soon over
    Progress progress(_console, "cycles", _options.cycles);
    Cycle realTime;
    if (_options.priority != 0)
        session.In(&realTime);
    const auto start = System::DateTime::Now();
    for (unsigned int cycle = 0; cycle < _options.cycles; ++cycle) {
        ExchangeOnce(session, image, cycle);
        if (shows)
            progress.Show(std::int64_t{cycle} + 1, 0, SecondsSince(start));
    }
    const double milliseconds = SecondsSince(start) * 1000;
    session.In(nullptr);
    Line("  " + std::to_string(_options.cycles) + " cycles of " + std::to_string(image.InputLength()) +
         " bytes in and " + std::to_string(image.OutputLength()) + " bytes out in " +
         Milliseconds(milliseconds) + ", every byte as expected");
    _report["exchange"] = {{"cycles", _options.cycles},
                           {"inputLength", image.InputLength()},
                           {"outputLength", image.OutputLength()},
                           {"milliseconds", milliseconds},
                           {"mismatches", 0}};
    if (_options.priority != 0)
        ShowCycle(realTime);
}

void Run::ShowCycle(const Cycle& cycle) {
    Line("  real time, " + std::to_string(cycle.Missed()) + " milliseconds missed");
    _report["realTime"]["missed"] = cycle.Missed();
    for (const auto& [name, key, histogram] : {std::tuple{"from Update to Update", "period", &cycle.Period()},
                                               {"Update", "update", &cycle.Work()}}) {
        Line("  " + std::string(name) + ": " + Joined(histogram->Lines(), "\n    "));
        _report["realTime"][key] = histogram->ToJson();
    }
}

/// Writes the pattern of the cycle and updates until it has come back whole. The data of one hand-over belong
/// together, so until then the output has to be that of the cycle before.
void Run::ExchangeOnce(Session& session, ProcessImage& image, unsigned int cycle) {
    image.Write(cycle);
    const auto end = std::chrono::steady_clock::now() + EXCHANGE_TIMEOUT;
    while (!image.Holds(cycle)) {
        if (cycle > 0 && !image.Holds(cycle - 1))
            throw Failure("Cycle " + std::to_string(cycle) + ": " + image.FirstDifference(cycle));
        if (std::chrono::steady_clock::now() > end) {
            CheckExchange(session, Configured());
            throw Failure("Cycle " + std::to_string(cycle) +
                          " does not come back: " + image.FirstDifference(cycle));
        }
        session.Update();
    }
}

/// Asks for `read`, and throws unless its answer is `written`.
static void CheckReadBack(Session& session, const Session::Service& read, const Bytes& written,
                          const std::string& what) {
    const Bytes data = session.Ask(read, what)->Data();
    if (!std::equal(data->Data(), data->Data() + data->Count(), written->Data(),
                    written->Data() + written->Count()))
        throw Failure(what + " returned " + HexBytes(*data) + " instead of " + HexBytes(*written));
}

void Run::UseServices(Session& session) {
    if (_config->SlaveAddresses()->Count() == 0)
        return Line("  no slave, so no acyclic services");
    IDPVMModule& module = session.Module();
    const unsigned char slave = _config->SlaveAddresses()->Get(0);
    const std::string record = " of record " + std::to_string(TEST_SLOT) + "/" + std::to_string(TEST_INDEX) +
                               " of slave " + std::to_string(slave);
    const Bytes first = System::Array<unsigned char>::Create({0x56, 0x54, 0x32, 0x32, 0x00, 0xFF});
    const Bytes second = System::Array<unsigned char>::Create({0xC2, 0x01});
    const auto length = [](const Bytes& data) { return static_cast<unsigned char>(data->Count()); };

    session.Ask([&](ResponseAction a) { module.Class1Write(slave, TEST_SLOT, TEST_INDEX, first, a); },
                "Class 1 write" + record);
    CheckReadBack(
        session, [&](ResponseAction a) { module.Class1Read(slave, TEST_SLOT, TEST_INDEX, length(first), a); },
        first, "Class 1 read" + record);
    Line("  Class 1 write and read" + record + ": " + HexBytes(*first));

    session.Ask([&](ResponseAction a) { module.Class2Initiate(slave, a); }, "Class 2 initiate");
    session.Ask([&](ResponseAction a) { module.Class2Write(slave, TEST_SLOT, TEST_INDEX, second, a); },
                "Class 2 write" + record);
    CheckReadBack(
        session,
        [&](ResponseAction a) { module.Class2Read(slave, TEST_SLOT, TEST_INDEX, length(second), a); }, second,
        "Class 2 read" + record);
    session.Ask([&](ResponseAction a) { module.Class2Abort(slave, 0, 0, a); }, "Class 2 abort");
    Line("  Class 2 write and read" + record + ": " + HexBytes(*second));
    _report["services"] = {{"slave", slave}, {"class1", HexBytes(*first)}, {"class2", HexBytes(*second)}};
}

void Run::ShowBus(Session& session) {
    IDPVMModule& module = session.Module();
    const Bytes liveList =
        session.Ask([&](ResponseAction a) { module.GetLiveList(a); }, "the live list")->Data();
    const auto show = [this](const char* name, const char* key, const std::vector<int>& stations) {
        Line("  " + Padded(name, 18) + Addresses(stations));
        _report["bus"][key] = stations;
    };
    show("live list", "liveList", LiveStations(*liveList));
    show("configured", "slaveConfigured", ListedStations(*module.GetSlaveConfiguredList()));
    show("data transfer", "dataTransfer", ListedStations(*module.GetDataTransferList()));
    show("diagnostics", "slaveDiagnostic", ListedStations(*module.GetSlaveDiagnosticList()));
    show("DP-V1 connections", "dpv1Connection", ListedStations(*module.GetDpv1ConnectionLiveList()));
    const std::string mode = session.Mode() ? ModeName(*session.Mode()) : "unknown";
    Line("  " + Padded("operation mode", 18) + mode);
    _report["bus"]["operationMode"] = mode;
    CheckExchange(session, Configured());
}

std::vector<int> Run::Configured() const {
    const auto addresses = Elements(*_config->SlaveAddresses());
    std::vector<int> configured(addresses.begin(), addresses.end());
    std::sort(configured.begin(), configured.end());
    return configured;
}

void Run::Summarize() {
    const auto violations = _link.violations ? _link.violations() : std::vector<std::string>();
    if (!violations.empty())
        throw Failure("The module saw the host break the protocol: " + violations.front());
    _report["ok"] = true;
    Line("\nAll held: " + std::to_string(_config->SlaveAddresses()->Count()) + " slaves, " +
         std::to_string(_options.cycles) + " cycles, 0 mismatches, 2 lives.");
    if (_options.json)
        _console.out << _report.dump(2) << "\n";
}

void Run::Line(const std::string& text) {
    if (!_options.json)
        _console.out << text << std::endl;
}

Action AddRun(CLI::App& command) {
    const auto options = std::make_shared<Run::Options>();
    command.add_option(
        "CONFIG", options->configPath,
        "Configuration database (.ddb) or bus description (.toml); without one the plant of the examples");
    command.add_option("--cycles", options->cycles, "Process data exchanges to check")->capture_default_str();
    command
        .add_option(
            "--rt", options->priority,
            "Exchange in a cycle of 1 ms with this real-time priority, 1 to 99, the memory locked, on "
            "the last processor that may be used, and show how even it was and what Update took "
            "(a virtual module in this process works within Update)")
        ->check(CLI::Range(1, 99))
        ->type_name("PRIORITY");
    command.add_flag("--yes", options->yes,
                     "Do not ask at a machine, whose lines are on a GPIO chip; needed where there is no "
                     "terminal");
    AddJson(command, options->json);
    const auto link = std::make_shared<LinkOptions>();
    link->AddTo(command);
    return [options, link] {
        const auto config =
            options->configPath.empty() ? Plant()->config : LoadDatabaseFile(options->configPath);
        Run(*options, config, link->Open(), Console::Standard()).Execute();
        return DONE;
    };
}

} // namespace VeskTool
