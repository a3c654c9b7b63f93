// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/mailbox/Response.h"
#include "vesk/modules/dpvm/DatabaseInfo.h"

using System::Array;
using Vesk::Mailbox::ErrorCode;
using Vesk::Mailbox::Response;
using Vesk::Modules::DPVM::DatabaseInfo;

static std::shared_ptr<DatabaseInfo> Decode(const std::string& data,
                                            const std::shared_ptr<ErrorCode>& error = ErrorCode::NO_ERROR) {
    const auto words = Array<unsigned short>::Create({1, 0xFFFF, 300, 4, 0x0588, 0x1111, 0x2222, 0x3333});
    const auto bytes = Array<unsigned char>::Create(std::vector<unsigned char>(data.begin(), data.end()));
    return DatabaseInfo::FromMailboxResponse(Response::Create(error, words, bytes));
}

TEST(DatabaseInfo, ReadsLengthsAndSlavesFromTheExtendedWords) {
    EXPECT_EQ(Decode("1a2b3c4d")->ToString().Value(),
              "DatabaseInfo\nTotalOutputLength: 1\nTotalInputLength: 65535\nInitOutputLength: 300\n"
              "InitInputLength: 4\nNoOfSlaves: 5\nDescription: 1a2b3c4d\n");
}

TEST(DatabaseInfo, EndsTheDescriptionAtTheFirstByte00OrFF) {
    const std::string full(256, 'x');
    const std::pair<std::string, std::string> cases[] = {
        {"XY\xFFZ", "XY"}, {std::string("XY\0Z", 4), "XY"}, {"XY\x7F\x80\xFE", "XY\x7F\x80\xFE"},
        {"\xFFXY", ""},    {std::string(1, '\0'), ""},      {"", ""},
        {full, full},
    };
    for (const auto& [data, description] : cases)
        EXPECT_TRUE(Decode(data)->Description == description) << data;
}

TEST(DatabaseInfo, RefusesAnErrorAndNoResponse) {
    ExpectFailure<Vesk::Mailbox::MailboxResponseException>(
        "Received erroneous mailbox response:\nMailbox.Response\nError: Flash Config Error\n"
        "Extended: [0001, ffff, 012c, 0004, 0588, 1111, 2222, 3333]\nData: [41]\n\n",
        [] { return Decode("A", ErrorCode::FLASH_CONFIG_ERROR); });
    ExpectFailure<System::ArgumentNullException>("response must not be null",
                                                 [] { return DatabaseInfo::FromMailboxResponse(nullptr); });
}
