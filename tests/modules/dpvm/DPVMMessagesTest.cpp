// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/Values.h"

#include "vesk/modules/InitMessages.h"
#include "vesk/modules/dpvm/DPVMMessages.h"
#include "vesk/modules/dpvm/Vt22Messages.h"
#include "vesk/modules/dpvm/config/MasterRecord.h"
#include "vesk/modules/dpvm/config/SlaveRecord.h"
#include "vesk/system/io/MemoryStream.h"

#include <gmock/gmock.h>

#include <functional>
#include <numeric>

using namespace Vesk::Modules::DPVM;
using System::ArgumentOutOfRangeException;
using System::Array;
using Vesk::Mailbox::IRequest;
using Vesk::Mailbox::MessageType;
using Vesk::Modules::Slave::InitMessages;
using Words = std::vector<int>;
using Request = std::shared_ptr<IRequest>;

namespace {

using RequestType_e = DPVMMessages::RequestType_e;

/// 0, 1, … 255, 0, …
std::shared_ptr<Array<unsigned char>> Counting(int count) {
    std::vector<unsigned char> bytes(static_cast<std::size_t>(count));
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(0));
    return Array<unsigned char>::Create(bytes);
}

void ExpectRequest(const Request& request, const std::shared_ptr<MessageType>& type, const char* name,
                   int command, Words words, const std::vector<int>& data) {
    words.resize(8);
    EXPECT_EQ(request->Name().Value(), name);
    EXPECT_EQ(request->Type(), type) << name;
    EXPECT_EQ(request->Command(), command) << name;
    EXPECT_EQ(request->TotalFrameCount(), 1) << name;
    EXPECT_EQ(request->FrameNumber(), 1) << name;
    EXPECT_EQ(request->Offset(), 0u) << name;
    EXPECT_EQ(Values(request->Extended()), words) << name;
    EXPECT_EQ(Values(request->Data()), data) << name;
}

/// A record of as many bytes as a test wants.
class RecordOfSize : public Config::SlaveRecord {
public:
    static std::shared_ptr<RecordOfSize> Create(int size) {
        // A record of 44 bytes, and a pad byte behind each of its first two blocks.
        const auto bytes = Array<unsigned char>::Create(46);
        for (const auto& [offset, value] :
             {std::pair{1, 44}, {17, 9}, {27, 3}, {31, 6}, {32, 1}, {37, 6}, {43, 4}})
            bytes->Set(offset, static_cast<unsigned char>(value));
        return System::MakeShared<RecordOfSize>(System::IO::MemoryStream::Create(bytes), size);
    }

    void ToStream(const std::shared_ptr<System::IO::Stream>& stream) const override {
        stream->Write(Counting(_size), 0, _size);
    }

protected:
    RecordOfSize(const std::shared_ptr<System::IO::Stream>& stream, int size)
        : SlaveRecord(stream), _size(size) {}

private:
    int _size;
};

TEST(DPVMMessages, FillsTheFieldsOfEachService) {
    const auto data = Counting(10);
    const std::vector<int> bytes = Values(data);
    const auto slaves = Counting(126);

    const struct {
        Request request;
        const char* name;
        int command;
        Words words;
        std::vector<int> data;
    } cases[] = {
        {DPVMMessages::SetOperationMode(OperationMode_e::OFFLINE), "SetOperationMode", 0x02, {}, {}},
        {DPVMMessages::SetOperationMode(OperationMode_e::STOP), "SetOperationMode", 0x02, {0x4000}, {}},
        {DPVMMessages::SetOperationMode(OperationMode_e::CLEAR), "SetOperationMode", 0x02, {0x8000}, {}},
        {DPVMMessages::SetOperationMode(OperationMode_e::OPERATE), "SetOperationMode", 0x02, {0xC000}, {}},
        {DPVMMessages::GetSlaveDiag(3, RequestType_e::TYPE_1), "GetSlaveDiag", 0x04, {0x0301}, {}},
        {DPVMMessages::GetSlaveDiag(126, RequestType_e::TYPE_0), "GetSlaveDiag", 0x04, {0x7E00}, {}},
        {DPVMMessages::GetSlaveConfig(5), "GetSlaveConfig", 0x05, {0x0500}, {}},
        {DPVMMessages::SetSlaveAddress(126, 200, 0x1234, 0xFF, data),
         "SetSlaveAddress",
         0x06,
         {0x7EC8, 0x1234, 0xFF00},
         bytes},
        {DPVMMessages::ReadSlaveInput(6), "ReadSlaveInput", 0x09, {0x0600}, {}},
        {DPVMMessages::ReadSlaveOutput(0), "ReadSlaveOutput", 0x0A, {}, {}},
        {DPVMMessages::StartSlave(slaves), "StartSlave", 0x0B, {}, Values(slaves)},
        {DPVMMessages::StopSlave(slaves), "StopSlave", 0x0C, {}, Values(slaves)},
        {DPVMMessages::StartDatabaseDownload(), "StartDatabaseDownload", 0x10, {}, {}},
        {DPVMMessages::EndDatabaseDownload("1a\xE4"), "EndDatabaseDownload", 0x11, {}, {0x31, 0x61, 0xE4}},
        {DPVMMessages::EndDatabaseDownload(""), "EndDatabaseDownload", 0x11, {}, {}},
        {DPVMMessages::DeleteDatabase(), "DeleteDatabase", 0x16, {}, {}},
        {DPVMMessages::GetDatabaseInfo(), "GetDatabaseInfo", 0x17, {}, {}},
        {DPVMMessages::GetLiveList(), "GetLiveList", 0x18, {}, {}},
        {DPVMMessages::Class1Read(5, 1, 2, 240), "Class1Read", 0x20, {0x0501, 0x02F0}, {}},
        {DPVMMessages::Class1Write(5, 1, 2, data), "Class1Write", 0x21, {0x0501, 0x020A}, bytes},
        {DPVMMessages::Class2InitiateNormal(5, 0x0106), "Class2InitiateNormal", 0x25, {0x0106, 0x0500}, {}},
        {DPVMMessages::Class2Abort(0x0106, 2, 3), "Class2Abort", 0x26, {0x0106, 0x0203}, {}},
        {DPVMMessages::Class2Read(0x0106, 2, 3, 4), "Class2Read", 0x27, {0x0106, 0x0203, 0x0400}, {}},
        {DPVMMessages::Class2Write(0x0106, 2, 3, data), "Class2Write", 0x28, {0x0106, 0x0203, 0x0A00}, bytes},
        {DPVMMessages::Class2Write(6, 0, 1, Counting(256)),
         "Class2Write",
         0x28,
         {6, 1, 0},
         Values(Counting(256))},
    };

    for (const auto& c : cases)
        ExpectRequest(c.request, MessageType::FIELDBUS, c.name, c.command, c.words, c.data);
}

TEST(DPVMMessages, InitialisesTheModule) {
    const auto& type = MessageType::APPLICATION;
    ExpectRequest(InitMessages::StartInit(), type, "StartInit", 0x01, {}, {});
    ExpectRequest(Vt22Messages::VelmoInit(0x0102, 0x0304, 0x0506, 0x0708, 0x090A, 0xFBFC), type, "VelmoInit",
                  0x02, {}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 0xFB, 0xFC});
    ExpectRequest(InitMessages::EndInit(), type, "EndInit", 0x03, {}, {});
}

TEST(DPVMMessages, ChecksTheSlaveAddress) {
    const auto tooLong = Counting(257);
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
    for (const auto& service : services) {
        ExpectFailure<ArgumentOutOfRangeException>("127", [&] { return service(127); });
        ExpectFailure<ArgumentOutOfRangeException>("255", [&] { return service(255); });
    }
}

TEST(DPVMMessages, ChecksTheOtherArguments) {
    const auto tooLong = Counting(257);

    const struct {
        std::function<void()> request;
        const char* message;
    } outOfRange[] = {
        {[] { DPVMMessages::SetOperationMode(OperationMode_e(0x41)); }, "65"},
        {[] { DPVMMessages::SetOperationMode(OperationMode_e(0xFF)); }, "255"},
        {[] { DPVMMessages::GetSlaveDiag(126, RequestType_e(2)); }, "2"},
        {[] { DPVMMessages::GetSlaveDiag(126, RequestType_e(255)); }, "255"},
        {[] { DPVMMessages::StartSlave(Counting(125)); }, "125"},
        {[] { DPVMMessages::StopSlave(Counting(127)); }, "127"},
        {[&] { DPVMMessages::SetSlaveAddress(126, 1, 2, 3, tooLong); }, "Byte[257]"},
        {[&] { DPVMMessages::Class1Write(126, 1, 2, tooLong); }, "Byte[257]"},
        {[&] { DPVMMessages::Class2Write(1, 2, 3, tooLong); }, "Byte[257]"},
        {[] { DPVMMessages::EndDatabaseDownload(std::string(257, 'x')); }, "Byte[257]"},
    };

    for (const auto& c : outOfRange)
        ExpectFailure<ArgumentOutOfRangeException>(c.message, c.request);

    const struct {
        std::function<void()> request;
        const char* argument;
    } missing[] = {
        {[] { DPVMMessages::StartSlave(nullptr); }, "slaves"},
        {[] { DPVMMessages::Class1Write(1, 2, 3, nullptr); }, "data"},
        {[] { DPVMMessages::Class2Write(1, 2, 3, nullptr); }, "data"},
        {[] { DPVMMessages::MasterRecordDownload(nullptr); }, "record"},
        {[] { DPVMMessages::SlaveRecordDownload(1, nullptr); }, "record"},
    };

    for (const auto& c : missing)
        ExpectFailure<System::ArgumentNullException>(std::string(c.argument) + " must not be null",
                                                     c.request);
}

TEST(DPVMMessages, SendsTheMasterRecordInOneMessage) {
    const auto bytes = Counting(96);
    for (const auto& [offset, count] : {std::pair{28, 4}, {70, 2}, {76, 4}, {93, 3}}) // reserved
        std::fill_n(bytes->Data() + offset, count, static_cast<unsigned char>(0));
    for (const auto& [offset, value] : {std::pair{0, 0}, {1, 96}, {32, 0}, {33, 64}}) // block lengths
        bytes->Set(offset, static_cast<unsigned char>(value));
    const auto record = Config::MasterRecord::FromStream(System::IO::MemoryStream::Create(bytes));
    ExpectRequest(DPVMMessages::MasterRecordDownload(record), MessageType::FIELDBUS, "MasterRecordDownload",
                  0x12, {}, Values(bytes));
}

TEST(DPVMMessages, SendsSlaveRecordsInFragments) {
    const struct {
        int size;
        std::vector<int> fragments;
    } cases[] = {
        {0, {}},         {1, {1}},          {255, {255}},          {256, {256}},
        {257, {256, 1}}, {512, {256, 256}}, {600, {256, 256, 88}}, {65280, std::vector<int>(255, 256)}};

    for (const auto& [size, fragments] : cases) {
        const auto requests = DPVMMessages::SlaveRecordDownload(200, RecordOfSize::Create(size));
        const int count = static_cast<int>(fragments.size());
        ASSERT_EQ(requests->Count(), count) << size;
        for (int i = 0; i < count; ++i)
            ExpectRequest(requests->Get(i), MessageType::FIELDBUS, "SlaveRecordDownload", 0x14,
                          {0xC800 + i + 1, count << 8},
                          Values(Counting(fragments[static_cast<std::size_t>(i)])));
    }
}

} // namespace
