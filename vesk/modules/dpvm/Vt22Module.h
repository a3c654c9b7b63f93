// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/core/Timer.h"
#include "vesk/hostinterface/IHostInterface.h"
#include "vesk/io/InArea.h"
#include "vesk/mailbox/MailboxAreaHandler.h"
#include "vesk/modules/dpvm/IDPVMModule.h"
#include "vesk/modules/dpvm/Vt22ApplicationIndication.h"
#include "vesk/modules/dpvm/Vt22DeviceIdArea.h"
#include "vesk/modules/dpvm/Vt22FatalEventArea.h"
#include "vesk/modules/dpvm/Vt22OutArea.h"
#include "vesk/modules/dpvm/Vt22VelmoIndication.h"
#include "vesk/modules/dpvm/config/IBusConfig.h"
#include "vesk/system/collections/Queue.h"

#include <span>

namespace Vesk::Modules::DPVM {

/// A running VT22, a PROFIBUS DP-V1 master. The application makes one with the factories of Vt22.h.
///
/// Everything happens in Update, which the application calls from one thread at its cycle rate: the reset
/// pulse, the boot with its identity check, the download of the bus configuration where the module's database
/// differs, the initialisation and from then on the exchange of process data and messages. No call waits for
/// the module. From INITIALIZED on, an Update that carries no message costs its accesses to the DPRAM and two
/// looks at the clock, and allocates nothing. Callbacks run inside Update; they may map, queue services,
/// throw and let go of the object, which then lasts until Update returns, but not call Update. An exception
/// out of Update ends the use of the object; the state stays as it was.
class Vt22Module : public IDPVMModule, public std::enable_shared_from_this<Vt22Module> {
public:
    enum class ModuleState_e : int {
        POWER_OFF = 0,         ///< held in reset, until the pulse of 0.5 ms is over
        POWER_ON = 1,          ///< out of reset, until the module reports its power-on
        BOOTED = 2,            ///< the module is the expected one
        DOWNLOADING = 3,       ///< its database is compared and, where it differs, written
        DOWNLOAD_COMPLETE = 4, ///< its database matches the bus configuration
        INITIALIZING = 5,      ///< the initialisation runs
        INITIALIZED = 6,       ///< process data and services are in normal use
    };

    /// Stores the arguments and holds the module in reset. The callbacks may be null, and so may `busConfig`:
    /// then the module's database is taken as it is. ArgumentNullException without a host interface.
    static std::shared_ptr<Vt22Module>
    Create(std::shared_ptr<HostInterface::IHostInterface> hostInterface,
           std::shared_ptr<System::IFunc<void>> offlineCallback,
           std::shared_ptr<System::IFunc<void>> onlineCallback,
           std::shared_ptr<System::IArgFunc<OperationMode_e, void>> operationModeCallback,
           std::shared_ptr<Config::IBusConfig> busConfig);

    /// See IModule::Update. Throws StartupException, ModuleStateException and ModuleIdentityException where
    /// the module does not come up, Vt22FatalEventException for a fatal event, MailboxResponseException and
    /// MailboxTimeoutException for a request that fails, ConfigException for mappings beyond the database,
    /// and what a callback throws.
    void Update() override;

    ModuleState_e State() const { return _state; }

    /// The state's name, for example "POWER_OFF".
    static System::String StateToString(ModuleState_e state);

    bool Booted() override { return _state >= ModuleState_e::BOOTED; }

    bool Configured() override { return _busConfig && _state >= ModuleState_e::DOWNLOAD_COMPLETE; }

    bool Initialized() override { return _state == ModuleState_e::INITIALIZED; }

    unsigned char BootloaderMajor() override { return DeviceId().BootloaderMajor(); }

    unsigned char BootloaderMinor() override { return DeviceId().BootloaderMinor(); }

    unsigned short FieldbusType() override { return DeviceId().FieldbusType(); }

    unsigned short ModuleType() override { return DeviceId().ModuleType(); }

    unsigned int Serial() override { return DeviceId().Serial(); }

    unsigned short VendorId() override { return DeviceId().VendorId(); }

    unsigned char SoftwareMajor() override { return DeviceId().SoftwareMajor(); }

    unsigned char SoftwareMinor() override { return DeviceId().SoftwareMinor(); }

    unsigned char SoftwareBuild() override { return DeviceId().SoftwareBuild(); }

    void MapInputData(unsigned short offset, std::shared_ptr<System::IArray<unsigned char>> src,
                      int srcOffset, int count) override;
    void MapOutputData(unsigned short offset, std::shared_ptr<System::IArray<unsigned char>> dst,
                       int dstOffset, int count) override;
    void BeginInitialization() override;

    std::shared_ptr<DatabaseInfo> GetDatabaseInfo() override;
    std::shared_ptr<System::IArray<unsigned char>> GetSlaveConfiguredList() override;
    std::shared_ptr<System::IArray<unsigned char>> GetDataTransferList() override;
    std::shared_ptr<System::IArray<unsigned char>> GetSlaveDiagnosticList() override;
    std::shared_ptr<System::IArray<unsigned char>> GetDpv1ConnectionLiveList() override;

    void SetOperationMode(OperationMode_e mode) override;
    void GetSlaveDiag(unsigned char slaveAddress, ResponseAction responseAction) override;
    void GetSlaveConfig(unsigned char slaveAddress, ResponseAction responseAction) override;
    void SetSlaveAddress(unsigned char slaveAddress, unsigned char newSlaveAddress,
                         unsigned short identNumber, std::shared_ptr<System::IArray<unsigned char>> data,
                         ResponseAction responseAction) override;
    void ReadSlaveInput(unsigned char slaveAddress, ResponseAction responseAction) override;
    void ReadSlaveOutput(unsigned char slaveAddress, ResponseAction responseAction) override;
    void StartSlaves(std::shared_ptr<System::IArray<unsigned char>> slaves,
                     ResponseAction responseAction) override;
    void StopSlaves(std::shared_ptr<System::IArray<unsigned char>> slaves,
                    ResponseAction responseAction) override;
    void GetLiveList(ResponseAction responseAction) override;
    void Class1Read(unsigned char slaveAddress, unsigned char slot, unsigned char index, unsigned char length,
                    ResponseAction responseAction) override;
    void Class1Write(unsigned char slaveAddress, unsigned char slot, unsigned char index,
                     std::shared_ptr<System::IArray<unsigned char>> data,
                     ResponseAction responseAction) override;
    void Class2Initiate(unsigned char slaveAddress, ResponseAction responseAction) override;
    void Class2Abort(unsigned char slaveAddress, unsigned char subnet, unsigned char reasonCode,
                     ResponseAction responseAction) override;
    void Class2Read(unsigned char slaveAddress, unsigned char slot, unsigned char index, unsigned char length,
                    ResponseAction responseAction) override;
    void Class2Write(unsigned char slaveAddress, unsigned char slot, unsigned char index,
                     std::shared_ptr<System::IArray<unsigned char>> data,
                     ResponseAction responseAction) override;

    /// Queues a request that has no operation of its own, such as one for the database information; otherwise
    /// as the services of IDPVMModule. NullReferenceException before the first power-on.
    void Enqueue(std::shared_ptr<Mailbox::IRequest> request, ResponseAction responseAction,
                 int timeoutSeconds);

    /// Whether the module has reported that it is on the bus, and the operation mode that it has reported:
    /// OFFLINE before its first report, and always where the object has no operation-mode callback.
    bool Online() const;
    OperationMode_e OperationMode() const;

    /// What the module has said of its database, whether or not it has one that matches; null until it was
    /// asked.
    std::shared_ptr<DatabaseInfo> ReportedDatabase() const;

    /// Changes when the module has reported anew of itself or its slaves, so that who watches the station
    /// lists has to compare a number only.
    unsigned int Reports() const;

    /// How often the module has raised its interrupt, and has answered a request, since the object was made.
    /// They begin anew behind the largest number.
    const unsigned int& Interrupts() const { return _interrupts; }

    const unsigned int& Messages() const { return _messages; }

    /// The module waits for the answer to its last interrupt. Update gives it as soon as there is something
    /// to tell, and after 2 ms in any case: until then an application that sleeps between its Updates may not
    /// sleep for longer.
    bool OwesAnswer() const;

    /// Copies what the exchange has last written to the input area, and has last read from the output area,
    /// without an access to the DPRAM: from the start of the area to its last mapped byte. Bytes that are not
    /// mapped are 0 in the input, and stay as they are in the output. How many bytes that is, at most 3500;
    /// ArgumentOutOfRangeException where `to` has less room, NullReferenceException before the first
    /// power-on.
    int CopyInputData(std::span<unsigned char> to) const;
    int CopyOutputData(std::span<unsigned char> to) const;

    /// From the next exchange on the bits of `mask` in the byte at `offset` of the input area are those of
    /// `value`, whatever the application has in its array, until the byte is released or the module is reset.
    /// They come beside those that are held of it already. ArgumentOutOfRangeException for a byte that is not
    /// mapped, NullReferenceException before the first power-on.
    void HoldInput(unsigned short offset, unsigned char value, unsigned char mask = 0xFF);
    void ReleaseInput(unsigned short offset);

    /// Records that a configuration download has still to send; 0 while none runs.
    int RecordsToDownload() const { return _downloadQueue ? _downloadQueue->Count() : 0; }

    /// The steps of the state machine. Update runs them; an application has no need to.
    void Reset();
    void PowerOn();
    void CreateAreas();

    void ChangeState(ModuleState_e state) { _state = state; }

    void VerifyIdentity();

    /// The chain of the initialisation, each step the answer to the request of the one before.
    /// NullReferenceException for one that is out of its turn, here and below.
    void Init_GetDatabaseInfo(std::shared_ptr<Mailbox::IResponse> response);
    void Init_StartInit(std::shared_ptr<Mailbox::IResponse> response);
    void Init_VelmoInit(std::shared_ptr<Mailbox::IResponse> response);
    void Init_EndInit(std::shared_ptr<Mailbox::IResponse> response);

    /// The chain of the configuration download, each step the answer to the request of the one before.
    void Download_Begin();
    void Download_GetDatabaseInfo(std::shared_ptr<Mailbox::IResponse> response);
    void Download_StartDatabaseDownload(std::shared_ptr<Mailbox::IResponse> response);
    void Download_Next(std::shared_ptr<Mailbox::IResponse> response);
    void Download_EndDataBaseDownload(std::shared_ptr<Mailbox::IResponse> response);

protected:
    Vt22Module(std::shared_ptr<HostInterface::IHostInterface> hostInterface,
               std::shared_ptr<System::IFunc<void>> offlineCallback,
               std::shared_ptr<System::IFunc<void>> onlineCallback,
               std::shared_ptr<System::IArgFunc<OperationMode_e, void>> operationModeCallback,
               std::shared_ptr<Config::IBusConfig> busConfig);

private:
    using ResponseStep = void (Vt22Module::*)(std::shared_ptr<Mailbox::IResponse>);

    void PollPowerOff();
    void PollPowerOn();
    void BeginDownload();
    void PollInitialization();
    void CommonStep();
    void HandleInterrupt();

    void ThrowIfExpired(const char* message) const;
    [[noreturn]] void ThrowFatalEvent();
    void CheckMappings() const;
    bool DatabaseMatches() const;
    void StartDownload();

    /// NullReferenceException before the first power-on and after one that has failed.
    void RequireAreas() const;
    Vt22DeviceIdArea& DeviceId() const;
    Vt22OutArea& OutArea() const;
    DatabaseInfo& Database() const;
    Config::IBusConfig& BusConfig() const;
    /// Queues a request whose answer is for `step`.
    void Ask(std::shared_ptr<Mailbox::IRequest> request, ResponseStep step, int timeoutSeconds);

    ModuleState_e _state = ModuleState_e::POWER_OFF;
    std::shared_ptr<Config::IBusConfig> _busConfig; // null for an unconfigured module
    // The records still to be sent; null while none are.
    std::shared_ptr<System::Collections::Generic::Queue<std::shared_ptr<Mailbox::IRequest>>> _downloadQueue;
    std::shared_ptr<DatabaseInfo> _databaseInfo; // null until it was read after the last reset

    // Made anew by every power-on; null before the first.
    std::shared_ptr<Vt22VelmoIndication> _velmoIndication;
    std::shared_ptr<Vt22ApplicationIndication> _applicationIndication;
    std::shared_ptr<HostInterface::IHostInterface> _hostInterface;
    std::shared_ptr<IO::InArea> _inArea;
    std::shared_ptr<Mailbox::MailboxAreaHandler> _mailbox;
    std::shared_ptr<Vt22DeviceIdArea> _deviceIdArea;
    std::shared_ptr<Vt22FatalEventArea> _fatalEventArea;
    std::shared_ptr<Vt22OutArea> _outArea;

    std::shared_ptr<Timer> _timer; // the time-out of the current state
    bool _downloaded = false;      // the database was written; the next comparison is the read-back
    bool _initialized = false;     // the module has answered the last initialisation request
    std::shared_ptr<System::IFunc<void>> _offlineCallback;
    std::shared_ptr<System::IFunc<void>> _onlineCallback;
    std::shared_ptr<System::IArgFunc<OperationMode_e, void>> _operationModeCallback;
    unsigned int _interrupts = 0;
    unsigned int _messages = 0;
};

} // namespace Vesk::Modules::DPVM
