// SPDX-License-Identifier: MIT
// Whole lives of a master module object, through every public operation. The input is a Script; Steps.h says
// what it is made of.
#include "fuzz/ModuleLife.h"
#include "fuzz/Steps.h"

#include "tests/support/DatabaseFileBuilder.h"
#include "vesk/hostinterface/MasterDpRam.h"
#include "vesk/mailbox/RequestBuilder.h"
#include "vesk/modules/dpvm/Vt22Module.h"
#include "vesk/modules/dpvm/config/DdbParser.h"

using namespace Vesk::Modules::DPVM;
namespace MasterDpRam = Vesk::HostInterface::MasterDpRam;
using Fuzz::MasterStep;
using Fuzz::Require;
using Response = std::shared_ptr<Vesk::Mailbox::IResponse>;

namespace {

/// Slave 3 in one fragment, slave 4 in three.
std::shared_ptr<Config::IBusConfig> Plant() {
    static const auto plant = [] {
        const Fuzz::Bytes parameters(237, 0x33);
        DatabaseFileBuilder file;
        file.Master();
        file.Slave(3, DatabaseFileBuilder::SlaveRecord({{0, 1, 2, 3}, {0, 1, 2, 3}}));
        file.Slave(4, DatabaseFileBuilder::SlaveRecord({{4, 5}, {6}, parameters, {0xF3}, parameters}));
        return Config::DdbParser::FromStream(Fuzz::ToStream(file.Build()));
    }();
    return plant;
}

class MasterLife : Fuzz::ModuleLife {
public:
    explicit MasterLife(std::span<const std::uint8_t> input);
    void Run();

private:
    std::shared_ptr<System::IFunc<void>> Callback();
    std::shared_ptr<System::IArgFunc<OperationMode_e, void>> ModeCallback();
    IDPVMModule::ResponseAction TakeAction();
    void Answered(unsigned char reaction, const Response& response);

    void Step(MasterStep step);
    void Raise(int indication);
    void ReportBoot();
    void ReportStatus();
    void Map(bool input);
    void Service();
    void Look();
    void Chain();
    void ModuleEvent();

    std::shared_ptr<System::IArray<unsigned char>> _in = System::Array<unsigned char>::Create(3500);
    std::shared_ptr<Vt22Module> _master;
};

MasterLife::MasterLife(std::span<const std::uint8_t> input)
    : ModuleLife(input, {{MasterDpRam::MAILBOX_IN, 288},
                         {MasterDpRam::INPUT_AREA, MasterDpRam::INPUT_AREA_SIZE},
                         {MasterDpRam::APPLICATION_INDICATION, 1},
                         {MasterDpRam::APPLICATION_INDICATION_COMPANION, 1}}) {}

void MasterLife::Run() {
    _master = Vt22Module::Create(_dpRam, Callback(), Callback(), ModeCallback(),
                                 Has(Fuzz::CONFIGURED) ? Plant() : nullptr);
    while (!_script.AtEnd())
        Step(static_cast<MasterStep>(_script.Byte() % static_cast<unsigned char>(MasterStep::COUNT)));
    CheckManners();
}

// ---- the application's callbacks

std::shared_ptr<System::IFunc<void>> MasterLife::Callback() {
    if (Has(Fuzz::WITH_BAD_CALLBACKS))
        return System::Func<void>::Create([] { throw Foreign(); });
    return Has(Fuzz::WITH_CALLBACKS) ? System::Func<void>::Create([] {}) : nullptr;
}

std::shared_ptr<System::IArgFunc<OperationMode_e, void>> MasterLife::ModeCallback() {
    if (!Has(Fuzz::WITH_CALLBACKS | Fuzz::WITH_BAD_CALLBACKS))
        return nullptr;
    return System::ArgFunc<OperationMode_e, void>::Create([this](OperationMode_e mode) {
        Require(mode == OperationMode_e::STOP || mode == OperationMode_e::CLEAR ||
                    mode == OperationMode_e::OPERATE,
                "only known modes are reported", static_cast<int>(mode));
        if (Has(Fuzz::WITH_BAD_CALLBACKS))
            throw Foreign();
    });
}

IDPVMModule::ResponseAction MasterLife::TakeAction() {
    const unsigned char reaction = _script.Byte();
    if (reaction % 8 == 0)
        return nullptr;
    return System::ArgFunc<Response, void>::Create(
        [this, reaction](const Response& response) { Answered(reaction, response); });
}

void MasterLife::Answered(unsigned char reaction, const Response& response) {
    Require(response->Data()->Count() <= 256 && response->Extended()->Count() == 8,
            "a response has the mailbox's sizes", *response);
    CheckAnswer(MasterDpRam::MAILBOX_IN);
    switch (reaction % 8) {
    case 1:
        throw Foreign();
    case 2:
        _mannerly = false;
        System::_env_throw(System::InvalidOperationException::Create(nullptr));
    case 3:
        return _master->GetLiveList(nullptr);
    case 4:
        return _master->MapInputData(reaction, _in, 0, 2);
    case 5:
        _mannerly = false;
        return _master->Reset();
    case 6:
        return _master->BeginInitialization();
    default:
        return;
    }
}

// ---- the steps

void MasterLife::Step(MasterStep step) {
    const auto own = [this](const std::function<void()>& call) { // of the state machine, not for applications
        _mannerly = false;
        Call(call);
    };
    switch (step) {
    case MasterStep::UPDATE:
        return Update(*_master);
    case MasterStep::RAISE:
        return Raise(_script.Byte());
    case MasterStep::REPORT_BOOT:
        return ReportBoot();
    case MasterStep::ANSWER:
        PutAnswer(MasterDpRam::MAILBOX_IN);
        return Raise(Vt22VelmoIndication_t::M_OUT | Vt22VelmoIndication_t::M_IN);
    case MasterStep::REPORT_STATUS:
        return ReportStatus();
    case MasterStep::POKE:
        _mannerly = false;
        return Poke();
    case MasterStep::MAP_INPUT:
        return Map(true);
    case MasterStep::MAP_OUTPUT:
        return Map(false);
    case MasterStep::CHANGE_INPUT: {
        const int place = _script.Byte();
        return _in->Set(place, _script.Byte());
    }
    case MasterStep::INITIALIZE:
        Call([&] { _master->BeginInitialization(); });
        return;
    case MasterStep::SERVICE:
        return Service();
    case MasterStep::LOOK:
        return Look();
    case MasterStep::RESET:
        return own([&] { _master->Reset(); });
    case MasterStep::POWER_ON:
        return own([&] { _master->PowerOn(); });
    case MasterStep::CREATE_AREAS:
        return own([&] { _master->CreateAreas(); });
    case MasterStep::CHANGE_STATE:
        return own([&] {
            _master->ChangeState(static_cast<Vt22Module::ModuleState_e>(_script.Byte() % 16 - 2));
            Vt22Module::StateToString(_master->State());
        });
    case MasterStep::CHAIN:
        _mannerly = false;
        return Chain();
    case MasterStep::MODULE_EVENT:
        return ModuleEvent();
    case MasterStep::COUNT:
        break;
    }
}

void MasterLife::Raise(int indication) {
    if (_dpRam->Peer())
        _mannerly = false;
    _dpRam->Poke(MasterDpRam::VELMO_INDICATION, {indication});
    _dpRam->irq = true;
}

void MasterLife::ReportBoot() {
    if (!_dpRam->Peer())
        _dpRam->Poke(MasterDpRam::Identity::OFFSET,
                     {2, 1, 0, 0, 0, 0, 0, 0, 0, 9, 0x02, 0x01, 0, 1, 0, 5, 3, 4, 5});
    Raise(Vt22VelmoIndication_t::POWER_ON | _script.Byte());
}

void MasterLife::ReportStatus() {
    namespace OutArea = MasterDpRam::OutArea;
    const auto word = [this](int offset) { _dpRam->Poke(offset, {0, _script.Byte()}); };
    word(OutArea::OFFSET + OutArea::INDICATION);
    word(OutArea::OFFSET + OutArea::MODULE_STATUS);
    word(OutArea::OFFSET + OutArea::FIELDBUS_STATUS);
    _dpRam->Poke(MasterDpRam::FieldbusStatus::OFFSET + MasterDpRam::FieldbusStatus::MASTER_STATUS,
                 {_script.Byte()});
    Raise(Vt22VelmoIndication_t::OUT | Vt22VelmoIndication_t::IN);
}

void MasterLife::Map(bool input) {
    const unsigned short offset = _script.Word();
    const auto array = TakeArray();
    const int arrayOffset = static_cast<short>(_script.Word());
    const int count = static_cast<short>(_script.Word());
    const std::string failure = Call([&] {
        input ? _master->MapInputData(offset, array ? _in : array, arrayOffset, count)
              : _master->MapOutputData(offset, array, arrayOffset, count);
    });
    const auto& mapped = input ? _in : array;
    if (failure.empty() && (arrayOffset < 0 || arrayOffset + count > mapped->Count()))
        _mannerly = false; // Update will refuse to leave the array
}

void MasterLife::Service() {
    const unsigned char which = _script.Byte();
    const auto action = TakeAction();
    const unsigned char address = _script.Byte();
    const unsigned char a = _script.Byte();
    const unsigned char b = _script.Byte();
    const auto data = TakeArray();
    const std::function<void()> services[] = {
        [&] { _master->SetOperationMode(static_cast<OperationMode_e>(a)); },
        [&] { _master->GetSlaveDiag(address, action); },
        [&] { _master->GetSlaveConfig(address, action); },
        [&] { _master->SetSlaveAddress(address, a, b, data, action); },
        [&] { _master->ReadSlaveInput(address, action); },
        [&] { _master->ReadSlaveOutput(address, action); },
        [&] { _master->StartSlaves(data, action); },
        [&] { _master->StopSlaves(data, action); },
        [&] { _master->GetLiveList(action); },
        [&] { _master->Class1Read(address, a, b, which, action); },
        [&] { _master->Class1Write(address, a, b, data, action); },
        [&] { _master->Class2Initiate(address, action); },
        [&] { _master->Class2Abort(address, a, b, action); },
        [&] { _master->Class2Read(address, a, b, which, action); },
        [&] { _master->Class2Write(address, a, b, data, action); },
        [&] {
            const auto request = Vesk::Mailbox::RequestBuilder::Create()
                                     ->Type(Vesk::Mailbox::MessageType::FIELDBUS)
                                     ->Name("any")
                                     ->Command(0x17)
                                     ->Data(data)
                                     ->Build();
            _master->Enqueue(a % 4 ? request : nullptr, action, static_cast<signed char>(b));
        },
    };
    Call(services[which % std::size(services)]);
}

void MasterLife::Look() {
    const auto checkList = [](const auto& list) {
        Require(list->Count() == 16, "a station list has 16 bytes");
    };
    Call([&] { checkList(_master->GetSlaveConfiguredList()); });
    Call([&] { checkList(_master->GetDataTransferList()); });
    Call([&] { checkList(_master->GetSlaveDiagnosticList()); });
    Call([&] { checkList(_master->GetDpv1ConnectionLiveList()); });
    Call([&] { Require(_master->BootloaderMajor() + _master->BootloaderMinor() >= 0, "an identity"); });
    Call([&] { static_cast<void>(_master->Serial()); });
    Call([&] { static_cast<void>(_master->SoftwareMajor()); });
    Call([&] { _master->VerifyIdentity(); });
    Call([&] { _master->GetDatabaseInfo(); });
    Require(_master->RecordsToDownload() <= 5, "no more is to be sent than there is");
    Require(!_master->Initialized() || _master->Booted(), "who is initialised has booted");
}

void MasterLife::Chain() {
    using Link = void (Vt22Module::*)(Response);
    static constexpr Link LINKS[] = {
        &Vt22Module::Init_GetDatabaseInfo,
        &Vt22Module::Init_StartInit,
        &Vt22Module::Init_VelmoInit,
        &Vt22Module::Init_EndInit,
        &Vt22Module::Download_GetDatabaseInfo,
        &Vt22Module::Download_StartDatabaseDownload,
        &Vt22Module::Download_Next,
        &Vt22Module::Download_EndDataBaseDownload,
    };
    const std::size_t which = _script.Byte() % (std::size(LINKS) + 1);
    if (which == std::size(LINKS)) {
        Call([&] { _master->Download_Begin(); });
        return;
    }
    const Response response = TakeResponse();
    Call([&] { (_master.get()->*LINKS[which])(response); });
}

void MasterLife::ModuleEvent() {
    const unsigned char event = _script.Byte();
    const unsigned char address = _script.Byte();
    VirtualModule::Module* const peer = _dpRam->Peer();
    if (!peer)
        return;
    try {
        if (event % 4 == 0)
            peer->RaiseFatal({event, address, 0, ~std::uint64_t{0}, {}, 0, "fuzz"});
        else if (event % 4 == 1)
            peer->RaiseLog();
        else
            peer->SetSlavePresent(address, event % 4 == 2);
    } catch (const std::logic_error&) {
        // it does not run as the master
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MasterLife({data, size}).Run();
    return 0;
}
