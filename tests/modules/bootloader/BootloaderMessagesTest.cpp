// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/Values.h"

#include "vesk/modules/bootloader/BootloaderMessages.h"
#include "vesk/modules/bootloader/ProductionMessages.h"
#include "vesk/system/io/IOException.h"

using System::Array;
using Vesk::Mailbox::IRequest;
using Vesk::Modules::Bootloader::BootloaderMessages;
using Vesk::Modules::Bootloader::ProductionMessages;

static std::vector<int> WithZeros(std::vector<int> bytes, std::size_t size) {
    bytes.resize(size);
    return bytes;
}

TEST(BootloaderMessagesTest, RequestsCarryTheirFields) {
    const auto data = Array<unsigned char>::Create({1, 2, 3});
    const std::vector<int> crcInfo{0x34, 0x12, 0x00, 0x01, 0x00, 0x00, 0x00, 0x01, 0x00, 0xFF};

    const struct {
        std::shared_ptr<IRequest> request;
        const char* name;
        int type, command, totalFrameCount, frameNumber;
        unsigned int offset;
        std::vector<int> data;
    } CASES[] = {
        {ProductionMessages::Enable(), "Enable", 6, 1, 1, 1, 0, {}},
        {ProductionMessages::FlashWriteEnable(), "FlashWriteEnable", 6, 2, 1, 1, 0, {}},
        {ProductionMessages::FlashErase(), "FlashErase", 6, 3, 1, 1, 0, {}},
        {BootloaderMessages::FwDownloadInit(), "FwDownloadInit", 4, 1, 1, 1, 0, WithZeros({}, 8)},
        {BootloaderMessages::FwDownloadData(5, 2, 256, data), "FwDownloadData", 4, 2, 5, 2, 256, {1, 2, 3}},
        {BootloaderMessages::FwDownloadLast(0x1234, 0x10000, 0x100), "FwDownloadLast", 4, 3, 1, 1, 0,
         WithZeros(crcInfo, 38)},
        {BootloaderMessages::BlDownloadInit(), "BlDownloadInit", 4, 4, 1, 1, 0, {}},
        {BootloaderMessages::BlDownloadData(0xFFFF, 0xFFFE, 0xFFFFFFFF, data),
         "BlDownloadData",
         4,
         5,
         0xFFFF,
         0xFFFE,
         0xFFFFFFFF,
         {1, 2, 3}},
        {BootloaderMessages::BlDownloadLast(0x1234, 0x10000, 0x100), "BlDownloadLast", 4, 6, 1, 1, 0,
         crcInfo},
    };

    for (const auto& expected : CASES) {
        SCOPED_TRACE(expected.name);
        IRequest& request = *expected.request;
        EXPECT_EQ(request.Name().Value(), expected.name);
        EXPECT_EQ(request.Type()->Id, expected.type);
        EXPECT_EQ(request.Command(), expected.command);
        EXPECT_EQ(request.TotalFrameCount(), expected.totalFrameCount);
        EXPECT_EQ(request.FrameNumber(), expected.frameNumber);
        EXPECT_EQ(request.Offset(), expected.offset);
        EXPECT_EQ(Values(request.Extended()), std::vector<int>(8));
        EXPECT_EQ(Values(request.Data()), expected.data);
    }
}

TEST(BootloaderMessagesTest, CrcInformationNamesTheLastAddress) {
    const auto array = Array<unsigned char>::Create({9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9});
    BootloaderMessages::WriteCrcInfo(0x00FF, 0, 0, array);
    EXPECT_EQ(Values(array), (std::vector<int>{0xFF, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 9, 9}));
    BootloaderMessages::WriteCrcInfo(0xFF00, 0xFFFFFFFE, 5, array);
    EXPECT_EQ(Values(array), (std::vector<int>{0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE, 0, 0, 0, 2, 9, 9}));
    EXPECT_THROW(BootloaderMessages::WriteCrcInfo(0, 0, 0, Array<unsigned char>::Create(9)), System::Thrown);
}

TEST(BootloaderMessagesTest, DataFrameHoldsAtMost256Bytes) {
    EXPECT_EQ(BootloaderMessages::FwDownloadData(1, 1, 0, Array<unsigned char>::Create(256))->Data()->Count(),
              256);
    ExpectFailure<System::ArgumentOutOfRangeException>(
        "Byte[257]", [] { BootloaderMessages::BlDownloadData(1, 1, 0, Array<unsigned char>::Create(257)); });
}
