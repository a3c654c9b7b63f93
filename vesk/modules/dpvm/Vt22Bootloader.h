// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/core/Timer.h"
#include "vesk/handshake/ApplicationIndication.h"
#include "vesk/handshake/VelmoIndication.h"
#include "vesk/mailbox/MailboxAreaHandler.h"
#include "vesk/modules/bootloader/BootloaderCtrl.h"
#include "vesk/modules/bootloader/IBootloaderModule.h"
#include "vesk/system/collections/List.h"
#include "vesk/system/collections/Queue.h"

namespace Vesk::Modules::DPVM {

/// The VT22 module in its bootloader. It is reset with the bootloader-enable line asserted, comes up in its
/// bootloader, shows its identity and takes one firmware file, as a queue of mailbox requests that are sent
/// one at a time. The new firmware runs once a master module object resets the module.
class Vt22Bootloader : public Bootloader::IBootloaderModule,
                       public std::enable_shared_from_this<Vt22Bootloader> {
public:
    enum class ModuleState_e : int {
        POWER_OFF = 0,              // in reset for 0.5 ms
        POWER_ON = 1,               // out of reset; its first interrupt is due within 1 s
        BOOTED = 2,                 // the bootloader runs and is the expected one
        BOOTLOADER_DOWNLOADING = 3, // a new bootloader is on its way
        FIRMWARE_DOWNLOADING = 4,   // a new application firmware is on its way
        DOWNLOAD_COMPLETE = 5       // every request was answered; the module is left alone
    };

    using Segments = System::Collections::Generic::List<std::shared_ptr<System::IArray<unsigned char>>>;

    /// Resets the module. ArgumentNullException without a host interface.
    static std::shared_ptr<Vt22Bootloader>
    Create(std::shared_ptr<HostInterface::IHostInterface> hostInterface);

    /// One step. ModuleStateException when the interrupt line stays asserted in reset, StartupException when
    /// the module does not come up within 1 s, InvalidOperationException when its indication register is not
    /// 0 at boot, ModuleIdentityException when it is not the expected one. During a download
    /// MailboxResponseException for an error answer and MailboxTimeoutException for a missing one; the
    /// request is not repeated and the flash stays as it is then.
    void Update() override;
    bool Booted() override;

    ModuleState_e State() const { return _state; }

    unsigned char BootloaderMajor() override;
    unsigned char BootloaderMinor() override;
    unsigned short FieldbusType() override;
    unsigned short ModuleType() override;
    unsigned int Serial() override;
    unsigned short VendorId() override;

    void BeginBootloaderDownload(std::shared_ptr<Bootloader::TarnFile> firmware, int* remaining) override;
    void BeginFirmwareDownload(std::shared_ptr<Bootloader::TarnFile> firmware, int* remaining) override;
    bool EndDownload(int* remaining) override;

    /// Copies of `data`, 256 bytes each; the last one has what remains. Empty for no data.
    /// ArgumentNullException without an array.
    static std::shared_ptr<Segments> GetSegments(const std::shared_ptr<System::IArray<unsigned char>>& data);

    /// The steps of the state machine. Update runs them; an application has no need to.
    void Reset();
    void PowerOn();
    void CreateAreas();

    void ChangeState(ModuleState_e state) { _state = state; }

    void VerifyIdentity();

    /// The answer to each request of a download, which sends the next one. NullReferenceException while no
    /// download runs.
    void DownloadNext(std::shared_ptr<Mailbox::IResponse> response);

protected:
    explicit Vt22Bootloader(std::shared_ptr<HostInterface::IHostInterface> hostInterface);

private:
    using Requests = System::Collections::Generic::Queue<std::shared_ptr<Mailbox::IRequest>>;

    void PollPowerOff();
    void PollPowerOn();
    void CommonStep();
    void HandleIndication();
    /// NullReferenceException before the first power-on and after one that has failed.
    void RequireAreas() const;
    Bootloader::BootloaderCtrl& Ctrl() const;

    void CheckDownload(const std::shared_ptr<Bootloader::TarnFile>& firmware, const int* remaining,
                       Bootloader::FirmwareType_e expected) const;
    void BeginDownload(std::shared_ptr<Requests> requests, int* remaining, ModuleState_e state);
    void Send(const std::shared_ptr<Mailbox::IRequest>& request);

    std::shared_ptr<Handshake::VelmoIndication> _velmoIndication;
    std::shared_ptr<Handshake::ApplicationIndication> _applicationIndication;
    std::shared_ptr<Bootloader::BootloaderCtrl> _bootloaderCtrl; // null before the first power-on
    std::shared_ptr<HostInterface::IHostInterface> _hostInterface;
    std::shared_ptr<Mailbox::MailboxAreaHandler> _mailbox;
    std::shared_ptr<Timer> _timer;
    int _remaining = 0;                       // requests that are not answered yet
    std::shared_ptr<Requests> _downloadQueue; // requests that are not sent yet; null without a download
    ModuleState_e _state = ModuleState_e::POWER_OFF;
};

} // namespace Vesk::Modules::DPVM
