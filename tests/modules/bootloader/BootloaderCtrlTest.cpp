// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/RecordingHostInterface.h"

#include "vesk/modules/bootloader/BootloaderCtrl.h"

using Vesk::Modules::Bootloader::BootloaderCtrl;

// What it reads in a whole boot is seen in the bootloader's start-up.
TEST(BootloaderCtrlTest, KeepsWhatItCouldNotRead) {
    const auto host = std::make_shared<RecordingHostInterface>();
    const auto ctrl = BootloaderCtrl::Create(0x1FBE, host);
    host->Put(0x1FBE, {2, 7});
    ctrl->HandleBootEvent();
    host->Put(0x1FBE, {3, 8, 0, 0, 0, 0, 0, 0, 0, 9});
    host->beforeAccess = [](const std::string& access) {
        if (access == "R32 1fc4")
            System::_throw_range_exception(0x1FC4, 4, 0, "offset", "count", "DPRAM");
    };
    EXPECT_THROW(ctrl->HandleBootEvent(), System::Thrown);
    EXPECT_EQ(ctrl->BootloaderMajor(), 3);
    EXPECT_EQ(ctrl->BootloaderMinor(), 8);
    EXPECT_EQ(ctrl->Serial(), 0u);
}

TEST(BootloaderCtrlTest, NeedsAHostInterface) {
    ExpectFailure<System::ArgumentNullException>("hostInterface must not be null",
                                                 [] { BootloaderCtrl::Create(0x1FBE, nullptr); });
}
