// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/DPVMMessages.h"

#include "vesk/hostinterface/MailboxDpRam.h"
#include "vesk/mailbox/RequestBuilder.h"
#include "vesk/system/io/MemoryStream.h"
#include "vesk/system/text/Encoding.h"

#include <algorithm>

namespace Vesk::Modules::DPVM {

using HostInterface::MailboxDpRam::MAX_DATA_SIZE;
using Mailbox::IRequest;
using Mailbox::RequestBuilder;
using System::Collections::Generic::List;
using System::Collections::Generic::ReadOnlyCollection;

static constexpr unsigned char HIGHEST_SLAVE_ADDRESS = 126;
static constexpr int SLAVE_LIST_SIZE = 126;

[[noreturn]] static void ThrowOutOfRange(int value) {
    System::_env_throw(System::ArgumentOutOfRangeException::Create(std::to_string(value)));
}

static void CheckAddress(unsigned char slaveAddress) {
    if (slaveAddress > HIGHEST_SLAVE_ADDRESS)
        ThrowOutOfRange(slaveAddress);
}

static unsigned short Word(unsigned char high, unsigned char low) {
    return static_cast<unsigned short>(high << 8 | low);
}

static std::shared_ptr<RequestBuilder> Service(const char* name, unsigned short command) {
    return RequestBuilder::Create()->Type(Mailbox::MessageType::FIELDBUS)->Name(name)->Command(command);
}

/// A service about one slave, without further arguments.
static std::shared_ptr<IRequest> SlaveService(const char* name, unsigned short command,
                                              unsigned char slaveAddress) {
    CheckAddress(slaveAddress);
    return Service(name, command)->Extended(Word(slaveAddress, 0), 0)->Build();
}

/// A service about the slaves of a list.
static std::shared_ptr<IRequest> SlaveListService(const char* name, unsigned short command,
                                                  const DPVMMessages::Bytes& slaves) {
    if (!slaves)
        System::_throw_argument_null_exception("slaves");
    if (slaves->Count() != SLAVE_LIST_SIZE)
        ThrowOutOfRange(slaves->Count());
    return Service(name, command)->Data(slaves)->Build();
}

static unsigned char LengthByte(const DPVMMessages::Bytes& data) {
    if (!data)
        System::_throw_argument_null_exception("data");
    return static_cast<unsigned char>(data->Count());
}

template <class Record>
static DPVMMessages::Bytes BinaryForm(const std::shared_ptr<Record>& record) {
    if (!record)
        System::_throw_argument_null_exception("record");
    const auto stream = System::IO::MemoryStream::Create();
    record->ToStream(stream);
    return stream->ToArray();
}

std::shared_ptr<IRequest> DPVMMessages::SetOperationMode(OperationMode_e mode) {
    const auto value = static_cast<unsigned char>(mode);
    switch (mode) {
    case OperationMode_e::OFFLINE:
    case OperationMode_e::STOP:
    case OperationMode_e::CLEAR:
    case OperationMode_e::OPERATE:
        return Service("SetOperationMode", 0x02)->Extended(Word(value, 0), 0)->Build();
    }
    ThrowOutOfRange(value);
}

std::shared_ptr<IRequest> DPVMMessages::GetSlaveDiag(unsigned char slaveAddress, RequestType_e requestType) {
    CheckAddress(slaveAddress);
    const auto type = static_cast<unsigned char>(requestType);
    if (requestType > RequestType_e::TYPE_1)
        ThrowOutOfRange(type);
    return Service("GetSlaveDiag", 0x04)->Extended(Word(slaveAddress, type), 0)->Build();
}

std::shared_ptr<IRequest> DPVMMessages::GetSlaveConfig(unsigned char slaveAddress) {
    return SlaveService("GetSlaveConfig", 0x05, slaveAddress);
}

std::shared_ptr<IRequest> DPVMMessages::SetSlaveAddress(unsigned char slaveAddress,
                                                        unsigned char newSlaveAddress,
                                                        unsigned short identNumber,
                                                        unsigned char noAddressChange, const Bytes& data) {
    CheckAddress(slaveAddress);
    return Service("SetSlaveAddress", 0x06)
        ->Extended(Word(slaveAddress, newSlaveAddress), 0)
        ->Extended(identNumber, 1)
        ->Extended(Word(noAddressChange, 0), 2)
        ->Data(data)
        ->Build();
}

std::shared_ptr<IRequest> DPVMMessages::ReadSlaveInput(unsigned char slaveAddress) {
    return SlaveService("ReadSlaveInput", 0x09, slaveAddress);
}

std::shared_ptr<IRequest> DPVMMessages::ReadSlaveOutput(unsigned char slaveAddress) {
    return SlaveService("ReadSlaveOutput", 0x0A, slaveAddress);
}

std::shared_ptr<IRequest> DPVMMessages::StartSlave(const Bytes& slaves) {
    return SlaveListService("StartSlave", 0x0B, slaves);
}

std::shared_ptr<IRequest> DPVMMessages::StopSlave(const Bytes& slaves) {
    return SlaveListService("StopSlave", 0x0C, slaves);
}

std::shared_ptr<IRequest> DPVMMessages::GetLiveList() {
    return Service("GetLiveList", 0x18)->Build();
}

std::shared_ptr<IRequest> DPVMMessages::StartDatabaseDownload() {
    return Service("StartDatabaseDownload", 0x10)->Build();
}

std::shared_ptr<IRequest> DPVMMessages::EndDatabaseDownload(const System::String& description) {
    return Service("EndDatabaseDownload", 0x11)
        ->Data(System::Text::Encoding::ASCII::GetBytes(description))
        ->Build();
}

std::shared_ptr<IRequest>
DPVMMessages::MasterRecordDownload(const std::shared_ptr<Config::IMasterRecord>& record) {
    return Service("MasterRecordDownload", 0x12)->Data(BinaryForm(record))->Build();
}

std::shared_ptr<ReadOnlyCollection<std::shared_ptr<IRequest>>>
DPVMMessages::SlaveRecordDownload(unsigned char slaveAddress,
                                  const std::shared_ptr<Config::ISlaveRecord>& record) {
    const Bytes bytes = BinaryForm(record);
    // Only a byte of it travels.
    const auto fragmentCount =
        static_cast<unsigned char>((bytes->Count() + MAX_DATA_SIZE - 1) / MAX_DATA_SIZE);
    const auto builder = Service("SlaveRecordDownload", 0x14)->Extended(Word(fragmentCount, 0), 1);

    const auto requests = List<std::shared_ptr<IRequest>>::Create();
    int offset = 0;
    for (int fragment = 1; fragment <= fragmentCount; ++fragment) {
        const int size = std::min<int>(MAX_DATA_SIZE, bytes->Count() - offset);
        requests->Add(builder->Extended(Word(slaveAddress, static_cast<unsigned char>(fragment)), 0)
                          ->Data(System::ArraySegment<unsigned char>::Create(bytes, offset, size))
                          ->Build());
        offset += size;
    }
    return ReadOnlyCollection<std::shared_ptr<IRequest>>::Create(requests);
}

std::shared_ptr<IRequest> DPVMMessages::DeleteDatabase() {
    return Service("DeleteDatabase", 0x16)->Build();
}

std::shared_ptr<IRequest> DPVMMessages::GetDatabaseInfo() {
    return Service("GetDatabaseInfo", 0x17)->Build();
}

std::shared_ptr<IRequest> DPVMMessages::Class1Read(unsigned char slaveAddress, unsigned char slot,
                                                   unsigned char index, unsigned char length) {
    CheckAddress(slaveAddress);
    return Service("Class1Read", 0x20)
        ->Extended(Word(slaveAddress, slot), 0)
        ->Extended(Word(index, length), 1)
        ->Build();
}

std::shared_ptr<IRequest> DPVMMessages::Class1Write(unsigned char slaveAddress, unsigned char slot,
                                                    unsigned char index, const Bytes& data) {
    CheckAddress(slaveAddress);
    return Service("Class1Write", 0x21)
        ->Extended(Word(slaveAddress, slot), 0)
        ->Extended(Word(index, LengthByte(data)), 1)
        ->Data(data)
        ->Build();
}

std::shared_ptr<IRequest> DPVMMessages::Class2InitiateNormal(unsigned char slaveAddress,
                                                             unsigned short communicationReference) {
    CheckAddress(slaveAddress);
    return Service("Class2InitiateNormal", 0x25)
        ->Extended(communicationReference, 0)
        ->Extended(Word(slaveAddress, 0), 1)
        ->Build();
}

std::shared_ptr<IRequest> DPVMMessages::Class2Abort(unsigned short communicationReference,
                                                    unsigned char subnet, unsigned char reasonCode) {
    return Service("Class2Abort", 0x26)
        ->Extended(communicationReference, 0)
        ->Extended(Word(subnet, reasonCode), 1)
        ->Build();
}

std::shared_ptr<IRequest> DPVMMessages::Class2Read(unsigned short communicationReference, unsigned char slot,
                                                   unsigned char index, unsigned char length) {
    return Service("Class2Read", 0x27)
        ->Extended(communicationReference, 0)
        ->Extended(Word(slot, index), 1)
        ->Extended(Word(length, 0), 2)
        ->Build();
}

std::shared_ptr<IRequest> DPVMMessages::Class2Write(unsigned short communicationReference, unsigned char slot,
                                                    unsigned char index, const Bytes& data) {
    return Service("Class2Write", 0x28)
        ->Extended(communicationReference, 0)
        ->Extended(Word(slot, index), 1)
        ->Extended(Word(LengthByte(data), 0), 2)
        ->Data(data)
        ->Build();
}

} // namespace Vesk::Modules::DPVM
