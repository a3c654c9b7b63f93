// SPDX-License-Identifier: MIT
#include "dbus/ControlObject.h"

#include "dbus/Answers.h"
#include "dbus/PlantProblem.h"
#include "dbus/Text.h"

#include "vesk/hostinterface/MasterDpRam.h"
#include "vesk/modules/dpvm/DPVMMessages.h"

#include <set>

namespace Vesk::DBus {

using HostInterface::MasterDpRam::INPUT_AREA_SIZE;
using Modules::DPVM::DPVMMessages;
using Modules::DPVM::OperationMode_e;

static constexpr int STATIONS = 126; // that can be started and stopped
/// More than any slave has; it bounds what the cycle does for one call, as it looks for each byte's segment.
static constexpr std::size_t HELD_AT_ONCE = 256;

static Published::Reply Done(sdbus::Result<>&& result) {
    return ReplyTo(std::move(result), [](Question&, auto& answer) { answer.returnResults(); });
}

ControlObject::ControlObject(sdbus::IConnection& connection, Published& module)
    : AdaptorInterfaces(connection, module.Path()), _module(module) {
    registerAdaptor();
}

ControlObject::~ControlObject() {
    unregisterAdaptor();
}

void ControlObject::TellChanges() {
    if (_told == _module.GetHolds().All())
        return;
    _told = _module.GetHolds().All();
    getObject().emitPropertiesChangedSignal(INTERFACE_NAME, {"Held"});
}

void ControlObject::Ask(sdbus::Result<>&& result, std::unique_ptr<Question> question) {
    if (!_module.Ask(CallerOf(getObject()), std::move(question), Done(std::move(result))))
        throw Errors::Busy();
}

static std::shared_ptr<System::Array<unsigned char>> ToArray(const std::vector<std::uint8_t>& data) {
    if (data.size() > 255) // the length has one byte
        throw sdbus::Error(Errors::INVALID, std::to_string(data.size()) + " bytes of data; at most 255 go");
    return System::Array<unsigned char>::Create(data);
}

void ControlObject::WriteClass1(sdbus::Result<>&& result, std::uint8_t address, std::uint8_t slot,
                                std::uint8_t index, Bytes data) {
    Ask(std::move(result),
        Checked([&] { return Messages({DPVMMessages::Class1Write(address, slot, index, ToArray(data))}); }));
}

void ControlObject::WriteClass2(sdbus::Result<>&& result, std::uint8_t address, std::uint8_t slot,
                                std::uint8_t index, Bytes data) {
    Ask(std::move(result), Checked([&] {
            return ByClass2(address,
                            DPVMMessages::Class2Write(ReferenceOf(address), slot, index, ToArray(data)));
        }));
}

void ControlObject::SetOperationMode(sdbus::Result<>&& result, std::string mode) {
    for (const auto known :
         {OperationMode_e::OFFLINE, OperationMode_e::STOP, OperationMode_e::CLEAR, OperationMode_e::OPERATE})
        if (mode == ModeName(known))
            return Ask(std::move(result),
                       Checked([&] { return Messages({DPVMMessages::SetOperationMode(known)}); }));
    throw sdbus::Error(Errors::INVALID, "\"" + mode + "\" is none of OFFLINE, STOP, CLEAR and OPERATE");
}

/// A byte for each station.
static std::shared_ptr<System::Array<unsigned char>> ToStations(const std::vector<std::uint8_t>& addresses) {
    auto stations = System::Array<unsigned char>::Create(STATIONS);
    for (const std::uint8_t address : addresses) {
        if (address >= STATIONS)
            throw sdbus::Error(Errors::INVALID,
                               "address " + std::to_string(address) + " is above that of any slave, 125");
        stations->Set(address, 1);
    }
    return stations;
}

void ControlObject::StartSlaves(sdbus::Result<>&& result, Bytes addresses) {
    Ask(std::move(result), Messages({DPVMMessages::StartSlave(ToStations(addresses))}));
}

void ControlObject::StopSlaves(sdbus::Result<>&& result, Bytes addresses) {
    Ask(std::move(result), Messages({DPVMMessages::StopSlave(ToStations(addresses))}));
}

static void CheckOffset(std::uint16_t offset) {
    if (offset >= INPUT_AREA_SIZE)
        throw sdbus::Error(Errors::INVALID, "offset " + std::to_string(offset) +
                                                " is behind the input area, which has " +
                                                std::to_string(INPUT_AREA_SIZE) + " bytes");
}

void ControlObject::HoldInput(sdbus::Result<>&& result,
                              std::vector<sdbus::Struct<std::uint16_t, std::uint8_t, std::uint8_t>> bytes) {
    if (bytes.size() > HELD_AT_ONCE)
        throw sdbus::Error(Errors::INVALID, std::to_string(bytes.size()) + " bytes; one call holds at most " +
                                                std::to_string(HELD_AT_ONCE));
    const std::string caller = CallerOf(getObject());
    std::vector<HeldByte> held;
    std::set<std::uint16_t> offsets;
    for (const auto& byte : bytes) {
        const std::uint16_t offset = byte.get<0>();
        CheckOffset(offset);
        if (byte.get<2>() == 0 || !offsets.insert(offset).second)
            throw sdbus::Error(Errors::INVALID,
                               "offset " + std::to_string(offset) +
                                   (byte.get<2>() == 0 ? " has a mask without a bit" : " is there twice"));
        if (const std::string holder = _module.GetHolds().HeldByAnother(offset, caller); !holder.empty())
            throw sdbus::Error(Errors::HELD, "offset " + std::to_string(offset) + " is held by " + holder);
        held.push_back({offset, byte.get<1>(), byte.get<2>()});
    }
    if (!_module.Hold(caller, held, Done(std::move(result))))
        throw Errors::Busy();
}

void ControlObject::ReleaseInput(sdbus::Result<>&& result, std::uint16_t offset) {
    CheckOffset(offset);
    if (!_module.Release(CallerOf(getObject()), offset, Done(std::move(result))))
        throw Errors::Busy();
}

std::vector<sdbus::Struct<std::uint16_t, std::uint8_t, std::uint8_t, std::string>> ControlObject::Held() {
    std::vector<sdbus::Struct<std::uint16_t, std::uint8_t, std::uint8_t, std::string>> held;
    for (const auto& [offset, hold] : _module.GetHolds().All())
        held.emplace_back(offset, hold.bits.value, hold.bits.mask, hold.holder);
    return held;
}

} // namespace Vesk::DBus
