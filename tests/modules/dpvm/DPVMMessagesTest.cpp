// SPDX-License-Identifier: MIT
#include "tests/modules/dpvm/config/RecordStreams.h"
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/Values.h"

#include "vesk/modules/InitMessages.h"
#include "vesk/modules/dpvm/DPVMMessages.h"
#include "vesk/modules/dpvm/Vt22Messages.h"
#include "vesk/modules/dpvm/config/MasterRecord.h"
#include "vesk/modules/dpvm/config/SlaveRecord.h"

#include <functional>
#include <numeric>
#include <tuple>

using namespace Vesk::Modules::DPVM;
using System::ArgumentOutOfRangeException;
using System::Array;
using Vesk::Mailbox::MessageType;
using Vesk::Modules::Slave::InitMessages;
using Words = std::vector<int>;
using Request = std::shared_ptr<Vesk::Mailbox::IRequest>;
using Call = std::function<void()>;
using RequestType_e = DPVMMessages::RequestType_e;

/// 0, 1, … 255, 0, …
static Bytes Counting(int count) {
    Bytes bytes(static_cast<std::size_t>(count));
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(0));
    return bytes;
}

static void ExpectRequest(const Request& request, const std::shared_ptr<MessageType>& type, const char* name,
                          int command, Words words, const Bytes& data) {
    words.resize(8);
    EXPECT_EQ(request->Name().Value(), name);
    EXPECT_EQ(request->Type(), type) << name;
    EXPECT_EQ(request->Command(), command) << name;
    EXPECT_EQ(request->TotalFrameCount(), 1) << name;
    EXPECT_EQ(request->FrameNumber(), 1) << name;
    EXPECT_EQ(request->Offset(), 0u) << name;
    EXPECT_EQ(Values(request->Extended()), words) << name;
    EXPECT_EQ(Values(request->Data()), Words(data.begin(), data.end())) << name;
}

// The other services are seen in the mailbox of the master.
TEST(DPVMMessages, FillsTheFieldsOfAService) {
    const auto data = Counting(10);
    const auto full = Counting(256);
    const std::tuple<Request, const char*, int, Words, Bytes> cases[] = {
        {DPVMMessages::SetOperationMode(OperationMode_e::OFFLINE), "SetOperationMode", 0x02, {}, {}},
        {DPVMMessages::SetOperationMode(OperationMode_e::STOP), "SetOperationMode", 0x02, {0x4000}, {}},
        {DPVMMessages::SetOperationMode(OperationMode_e::OPERATE), "SetOperationMode", 0x02, {0xC000}, {}},
        {DPVMMessages::GetSlaveDiag(126, RequestType_e::TYPE_0), "GetSlaveDiag", 0x04, {0x7E00}, {}},
        {DPVMMessages::SetSlaveAddress(126, 200, 0x1234, 0xFF, Array<unsigned char>::Create(data)),
         "SetSlaveAddress",
         0x06,
         {0x7EC8, 0x1234, 0xFF00},
         data},
        {DPVMMessages::StartDatabaseDownload(), "StartDatabaseDownload", 0x10, {}, {}},
        {DPVMMessages::EndDatabaseDownload("1a\xE4"), "EndDatabaseDownload", 0x11, {}, {0x31, 0x61, 0xE4}},
        {DPVMMessages::EndDatabaseDownload(""), "EndDatabaseDownload", 0x11, {}, {}},
        {DPVMMessages::DeleteDatabase(), "DeleteDatabase", 0x16, {}, {}},
        {DPVMMessages::GetDatabaseInfo(), "GetDatabaseInfo", 0x17, {}, {}},
        {DPVMMessages::Class2Write(6, 0, 1, Array<unsigned char>::Create(full)),
         "Class2Write",
         0x28,
         {6, 1, 0},
         full},
    };
    for (const auto& [request, name, command, words, bytes] : cases)
        ExpectRequest(request, MessageType::FIELDBUS, name, command, words, bytes);
}

TEST(DPVMMessages, InitialisesTheModule) {
    const auto& type = MessageType::APPLICATION;
    ExpectRequest(InitMessages::StartInit(), type, "StartInit", 0x01, {}, {});
    ExpectRequest(Vt22Messages::VelmoInit(0x0102, 0x0304, 0x0506, 0x0708, 0x090A, 0xFBFC), type, "VelmoInit",
                  0x02, {}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 0xFB, 0xFC});
    ExpectRequest(InitMessages::EndInit(), type, "EndInit", 0x03, {}, {});
}

TEST(DPVMMessages, ChecksTheSlaveAddressFirst) {
    const auto tooLong = Array<unsigned char>::Create(257);
    const std::function<Request(unsigned char)> services[] = {
        [](unsigned char slave) { return DPVMMessages::GetSlaveDiag(slave, RequestType_e(2)); },
        [](unsigned char slave) { return DPVMMessages::GetSlaveConfig(slave); },
        [&](unsigned char slave) { return DPVMMessages::SetSlaveAddress(slave, 1, 2, 3, tooLong); },
        [](unsigned char slave) { return DPVMMessages::ReadSlaveInput(slave); },
        [](unsigned char slave) { return DPVMMessages::ReadSlaveOutput(slave); },
        [](unsigned char slave) { return DPVMMessages::Class1Read(slave, 1, 2, 3); },
        [&](unsigned char slave) { return DPVMMessages::Class1Write(slave, 1, 2, tooLong); },
        [](unsigned char slave) { return DPVMMessages::Class2InitiateNormal(slave, 1); },
    };
    for (const auto& service : services)
        for (const int slave : {127, 255})
            ExpectFailure<ArgumentOutOfRangeException>(std::to_string(slave),
                                                       [&] { service(static_cast<unsigned char>(slave)); });
}

TEST(DPVMMessages, ChecksTheOtherArguments) {
    const auto slaves = [](int count) { return Array<unsigned char>::Create(count); };
    const auto tooLong = Array<unsigned char>::Create(257);
    const std::pair<Call, const char*> outOfRange[] = {
        {[] { DPVMMessages::SetOperationMode(OperationMode_e(0x41)); }, "65"},
        {[] { DPVMMessages::SetOperationMode(OperationMode_e(0xFF)); }, "255"},
        {[] { DPVMMessages::GetSlaveDiag(126, RequestType_e(2)); }, "2"},
        {[] { DPVMMessages::GetSlaveDiag(126, RequestType_e(255)); }, "255"},
        {[&] { DPVMMessages::StartSlave(slaves(125)); }, "125"},
        {[&] { DPVMMessages::StopSlave(slaves(127)); }, "127"},
        {[&] { DPVMMessages::SetSlaveAddress(126, 1, 2, 3, tooLong); }, "Byte[257]"},
        {[&] { DPVMMessages::Class1Write(126, 1, 2, tooLong); }, "Byte[257]"},
        {[&] { DPVMMessages::Class2Write(1, 2, 3, tooLong); }, "Byte[257]"},
        {[] { DPVMMessages::EndDatabaseDownload(std::string(257, 'x')); }, "Byte[257]"},
    };
    for (const auto& [request, message] : outOfRange)
        ExpectFailure<ArgumentOutOfRangeException>(message, request);

    const std::pair<Call, const char*> missing[] = {
        {[] { DPVMMessages::StartSlave(nullptr); }, "slaves must not be null"},
        {[] { DPVMMessages::Class1Write(1, 2, 3, nullptr); }, "data must not be null"},
        {[] { DPVMMessages::Class2Write(1, 2, 3, nullptr); }, "data must not be null"},
        {[] { DPVMMessages::MasterRecordDownload(nullptr); }, "record must not be null"},
        {[] { DPVMMessages::SlaveRecordDownload(1, nullptr); }, "record must not be null"},
    };
    for (const auto& [request, message] : missing)
        ExpectFailure<System::ArgumentNullException>(message, request);
}

TEST(DPVMMessages, SendsTheMasterRecordInOneMessage) {
    const Bytes bytes = DatabaseFileBuilder::MasterRecord();
    ExpectRequest(DPVMMessages::MasterRecordDownload(Read<Config::MasterRecord>(bytes)),
                  MessageType::FIELDBUS, "MasterRecordDownload", 0x12, {}, bytes);
}

TEST(DPVMMessages, SendsSlaveRecordsInFragments) {
    const std::tuple<std::size_t, int, std::vector<int>> cases[] = {
        // inputs and extended bytes make a size
        {1, 0, {44}},       {1, 211, {255}},      {1, 212, {256}},
        {1, 213, {256, 1}}, {235, 0, {256, 256}}, {235, 88, {256, 256, 88}},
    };
    for (const auto& [inputs, extended, sizes] : cases) {
        const Bytes bytes = DatabaseFileBuilder::SlaveRecord(
            {std::vector<int>(inputs), {}, {1}, {0xC0, 0xC1}, Counting(extended)});
        const auto requests = DPVMMessages::SlaveRecordDownload(200, Read<Config::SlaveRecord>(bytes));
        const int count = static_cast<int>(sizes.size());
        ASSERT_EQ(requests->Count(), count) << bytes.size();
        auto first = bytes.begin();
        for (int i = 0; i < count; ++i) {
            const auto end = first + sizes[static_cast<std::size_t>(i)];
            ExpectRequest(requests->Get(i), MessageType::FIELDBUS, "SlaveRecordDownload", 0x14,
                          {0xC800 + i + 1, count << 8}, {first, end});
            first = end;
        }
        EXPECT_EQ(first, bytes.end());
    }
}
