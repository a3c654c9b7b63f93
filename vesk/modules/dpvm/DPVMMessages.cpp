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
using Mailbox::MailboxCommand;
using Mailbox::RequestBuilder;
namespace Commands = Mailbox::Commands;
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

/// A service about one slave, without further arguments.
static std::shared_ptr<IRequest> SlaveService(const MailboxCommand& command, unsigned char slaveAddress) {
    CheckAddress(slaveAddress);
    return RequestBuilder::Create(command)->Extended(Word(slaveAddress, 0), 0)->Build();
}

/// A service about the slaves of a list.
static std::shared_ptr<IRequest> SlaveListService(const MailboxCommand& command,
                                                  const DPVMMessages::Bytes& slaves) {
    if (!slaves)
        System::_throw_argument_null_exception("slaves");
    if (slaves->Count() != SLAVE_LIST_SIZE)
        ThrowOutOfRange(slaves->Count());
    return RequestBuilder::Create(command)->Data(slaves)->Build();
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
        return RequestBuilder::Create(Commands::SET_OPERATION_MODE)->Extended(Word(value, 0), 0)->Build();
    }
    ThrowOutOfRange(value);
}

std::shared_ptr<IRequest> DPVMMessages::GetSlaveDiag(unsigned char slaveAddress, RequestType_e requestType) {
    CheckAddress(slaveAddress);
    const auto type = static_cast<unsigned char>(requestType);
    if (requestType > RequestType_e::TYPE_1)
        ThrowOutOfRange(type);
    return RequestBuilder::Create(Commands::GET_SLAVE_DIAG)->Extended(Word(slaveAddress, type), 0)->Build();
}

std::shared_ptr<IRequest> DPVMMessages::GetSlaveConfig(unsigned char slaveAddress) {
    return SlaveService(Commands::GET_SLAVE_CONFIG, slaveAddress);
}

std::shared_ptr<IRequest> DPVMMessages::SetSlaveAddress(unsigned char slaveAddress,
                                                        unsigned char newSlaveAddress,
                                                        unsigned short identNumber,
                                                        unsigned char noAddressChange, const Bytes& data) {
    CheckAddress(slaveAddress);
    return RequestBuilder::Create(Commands::SET_SLAVE_ADDRESS)
        ->Extended(Word(slaveAddress, newSlaveAddress), 0)
        ->Extended(identNumber, 1)
        ->Extended(Word(noAddressChange, 0), 2)
        ->Data(data)
        ->Build();
}

std::shared_ptr<IRequest> DPVMMessages::ReadSlaveInput(unsigned char slaveAddress) {
    return SlaveService(Commands::READ_SLAVE_INPUT, slaveAddress);
}

std::shared_ptr<IRequest> DPVMMessages::ReadSlaveOutput(unsigned char slaveAddress) {
    return SlaveService(Commands::READ_SLAVE_OUTPUT, slaveAddress);
}

std::shared_ptr<IRequest> DPVMMessages::StartSlave(const Bytes& slaves) {
    return SlaveListService(Commands::START_SLAVE, slaves);
}

std::shared_ptr<IRequest> DPVMMessages::StopSlave(const Bytes& slaves) {
    return SlaveListService(Commands::STOP_SLAVE, slaves);
}

std::shared_ptr<IRequest> DPVMMessages::GetLiveList() {
    return RequestBuilder::Create(Commands::GET_LIVE_LIST)->Build();
}

std::shared_ptr<IRequest> DPVMMessages::StartDatabaseDownload() {
    return RequestBuilder::Create(Commands::START_DATABASE_DOWNLOAD)->Build();
}

std::shared_ptr<IRequest> DPVMMessages::EndDatabaseDownload(const System::String& description) {
    return RequestBuilder::Create(Commands::END_DATABASE_DOWNLOAD)
        ->Data(System::Text::Encoding::ASCII::GetBytes(description))
        ->Build();
}

std::shared_ptr<IRequest>
DPVMMessages::MasterRecordDownload(const std::shared_ptr<Config::IMasterRecord>& record) {
    return RequestBuilder::Create(Commands::MASTER_RECORD_DOWNLOAD)->Data(BinaryForm(record))->Build();
}

std::shared_ptr<ReadOnlyCollection<std::shared_ptr<IRequest>>>
DPVMMessages::SlaveRecordDownload(unsigned char slaveAddress,
                                  const std::shared_ptr<Config::ISlaveRecord>& record) {
    const Bytes bytes = BinaryForm(record);
    // Only a byte of it travels.
    const auto fragmentCount =
        static_cast<unsigned char>((bytes->Count() + MAX_DATA_SIZE - 1) / MAX_DATA_SIZE);
    const auto builder =
        RequestBuilder::Create(Commands::SLAVE_RECORD_DOWNLOAD)->Extended(Word(fragmentCount, 0), 1);

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
    return RequestBuilder::Create(Commands::DELETE_DATABASE)->Build();
}

std::shared_ptr<IRequest> DPVMMessages::GetDatabaseInfo() {
    return RequestBuilder::Create(Commands::GET_DATABASE_INFO)->Build();
}

std::shared_ptr<IRequest> DPVMMessages::Class1Read(unsigned char slaveAddress, unsigned char slot,
                                                   unsigned char index, unsigned char length) {
    CheckAddress(slaveAddress);
    return RequestBuilder::Create(Commands::CLASS1_READ)
        ->Extended(Word(slaveAddress, slot), 0)
        ->Extended(Word(index, length), 1)
        ->Build();
}

std::shared_ptr<IRequest> DPVMMessages::Class1Write(unsigned char slaveAddress, unsigned char slot,
                                                    unsigned char index, const Bytes& data) {
    CheckAddress(slaveAddress);
    return RequestBuilder::Create(Commands::CLASS1_WRITE)
        ->Extended(Word(slaveAddress, slot), 0)
        ->Extended(Word(index, LengthByte(data)), 1)
        ->Data(data)
        ->Build();
}

std::shared_ptr<IRequest> DPVMMessages::Class2InitiateNormal(unsigned char slaveAddress,
                                                             unsigned short communicationReference) {
    CheckAddress(slaveAddress);
    return RequestBuilder::Create(Commands::CLASS2_INITIATE_NORMAL)
        ->Extended(communicationReference, 0)
        ->Extended(Word(slaveAddress, 0), 1)
        ->Build();
}

std::shared_ptr<IRequest> DPVMMessages::Class2Abort(unsigned short communicationReference,
                                                    unsigned char subnet, unsigned char reasonCode) {
    return RequestBuilder::Create(Commands::CLASS2_ABORT)
        ->Extended(communicationReference, 0)
        ->Extended(Word(subnet, reasonCode), 1)
        ->Build();
}

std::shared_ptr<IRequest> DPVMMessages::Class2Read(unsigned short communicationReference, unsigned char slot,
                                                   unsigned char index, unsigned char length) {
    return RequestBuilder::Create(Commands::CLASS2_READ)
        ->Extended(communicationReference, 0)
        ->Extended(Word(slot, index), 1)
        ->Extended(Word(length, 0), 2)
        ->Build();
}

std::shared_ptr<IRequest> DPVMMessages::Class2Write(unsigned short communicationReference, unsigned char slot,
                                                    unsigned char index, const Bytes& data) {
    return RequestBuilder::Create(Commands::CLASS2_WRITE)
        ->Extended(communicationReference, 0)
        ->Extended(Word(slot, index), 1)
        ->Extended(Word(LengthByte(data), 0), 2)
        ->Data(data)
        ->Build();
}

} // namespace Vesk::Modules::DPVM
