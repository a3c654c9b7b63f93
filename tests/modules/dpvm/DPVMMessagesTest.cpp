// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/mailbox/Response.h"
#include "vesk/modules/dpvm/DPVMMessages.h"
#include "vesk/modules/dpvm/DatabaseInfo.h"

#include <functional>

using namespace Vesk::Modules::DPVM;
using System::Array;
using M = DPVMMessages;

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
