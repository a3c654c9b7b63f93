// SPDX-License-Identifier: MIT
#include "tests/support/TemporaryFolder.h"
#include "tests/virtualmodule/RawHost.h"

#include <sys/stat.h>

namespace {

using VirtualModule::Bytes;
using VirtualModule::Flash;
using VirtualModule::Version;

struct FlashTest : testing::Test {
    std::string LoadFailure() const {
        try {
            Flash::Load(path);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "loaded";
    }

    TemporaryFolder folder;
    std::string path = folder.Path("flash");
};

TEST_F(FlashTest, ComesBackAsItWasSaved) {
    RawHost host;
    host.Configure();
    Flash& flash = host.flash;
    flash.serial = 0xFFEEDDCC;
    flash.application = {false, {9, 8, 7}, Bytes(300, 5)};
    flash.bootloader = {true, {3, 2, 1}, {4, 5, 6}};
    flash.Save(path);
    // Over an old one, and beside one that was cut off or that somebody has put there.
    std::filesystem::create_symlink(folder.Path("elsewhere"), path + Flash::UNFINISHED);
    flash.Save(path);
    const Flash loaded = Flash::Load(path);
    EXPECT_EQ(loaded.serial, flash.serial);
    EXPECT_FALSE(loaded.application.valid);
    EXPECT_EQ(loaded.application.version, (Version{9, 8, 7}));
    EXPECT_EQ(loaded.application.image, flash.application.image);
    EXPECT_TRUE(loaded.bootloader.valid);
    EXPECT_EQ(loaded.bootloader.version, (Version{3, 2, 1}));
    EXPECT_EQ(loaded.bootloader.image, flash.bootloader.image);
    EXPECT_TRUE(loaded.database.Complete());
    EXPECT_EQ(loaded.database.master, flash.database.master);
    EXPECT_EQ(loaded.database.slaves, flash.database.slaves);
    EXPECT_EQ(loaded.database.description, flash.database.description);
    EXPECT_EQ(folder.Count(), 1) << "nothing else stays";
}

TEST_F(FlashTest, RefusesADamagedFile) {
    EXPECT_EQ(LoadFailure(), "flash file " + path + ": No such file or directory");
    RawHost host;
    host.Configure();
    host.flash.Save(path);
    const std::string good = folder.Content("flash");
    for (std::size_t at = 0; at < good.size(); at += 7) {
        std::string bad = good;
        bad[at] = static_cast<char>(bad[at] ^ 0x10);
        folder.Put("flash", bad);
        EXPECT_THAT(LoadFailure(),
                    testing::HasSubstr(at < 8 ? ": not a flash file" : "its checksum does not match"));
        folder.Put("flash", good.substr(0, at));
        EXPECT_THAT(LoadFailure(),
                    testing::HasSubstr(at < 12 ? "not a flash file" : "its checksum does not match"));
    }
    host.flash.database.slaves[5][1] = 45;
    host.flash.Save(path);
    EXPECT_THAT(LoadFailure(), testing::EndsWith("its configuration database is invalid"));
}

TEST_F(FlashTest, RefusesWhatIsNoFileOrTooLong) {
    path = folder.Path("");
    EXPECT_THAT(LoadFailure(), testing::EndsWith(": Is a directory"));
    path = "/dev/zero";
    EXPECT_EQ(LoadFailure(), "flash file /dev/zero: not a flash file: more than 16777216 bytes");
    path = folder.Path("fifo");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(LoadFailure(), "flash file " + path + ": not a flash file") << "nobody writes into it";
}

TEST_F(FlashTest, LeavesTheOldFileWhereItCannotSave) {
    const Flash flash;
    std::filesystem::create_directories(path + "/occupied");
    EXPECT_THROW(flash.Save(path), std::runtime_error) << "a folder is in the way";
    EXPECT_EQ(folder.Count(), 1);
    EXPECT_THROW(flash.Save(folder.Path("missing/flash")), std::runtime_error);
}

TEST(FirmwareTest, AnImageCarriesItsVersion) {
    const std::string text = "123456789";
    const Bytes plain(text.begin(), text.end());
    EXPECT_EQ(VirtualModule::Crc16(plain), 0x4B37);
    EXPECT_EQ(VirtualModule::VersionOf(plain, 6), (Version{6, 0x4B, 0x37}));

    Bytes image(1024);
    for (const char letter : std::string("VT22-VERSION:"))
        image.push_back(static_cast<std::uint8_t>(letter));
    Bytes cut = image;
    VirtualModule::Append(image, Bytes{2, 3, 4});
    image.erase(image.begin()); // the stamp begins at the last place that it may
    EXPECT_EQ(VirtualModule::VersionOf(image, 6), (Version{2, 3, 4}));
    image.insert(image.begin(), 0);
    EXPECT_EQ(VirtualModule::VersionOf(image, 6).major, 6) << "too far behind";
    cut.erase(cut.begin(), cut.begin() + 1000);
    EXPECT_EQ(VirtualModule::VersionOf(cut, 6).major, 6) << "the version itself is missing";
}

TEST(FirmwareTest, ASealHoldsOrShowsDamage) {
    const auto holds = [](const std::string& text, std::uint8_t high, std::uint8_t low) {
        Bytes image(text.begin(), text.end());
        VirtualModule::Append(image, Bytes{high, low});
        return VirtualModule::SealHolds(image);
    };
    EXPECT_TRUE(holds("123456789VT22-CRC:", 0x7F, 0x5A));
    EXPECT_FALSE(holds("123456789VT22-CRC:", 0x5A, 0x7F));
    EXPECT_FALSE(holds("123456788VT22-CRC:", 0x7F, 0x5A));
    EXPECT_FALSE(holds("123456789VT22_CRD:", 0x7F, 0x5A)) << "a damaged mark";
    EXPECT_TRUE(holds("123456789VT23_CRD:", 0x7F, 0x5A)) << "no mark";
    EXPECT_TRUE(holds("123456789VT22-CRC", ':', 0x7F)) << "not at the end";
    EXPECT_TRUE(holds("T22-CRC:", 0x7F, 0x5A)) << "shorter than a seal";
}

} // namespace
