// SPDX-License-Identifier: MIT
#include "tests/support/FaultLife.h"

#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/FirmwareFileBuilder.h"
#include "tests/support/Values.h"

#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/modules/dpvm/Vt22.h"
#include "vesk/modules/dpvm/config/DdbParser.h"
#include "vesk/system/io/MemoryStream.h"

using namespace Vesk::Modules::DPVM;
using System::Array;
using VirtualModule::Counts;
namespace Outcomes = VirtualModule::Outcomes;

namespace {

constexpr std::int64_t MILLISECOND = 1'000'000;
// Nothing in a life takes longer than this without a request in between.
constexpr std::int64_t PATIENCE = 15'000 * MILLISECOND;
// And no life is longer; a good one takes a tenth.
constexpr int MOST_UPDATES = 20'000;

/// Slave 3 has 4 bytes in each direction, and a record of three fragments.
std::shared_ptr<Config::IBusConfig> Plant() {
    const DatabaseFileBuilder::Bytes parameters(237, 0x33);
    DatabaseFileBuilder file;
    file.Master(DatabaseFileBuilder::MasterRecord(1));
    file.Slave(
        3, DatabaseFileBuilder::SlaveRecord({{0, 1, 2, 3}, {0, 1, 2, 3}, parameters, {0xF3}, parameters}));
    return Config::DdbParser::FromStream(
        System::IO::MemoryStream::Create(Array<unsigned char>::Create(file.Build())));
}

std::string Text(const std::vector<int>& values) {
    std::string text;
    for (const int value : values)
        text += std::to_string(value) + " ";
    return text;
}

} // namespace

bool FaultLife::Ending::Is(const VirtualModule::Outcome& outcome, const Ending& good) const {
    if (&outcome == &Outcomes::SAME_DATA)
        return complete && data == good.data;
    if (&outcome == &Outcomes::OTHER_DATA)
        return complete && data != good.data;
    if (&outcome == &Outcomes::NO_ANSWER)
        return !complete && type.empty();
    return outcome.Is(type, message);
}

std::string FaultLife::Ending::Text() const {
    std::string text = complete ? "complete:" : type.empty() ? "waits in vain after" : type + ": " + message;
    if (type.empty())
        for (const std::string& line : data)
            text += "\n  " + line;
    return text;
}

FaultLife::FaultLife(VirtualModule::Flash start, std::vector<VirtualModule::Fault> faults)
    : flash(std::move(start)), module(flash, TestClock::Nanoseconds, [&] {
          VirtualModule::Options options;
          options.faults = std::move(faults);
          return options;
      }()) {
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;
}

FaultLife::Ending FaultLife::Run(Kind kind) {
    _ending = {};
    try {
        kind == Kind::MASTER ? Master() : Firmware();
        _ending.complete = true;
    } catch (const std::shared_ptr<System::Exception>& thrown) {
        _ending.type = thrown->TypeName().Value();
        _ending.message = thrown->Message().IsNull() ? "" : thrown->Message().Value();
    } catch (const WaitsInVain&) {
    }
    return std::move(_ending);
}

void FaultLife::Master() {
    const auto mode = std::make_shared<int>(0);
    const auto online = std::make_shared<int>(0);
    const auto master = Vt22::CreateConfigured(
        module.DpRamPath(), 0, System::Func<bool>::Create([this] { return module.VelmoIrq_n(); }),
        System::ArgFunc<bool, void>::Create([this](bool level) { module.Reset_n(level); }),
        System::ArgFunc<bool, void>::Create([this](bool level) { module.BootloaderEnable_n(level); }),
        System::Func<void>::Create([online] { *online = 0; }),
        System::Func<void>::Create([online] { *online = 1; }),
        System::ArgFunc<OperationMode_e, void>::Create(
            [mode](OperationMode_e reached) { *mode = static_cast<int>(reached); }),
        Plant());
    UpdateUntil(*master, [&] { return master->Configured(); });
    Tell(master->GetDatabaseInfo()->ToString().Value());
    Exchange(*master);
    UpdateUntil(*master, [&] { return *online == 1 && *mode == static_cast<int>(OperationMode_e::OPERATE); });

    const auto record = Array<unsigned char>::Create({0xDE, 0xAD, 0x00});
    using Action = IDPVMModule::ResponseAction;
    Ask(*master, [&](Action action) { master->Class1Write(3, 1, 2, record, action); });
    Ask(*master, [&](Action action) { master->Class1Read(3, 1, 2, 3, action); });
    Ask(*master, [&](Action action) { master->GetLiveList(action); });
    Update(*master, 200);
    Tell("configured " + Text(Values(master->GetSlaveConfiguredList())));
    Tell("exchanging " + Text(Values(master->GetDataTransferList())));
}

/// Initialises, and sends a few patterns once around the bus.
void FaultLife::Exchange(IDPVMModule& master) {
    const auto in = Array<unsigned char>::Create(4);
    const auto out = Array<unsigned char>::Create(4);
    master.MapInputData(0, in, 0, 4);
    master.MapOutputData(0, out, 0, 4);
    master.BeginInitialization();
    UpdateUntil(master, [&] { return master.Initialized(); });
    for (unsigned char value = 1; value < 6; ++value) {
        in->Set(value % 4, value);
        UpdateUntil(master, [&] { return Values(out) == Values(in); });
        Tell("data " + Text(Values(out)));
    }
}

void FaultLife::Ask(IDPVMModule& master, const Service& service) {
    using Answer = std::shared_ptr<Vesk::Mailbox::IResponse>;
    const auto answer = std::make_shared<Answer>();
    service(
        System::ArgFunc<Answer, void>::Create([answer](Answer response) { *answer = std::move(response); }));
    UpdateUntil(master, [&] { return *answer != nullptr; });
    Vesk::Mailbox::MailboxResponseException::ThrowIfError(*answer);
    Tell("answer " + Text(Values((*answer)->Data())));
}

void FaultLife::Firmware() {
    const auto bootloader = Vt22::CreateBootloaderModule(
        module.DpRamPath(), 0, System::Func<bool>::Create([this] { return module.VelmoIrq_n(); }),
        System::ArgFunc<bool, void>::Create([this](bool level) { module.Reset_n(level); }),
        System::ArgFunc<bool, void>::Create([this](bool level) { module.BootloaderEnable_n(level); }));
    UpdateUntil(*bootloader, [&] { return bootloader->Booted(); });
    int remaining = 0;
    bootloader->BeginFirmwareDownload(FirmwareFileBuilder().Program(600).Read(), &remaining);
    UpdateUntil(*bootloader, [&] { return bootloader->EndDownload(&remaining); });
    Tell("valid " + std::to_string(flash.application.valid));
    Tell("image " + Text({flash.application.image.begin(), flash.application.image.end()}));
}

void FaultLife::Update(Vesk::Modules::IModule& host, int times) {
    for (int i = 0; i < times; ++i) {
        _clock.Advance(MILLISECOND / 10);
        host.Update();
        ++_ending.updates;
    }
}

/// Time passes faster while nothing is going on.
void FaultLife::UpdateUntil(Vesk::Modules::IModule& host, const std::function<bool()>& reached) {
    const auto events = [this] {
        return module.GetModule().Counted(Counts::REQUESTS) + module.GetModule().Counted(Counts::BOOTS);
    };
    unsigned seen = events();
    std::int64_t since = TestClock::Nanoseconds();
    while (!reached()) {
        const std::int64_t waited = TestClock::Nanoseconds() - since;
        if (waited > PATIENCE || _ending.updates > MOST_UPDATES)
            throw WaitsInVain();
        if (waited > 50 * MILLISECOND)
            _clock.Advance(4 * MILLISECOND);
        Update(host, 1);
        if (std::exchange(seen, events()) != events())
            since = TestClock::Nanoseconds();
    }
}
