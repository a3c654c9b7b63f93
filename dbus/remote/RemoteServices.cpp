// SPDX-License-Identifier: MIT
// The services of a plant's module, each a call on the bus.
#include "dbus/remote/Names.h"
#include "dbus/remote/RemoteModule.h"
#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/mailbox/Response.h"
#include "vesk/modules/dpvm/DPVMMessages.h"

#include <cstdlib>
#include <sdbus-c++/sdbus-c++.h>
#include <utility>

namespace Vesk::DBus {

using namespace Modules::DPVM;
using Mailbox::ErrorCode;
using List = std::shared_ptr<System::IArray<unsigned char>>;

namespace {

/// Longer than a plant lets a request last, unless its application has chosen so.
constexpr std::uint64_t ANSWER_MICROSECONDS = 10'000'000;

RemoteModule::Bytes BytesOf(System::IArray<unsigned char>& array) {
    return {array.Data(), array.Data() + array.Count()};
}

/// The addresses for which an array of flags has one.
RemoteModule::Bytes AddressesIn(System::IArray<unsigned char>& flags) {
    RemoteModule::Bytes addresses;
    for (int address = 0; address < flags.Count(); ++address)
        if (flags.Get(address) != 0)
            addresses.push_back(static_cast<unsigned char>(address));
    return addresses;
}

std::shared_ptr<Mailbox::IResponse> Response(const std::shared_ptr<ErrorCode>& error,
                                             const RemoteModule::Bytes& data) {
    return Mailbox::Response::Create(error, System::Array<unsigned short>::Create(EXTENDED_SIZE),
                                     System::Array<unsigned char>::Create(data));
}

/// The module's error code in a refusal, whose message begins with its number; null for any other error.
std::shared_ptr<ErrorCode> RefusalIn(const sdbus::Error& error) {
    if (error.getName() != REFUSED)
        return nullptr;
    const unsigned long code = std::strtoul(error.getMessage().c_str(), nullptr, 10);
    for (const auto& known : *ErrorCode::VALUES.Value())
        if (known->Id == code)
            return known;
    return nullptr;
}

/// As every request of a slave does; ArgumentOutOfRangeException.
void CheckAddress(unsigned char slaveAddress) {
    DPVMMessages::GetSlaveConfig(slaveAddress);
}

} // namespace

template <class... Arguments>
void RemoteModule::Call(const char* interface, const char* method, bool answersData, ResponseAction action,
                        const Arguments&... arguments) {
    try {
        auto call = _plant->createMethodCall(interface, method);
        ((call << arguments), ...);
        _plant->callMethod(
            call,
            [this, answersData, action = std::move(action)](sdbus::MethodReply& reply,
                                                            const sdbus::Error* error) {
                Bytes data;
                if (!error && answersData)
                    reply >> data;
                Answer(action, error, data);
            },
            ANSWER_MICROSECONDS);
    } catch (const sdbus::Error& error) {
        throw Told(_who, error);
    }
}

void RemoteModule::Answer(const ResponseAction& action, const sdbus::Error* error, const Bytes& data) {
    const auto refusal = error ? RefusalIn(*error) : ErrorCode::NO_ERROR;
    if (error && !refusal && error->getName() == FAILED) // what has failed there, a property tells
        AskForProperty("LastFailure", [this, told = Told(_who, *error)] {
            ThrowFailure();
            throw BusException(told);
        });
    else if (error && !refusal)
        _arrived.emplace_back([told = Told(_who, *error)] { throw BusException(told); });
    else if (action)
        _arrived.emplace_back([=] { action->Invoke(Response(refusal, data)); });
    else if (refusal != ErrorCode::NO_ERROR)
        _arrived.emplace_back([response = Response(refusal, data)] {
            System::_env_throw(Mailbox::MailboxResponseException::Create(response));
        });
}

void RemoteModule::CheckControls() const {
    if (!_published.controls)
        throw BusException(_who + " lets nobody change anything: it does not offer " + CONTROL_INTERFACE);
}

void RemoteModule::RefuseOwners(const char* operation) const {
    System::_env_throw(System::InvalidOperationException::Create(
        std::string(operation) + " is for the application alone that has the module of " + _who));
}

// ---- who looks

void RemoteModule::GetSlaveDiag(unsigned char slaveAddress, ResponseAction responseAction) {
    CheckAddress(slaveAddress);
    Call(MASTER_INTERFACE, "GetSlaveDiagnosis", true, std::move(responseAction), slaveAddress);
}

void RemoteModule::GetSlaveConfig(unsigned char slaveAddress, ResponseAction responseAction) {
    CheckAddress(slaveAddress);
    Call(MASTER_INTERFACE, "GetSlaveConfiguration", true, std::move(responseAction), slaveAddress);
}

void RemoteModule::ReadSlaveInput(unsigned char slaveAddress, ResponseAction responseAction) {
    CheckAddress(slaveAddress);
    Call(MASTER_INTERFACE, "ReadSlaveInput", true, std::move(responseAction), slaveAddress);
}

void RemoteModule::ReadSlaveOutput(unsigned char slaveAddress, ResponseAction responseAction) {
    CheckAddress(slaveAddress);
    Call(MASTER_INTERFACE, "ReadSlaveOutput", true, std::move(responseAction), slaveAddress);
}

void RemoteModule::GetLiveList(ResponseAction responseAction) {
    Call(MASTER_INTERFACE, "GetLiveList", true, std::move(responseAction));
}

void RemoteModule::Class1Read(unsigned char slaveAddress, unsigned char slot, unsigned char index,
                              unsigned char length, ResponseAction responseAction) {
    CheckAddress(slaveAddress);
    Call(MASTER_INTERFACE, "ReadClass1", true, std::move(responseAction), slaveAddress, slot, index, length);
}

void RemoteModule::Class2Read(unsigned char slaveAddress, unsigned char slot, unsigned char index,
                              unsigned char length, ResponseAction responseAction) {
    CheckAddress(slaveAddress);
    Call(MASTER_INTERFACE, "ReadClass2", true, std::move(responseAction), slaveAddress, slot, index, length);
}

void RemoteModule::Class2Initiate(unsigned char slaveAddress, ResponseAction responseAction) {
    CheckAddress(slaveAddress);
    Answer(responseAction, nullptr, {});
}

void RemoteModule::Class2Abort(unsigned char slaveAddress, unsigned char, unsigned char,
                               ResponseAction responseAction) {
    CheckAddress(slaveAddress);
    Answer(responseAction, nullptr, {});
}

void RemoteModule::GetSlaveData(unsigned char slaveAddress,
                                std::function<void(Bytes input, Bytes output)> action) {
    auto call = _plant->createMethodCall(MASTER_INTERFACE, "GetSlaveData");
    call << slaveAddress;
    _plant->callMethod(
        call,
        [this, action = std::move(action)](sdbus::MethodReply& reply, const sdbus::Error* error) {
            std::uint64_t time = 0;
            Bytes input;
            Bytes output;
            if (!error)
                reply >> time >> input >> output;
            _arrived.emplace_back([=] { action(input, output); });
        },
        ANSWER_MICROSECONDS);
}

void RemoteModule::GetStatistics(std::function<void(const PlantStatistics& statistics)> action) {
    auto call = _plant->createMethodCall("org.freedesktop.DBus.Properties", "Get");
    call << MASTER_INTERFACE << "Statistics";
    _plant->callMethod(
        call,
        [this, action = std::move(action)](sdbus::MethodReply& reply, const sdbus::Error* error) {
            if (error)
                return;
            sdbus::Variant value;
            reply >> value;
            const auto values = value.get<std::map<std::string, sdbus::Variant>>();
            _arrived.emplace_back([=] { action(PlantStatistics::From(values)); });
        },
        ANSWER_MICROSECONDS);
}

// ---- who changes something

void RemoteModule::SetOperationMode(OperationMode_e mode) {
    CheckControls();
    Call(CONTROL_INTERFACE, "SetOperationMode", false, nullptr, NameOf(mode));
}

void RemoteModule::StartSlaves(List slaves, ResponseAction responseAction) {
    DPVMMessages::StartSlave(slaves);
    CheckControls();
    Call(CONTROL_INTERFACE, "StartSlaves", false, std::move(responseAction), AddressesIn(*slaves));
}

void RemoteModule::StopSlaves(List slaves, ResponseAction responseAction) {
    DPVMMessages::StopSlave(slaves);
    CheckControls();
    Call(CONTROL_INTERFACE, "StopSlaves", false, std::move(responseAction), AddressesIn(*slaves));
}

void RemoteModule::Class1Write(unsigned char slaveAddress, unsigned char slot, unsigned char index, List data,
                               ResponseAction responseAction) {
    DPVMMessages::Class1Write(slaveAddress, slot, index, data);
    CheckControls();
    Call(CONTROL_INTERFACE, "WriteClass1", false, std::move(responseAction), slaveAddress, slot, index,
         BytesOf(*data));
}

void RemoteModule::Class2Write(unsigned char slaveAddress, unsigned char slot, unsigned char index, List data,
                               ResponseAction responseAction) {
    DPVMMessages::Class1Write(slaveAddress, slot, index, data);
    CheckControls();
    Call(CONTROL_INTERFACE, "WriteClass2", false, std::move(responseAction), slaveAddress, slot, index,
         BytesOf(*data));
}

void RemoteModule::HoldInput(const std::vector<HeldBits>& bytes, ResponseAction responseAction) {
    CheckControls();
    std::vector<sdbus::Struct<std::uint16_t, std::uint8_t, std::uint8_t>> held;
    held.reserve(bytes.size());
    for (const HeldBits& bits : bytes)
        held.emplace_back(bits.offset, bits.value, bits.mask);
    Call(CONTROL_INTERFACE, "HoldInput", false, std::move(responseAction), held);
}

// ---- who owns it

void RemoteModule::BeginInitialization() {
    RefuseOwners("BeginInitialization");
}

void RemoteModule::MapInputData(unsigned short, List, int, int) {
    RefuseOwners("MapInputData");
}

void RemoteModule::MapOutputData(unsigned short, List, int, int) {
    RefuseOwners("MapOutputData");
}

void RemoteModule::SetSlaveAddress(unsigned char, unsigned char, unsigned short, List, ResponseAction) {
    RefuseOwners("SetSlaveAddress");
}

} // namespace Vesk::DBus
