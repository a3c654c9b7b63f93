// SPDX-License-Identifier: MIT
#pragma once

#include "dbus/Published.h"

#include "org.libvesk.Master1.adaptor.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Vesk::DBus {

/// org.libvesk.Master1 of a module that is on the bus; its methods run in the service's thread.
class MasterObject final : public sdbus::AdaptorInterfaces<org::libvesk::Master1_adaptor> {
public:
    MasterObject(sdbus::IConnection& connection, Published& module);
    ~MasterObject();
    MasterObject(const MasterObject&) = delete;
    MasterObject& operator=(const MasterObject&) = delete;

    /// Tells the bus what is new since `before`.
    void TellChanges(const Facts& before);

private:
    using Bytes = std::vector<std::uint8_t>;
    using Areas = sdbus::Result<std::uint64_t, Bytes, Bytes>;
    using Dictionary = std::map<std::string, sdbus::Variant>;

    void GetSlaveDiagnosis(sdbus::Result<Bytes>&& result, std::uint8_t address) override;
    void GetSlaveConfiguration(sdbus::Result<Bytes>&& result, std::uint8_t address) override;
    void ReadSlaveInput(sdbus::Result<Bytes>&& result, std::uint8_t address) override;
    void ReadSlaveOutput(sdbus::Result<Bytes>&& result, std::uint8_t address) override;
    void GetLiveList(sdbus::Result<Bytes>&& result) override;
    void ReadClass1(sdbus::Result<Bytes>&& result, std::uint8_t address, std::uint8_t slot,
                    std::uint8_t index, std::uint8_t length) override;
    void ReadClass2(sdbus::Result<Bytes>&& result, std::uint8_t address, std::uint8_t slot,
                    std::uint8_t index, std::uint8_t length) override;
    void GetProcessData(Areas&& result) override;
    void GetSlaveData(Areas&& result, std::uint8_t address) override;
    std::vector<sdbus::Struct<std::string, std::string>> ListSignals() override;
    void GetSignal(sdbus::Result<std::uint64_t, sdbus::Variant>&& result, std::string name) override;

    std::string Name() override;
    std::string State() override;
    sdbus::Struct<std::string, std::string, std::string> Problem() override;
    Dictionary LastFailure() override;
    std::uint16_t VendorId() override;
    std::uint16_t FieldbusType() override;
    std::uint16_t ModuleType() override;
    std::uint32_t Serial() override;
    sdbus::Struct<std::uint8_t, std::uint8_t, std::uint8_t> Software() override;
    sdbus::Struct<std::uint8_t, std::uint8_t> Bootloader() override;
    std::string ConfigurationChecksum() override;
    std::string ConfigurationName() override;
    sdbus::Struct<std::vector<std::uint16_t>, std::string> Database() override;
    bool Online() override;
    std::string OperationMode() override;
    std::vector<
        sdbus::Struct<std::uint8_t, std::string, std::uint16_t, std::uint16_t, bool, bool, bool, bool>>
    Slaves() override;
    Dictionary Statistics() override;

    void Ask(std::unique_ptr<Question> question, Published::Reply reply);
    void AskModule(sdbus::Result<Bytes>&& result,
                   const std::function<std::shared_ptr<Mailbox::IRequest>()>& make);
    void AskForSnapshot(Published::Reply reply);

    Published& _module;
};

} // namespace Vesk::DBus
