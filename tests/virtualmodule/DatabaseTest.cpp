// SPDX-License-Identifier: MIT
#include "tests/virtualmodule/RawHost.h"

#include <numeric>

namespace {

using VirtualModule::Append;
using VirtualModule::Bytes;
using VirtualModule::Database;

constexpr unsigned START = 0x10, END = 0x11, MASTER = 0x12, SLAVE = 0x14, DELETE = 0x16, INFO = 0x17;
constexpr unsigned COMMAND = 0x82, DATA_SIZE = 0x83, COUNT = 0x84, NUMBER = 0x85, ADDRESS = 0x87,
                   CONFIG = 0x89;

struct DatabaseTest : testing::Test, RawHost {
    void Begin() {
        PowerOn();
        EXPECT_TRUE(Fieldbus(START).Ok());
        EXPECT_TRUE(Fieldbus(DELETE).Ok());
        EXPECT_TRUE(Fieldbus(MASTER, {}, MasterRecord()).Ok());
    }

    unsigned Fragment(unsigned address, unsigned number, unsigned count, const Bytes& data) {
        return Fieldbus(SLAVE, {VirtualModule::Word(address, number), VirtualModule::Word(count, 0)}, data)
            .error;
    }
};

TEST_F(DatabaseTest, KeepsWhatADownloadWrites) {
    // 150 offsets each way, so that the record comes in three fragments.
    std::vector<unsigned> offsets(150);
    std::iota(offsets.begin(), offsets.end(), 100u);
    const Bytes large = SlaveRecord(7, offsets, offsets, 150, 150);
    ASSERT_EQ(large.size(), 642u);

    Begin();
    EXPECT_EQ(Fieldbus(INFO).error, 0x8Fu) << "partly written";
    EXPECT_EQ(Fragment(9, 1, 1, SlaveRecord(9, {7}, {0}, 3, 0)), 0u);
    const Bytes parts[]{{large.begin(), large.begin() + 256},
                        {large.begin() + 256, large.begin() + 512},
                        {large.begin() + 512, large.end()}};
    EXPECT_EQ(Fragment(3, 1, 3, parts[0]), 0u);
    EXPECT_EQ(Fragment(3, 2, 3, parts[1]), 0u);
    EXPECT_EQ(Fieldbus(END).error, COMMAND) << "a record is half there";
    EXPECT_EQ(Fragment(3, 3, 3, parts[2]), 0u);
    EXPECT_TRUE(Fieldbus(END, {}, {'t', 'x', 't'}).Ok());

    PowerOn();
    const Reply info = Fieldbus(INFO);
    EXPECT_THAT(info.extended, testing::ElementsAre(150, 153, 250, 250, 0x0200, 0, 0, 0));
    EXPECT_EQ(Bytes(info.data.begin(), info.data.begin() + 4), (Bytes{'t', 'x', 't', 0xFF}));
    EXPECT_EQ(flash.database.slaves.at(3), large);
    EXPECT_EQ(flash.writes, 5u);

    EXPECT_TRUE(Fieldbus(START).Ok());
    EXPECT_TRUE(Fieldbus(INFO).Ok()) << "it is there until it is deleted";
    EXPECT_TRUE(Fieldbus(DELETE).Ok());
    EXPECT_EQ(Fieldbus(INFO).extended[7], 1);
}

TEST_F(DatabaseTest, InsistsOnTheOrderOfADownload) {
    Configure();
    PowerOn();
    const Bytes slave = SlaveRecord(1, {1}, {0}, 1, 0);
    EXPECT_EQ(Fieldbus(DELETE).error, COMMAND) << "not started";
    EXPECT_TRUE(Fieldbus(START).Ok());
    EXPECT_EQ(Fieldbus(MASTER, {}, MasterRecord()).error, COMMAND) << "not deleted";
    EXPECT_TRUE(flash.database.Complete());
    EXPECT_TRUE(Fieldbus(DELETE).Ok());
    EXPECT_EQ(Fragment(5, 1, 1, slave), COMMAND) << "before the master";
    EXPECT_EQ(Fieldbus(END).error, COMMAND) << "before the master";
    EXPECT_TRUE(Fieldbus(MASTER, {}, MasterRecord()).Ok());
    EXPECT_EQ(Fieldbus(MASTER, {}, MasterRecord()).error, COMMAND) << "twice";
    EXPECT_TRUE(Fieldbus(END).Ok());
    EXPECT_EQ(Fragment(5, 1, 1, slave), COMMAND) << "ended";

    Configure();
    Initialise();
    EXPECT_EQ(Fieldbus(START).error, COMMAND) << "in use";
    EXPECT_TRUE(Fieldbus(INFO).Ok());
}

TEST_F(DatabaseTest, ChecksFragments) {
    const Bytes slave = SlaveRecord(1, {1}, {0}, 1, 0);
    const Bytes full(256);

    const struct {
        unsigned address, number, count;
        const Bytes& data;
        unsigned error;
    } cases[]{{126, 1, 1, slave, ADDRESS}, {1, 1, 1, slave, ADDRESS}, // the master's own
              {5, 1, 0, slave, COUNT},     {5, 0, 2, full, NUMBER},   {5, 2, 2, full, NUMBER},
              {5, 1, 2, slave, DATA_SIZE}, {5, 1, 2, full, 0},        {6, 2, 2, slave, ADDRESS},
              {5, 2, 3, slave, COUNT},     {5, 1, 2, full, NUMBER},   {5, 2, 2, slave, CONFIG},
              {5, 1, 1, slave, 0},         {5, 1, 1, slave, ADDRESS}}; // twice

    Begin();
    for (const auto& [address, number, count, data, error] : cases)
        EXPECT_EQ(Fragment(address, number, count, data), error) << address << ' ' << number << '/' << count;
    EXPECT_TRUE(Fieldbus(END).Ok());
    EXPECT_EQ(Fieldbus(INFO).extended[4], 0x0100);
}

TEST(SlaveRecordTest, EveryLengthCounts) {
    using VirtualModule::SlaveRecord;
    const Bytes good = RawHost::SlaveRecord(0x1234, {0, 2}, {10}, 3, 2);
    const auto record = SlaveRecord::Decode(good);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->identNumber, 0x1234);
    EXPECT_EQ(record->identifiers, Bytes{0x31});
    EXPECT_THAT(record->inputPlaces, testing::ElementsAre(0, 2, 3));
    EXPECT_THAT(record->outputPlaces, testing::ElementsAre(10, 11));

    const struct {
        std::size_t at;
        std::uint8_t value;
        const char* what;
    } cases[]{{1, 47, "record length"},
              {17, 8, "parameters too short"},
              {17, 247, "parameters too long"},
              {27, 2, "configuration"},
              {31, 12, "address table"},
              {32, 245, "input entries"},
              {33, 2, "output entries"},
              {41, 7, "user data"},
              {47, 3, "extended, beyond the end"},
              {36, 0x0D, "input place"},
              {38, 0xFF, "output place"}};

    for (const auto& item : cases) {
        Bytes bad = good;
        bad[item.at] = item.value;
        if (item.at == 36)
            bad[37] = 0xAB; // the last byte of the area; the one that follows it falls out
        EXPECT_FALSE(SlaveRecord::Decode(bad)) << item.what;
    }
    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_FALSE(SlaveRecord::Decode(VirtualModule::ByteView(good).first(size))) << size;
    Bytes longer = good;
    longer.push_back(0);
    EXPECT_FALSE(SlaveRecord::Decode(longer));
    EXPECT_FALSE(SlaveRecord::Decode(RawHost::SlaveRecord(1, {}, {0}, 0, 0))) << "42 bytes are too few";
    const auto placeless = SlaveRecord::Decode(RawHost::SlaveRecord(1, {}, {0, 1}, 4, 1));
    ASSERT_TRUE(placeless);
    EXPECT_TRUE(placeless->inputPlaces.empty());

    Bytes master = RawHost::MasterRecord();
    EXPECT_TRUE(VirtualModule::IsMasterRecord(master));
    master[33] = 63;
    EXPECT_FALSE(VirtualModule::IsMasterRecord(master));
    master[33] = 64;
    master.push_back(0);
    EXPECT_FALSE(VirtualModule::IsMasterRecord(master));
}

} // namespace
