// SPDX-License-Identifier: MIT
#include "tests/virtualmodule/RawHost.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using VirtualModule::Bytes;
using VirtualModule::Version;

constexpr unsigned COMMAND = 0x82, DATA_SIZE = 0x83, COUNT = 0x84, NUMBER = 0x85, OFFSET = 0x86,
                   CONFIG = 0x89;
constexpr unsigned ENABLE = 0x601, WRITE_ENABLE = 0x602, ERASE = 0x603; // message type and command
constexpr unsigned FW_INIT = 0x401, FW_DATA = 0x402, FW_LAST = 0x403;
constexpr unsigned BL_INIT = 0x404, BL_DATA = 0x405, BL_LAST = 0x406;

struct BootloaderTest : testing::Test, RawHost {
    void EnterBootloader() {
        lines.DriveReset_n(false);
        lines.DriveBootloaderEnable_n(false);
        lines.DriveReset_n(true);
        EXPECT_TRUE(Interrupt());
        EXPECT_EQ(ram[0x1FFF], 0);
    }

    bool Interrupt(int milliseconds = 5) {
        for (int i = 0; i <= milliseconds; ++i, now += 1'000'000) {
            module.Step();
            if (!lines.ReadIrq_n())
                return true;
        }
        return false;
    }

    /// Waits for both toggles, up to a second; the error code of the answer.
    unsigned Send(unsigned typeAndCommand, const Bytes& data = {}, unsigned frames = 1, unsigned frame = 1,
                  unsigned offset = 0) {
        PutRequest(0x1BFE, typeAndCommand >> 8, typeAndCommand & 0xFF, {}, data, frames, frame, offset);
        const std::uint8_t before = ram[0x1FFF];
        ram[0x1FFD] ^= 0x80;
        while ((ram[0x1FFF] ^ before) != 0xC0 && Interrupt(1000)) {
        }
        EXPECT_EQ(ram[0x1FFF] ^ before, 0xC0);
        ram[0x1FFD] ^= 0x40;
        return GetReply(0x1D1E).error;
    }

    static Bytes Last(std::size_t size, unsigned crc) {
        Bytes data(size);
        data[0] = VirtualModule::Low(crc);
        data[1] = VirtualModule::High(crc);
        return data;
    }

    void UnlockAndErase() {
        EnterBootloader();
        for (const unsigned command : {ENABLE, WRITE_ENABLE, ERASE})
            EXPECT_EQ(Send(command), 0u);
        EXPECT_EQ(Send(FW_INIT, Bytes(8)), 0u);
    }

    void TearDown() override { EXPECT_THAT(module.Violations(), IsEmpty()); }

    // CRC-16/MODBUS of the nine bytes: 0x4B37.
    const Bytes image{'1', '2', '3', '4', '5', '6', '7', '8', '9'};
    const Bytes head{'1', '2', '3', '4'}, tail{'5', '6', '7', '8', '9'};
};

TEST_F(BootloaderTest, ShowsItsControlBlockAndTogglesOnce) {
    flash.serial = 0x0A0B0C0D;
    flash.bootloader.version = {3, 9, 0};
    EnterBootloader();
    EXPECT_THAT(Memory(0x1FBE, 14), ElementsAre(3, 9, 0, 0, 0, 0, 0x0A, 0x0B, 0x0C, 0x0D, 0, 0, 0, 0));
    EXPECT_THAT(Memory(0x1FDE, 2), ElementsAre(1, 1));
    EXPECT_FALSE(Interrupt()) << "it has nothing to tell";
    EXPECT_EQ(Send(0x217), 0x81u) << "a type of the master";
    EXPECT_EQ(Send(ENABLE), 0u);
    EXPECT_EQ(Memory(0x1D1E, 8), (Bytes{2, 0, 0, 6, 0, 1, 0, 0}));
    EXPECT_FALSE(Interrupt());
}

TEST_F(BootloaderTest, BurnsAnApplication) {
    UnlockAndErase();
    EXPECT_EQ(Send(FW_DATA, head, 2, 1, 0x8000), 0u);
    EXPECT_EQ(Send(FW_DATA, tail, 2, 2, 0x8004), 0u);
    EXPECT_FALSE(flash.application.valid);
    const std::int64_t before = now;
    EXPECT_EQ(Send(FW_LAST, Last(38, 0x4B37)), 0u);
    EXPECT_GE(now - before, 100'000'000) << "burning takes its time";
    EXPECT_TRUE(flash.application.valid);
    EXPECT_EQ(flash.application.image, image);
    EXPECT_EQ(Send(FW_DATA, head, 2, 1, 0x8000), COMMAND) << "it is over";
    PowerOn();
    EXPECT_THAT(Memory(0x0010, 3), ElementsAre(1, 0x4B, 0x37)) << "the new software version";
}

TEST_F(BootloaderTest, BurnsABootloaderWithoutProductionCommands) {
    EnterBootloader();
    EXPECT_EQ(Send(BL_DATA, image), COMMAND);
    EXPECT_EQ(Send(BL_INIT), 0u);
    EXPECT_EQ(Send(BL_DATA, image, 1, 1, 1), OFFSET) << "it has no base address";
    EXPECT_EQ(Send(BL_DATA, image), 0u);
    EXPECT_EQ(Send(FW_LAST, Last(38, 0x4B37)), COMMAND) << "the other kind";
    EXPECT_EQ(Send(BL_LAST, Last(10, 0x374B)), CONFIG) << "CRC bytes swapped";
    EXPECT_EQ(flash.bootloader.version, (Version{2, 1, 0})) << "the old one stays";
    EXPECT_EQ(Send(BL_INIT), 0u);
    EXPECT_EQ(Send(BL_DATA, image), 0u);
    EXPECT_EQ(Send(BL_LAST, Last(10, 0x4B37)), 0u);
    EnterBootloader();
    EXPECT_THAT(Memory(0x1FBE, 2), ElementsAre(2, 0x4B));
}

TEST_F(BootloaderTest, RefusesWhatBreaksTheOrder) {
    EnterBootloader();
    for (const unsigned command : {WRITE_ENABLE, ERASE})
        EXPECT_EQ(Send(command), COMMAND) << command;
    EXPECT_EQ(Send(FW_INIT, Bytes(8)), COMMAND);
    EXPECT_EQ(Send(FW_DATA, head), COMMAND);
    EXPECT_EQ(Send(FW_LAST, Bytes(38)), COMMAND);
    EXPECT_EQ(Send(ENABLE), 0u);
    EXPECT_EQ(Send(ERASE), COMMAND);
    EXPECT_TRUE(flash.application.valid) << "nothing has happened to it";

    UnlockAndErase();

    const struct {
        unsigned command;
        Bytes data;
        unsigned frames, frame, offset, error;
    } cases[]{
        {FW_LAST, Bytes(38), 1, 1, 0, NUMBER}, // no frame came
        {FW_DATA, {}, 2, 1, 0, DATA_SIZE},        {FW_DATA, head, 0, 1, 0, COUNT},
        {FW_DATA, head, 2, 2, 0, NUMBER},         {FW_DATA, head, 2, 1, 0xFFFFFFFE, 0},
        {FW_DATA, tail, 2, 1, 2, NUMBER},         {FW_DATA, tail, 3, 2, 2, COUNT},
        {FW_DATA, tail, 2, 2, 2, OFFSET},         {FW_LAST, Bytes(38), 1, 1, 0, NUMBER}, // one is missing
        {FW_LAST, Bytes(10), 1, 1, 0, DATA_SIZE},
    };

    for (const auto& [command, data, frames, frame, offset, error] : cases)
        EXPECT_EQ(Send(command, data, frames, frame, offset), error)
            << command << ' ' << frame << '/' << frames << " at " << offset;
}

TEST_F(BootloaderTest, AFailedDownloadLeavesNothingToBoot) {
    const std::pair<const char*, std::function<void()>> cases[]{
        {"power cut", [] {}},
        {"wrong CRC", [&] { EXPECT_EQ(Send(FW_LAST, Last(38, 0x4B38)), CONFIG); }},
        {"power cut while burning",
         [&] {
             PutRequest(0x1BFE, 4, 3, {}, Last(38, 0x4B37));
             ram[0x1FFD] ^= 0x80;
             EXPECT_TRUE(Interrupt());
         }},
    };
    for (const auto& [what, happen] : cases) {
        SCOPED_TRACE(what);
        UnlockAndErase();
        EXPECT_EQ(Send(FW_DATA, image), 0u);
        happen();
        lines.DriveReset_n(false);
        lines.DriveBootloaderEnable_n(true);
        lines.DriveReset_n(true);
        EXPECT_FALSE(Interrupt(200)) << "no master";
    }
    UnlockAndErase();
    EXPECT_EQ(Send(FW_DATA, image), 0u);
    EXPECT_EQ(Send(FW_LAST, Last(38, 0x4B37)), 0u);
    PowerOn();
}

TEST(BootloaderWatch, NamesWhatAHostMustNotDo) {
    const struct {
        const char* name;
        std::uint8_t written;
        std::uint8_t changed; // a byte of the module's
    } cases[]{{"area command in the bootloader: 0x1c", 0x1C, 0},
              {"event acknowledged that was not reported: 0x20", 0x20, 0},
              {"mailbox-out acknowledged that was not updated", 0x40, 0},
              {"write outside the host's areas: 1 bytes at 0x1fbe", 0x80, 1}};

    for (const auto& [name, written, changed] : cases) {
        SCOPED_TRACE(name);
        RawHost host;
        host.lines.DriveReset_n(true);
        host.module.Step();
        host.now += 1'000'000;
        host.module.Step();
        host.PutRequest(0x1BFE, 6, 1, {}, {});
        host.ram[0x1FFD] = written;
        host.ram[0x1FBE] = static_cast<std::uint8_t>(host.ram[0x1FBE] ^ changed);
        host.module.Step();
        host.module.Step();
        EXPECT_THAT(host.module.Violations(), ElementsAre(StartsWith(name)));
    }
}

} // namespace
