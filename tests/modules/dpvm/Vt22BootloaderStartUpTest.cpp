// SPDX-License-Identifier: MIT
#include "tests/modules/dpvm/Vt22BootloaderFixture.h"

#include "vesk/core/VeskException.h"

#include <tuple>

using namespace Vesk;
using Modules::DPVM::Vt22Bootloader;

class Vt22BootloaderStartUpTest : public Vt22BootloaderFixture {};

TEST_F(Vt22BootloaderStartUpTest, ResetsForHalfAMillisecond) {
    EXPECT_EQ(_host->TakeLog(), (Log{"boot", "off"}));
    _clock.Advance(499'999);
    EXPECT_EQ(Update(), Log{});
    EXPECT_EQ(_module->State(), State::POWER_OFF);
    _clock.Advance(1);
    EXPECT_EQ(Update(), (Log{"irq", "on"}));
    EXPECT_EQ(_module->State(), State::POWER_ON);
    EXPECT_FALSE(_module->Booted());
    ExpectFailure<System::ArgumentNullException>("hostInterface must not be null",
                                                 [] { Vt22Bootloader::Create(nullptr); });
}

TEST_F(Vt22BootloaderStartUpTest, RefusesAnInterruptInReset) {
    _host->irq = true;
    _clock.Advance(500'000);
    ExpectFailure<ModuleStateException>("IRQ not cleared at power off", [this] { _module->Update(); });
    EXPECT_EQ(_module->State(), State::POWER_OFF);
    EXPECT_EQ(_host->TakeLog(), (Log{"boot", "off", "irq"}));
}

TEST_F(Vt22BootloaderStartUpTest, RefusesAnotherDpRam) {
    _host = std::make_shared<RecordingHostInterface>(0x1000);
    _module = Vt22Bootloader::Create(_host);
    _clock.Advance(500'000);
    ExpectFailure<System::ArgumentOutOfRangeException>(
        "_hostInterface->Size() (4096) must be equal to sizeof(DpRam) (8192)", [this] { _module->Update(); });
    EXPECT_EQ(_module->State(), State::POWER_ON);
    _host->irq = true;
    ExpectFailure<System::NullReferenceException>("_mailbox is null", [this] { _module->Update(); });
}

TEST_F(Vt22BootloaderStartUpTest, WaitsOneSecondForTheModule) {
    PowerOn();
    _clock.Advance(999'999'999);
    EXPECT_EQ(Update(), Log{"irq"});
    _clock.Advance(1);
    ExpectFailure<StartupException>("Timeout waiting for initial IRQ", [this] { _module->Update(); });
    EXPECT_EQ(_module->State(), State::POWER_ON);
}

TEST_F(Vt22BootloaderStartUpTest, BootsAndShowsItsIdentity) {
    const auto identity = [this] {
        return std::vector<unsigned int>{_module->BootloaderMajor(), _module->BootloaderMinor(),
                                         _module->FieldbusType(),    _module->ModuleType(),
                                         _module->Serial(),          _module->VendorId()};
    };
    ExpectFailure<System::NullReferenceException>("_bootloaderCtrl is null", identity);
    PowerOn();
    EXPECT_EQ(identity(), std::vector<unsigned int>(6));
    _host->Put(0x1FBE, {3, 7, 0, 0, 0, 0, 0x01, 0x02, 0x03, 0x04});
    _host->Put(0x1FDE, {0x01, 0x01});
    _host->irq = true;
    _clock.Advance(1'000'000'001); // late, but there
    EXPECT_EQ(Update(), (Log{"irq", "R8 1fff", "R8 1fff", "R8 1fbe", "R8 1fbf", "R32 1fc4", "R16 1fc8",
                             "R16 1fca", "R16 1fde"}));
    EXPECT_TRUE(_module->Booted());
    EXPECT_EQ(identity(), (std::vector<unsigned int>{3, 7, 0, 0x0101, 0x01020304, 0}));
    EXPECT_EQ(Update(), (Log{"irq", "R8 1fff", "R8 1fff"}));
    _host->irq = false;
    EXPECT_EQ(Update(), Log{"irq"});
}

TEST_F(Vt22BootloaderStartUpTest, RefusesAnotherModule) {
    const std::tuple<int, int, int, const char*> faults[] = {
        // each hides the one before it
        {0x1FBE, 1, 0, "Unsupported major bootloader version: 1, expected: 2"},
        {0x1FC8, 0x00, 0x01, "Unexpected vendor id!\nExpected: 0, Read: 1"},
        {0x1FCA, 0xAB, 0xCD, "Unexpected fieldbus type!\nExpected: 0, Read: abcd"},
        {0x1FDE, 0x02, 0x01, "Unexpected module type!\nExpected: 101, Read: 201"},
    };
    PowerOn();
    _host->Put(0x1FDE, {0x01, 0x01});
    _host->irq = true;
    for (const auto& [offset, high, low, message] : faults) {
        _host->Put(offset, {high, low});
        ExpectFailure<ModuleIdentityException>(message, [this] { _module->Update(); });
        EXPECT_EQ(_module->State(), State::POWER_ON);
    }
    _host->Put(0x1FFF, {0x40});
    ExpectFailure<System::InvalidOperationException>("Non-zero handshake on bootup: 64",
                                                     [this] { _module->Update(); });
}

TEST_F(Vt22BootloaderStartUpTest, ReportsAStateThatIsNone) {
    for (const int value : {6, -1}) {
        _module->ChangeState(static_cast<State>(value));
        ExpectFailure<ModuleStateException>("Unknown state: " + std::to_string(value),
                                            [this] { _module->Update(); });
        ExpectFailure<System::InvalidOperationException>("No download in progress",
                                                         [this] { _module->EndDownload(&_remaining); });
    }
}
