// SPDX-License-Identifier: MIT
#include "endurance/sweep/FaultLife.h"

#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/FirmwareFileBuilder.h"
#include "tests/support/Values.h"

#include "vesk/mailbox/MailboxResponseException.h"

#include <algorithm>
#include <new>

using System::Array;
using VirtualModule::Counts;
namespace Outcomes = VirtualModule::Outcomes;

/// Slave 3 has 4 bytes in each direction, and a record of three fragments.
static Life::Config Plant() {
    const DatabaseFileBuilder::Bytes parameters(237, 0x33);
    const auto slave =
        DatabaseFileBuilder::SlaveRecord({{0, 1, 2, 3}, {0, 1, 2, 3}, parameters, {0xF3}, parameters});
    return DatabaseFileBuilder().Master().Slave(3, slave).Read();
}

static std::string Text(const std::vector<int>& values) {
    std::string text;
    for (const int value : values)
        text += std::to_string(value) + " ";
    return text;
}

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

FaultLife::Ending FaultLife::Run(Kind kind) {
    DropObject();
    return Live([this, kind] {
        if (kind == Kind::MASTER) {
            BeginMaster(Plant());
            Master();
        } else {
            BeginBootloader();
            Firmware();
        }
    });
}

FaultLife::Ending FaultLife::GoOn() {
    return Live([this] { Settle(); });
}

FaultLife::Ending FaultLife::RunAgain() {
    return Live([this] {
        if (master) {
            master->Reset();
            Master();
        } else {
            bootloader->Reset();
            Firmware();
        }
    });
}

FaultLife::Ending FaultLife::Live(const std::function<void()>& life) {
    _ending = {};
    updates = 0;
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

void FaultLife::Master() {
    online = false;
    mode = OperationMode::OFFLINE;
    UpdateUntil([this] { return master->Configured(); });
    Tell(master->GetDatabaseInfo()->ToString().Value());
    Exchange();
    UpdateUntil([this] { return IsIn(OperationMode::OPERATE); });

    const auto record = Array<unsigned char>::Create({0xDE, 0xAD, 0x00});
    TellAnswer([&](auto action) { master->Class1Write(3, 1, 2, record, action); });
    TellAnswer([&](auto action) { master->Class1Read(3, 1, 2, 3, action); });
    TellAnswer([&](auto action) { master->GetLiveList(action); });
    ChangeMode(OperationMode::STOP);
    ChangeMode(OperationMode::OPERATE);
    Settle();
    Tell("configured " + ::Text(Values(master->GetSlaveConfiguredList())));
    Tell("exchanging " + ::Text(Values(master->GetDataTransferList())));
}

/// Initialises, and sends patterns once around the bus.
void FaultLife::Exchange() {
    const auto in = Array<unsigned char>::Create(4);
    const auto out = Array<unsigned char>::Create(4);
    master->MapInputData(0, in, 0, 4);
    master->MapOutputData(0, out, 0, 4);
    const unsigned before = module.GetModule().Counted(Counts::REQUESTS);
    master->BeginInitialization();
    UpdateUntil([this] { return master->Initialized(); });
    Tell("initialised with " + std::to_string(module.GetModule().Counted(Counts::REQUESTS) - before) +
         " requests");
    for (int cycle = 1; cycle <= 50; ++cycle) {
        in->Set(cycle % 4, static_cast<unsigned char>(cycle));
        UpdateUntil([&] { return std::equal(in->Data(), in->Data() + 4, out->Data()); });
        Tell("data " + ::Text(Values(out)));
    }
}

void FaultLife::TellAnswer(const Service& service) {
    const Response answer = Ask(service);
    Vesk::Mailbox::MailboxResponseException::ThrowIfError(answer);
    Tell("answer " + ::Text(Values(answer->Data())));
}

void FaultLife::ChangeMode(OperationMode wanted) {
    master->SetOperationMode(wanted);
    UpdateUntil([&] { return mode == wanted; });
    Tell("mode " + std::to_string(static_cast<int>(wanted)));
}

void FaultLife::Firmware() {
    UpdateUntil([this] { return bootloader->Booted(); });
    int remaining = 0;
    bootloader->BeginFirmwareDownload(FirmwareFileBuilder().Program(600).Read(), &remaining);
    UpdateUntil([&] { return bootloader->EndDownload(&remaining); });
    Tell("valid " + std::to_string(flash.application.valid));
    Tell("image " + ::Text({flash.application.image.begin(), flash.application.image.end()}));
}

/// Whatever is on its way arrives.
void FaultLife::Settle() {
    Update(40);
}
