// SPDX-License-Identifier: MIT
#pragma once

#include "dbus/remote/Bus.h"
#include "dbus/remote/PlantProperties.h"
#include "vesk/modules/dpvm/Vt22Module.h"

#include <deque>
#include <functional>

namespace sdbus {
class IProxy;
} // namespace sdbus

namespace Vesk::DBus {

/// The module of a plant: a master module that an application has and publishes on D-Bus. It is used as if it
/// were one's own, but for what only its owner can do: it is not initialised and nothing is mapped.
///
/// A service is a call on the bus, whose answer reaches its action in a later Update. What the plant tells of
/// itself is kept up to date by Update. Nothing waits but Create. BusException out of a service or an Update:
/// the plant does not answer, has gone, or does not offer what is asked for; the object stays usable. Where
/// an exception has ended the life of the plant's module, Update throws the same, until it goes on.
class RemoteModule : public Modules::DPVM::IDPVMModule {
public:
    using State_e = Modules::DPVM::Vt22Module::ModuleState_e;
    using Bytes = std::vector<unsigned char>;

    /// Asks the plant for everything that it tells of itself. The callbacks are those of a Vt22Module; they
    /// may be null, and the first reports come at once.
    static std::shared_ptr<RemoteModule>
    Create(std::shared_ptr<sdbus::IConnection> bus, const PublishedPlant& plant,
           std::shared_ptr<System::IFunc<void>> offlineCallback,
           std::shared_ptr<System::IFunc<void>> onlineCallback,
           std::shared_ptr<System::IArgFunc<Modules::DPVM::OperationMode_e, void>> operationModeCallback);

    ~RemoteModule() override;
    RemoteModule(const RemoteModule&) = delete;
    RemoteModule& operator=(const RemoteModule&) = delete;

    void Update() override;

    State_e State() const;

    /// Whether the plant lets others change something.
    bool Controls() const { return _published.controls; }

    /// What it tells of itself.
    const PlantProperties& Properties() const { return _properties; }

    bool Booted() override { return State() >= State_e::BOOTED; }

    bool Configured() override;

    bool Initialized() override { return State() == State_e::INITIALIZED; }

    unsigned char BootloaderMajor() override { return _properties.bootloader[0]; }

    unsigned char BootloaderMinor() override { return _properties.bootloader[1]; }

    unsigned short FieldbusType() override { return _properties.fieldbusType; }

    unsigned short ModuleType() override { return _properties.moduleType; }

    unsigned int Serial() override { return _properties.serial; }

    unsigned short VendorId() override { return _properties.vendorId; }

    unsigned char SoftwareMajor() override { return _properties.software[0]; }

    unsigned char SoftwareMinor() override { return _properties.software[1]; }

    unsigned char SoftwareBuild() override { return _properties.software[2]; }

    /// As the plant's module has read it; null where it has not, or holds none.
    std::shared_ptr<Modules::DPVM::DatabaseInfo> GetDatabaseInfo() override;

    std::shared_ptr<System::IArray<unsigned char>> GetSlaveConfiguredList() override { return _configured; }

    std::shared_ptr<System::IArray<unsigned char>> GetDataTransferList() override { return _dataTransfer; }

    std::shared_ptr<System::IArray<unsigned char>> GetSlaveDiagnosticList() override { return _diagnostic; }

    std::shared_ptr<System::IArray<unsigned char>> GetDpv1ConnectionLiveList() override {
        return _dpv1Connection;
    }

    void SetOperationMode(Modules::DPVM::OperationMode_e mode) override;
    void GetSlaveDiag(unsigned char slaveAddress, ResponseAction responseAction) override;
    void GetSlaveConfig(unsigned char slaveAddress, ResponseAction responseAction) override;
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

    /// The plant opens and closes the connection with each transfer, so these two have nothing to do.
    void Class2Initiate(unsigned char slaveAddress, ResponseAction responseAction) override;
    void Class2Abort(unsigned char slaveAddress, unsigned char subnet, unsigned char reasonCode,
                     ResponseAction responseAction) override;
    void Class2Read(unsigned char slaveAddress, unsigned char slot, unsigned char index, unsigned char length,
                    ResponseAction responseAction) override;
    void Class2Write(unsigned char slaveAddress, unsigned char slot, unsigned char index,
                     std::shared_ptr<System::IArray<unsigned char>> data,
                     ResponseAction responseAction) override;

    /// Bits of a byte of the input area: those of `mask`.
    struct HeldBits {
        unsigned short offset;
        unsigned char value;
        unsigned char mask;
    };

    /// Lets the module send these bits of its input area, all from the same exchange on, whatever the
    /// application has in its array, for as long as the connection to the bus lasts.
    void HoldInput(const std::vector<HeldBits>& bytes, ResponseAction responseAction);

    /// What the last exchange has written to and read from a slave, at no cost to the module.
    void GetSlaveData(unsigned char slaveAddress, std::function<void(Bytes input, Bytes output)> action);

    /// What the plant has counted, which it does not tell by itself.
    void GetStatistics(std::function<void(const PlantStatistics& statistics)> action);

    /// These are the application's alone: InvalidOperationException.
    void BeginInitialization() override;
    void MapInputData(unsigned short offset, std::shared_ptr<System::IArray<unsigned char>> src,
                      int srcOffset, int count) override;
    void MapOutputData(unsigned short offset, std::shared_ptr<System::IArray<unsigned char>> dst,
                       int dstOffset, int count) override;
    void SetSlaveAddress(unsigned char slaveAddress, unsigned char newSlaveAddress,
                         unsigned short identNumber, std::shared_ptr<System::IArray<unsigned char>> data,
                         ResponseAction responseAction) override;

protected:
    RemoteModule(
        std::shared_ptr<sdbus::IConnection> bus, const PublishedPlant& plant,
        std::shared_ptr<System::IFunc<void>> offlineCallback,
        std::shared_ptr<System::IFunc<void>> onlineCallback,
        std::shared_ptr<System::IArgFunc<Modules::DPVM::OperationMode_e, void>> operationModeCallback);

private:
    using List = std::shared_ptr<System::IArray<unsigned char>>;

    void Subscribe();
    void TakeChange(const std::map<std::string, sdbus::Variant>& changed,
                    const std::vector<std::string>& invalidated);
    void AskForProperty(const std::string& name, std::function<void()> then);
    void Report();
    void ThrowFailure() const;
    void CheckControls() const;
    [[noreturn]] void RefuseOwners(const char* operation) const;

    /// Calls a method that returns bytes, or with `answersData` false nothing.
    template <class... Arguments>
    void Call(const char* interface, const char* method, bool answersData, ResponseAction action,
              const Arguments&... arguments);
    void Answer(const ResponseAction& action, const sdbus::Error* error, const Bytes& data);

    std::shared_ptr<sdbus::IConnection> _bus;
    PublishedPlant _published;
    std::string _who; // "Plant press"
    std::unique_ptr<sdbus::IProxy> _plant;
    std::shared_ptr<void> _ownerWatch;
    bool _gone = false;
    PlantProperties _properties;
    std::deque<std::function<void()>> _arrived; // what Update has still to do
    List _configured, _dataTransfer, _diagnostic, _dpv1Connection;
    std::optional<bool> _reportedOnline;
    std::string _reportedMode;
    std::shared_ptr<System::IFunc<void>> _offlineCallback;
    std::shared_ptr<System::IFunc<void>> _onlineCallback;
    std::shared_ptr<System::IArgFunc<Modules::DPVM::OperationMode_e, void>> _operationModeCallback;
};

} // namespace Vesk::DBus
