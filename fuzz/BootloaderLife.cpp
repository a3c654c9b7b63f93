// SPDX-License-Identifier: MIT
// Whole lives of a bootloader module object, through every public operation. The input is a Script; Steps.h
// says what it is made of.
#include "fuzz/ModuleLife.h"
#include "fuzz/Steps.h"

#include "tests/support/FirmwareFileBuilder.h"
#include "vesk/hostinterface/BootloaderDpRam.h"
#include "vesk/modules/dpvm/Vt22Bootloader.h"

using Fuzz::BootloaderStep;
using Fuzz::Require;
using Vesk::Handshake::VelmoIndication_t;
using Vesk::Modules::Bootloader::TarnFile;
using Vesk::Modules::DPVM::Vt22Bootloader;
namespace DpRam = Vesk::HostInterface::BootloaderDpRam;

namespace {

class BootloaderLife : Fuzz::ModuleLife {
public:
    explicit BootloaderLife(std::span<const std::uint8_t> input);
    void Run();

private:
    std::shared_ptr<TarnFile> TakeFirmware();

    void Step(BootloaderStep step);
    void Raise(int changed);
    void ReportBoot();
    void Download();
    void EndDownload();
    void Look();
    void Segments();

    std::shared_ptr<Vt22Bootloader> _bootloader;
};

BootloaderLife::BootloaderLife(std::span<const std::uint8_t> input)
    : ModuleLife(input, {{DpRam::MAILBOX_IN, 288}, {DpRam::APPLICATION_INDICATION, 1}}) {}

void BootloaderLife::Run() {
    _bootloader = Vt22Bootloader::Create(_dpRam);
    while (!_script.AtEnd())
        Step(static_cast<BootloaderStep>(_script.Byte() % static_cast<unsigned char>(BootloaderStep::COUNT)));
    CheckManners();
}

std::shared_ptr<TarnFile> BootloaderLife::TakeFirmware() {
    static const std::shared_ptr<TarnFile> FILES[] = {
        FirmwareFileBuilder().Program(600).Read(),
        FirmwareFileBuilder().Program(1).Read(),
        FirmwareFileBuilder().Read(),
        FirmwareFileBuilder().Type(1).Program(600).Read(),
        FirmwareFileBuilder().Type(3).Program(256).Read(),
        nullptr,
    };
    return FILES[_script.Byte() % std::size(FILES)];
}

void BootloaderLife::Step(BootloaderStep step) {
    const auto own = [this](const std::function<void()>& call) { // of the state machine, not for applications
        _mannerly = false;
        Call(call);
    };
    switch (step) {
    case BootloaderStep::UPDATE:
        return Update(*_bootloader);
    case BootloaderStep::RAISE:
        return Raise(_script.Byte());
    case BootloaderStep::REPORT_BOOT:
        return ReportBoot();
    case BootloaderStep::ANSWER:
        PutAnswer(DpRam::MAILBOX_IN);
        return Raise(VelmoIndication_t::M_OUT | VelmoIndication_t::M_IN);
    case BootloaderStep::POKE:
        _mannerly = false;
        return Poke();
    case BootloaderStep::DOWNLOAD:
        return Download();
    case BootloaderStep::END_DOWNLOAD:
        return EndDownload();
    case BootloaderStep::LOOK:
        return Look();
    case BootloaderStep::SEGMENTS:
        return Segments();
    case BootloaderStep::RESET:
        return own([&] { _bootloader->Reset(); });
    case BootloaderStep::POWER_ON:
        return own([&] { _bootloader->PowerOn(); });
    case BootloaderStep::CREATE_AREAS:
        return own([&] { _bootloader->CreateAreas(); });
    case BootloaderStep::CHANGE_STATE:
        return own([&] {
            _bootloader->ChangeState(static_cast<Vt22Bootloader::ModuleState_e>(_script.Byte() % 16 - 2));
        });
    case BootloaderStep::CHAIN:
        return own([&] { _bootloader->DownloadNext(TakeResponse()); });
    case BootloaderStep::COUNT:
        break;
    }
}

void BootloaderLife::Raise(int changed) {
    if (_dpRam->Peer())
        _mannerly = false;
    _dpRam->Poke(DpRam::VELMO_INDICATION, {_dpRam->Peek(DpRam::VELMO_INDICATION) ^ changed});
    _dpRam->irq = true;
}

void BootloaderLife::ReportBoot() {
    const int major = _script.Byte() % 4;
    if (!_dpRam->Peer()) {
        _dpRam->Poke(DpRam::Ctrl::OFFSET, {major, 1, 0, 0, 0, 0, 0, 0, 0, 9, 0, 0, 0, 0});
        _dpRam->Poke(DpRam::Ctrl::OFFSET + DpRam::Ctrl::MODULE_TYPE, {0x01, 0x01});
        _dpRam->Poke(DpRam::VELMO_INDICATION, {0});
    }
    _dpRam->irq = true;
}

void BootloaderLife::Download() {
    const unsigned char what = _script.Byte();
    const auto firmware = TakeFirmware();
    int remaining = -1;
    int* const out = what & 2 ? nullptr : &remaining;
    const std::string failure = Call([&] {
        what & 1 ? _bootloader->BeginBootloaderDownload(firmware, out)
                 : _bootloader->BeginFirmwareDownload(firmware, out);
    });
    Require(failure.empty() == (remaining > 0), "a download that has begun says how much there is to do");
}

void BootloaderLife::EndDownload() {
    int remaining = -1;
    bool complete = false;
    Call([&] { complete = _bootloader->EndDownload(&remaining); });
    Call([&] { _bootloader->EndDownload(nullptr); });
    Require(!_mannerly || !complete || remaining == 0, "a complete download leaves nothing to do");
}

void BootloaderLife::Look() {
    Call([&] { static_cast<void>(_bootloader->BootloaderMajor()); });
    Call([&] { static_cast<void>(_bootloader->BootloaderMinor()); });
    Call([&] { static_cast<void>(_bootloader->FieldbusType()); });
    Call([&] { static_cast<void>(_bootloader->ModuleType()); });
    Call([&] { static_cast<void>(_bootloader->Serial()); });
    Call([&] { static_cast<void>(_bootloader->VendorId()); });
    Call([&] { _bootloader->VerifyIdentity(); });
    static_cast<void>(_bootloader->Booted());
}

void BootloaderLife::Segments() {
    const auto data = TakeArray();
    Call([&] {
        const auto segments = Vt22Bootloader::GetSegments(data);
        Require(segments->Count() == (data->Count() + 255) / 256, "segments have 256 bytes");
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    BootloaderLife({data, size}).Run();
    return 0;
}
