// SPDX-License-Identifier: MIT
#include "tests/support/FaultLife.h"

#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/FirmwareFileBuilder.h"
#include "tests/support/ModuleLines.h"
#include "tests/support/Values.h"

#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/modules/dpvm/CreateHostInterface.h"

#include <algorithm>
#include <new>

using namespace Vesk::Modules::DPVM;
using System::Array;
using VirtualModule::Counts;
namespace Outcomes = VirtualModule::Outcomes;

namespace {

constexpr std::int64_t MILLISECOND = 1'000'000;
constexpr int CYCLES = 50;
// Nothing in a life takes longer than this without a request in between.
constexpr std::int64_t PATIENCE = 15'000 * MILLISECOND;
// And no life is longer; a good one takes a tenth.
constexpr int MOST_UPDATES = 8'000;

/// Slave 3 has 4 bytes in each direction, and a record of three fragments.
std::shared_ptr<Config::IBusConfig> Plant() {
    const DatabaseFileBuilder::Bytes parameters(237, 0x33);
    const auto slave =
        DatabaseFileBuilder::SlaveRecord({{0, 1, 2, 3}, {0, 1, 2, 3}, parameters, {0xF3}, parameters});
    return DatabaseFileBuilder().Master().Slave(3, slave).Read();
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
    : flash(std::move(start)), module(flash, TestClock::Nanoseconds, {.faults = std::move(faults)}) {
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;
}

FaultLife::Ending FaultLife::Run(Kind kind) {
    DropObject();
    return Live([this, kind] {
        if (kind == Kind::MASTER) {
            CreateMaster();
            Master();
        } else {
            _bootloader = Vt22Bootloader::Create(OpenDpRam());
            _object = _bootloader.get();
            Firmware();
        }
    });
}

FaultLife::Ending FaultLife::GoOn() {
    return Live([this] { Settle(); });
}

FaultLife::Ending FaultLife::RunAgain() {
    return Live([this] {
        if (_master) {
            _master->Reset();
            Master();
        } else {
            _bootloader->Reset();
            Firmware();
        }
    });
}

void FaultLife::DropObject() {
    _object = nullptr;
    _master = nullptr;
    _bootloader = nullptr;
}

FaultLife::Ending FaultLife::Live(const std::function<void()>& life) {
    _ending = {};
    try {
        life();
        _ending.complete = true;
    } catch (const std::shared_ptr<System::Exception>& thrown) {
        _ending.type = thrown->TypeName().Value();
        _ending.message = thrown->Message().IsNull() ? "" : thrown->Message().Value();
    } catch (const WaitsInVain&) {
    } catch (const std::bad_alloc&) {
        _ending.type = "std::bad_alloc";
    }
    return std::move(_ending);
}

FaultLife::HostInterface FaultLife::OpenDpRam() {
    const auto [irq, reset, boot] = ModuleLines(module);
    HostInterface dpRam = CreateHostInterface(module.DpRamPath(), 0, irq, reset, boot);
    return between ? between(dpRam) : dpRam;
}

void FaultLife::CreateMaster() {
    _master = Vt22Module::Create(OpenDpRam(), System::Func<void>::Create([this] { _online = false; }),
                                 System::Func<void>::Create([this] { _online = true; }),
                                 System::ArgFunc<OperationMode_e, void>::Create(
                                     [this](OperationMode_e reached) { _mode = static_cast<int>(reached); }),
                                 Plant());
    _object = _master.get();
}

void FaultLife::Master() {
    _online = false;
    _mode = 0;
    UpdateUntil([&] { return _master->Configured(); });
    Tell(_master->GetDatabaseInfo()->ToString().Value());
    Exchange();
    UpdateUntil([&] { return _online && _mode == static_cast<int>(OperationMode_e::OPERATE); });

    const auto record = Array<unsigned char>::Create({0xDE, 0xAD, 0x00});
    using Action = IDPVMModule::ResponseAction;
    Ask([&](Action action) { _master->Class1Write(3, 1, 2, record, action); });
    Ask([&](Action action) { _master->Class1Read(3, 1, 2, 3, action); });
    Ask([&](Action action) { _master->GetLiveList(action); });
    ChangeMode(OperationMode_e::STOP);
    ChangeMode(OperationMode_e::OPERATE);
    Settle();
    Tell("configured " + Text(Values(_master->GetSlaveConfiguredList())));
    Tell("exchanging " + Text(Values(_master->GetDataTransferList())));
}

/// Initialises, and sends patterns once around the bus.
void FaultLife::Exchange() {
    const auto in = Array<unsigned char>::Create(4);
    const auto out = Array<unsigned char>::Create(4);
    _master->MapInputData(0, in, 0, 4);
    _master->MapOutputData(0, out, 0, 4);
    const unsigned before = module.GetModule().Counted(Counts::REQUESTS);
    _master->BeginInitialization();
    UpdateUntil([&] { return _master->Initialized(); });
    Tell("initialised with " + std::to_string(module.GetModule().Counted(Counts::REQUESTS) - before) +
         " requests");
    for (int cycle = 1; cycle <= CYCLES; ++cycle) {
        in->Set(cycle % 4, static_cast<unsigned char>(cycle));
        UpdateUntil([&] { return std::equal(in->Data(), in->Data() + 4, out->Data()); });
        Tell("data " + Text(Values(out)));
    }
}

void FaultLife::Ask(const Service& service) {
    using Answer = std::shared_ptr<Vesk::Mailbox::IResponse>;
    const auto answer = std::make_shared<Answer>();
    service(
        System::ArgFunc<Answer, void>::Create([answer](Answer response) { *answer = std::move(response); }));
    UpdateUntil([&] { return *answer != nullptr; });
    Vesk::Mailbox::MailboxResponseException::ThrowIfError(*answer);
    Tell("answer " + Text(Values((*answer)->Data())));
}

void FaultLife::ChangeMode(OperationMode_e mode) {
    _master->SetOperationMode(mode);
    UpdateUntil([&] { return _mode == static_cast<int>(mode); });
    Tell("mode " + std::to_string(_mode));
}

void FaultLife::Firmware() {
    UpdateUntil([&] { return _bootloader->Booted(); });
    int remaining = 0;
    _bootloader->BeginFirmwareDownload(FirmwareFileBuilder().Program(600).Read(), &remaining);
    UpdateUntil([&] { return _bootloader->EndDownload(&remaining); });
    Tell("valid " + std::to_string(flash.application.valid));
    Tell("image " + Text({flash.application.image.begin(), flash.application.image.end()}));
}

void FaultLife::Update() {
    clock.Advance(MILLISECOND / 4);
    _object->Update();
    ++_ending.updates;
}

/// Whatever is on its way arrives.
void FaultLife::Settle() {
    for (int i = 0; i < 40; ++i)
        Update();
}

/// Time passes faster while nothing is going on.
void FaultLife::UpdateUntil(const std::function<bool()>& reached) {
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
            clock.Advance(8 * MILLISECOND);
        Update();
        if (std::exchange(seen, events()) != events())
            since = TestClock::Nanoseconds();
    }
}
