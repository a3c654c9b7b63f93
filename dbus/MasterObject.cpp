// SPDX-License-Identifier: MIT
// The methods; the properties have a file of their own beside this one.
#include "dbus/MasterObject.h"

#include "dbus/Answers.h"
#include "dbus/Text.h"

#include "vesk/hostinterface/MasterDpRam.h"
#include "vesk/modules/dpvm/DPVMMessages.h"

namespace Vesk::DBus {

using Modules::DPVM::DPVMMessages;

MasterObject::MasterObject(sdbus::IConnection& connection, Published& module)
    : AdaptorInterfaces(connection, module.Path()), _module(module) {
    registerAdaptor();
    getObject().emitInterfacesAddedSignal();
}

MasterObject::~MasterObject() {
    try {
        getObject().emitInterfacesRemovedSignal();
    } catch (const sdbus::Error&) { // NOLINT(bugprone-empty-catch): the bus has gone
    }
    unregisterAdaptor();
}

void MasterObject::Ask(std::unique_ptr<Question> question, Published::Reply reply) {
    if (!_module.Ask(CallerOf(getObject()), std::move(question), std::move(reply)))
        throw Errors::Busy();
}

void MasterObject::AskModule(sdbus::Result<Bytes>&& result,
                             const std::function<std::shared_ptr<Mailbox::IRequest>()>& make) {
    Ask(Messages({Checked(make)}), ReplyTo(std::move(result), [](Question& question, auto& answer) {
            answer.returnResults(question.data);
        }));
}

void MasterObject::GetSlaveDiagnosis(sdbus::Result<Bytes>&& result, std::uint8_t address) {
    AskModule(std::move(result),
              [=] { return DPVMMessages::GetSlaveDiag(address, DPVMMessages::RequestType_e::TYPE_1); });
}

void MasterObject::GetSlaveConfiguration(sdbus::Result<Bytes>&& result, std::uint8_t address) {
    AskModule(std::move(result), [=] { return DPVMMessages::GetSlaveConfig(address); });
}

void MasterObject::ReadSlaveInput(sdbus::Result<Bytes>&& result, std::uint8_t address) {
    AskModule(std::move(result), [=] { return DPVMMessages::ReadSlaveInput(address); });
}

void MasterObject::ReadSlaveOutput(sdbus::Result<Bytes>&& result, std::uint8_t address) {
    AskModule(std::move(result), [=] { return DPVMMessages::ReadSlaveOutput(address); });
}

void MasterObject::GetLiveList(sdbus::Result<Bytes>&& result) {
    AskModule(std::move(result), [] { return DPVMMessages::GetLiveList(); });
}

void MasterObject::ReadClass1(sdbus::Result<Bytes>&& result, std::uint8_t address, std::uint8_t slot,
                              std::uint8_t index, std::uint8_t length) {
    AskModule(std::move(result), [=] { return DPVMMessages::Class1Read(address, slot, index, length); });
}

void MasterObject::ReadClass2(sdbus::Result<Bytes>&& result, std::uint8_t address, std::uint8_t slot,
                              std::uint8_t index, std::uint8_t length) {
    Ask(Checked([=] {
            return ByClass2(address, DPVMMessages::Class2Read(ReferenceOf(address), slot, index, length));
        }),
        ReplyTo(std::move(result),
                [](Question& question, auto& answer) { answer.returnResults(question.data); }));
}

// ---- process data

void MasterObject::AskForSnapshot(Published::Reply reply) {
    auto question = std::make_unique<Question>();
    question->kind = Question::Kind::SNAPSHOT;
    question->data.resize(HostInterface::MasterDpRam::INPUT_AREA_SIZE);
    question->output.resize(HostInterface::MasterDpRam::OUTPUT_AREA_SIZE);
    Ask(std::move(question), std::move(reply));
}

void MasterObject::GetProcessData(Areas&& result) {
    AskForSnapshot(ReplyTo(std::move(result), [this](Question& question, auto& answer) {
        answer.returnResults(_module.WallTime(question.time), question.data, question.output);
    }));
}

void MasterObject::GetSlaveData(Areas&& result, std::uint8_t address) {
    const auto slave = _module.Slaves().Slaves().find(address);
    if (slave == _module.Slaves().Slaves().end())
        throw sdbus::Error(Errors::INVALID,
                           "slave " + std::to_string(address) + " is not in the configuration");
    AskForSnapshot(
        ReplyTo(std::move(result), [this, &slave = slave->second](Question& question, auto& answer) {
            answer.returnResults(_module.WallTime(question.time), BytesAt(slave.input, question.data),
                                 BytesAt(slave.output, question.output));
        }));
}

std::vector<sdbus::Struct<std::string, std::string>> MasterObject::ListSignals() {
    std::vector<sdbus::Struct<std::string, std::string>> signals;
    for (const auto& [name, entry] : _module.Signals().All())
        signals.emplace_back(BusText(name), BusText(entry.signal.unit));
    return signals;
}

void MasterObject::GetSignal(sdbus::Result<std::uint64_t, sdbus::Variant>&& result, std::string name) {
    const auto signal = _module.Signals().All().find(name);
    if (signal == _module.Signals().All().end())
        throw sdbus::Error(Errors::INVALID, "no signal has the name \"" + name + "\"");
    AskForSnapshot(ReplyTo(std::move(result), [this, &entry = signal->second](Question& question,
                                                                              auto& answer) {
        const auto value = SignalTable::ValueOf(entry, question.data, question.output);
        if (!value)
            return answer.returnError(sdbus::Error(Errors::NOT_READY, "the application does not map \"" +
                                                                          BusText(entry.signal.name) + "\""));
        answer.returnResults(_module.WallTime(question.time),
                             std::visit([](const auto& typed) { return sdbus::Variant(typed); }, *value));
    }));
}

} // namespace Vesk::DBus
