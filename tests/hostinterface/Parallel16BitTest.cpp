// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TraceListener.h"
#include "tests/support/Values.h"

#include "vesk/hostinterface/Parallel16Bit.h"
#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/modules/dpvm/CreateHostInterface.h"
#include "vesk/system/io/IOException.h"

#include <filesystem>
#include <functional>

using System::ArgumentNullException;
using System::ArgumentOutOfRangeException;
using System::Array;
using Vesk::RuntimeConfig;
using Vesk::HostInterface::Parallel16Bit;

/// A DPRAM file of 64 bytes whose byte i holds i, and what was done to the lines.
class Parallel16BitTest : public testing::Test {
protected:
    Parallel16BitTest() {
        RuntimeConfig::_hostInterfaceDumpPath = _folder.Path("dump");
        std::string content;
        for (int i = 0; i < SIZE; ++i)
            content += static_cast<char>(i);
        _folder.Put("dpram", content);
    }

    ~Parallel16BitTest() override { RuntimeConfig::_hostInterfaceDumpPath = "/tmp/hostinterface.bin"; }

    static std::shared_ptr<System::IArgFunc<bool, void>> Line(std::vector<std::string>& lines,
                                                              std::string name) {
        return System::ArgFunc<bool, void>::Create(
            [&lines, name](bool level) { lines.push_back(name + (level ? " high" : " low")); });
    }

    std::shared_ptr<Parallel16Bit> Open(const System::String& path, int offset = 0, int size = SIZE) {
        return Parallel16Bit::FromPath(path, offset, size,
                                       System::Func<bool>::Create([this] { return irq_n; }),
                                       Line(lines, "reset_n"), Line(lines, "bootloader_enable_n"));
    }

    std::shared_ptr<Parallel16Bit> Open() { return Open(_folder.Path("dpram")); }

    static constexpr int SIZE = 64;
    TemporaryFolder _folder;
    bool irq_n = true;
    std::vector<std::string> lines;
};

TEST_F(Parallel16BitTest, MovesValuesMostSignificantByteFirstAtAnyOffset) {
    const auto dpRam = Open();
    EXPECT_EQ(dpRam->Size(), SIZE);
    EXPECT_EQ(dpRam->ReadUInt8(63), 63);
    EXPECT_EQ(dpRam->ReadUInt16(1), 0x0102);
    EXPECT_EQ(dpRam->ReadUInt32(1), 0x01020304u);
    dpRam->WriteUInt8(8, 0xF1);
    dpRam->WriteUInt16(17, 0x1234);
    dpRam->WriteUInt32(33, 0x89ABCDEF);
    const std::string content = _folder.Content("dpram");
    EXPECT_EQ(content.substr(8, 2), "\xF1\x09");
    EXPECT_EQ(content.substr(16, 4), "\x10\x12\x34\x13");
    EXPECT_EQ(content.substr(33, 5), "\x89\xAB\xCD\xEF\x25");
}

TEST_F(Parallel16BitTest, StopsAtTheFirstByteOutside) {
    const auto dpRam = Open();
    const std::function<void()> accesses[] = {[&] { dpRam->ReadUInt8(64); }, [&] { dpRam->ReadUInt32(62); },
                                              [&] { dpRam->WriteUInt16(63, 0xAABB); },
                                              [&] { dpRam->WriteUInt32(61, 0x11223344); }};
    for (const auto& access : accesses)
        ExpectFailure<ArgumentOutOfRangeException>("offset (64) must not be equal to capacity_ (64)", access);
    EXPECT_EQ(_folder.Content("dpram").substr(60), "\x3C\x11\x22\x33") << "the bytes before it are written";
}

TEST_F(Parallel16BitTest, MovesBlocksAndLeavesOutWhatIsBeyondTheEnd) {
    const auto dpRam = Open();
    const auto array = Array<unsigned char>::Create(8);
    dpRam->Read(60, array, 2, 6);
    EXPECT_EQ(Values(array), (std::vector<int>{0, 0, 60, 61, 62, 63, 0, 0}));
    dpRam->Write(62, array, 2, 6);
    EXPECT_EQ(_folder.Content("dpram").substr(60), "\x3C\x3D\x3C\x3D");
}

TEST_F(Parallel16BitTest, DrivesTheLinesActiveLow) {
    const auto dpRam = Open();
    EXPECT_TRUE(lines.empty()) << "opening drives no line";
    EXPECT_FALSE(dpRam->VelmoIRQ());
    irq_n = false;
    EXPECT_TRUE(dpRam->VelmoIRQ());
    dpRam->BootloaderEnable();
    dpRam->BootloaderDisable();
    dpRam->PowerOn();
    dpRam->PowerOff();
    EXPECT_EQ(lines, (std::vector<std::string>{"bootloader_enable_n low", "bootloader_enable_n high",
                                               "reset_n high", "reset_n low"}));
}

TEST_F(Parallel16BitTest, EndsInResetWithADumpForItsOwnerOnly) {
    Open()->WriteUInt8(0, 0xEE);
    EXPECT_EQ(lines, std::vector<std::string>{"reset_n low"});
    EXPECT_EQ(_folder.Content("dump"), _folder.Content("dpram"));
    EXPECT_EQ(_folder.Content("dump").size(), 64u);
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(_folder.Path("dump")).permissions(),
              perms::owner_read | perms::owner_write);
}

TEST_F(Parallel16BitTest, DumpsAsTextOnRequestAndNowhereWithoutAPath) {
    RuntimeConfig::_hostInterfaceDumpPath = nullptr;
    TraceListener trace(RuntimeConfig::_printHostInterfaceDump);
    Open(_folder.Path("dpram"), 9, 3);
    EXPECT_EQ(trace.lines, std::vector<std::string>{"[09, 0a, 0b]"});
    EXPECT_EQ(_folder.Count(), 1);
}

TEST_F(Parallel16BitTest, EndsWhateverFailsOnTheWay) {
    RuntimeConfig::_hostInterfaceDumpPath = _folder.Path("missing/dump");
    Open();
    EXPECT_EQ(lines, std::vector<std::string>{"reset_n low"}) << "a dump that fails is passed over";
    const auto throwing = System::ArgFunc<bool, void>::Create([](bool) { throw std::runtime_error("line"); });
    Parallel16Bit::FromPath(_folder.Path("dpram"), 0, SIZE, System::Func<bool>::Create([] { return true; }),
                            throwing, throwing);
}

TEST_F(Parallel16BitTest, RefusesWhatItCannotOpen) {
    const auto irq = System::Func<bool>::Create([] { return true; });
    const auto line = Line(lines, "");
    const auto null = [](const char* name, const System::String& path, auto velmoIrq, auto reset) {
        ExpectFailure<ArgumentNullException>(std::string(name) + " must not be null", [&] {
            Parallel16Bit::FromPath(path, 0, 1, velmoIrq, reset, nullptr);
        });
    };
    null("path", nullptr, nullptr, nullptr);
    null("velmoIrq_n", "none", nullptr, nullptr);
    null("reset_n", "none", irq, nullptr);
    null("bootloader_enable_n", "none", irq, line);

    const std::string path = _folder.Path("dpram");
    ExpectFailure<System::IO::IOException>(path + ": 64 bytes long, the mapping needs 8192", [&] {
        Vesk::Modules::DPVM::CreateHostInterface(path, 0, irq, line, line);
    });
    EXPECT_FALSE(std::filesystem::exists(_folder.Path("dump"))) << "nothing was created, so nothing ended";
}
