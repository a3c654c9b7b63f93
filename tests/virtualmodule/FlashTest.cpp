// SPDX-License-Identifier: MIT
#include "tests/support/TemporaryFolder.h"
#include "tests/virtualmodule/RawHost.h"

#include <sys/stat.h>

using namespace VirtualModule;

namespace {

struct FlashTest : testing::Test, RawHost {
    FlashTest() { Configure(); }

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

} // namespace

TEST_F(FlashTest, ComesBackAsItWasSaved) {
    flash.serial = 0xFFEEDDCC;
    flash.application = {false, {9, 8, 7}, Bytes(300, 5)};
    // Beside one that was cut off or that somebody has put there.
    std::filesystem::create_symlink(folder.Path("elsewhere"), path + Flash::UNFINISHED);
    flash.Save(path);
    const std::string saved = folder.Content("flash");
    const Flash loaded = Flash::Load(path);
    EXPECT_EQ(loaded.serial, flash.serial);
    EXPECT_EQ(loaded.database.slaves, flash.database.slaves);
    loaded.Save(path);
    EXPECT_EQ(folder.Content("flash"), saved);
    EXPECT_EQ(folder.Count(), 1) << "nothing else stays";
    EXPECT_THROW(flash.Save(folder.Path("missing/flash")), std::runtime_error);
}

TEST_F(FlashTest, RefusesADamagedFile) {
    flash.Save(path);
    const std::string good = folder.Content("flash");
    for (std::size_t at = 0; at < good.size(); at += 7) {
        std::string bad = good;
        bad[at] = static_cast<char>(bad[at] ^ 0x10);
        folder.Put("flash", bad);
        EXPECT_THAT(LoadFailure(),
                    testing::HasSubstr(at < 8 ? ": not a flash file" : "checksum does not match"));
        folder.Put("flash", good.substr(0, at));
        EXPECT_THAT(LoadFailure(),
                    testing::HasSubstr(at < 12 ? "not a flash file" : "checksum does not match"));
    }
    flash.database.slaves[5][1] ^= 1;
    flash.Save(path);
    EXPECT_THAT(LoadFailure(), testing::EndsWith("its configuration database is invalid"));
}

TEST_F(FlashTest, RefusesWhatIsNoFileOrTooLong) {
    EXPECT_EQ(LoadFailure(), "flash file " + path + ": No such file or directory");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(LoadFailure(), "flash file " + path + ": not a flash file") << "nobody writes into it";
    path = folder.Path("");
    EXPECT_THAT(LoadFailure(), testing::EndsWith(": Is a directory"));
    path = "/dev/zero";
    EXPECT_EQ(LoadFailure(), "flash file /dev/zero: not a flash file: more than 16777216 bytes");
}

TEST(FirmwareTest, CarriesItsVersionAndItsSeal) {
    const auto bytes = [](const std::string& text) { return Bytes(text.begin(), text.end()); };
    const auto version = [&](std::size_t before, const std::string& text) {
        return VersionOf(bytes(std::string(before, 'x') + text), 6);
    };
    EXPECT_EQ(version(0, "123456789"), (Version{6, 0x4B, 0x37})) << "of its checksum";
    EXPECT_EQ(version(1023, "VT22-VERSION:\2\3\4"), (Version{2, 3, 4}));
    EXPECT_EQ(version(1024, "VT22-VERSION:\2\3\4").major, 6) << "too far behind";
    EXPECT_EQ(version(0, "VT22-VERSION:\2\3").major, 6) << "cut off";

    // Sealed; or without a mark, with one that is not at the end, or shorter than a seal.
    for (const char* good :
         {"123456789VT22-CRC:\x7F\x5A", "123456789VT23_CRD:\x7F\x5A", "1VT22-CRC:\x7F", "T22-CRC:\x7F\x5A"})
        EXPECT_TRUE(SealHolds(bytes(good))) << good;
    // Damaged: the checksum, the image, the mark.
    for (const char* bad :
         {"123456789VT22-CRC:\x5A\x7F", "123456788VT22-CRC:\x7F\x5A", "123456789VT22_CRD:\x7F\x5A"})
        EXPECT_FALSE(SealHolds(bytes(bad))) << bad;
}

TEST(SlaveRecordTest, EachLengthCounts) {
    Bytes good = DatabaseFileBuilder::SlaveRecord({{0, 2, 3}, {10, 11}, {}});
    good[47] = 4; // one byte more than the table has
    EXPECT_THAT(SlaveRecord::Decode(good)->inputPlaces, testing::ElementsAre(0, 2, 3, 4));
    // Record, parameters (too short and too long), configuration, table, entries each way, user data,
    // extended parameters, a place each way.
    const std::pair<std::size_t, std::uint8_t> spoilt[]{{1, 47},  {17, 8},    {17, 247}, {27, 2},
                                                        {31, 12}, {32, 245},  {33, 1},   {45, 7},
                                                        {51, 3},  {34, 0x0E}, {40, 0xFF}};
    for (const auto& [at, value] : spoilt) {
        Bytes bad = good;
        bad[at] = value;
        EXPECT_FALSE(SlaveRecord::Decode(bad)) << at;
    }
    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_FALSE(SlaveRecord::Decode(ByteView(good).first(size))) << size;
    good[38] = 0x0D, good[39] = 0xAB; // the last place, and the byte that follows it falls out
    EXPECT_FALSE(SlaveRecord::Decode(good));
}
