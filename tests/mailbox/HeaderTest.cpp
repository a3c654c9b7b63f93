// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/mailbox/Header.h"
#include "vesk/system/io/IOException.h"

#include <tuple>

using System::ArgumentNullException;
using System::ArgumentOutOfRangeException;
using System::Array;
using System::IO::EndOfStreamException;
using Vesk::Mailbox::ErrorCode;
using Vesk::Mailbox::Header;
using Vesk::Mailbox::MessageType;

/// Three bytes, then a header with another value in every field: a response, "Production", error 0x8F.
static constexpr unsigned char STORED[] = {
    0xAA, 0xAA, 0xAA,                                           //
    0x01, 0x02, 0x8F, 0x06, 0x03, 0x04, 0x05, 0x06,             // id, information, command, data size
    0x07, 0x08, 0x09, 0x0A, 0x0B, 0x0C, 0x0D, 0x0E,             // frames, frame, offset
    0x10, 0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18, 0x19, //
    0x1A, 0x1B, 0x1C, 0x1D, 0x1E, 0x1F,                         // extended words
};

static std::shared_ptr<Array<unsigned char>> Stored() {
    return Array<unsigned char>::Create(std::vector<unsigned char>(std::begin(STORED), std::end(STORED)));
}

static std::shared_ptr<Header> WithInformation(int information) {
    const auto bytes = Array<unsigned char>::Create(32);
    bytes->Set(2, static_cast<unsigned char>(information >> 8));
    bytes->Set(3, static_cast<unsigned char>(information & 0xFF));
    return Header::FromArray(bytes, 0, true);
}

TEST(Header, ReadsEveryFieldInEitherByteOrderAndWritesThem) {
    const auto big = Header::FromArray(Stored(), 3, true);
    EXPECT_EQ(big->Error, ErrorCode::INVALID_OTHER);
    EXPECT_EQ(big->ToString().Value(), "Response\nID: 0x102\nType: Production\nCommand: 0x304\n"
                                       "Data size: 0x506\nTotal frame count: 0x708\nFrame number: 0x90a\n"
                                       "Offset: 0xb0c0d0e\n"
                                       "Extended: [1011, 1213, 1415, 1617, 1819, 1a1b, 1c1d, 1e1f]\n");
    const auto swapped = Array<unsigned char>::Create(36);
    big->ToArray(swapped, 3);
    EXPECT_TRUE(std::equal(std::begin(STORED) + 3, std::end(STORED), swapped->Data() + 3));
    EXPECT_EQ(swapped->Get(2) + swapped->Get(35), 0);

    swapped->Set(5, 0x02);
    swapped->Set(6, 0xC3);
    const auto little = Header::FromArray(swapped, 3, false);
    EXPECT_EQ(little->Error, ErrorCode::DATA_SIZE);
    EXPECT_EQ(little->ToString().Value(), "Request\nID: 0x201\nType: Fieldbus\nCommand: 0x403\n"
                                          "Data size: 0x605\nTotal frame count: 0x807\nFrame number: 0xa09\n"
                                          "Offset: 0xe0d0c0b\n"
                                          "Extended: [1110, 1312, 1514, 1716, 1918, 1b1a, 1d1c, 1f1e]\n");
}

TEST(Header, DecodesTheInformationWord) {
    const std::tuple<int, std::shared_ptr<ErrorCode>, bool> good[] = {
        {0x3002, ErrorCode::NO_ERROR, false}, // 12 and 13 mean nothing
        {0x4002, ErrorCode::NO_ERROR, true},
        {0x8002, ErrorCode::MESSAGE_ID, false}};
    for (const auto& [information, error, isRequest] : good) {
        const auto header = WithInformation(information);
        EXPECT_EQ(std::tuple(header->Error, header->MessageType, header->IsRequest),
                  std::tuple(error, MessageType::FIELDBUS, isRequest));
    }
    // An error without its flag, one that is none, two types; the error goes first.
    for (const auto& [information, value] :
         {std::pair(0x0502, "5"), {0x8A02, "138"}, {0x0000, "0"}, {0x0012, "18"}, {0x0F07, "15"}})
        ExpectFailure<System::ArgumentException>(value, [&, bits = information] { WithInformation(bits); });
}

TEST(Header, RefusesIncompleteFields) {
    const auto make = [](auto type, auto error, auto extended) {
        return [=] { return Header::Create(1, type, error, true, 0x16, 0, 1, 1, 0, extended); };
    };
    const auto& type = MessageType::FIELDBUS;
    const auto& error = ErrorCode::NO_ERROR;
    ExpectFailure<ArgumentNullException>("type must not be null", make(nullptr, nullptr, nullptr));
    ExpectFailure<ArgumentNullException>("error must not be null", make(type, nullptr, nullptr));
    ExpectFailure<ArgumentNullException>("extended must not be null", make(type, error, nullptr));
    ExpectFailure<ArgumentOutOfRangeException>("7", make(type, error, Array<unsigned short>::Create(7)));
    const auto header = Header::FromArray(Stored(), 3, true);
    for (const int offset : {-1, 1, 2147483647}) {
        const auto bytes = Array<unsigned char>::Create(32);
        const auto text = "No mailbox header at byte " + std::to_string(offset) + " of 32";
        ExpectFailure<EndOfStreamException>(text, [&] { Header::FromArray(bytes, offset, true); });
        ExpectFailure<System::IO::IOException>(text, [&] { header->ToArray(bytes, offset); });
    }
    ExpectFailure<ArgumentNullException>("array must not be null", [] { Header::FromArray({}, 0, true); });
}
