// SPDX-License-Identifier: MIT
#include "tests/modules/dpvm/config/RecordStreams.h"
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/Values.h"

#include "vesk/mailbox/Response.h"
#include "vesk/modules/InitMessages.h"
#include "vesk/modules/dpvm/DPVMMessages.h"
#include "vesk/modules/dpvm/DatabaseInfo.h"
#include "vesk/modules/dpvm/Vt22Messages.h"
#include "vesk/modules/dpvm/config/MasterRecord.h"
#include "vesk/modules/dpvm/config/SlaveRecord.h"

#include <functional>
#include <numeric>
#include <tuple>

using namespace Vesk::Modules::DPVM;
using System::Array;
using Vesk::Mailbox::MessageType;
using Vesk::Modules::Slave::InitMessages;
using Words = std::vector<int>;
using M = DPVMMessages;

/// 0, 1, … 255, 0, …
static Bytes Counting(int count) {
    Bytes bytes(static_cast<std::size_t>(count));
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(0));
    return bytes;
}

static void Expect(const std::shared_ptr<Vesk::Mailbox::IRequest>& request, const char* name, int command,
                   Words words = {}, const Bytes& data = {},
                   const std::shared_ptr<MessageType>& type = MessageType::FIELDBUS) {
    words.resize(8);
    EXPECT_EQ(request->Name().Value(), name);
    EXPECT_EQ(request->Type(), type) << name;
    EXPECT_EQ((Words{request->Command(), request->TotalFrameCount(), request->FrameNumber(),
                     static_cast<int>(request->Offset())}),
              (Words{command, 1, 1, 0}))
        << name;
    EXPECT_EQ(Values(request->Extended()), words) << name;
    EXPECT_EQ(Values(request->Data()), Words(data.begin(), data.end())) << name;
}

// The other services are seen in the mailbox of the master.
TEST(DPVMMessages, FillTheFieldsOfAService) {
    const auto full = Counting(256);
    Expect(M::SetOperationMode(OperationMode_e::OFFLINE), "SetOperationMode", 0x02);
    Expect(M::SetOperationMode(OperationMode_e::STOP), "SetOperationMode", 0x02, {0x4000});
    Expect(M::SetOperationMode(OperationMode_e::OPERATE), "SetOperationMode", 0x02, {0xC000});
    Expect(M::GetSlaveDiag(126, M::RequestType_e::TYPE_0), "GetSlaveDiag", 0x04, {0x7E00});
    Expect(M::SetSlaveAddress(126, 200, 0x1234, 0xFF, Array<unsigned char>::Create(Counting(10))),
           "SetSlaveAddress", 0x06, {0x7EC8, 0x1234, 0xFF00}, Counting(10));
    Expect(M::StartDatabaseDownload(), "StartDatabaseDownload", 0x10);
    Expect(M::EndDatabaseDownload("1a\xE4"), "EndDatabaseDownload", 0x11, {}, {0x31, 0x61, 0xE4});
    Expect(M::DeleteDatabase(), "DeleteDatabase", 0x16);
    Expect(M::GetDatabaseInfo(), "GetDatabaseInfo", 0x17);
    Expect(M::Class2Write(6, 0, 1, Array<unsigned char>::Create(full)), "Class2Write", 0x28, {6, 1}, full);

    const auto& type = MessageType::APPLICATION;
    Expect(InitMessages::StartInit(), "StartInit", 0x01, {}, {}, type);
    Expect(Vt22Messages::VelmoInit(0x0102, 0x0304, 0x0506, 0x0708, 0x090A, 0xFBFC), "VelmoInit", 0x02, {},
           {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 0xFB, 0xFC}, type);
    Expect(InitMessages::EndInit(), "EndInit", 0x03, {}, {}, type);
}

TEST(DPVMMessages, CheckTheSlaveAddressAndThenTheRest) {
    const auto slaves = [](int count) { return Array<unsigned char>::Create(count); };
    const auto tooLong = slaves(257);
    const std::pair<std::function<void()>, const char*> cases[] = {
        {[] { M::GetSlaveDiag(127, M::RequestType_e(2)); }, "127"},
        {[] { M::GetSlaveConfig(127); }, "127"},
        {[&] { M::SetSlaveAddress(127, 1, 2, 3, tooLong); }, "127"},
        {[] { M::ReadSlaveInput(127); }, "127"},
        {[] { M::ReadSlaveOutput(255); }, "255"},
        {[] { M::Class1Read(127, 1, 2, 3); }, "127"},
        {[&] { M::Class1Write(127, 1, 2, tooLong); }, "127"},
        {[] { M::Class2InitiateNormal(127, 1); }, "127"},
        {[] { M::SetOperationMode(OperationMode_e(0x41)); }, "65"},
        {[] { M::GetSlaveDiag(126, M::RequestType_e(2)); }, "2"},
        {[&] { M::StartSlave(slaves(125)); }, "125"},
        {[&] { M::StopSlave(slaves(127)); }, "127"},
        {[&] { M::SetSlaveAddress(126, 1, 2, 3, tooLong); }, "Byte[257]"},
        {[&] { M::Class1Write(126, 1, 2, tooLong); }, "Byte[257]"},
        {[&] { M::Class2Write(1, 2, 3, tooLong); }, "Byte[257]"},
        {[] { M::EndDatabaseDownload(std::string(257, 'x')); }, "Byte[257]"},
    };
    for (const auto& [request, message] : cases)
        ExpectFailure<System::ArgumentOutOfRangeException>(message, request);
}

TEST(DPVMMessages, SendTheMasterRecordInOneMessageAndSlaveRecordsInFragments) {
    const Bytes master = DatabaseFileBuilder::MasterRecord();
    Expect(M::MasterRecordDownload(Read<Config::MasterRecord>(master)), "MasterRecordDownload", 0x12, {},
           master);
    const std::tuple<std::size_t, int, std::vector<int>> cases[] = {
        // inputs and extended bytes make a size
        {1, 0, {44}}, {1, 212, {256}}, {1, 213, {256, 1}}, {235, 0, {256, 256}}, {235, 88, {256, 256, 88}},
    };
    for (const auto& [inputs, extended, sizes] : cases) {
        const Bytes bytes = DatabaseFileBuilder::SlaveRecord(
            {std::vector<int>(inputs), {}, {1}, {0xC0, 0xC1}, Counting(extended)});
        const auto requests = M::SlaveRecordDownload(200, Read<Config::SlaveRecord>(bytes));
        const int count = static_cast<int>(sizes.size());
        ASSERT_EQ(requests->Count(), count) << bytes.size();
        auto first = bytes.begin();
        for (int i = 0; i < count; ++i) {
            const auto end = first + sizes[static_cast<std::size_t>(i)];
            Expect(requests->Get(i), "SlaveRecordDownload", 0x14, {0xC800 + i + 1, count << 8}, {first, end});
            first = end;
        }
        EXPECT_EQ(first, bytes.end());
    }
}

TEST(DatabaseInfo, EndsTheDescriptionAtTheFirstByte00OrFF) {
    const std::string full(256, 'x');
    const std::pair<std::string, std::string> cases[] = {{"1a2b3c4d", "1a2b3c4d"},
                                                         {"XY\xFFZ", "XY"},
                                                         {std::string("XY\0Z", 4), "XY"},
                                                         {"XY\x7F\x80\xFE", "XY\x7F\x80\xFE"},
                                                         {"\xFFXY", ""},
                                                         {"", ""},
                                                         {full, full}};
    for (const auto& [data, description] : cases)
        EXPECT_EQ(DatabaseInfo::FromMailboxResponse(
                      Vesk::Mailbox::Response::Create(
                          Vesk::Mailbox::ErrorCode::NO_ERROR,
                          Array<unsigned short>::Create({1, 0xFFFF, 300, 4, 0x0588, 7, 8, 9}),
                          Array<unsigned char>::Create({data.begin(), data.end()})))
                      ->ToString()
                      .Value(),
                  "DatabaseInfo\nTotalOutputLength: 1\nTotalInputLength: 65535\nInitOutputLength: 300\n"
                  "InitInputLength: 4\nNoOfSlaves: 5\nDescription: " +
                      description + "\n");
}
