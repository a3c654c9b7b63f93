// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TraceListener.h"

#include "vesk/hostinterface/Parallel16Bit.h"
#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/modules/dpvm/CreateHostInterface.h"
#include "vesk/system/io/IOException.h"

#include <numeric>

using Vesk::RuntimeConfig;
using Vesk::HostInterface::Parallel16Bit;
using Log = std::vector<std::string>;

static const System::String FIRST_DUMP_PATH = RuntimeConfig::_hostInterfaceDumpPath;

/// A DPRAM file of 64 bytes whose byte i holds i, and what was done to the lines.
class Parallel16BitTest : public testing::Test {
protected:
    Parallel16BitTest() {
        RuntimeConfig::_hostInterfaceDumpPath = _folder.Path("dump");
        std::string content(SIZE, 0);
        std::iota(content.begin(), content.end(), char{0});
        _folder.Put("dpram", content);
    }

    ~Parallel16BitTest() override { RuntimeConfig::_hostInterfaceDumpPath = FIRST_DUMP_PATH; }

    std::shared_ptr<System::IArgFunc<bool, void>> Line(const std::string& name) {
        return System::ArgFunc<bool, void>::Create(
            [this, name](bool level) { lines.push_back(name + (level ? " high" : " low")); });
    }

    std::shared_ptr<Parallel16Bit> Open(int offset = 0, int size = SIZE) {
        return Parallel16Bit::FromPath(_folder.Path("dpram"), offset, size, irq, Line("reset_n"),
                                       Line("bootloader_enable_n"));
    }

    static constexpr int SIZE = 64;
    TemporaryFolder _folder;
    std::shared_ptr<System::IFunc<bool>> irq = System::Func<bool>::Create([] { return false; });
    Log lines;
};

TEST_F(Parallel16BitTest, MovesValuesMostSignificantByteFirstUpToTheFirstByteOutside) {
    const auto dpRam = Open();
    EXPECT_EQ(dpRam->ReadUInt16(1), 0x0102);
    EXPECT_EQ(dpRam->ReadUInt32(1), 0x01020304u);
    dpRam->WriteUInt16(17, 0x1234);
    dpRam->WriteUInt32(33, 0x89ABCDEF);
    const std::string content = _folder.Content("dpram");
    EXPECT_EQ(content.substr(16, 4), "\x10\x12\x34\x13");
    EXPECT_EQ(content.substr(32, 6), "\x20\x89\xAB\xCD\xEF\x25");
    ExpectFailure<System::ArgumentOutOfRangeException>("offset (64) must not be equal to capacity_ (64)",
                                                       [&] { dpRam->WriteUInt32(61, 0x11223344); });
    EXPECT_EQ(_folder.Content("dpram").substr(60), "\x3C\x11\x22\x33") << "the bytes before it are written";
}

TEST_F(Parallel16BitTest, DrivesTheLinesActiveLowAndEndsInResetWithADump) {
    EXPECT_EQ(FIRST_DUMP_PATH.Value(), "/tmp/hostinterface.bin");
    const auto dpRam = Open();
    EXPECT_TRUE(dpRam->VelmoIRQ());
    dpRam->BootloaderEnable();
    dpRam->BootloaderDisable();
    dpRam->PowerOn();
    Open();
    EXPECT_EQ(lines,
              (Log{"bootloader_enable_n low", "bootloader_enable_n high", "reset_n high", "reset_n low"}));
    EXPECT_EQ(_folder.Content("dump"), _folder.Content("dpram"));
}

TEST_F(Parallel16BitTest, DumpsAsTextOnRequestAndNowhereWithoutAPath) {
    RuntimeConfig::_hostInterfaceDumpPath = nullptr;
    TraceListener trace(RuntimeConfig::_printHostInterfaceDump);
    Open(14, 3);
    EXPECT_EQ(trace.lines, Log{"[0e, 0f, 10]"});
    EXPECT_EQ(_folder.Count(), 1);
}

TEST_F(Parallel16BitTest, EndsWhateverFailsOnTheWay) {
    RuntimeConfig::_hostInterfaceDumpPath = _folder.Path("missing/dump");
    Open();
    EXPECT_EQ(lines, Log{"reset_n low"}) << "a dump that fails is passed over";
    TraceListener trace(RuntimeConfig::_printHostInterfaceDump);
    System::Diagnostics::Trace::SetListener([](const std::string&) { throw std::runtime_error("listener"); });
    RuntimeConfig::_hostInterfaceDumpPath = _folder.Path("dump");
    Open();
    EXPECT_EQ(_folder.Content("dump").size(), 64u) << "a listener that throws costs no dump";
    const auto throwing = System::ArgFunc<bool, void>::Create([](bool) { throw std::runtime_error("line"); });
    Parallel16Bit::FromPath(_folder.Path("dpram"), 0, SIZE, irq, throwing, throwing);
}

TEST_F(Parallel16BitTest, RefusesWhatItCannotOpen) {
    const auto from = [](const System::String& path, auto velmoIrq, auto reset) {
        return [=] { Parallel16Bit::FromPath(path, 0, 1, velmoIrq, reset, nullptr); };
    };
    using System::ArgumentNullException;
    ExpectFailure<ArgumentNullException>("path must not be null", from(nullptr, nullptr, nullptr));
    ExpectFailure<ArgumentNullException>("velmoIrq_n must not be null", from("none", nullptr, nullptr));
    ExpectFailure<ArgumentNullException>("reset_n must not be null", from("none", irq, nullptr));
    ExpectFailure<ArgumentNullException>("bootloader_enable_n must not be null", from("none", irq, Line("")));
    ExpectFailure<System::IO::IOException>(
        _folder.Path("dpram") + ": 64 bytes long, the mapping needs 8192",
        [&] { Vesk::Modules::DPVM::CreateHostInterface(_folder.Path("dpram"), 0, irq, Line(""), Line("")); });
    EXPECT_EQ(_folder.Count(), 1) << "nothing was created, so nothing ended";
}
