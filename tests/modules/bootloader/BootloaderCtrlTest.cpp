// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/RecordingHostInterface.h"

#include "vesk/modules/bootloader/BootloaderCtrl.h"

using Vesk::Modules::Bootloader::BootloaderCtrl;

class BootloaderCtrlTest : public testing::Test {
protected:
    /// Major, minor, serial, vendor, fieldbus, module type.
    std::vector<unsigned int> Fields() const {
        return {_ctrl->BootloaderMajor(), _ctrl->BootloaderMinor(), _ctrl->Serial(),
                _ctrl->VendorId(),        _ctrl->FieldbusType(),    _ctrl->ModuleType()};
    }

    std::shared_ptr<RecordingHostInterface> _host = std::make_shared<RecordingHostInterface>();
    std::shared_ptr<BootloaderCtrl> _ctrl = BootloaderCtrl::Create(0x1FBE, _host);
};

TEST_F(BootloaderCtrlTest, ReadsTheBlockWhenTheModuleHasBooted) {
    _host->Put(0x1FBE, {2, 7, 0xEE, 0xEE, 0xEE, 0xEE, 0x81, 0x02, 0x03, 0x04, 0x11, 0x12, 0x21, 0x22});
    _host->Put(0x1FDE, {0x01, 0x81});
    EXPECT_EQ(Fields(), std::vector<unsigned int>(6));
    EXPECT_TRUE(_host->TakeLog().empty());
    _ctrl->HandleBootEvent();
    EXPECT_EQ(Fields(), (std::vector<unsigned int>{2, 7, 0x81020304, 0x1112, 0x2122, 0x0181}));
    EXPECT_EQ(_host->TakeLog(), (std::vector<std::string>{"R8 1fbe", "R8 1fbf", "R32 1fc4", "R16 1fc8",
                                                          "R16 1fca", "R16 1fde"}));
}

TEST_F(BootloaderCtrlTest, KeepsWhatItCouldNotRead) {
    _host->Put(0x1FBE, {2, 7});
    _ctrl->HandleBootEvent();
    _host->Put(0x1FBE, {3, 8, 0, 0, 0, 0, 0, 0, 0, 9});
    _host->beforeAccess = [](const std::string& access) {
        if (access == "R32 1fc4")
            System::_throw_range_exception(0x1FC4, 4, 0, "offset", "count", "DPRAM");
    };
    EXPECT_THROW(_ctrl->HandleBootEvent(), System::Thrown);
    EXPECT_EQ(Fields(), (std::vector<unsigned int>{3, 8, 0, 0, 0, 0}));
}

TEST_F(BootloaderCtrlTest, NeedsAHostInterface) {
    ExpectFailure<System::ArgumentNullException>("hostInterface must not be null",
                                                 [] { BootloaderCtrl::Create(0x1FBE, nullptr); });
}
