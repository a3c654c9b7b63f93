// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/Values.h"

#include "vesk/modules/bootloader/BootloaderMessages.h"

using System::Array;
using Vesk::Modules::Bootloader::BootloaderMessages;

// The requests themselves are seen in the mailbox during a download.
TEST(BootloaderMessagesTest, FillOnlyWhatTheirFieldsHold) {
    const auto array = Array<unsigned char>::Create({9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9});
    BootloaderMessages::WriteCrcInfo(0xFF00, 0xFFFFFFFE, 5, array);
    EXPECT_EQ(Values(array), (std::vector<int>{0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE, 0, 0, 0, 2, 9, 9}));
    EXPECT_THROW(BootloaderMessages::WriteCrcInfo(0, 0, 0, Array<unsigned char>::Create(9)), System::Thrown);
    ExpectFailure<System::ArgumentOutOfRangeException>(
        "Byte[257]", [] { BootloaderMessages::BlDownloadData(1, 1, 0, Array<unsigned char>::Create(257)); });
}
