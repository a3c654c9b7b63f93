// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/RecordingHostInterface.h"
#include "tests/support/Values.h"

#include "vesk/io/InArea.h"
#include "vesk/io/OutArea.h"

#include <numeric>
#include <random>
#include <tuple>

using System::ArgumentOutOfRangeException;
using System::Array;
using Vesk::ConfigException;
using Vesk::IO::InArea;
using Vesk::IO::InputSegment;
using Vesk::IO::OutArea;
using Vesk::IO::OutputSegment;
using Log = std::vector<std::string>;

using Bytes = std::shared_ptr<Array<unsigned char>>;

static void Map(InArea& area, unsigned short offset, const Bytes& bytes, int index, int count) {
    area.MapInputData(offset, bytes, index, count);
}

static void Map(OutArea& area, unsigned short offset, const Bytes& bytes, int index, int count) {
    area.MapOutputData(offset, bytes, index, count);
}

template <class Area>
class PlacementTest : public testing::Test {};

using Areas = testing::Types<InArea, OutArea>;
TYPED_TEST_SUITE(PlacementTest, Areas);

TYPED_TEST(PlacementTest, KeepsSegmentsInsideTheAreaAndApart) {
    const auto dpRam = std::make_shared<RecordingHostInterface>();
    const Bytes bytes = Array<unsigned char>::Create(1);
    const auto area = TypeParam::Create(0xFFF0, 100, dpRam); // the offsets of the DPRAM start again inside
    Map(*area, 10, bytes, 0, 10);
    Map(*area, 90, bytes, 0, 10);

    const std::string outside = "Segment mapped outside area\n";
    const std::string start = "Start of segment within existing segment\n";
    const std::string end = "End of segment within existing segment\n";
    const std::string around = "Segment wraps around existing segment\n";
    const std::tuple<unsigned short, int, std::string> cases[] = {
        {91, 10, outside + "91 + 10 > 100"},
        {65535, 2147483647, outside + "65535 + 2147483647 > 100"},
        {10, 1, start + "10 >= 10 && 10 < 20"},
        {19, 60, start + "19 >= 10 && 19 < 20"},
        {5, 6, end + "11 > 10 && 11 <= 20"},
        {0, 20, end + "20 > 10 && 20 <= 20"},
        {5, 20, around + "5 <= 10 && 25 >= 20"},
        {5, 90, around + "5 <= 10 && 95 >= 20"}, // of the first, not the end in the second
        {20, 80, end + "100 > 90 && 100 <= 100"},
    };
    for (const auto& [offset, count, message] : cases)
        ExpectFailure<ConfigException>(
            message, [&, offset = offset, count = count] { Map(*area, offset, bytes, 0, count); });
    EXPECT_EQ(area->TotalMapped(), 20) << "a failed mapping leaves the area as it was";
    EXPECT_EQ(area->HighestEnd(), 100);

    Map(*area, 20, bytes, 0, 5);
    Map(*area, 0, bytes, 0, 10);
    Map(*area, 30, bytes, 0, 0);
    EXPECT_EQ(area->TotalMapped(), 35);
    EXPECT_TRUE(dpRam->log.empty()) << "mapping touches no DPRAM";
}

template <class Segment>
static void ExpectSegment(const std::string& text) {
    const auto dpRam = std::make_shared<RecordingHostInterface>();
    const Bytes bytes = Array<unsigned char>::Create(12);
    ExpectFailure<ArgumentOutOfRangeException>("size (-1) must not be less than zero (0)",
                                               [&] { Segment::Create(dpRam, 0, bytes, 0, -1); });
    EXPECT_EQ(Segment::Create(dpRam, 0x1096, bytes, 4, 8)->ToString().Value(), text);
}

TEST(SegmentTest, NamesPlaceIndexAndCount) {
    ExpectSegment<InputSegment>("InputSegment dpRamOffset: 4246, src: 4, count: 8");
    ExpectSegment<OutputSegment>("OutputSegment dpRamOffset: 4246, dst: 4, count: 8");
}

TEST(InAreaTest, LooksAtTheMappedBytesOnlyAndKeepsWhatItCouldNotWrite) {
    const auto dpRam = std::make_shared<RecordingHostInterface>();
    const Bytes src = Array<unsigned char>::Create(8);
    const auto area = InArea::Create(0x296, 3500, dpRam);
    area->MapInputData(4, src, 2, 2);
    EXPECT_FALSE(area->Update()) << "the area is the module's";
    area->Acquired();
    EXPECT_TRUE(area->Update());
    src->Set(3, 40);
    EXPECT_FALSE(area->Update()) << "released, and the change is kept";
    area->Acquired();
    EXPECT_TRUE(area->Update());
    area->Acquired();
    src->Set(1, 99);
    src->Set(4, 99);
    EXPECT_FALSE(area->Update()) << "neighbours of the mapped bytes do not count";

    const auto broken = [&](int index, const char* message) {
        const auto part = InArea::Create(0x296, 3500, dpRam);
        part->MapInputData(0, src, index, 8);
        part->Acquired();
        dpRam->TakeLog();
        for (int again = 0; again < 2; ++again) // it stays acquired
            ExpectFailure<ArgumentOutOfRangeException>(message, [&] { return part->Update(); });
        EXPECT_TRUE(dpRam->TakeLog().empty());
    };
    broken(1, "srcOffset (1) + count (8) must not be greater than the length of src (8)");
    broken(-1, "srcOffset (-1) must not be less than zero (0)");
}

TEST(InAreaTest, WritesHeldBytesUntilTheyAreReleased) {
    const auto dpRam = std::make_shared<RecordingHostInterface>();
    const auto area = InArea::Create(0x100, 100, dpRam);
    const Bytes bytes = Array<unsigned char>::Create(4);
    area->MapInputData(2, bytes, 0, 4);
    const auto exchange = [&] {
        area->Acquired();
        area->Update();
        return std::pair(dpRam->TakeLog().size(), dpRam->Bytes(0x100, 7));
    };
    using Exchange = std::pair<std::size_t, std::vector<int>>; // writes, and what is there then
    ExpectFailure<ArgumentOutOfRangeException>("offset 6 of the input area is not mapped",
                                               [&] { area->Hold(6, 1); });
    area->Hold(3, 7); // before the first write, which has to be made all the same
    area->Hold(5, 0);
    bytes->Set(3, 9);
    EXPECT_EQ(exchange(), (Exchange{1, {0, 0, 0, 7, 0, 0, 0}}));
    bytes->Set(1, 8);
    EXPECT_EQ(exchange(), (Exchange{0, {0, 0, 0, 7, 0, 0, 0}})) << "nothing new for the module";
    bytes->Set(0, 6);
    area->Hold(5, 5);
    EXPECT_EQ(exchange(), (Exchange{1, {0, 0, 6, 7, 0, 5, 0}}));
    std::vector<unsigned char> written(6);
    area->CopyWritten(written.data());
    EXPECT_EQ(written, (std::vector<unsigned char>{0, 0, 6, 7, 0, 5}));
    area->Hold(4, 0x3F, 0x21); // of two bits the others are the array's
    bytes->Set(2, 0xC0);
    EXPECT_EQ(exchange(), (Exchange{1, {0, 0, 6, 7, 0xE1, 5, 0}}));
    area->Hold(4, 0x02, 0x03); // one more, and another value of one
    bytes->Set(2, 0x80);
    EXPECT_EQ(exchange(), (Exchange{1, {0, 0, 6, 7, 0xA2, 5, 0}}));
    area->Release(3); // in another order than they were held
    EXPECT_EQ(exchange(), (Exchange{1, {0, 0, 6, 8, 0xA2, 5, 0}}));
    area->Release(5);
    area->Release(5);
    area->Release(99);
    EXPECT_EQ(exchange(), (Exchange{1, {0, 0, 6, 8, 0xA2, 9, 0}}));
    area->Release(4);
    EXPECT_EQ(exchange(), (Exchange{1, {0, 0, 6, 8, 0x80, 9, 0}}));
    EXPECT_EQ(exchange(), (Exchange{0, {0, 0, 6, 8, 0x80, 9, 0}}));
}

TEST(InAreaTest, WritesWhatStandsBeforeASegmentThatLeavesItsArray) {
    const auto dpRam = std::make_shared<RecordingHostInterface>();
    const auto area = InArea::Create(0, 3500, dpRam);
    const Bytes whole = Array<unsigned char>::Create({1, 2, 3});
    area->MapInputData(1, whole, 0, 1);
    area->MapInputData(3, whole, 1, 2); // with the next one a run of neighbours
    area->MapInputData(5, Array<unsigned char>::Create(2), 1, 2);
    area->Acquired();
    ExpectFailure<ArgumentOutOfRangeException>(
        "srcOffset (1) + count (2) must not be greater than the length of src (2)", [&] { area->Update(); });
    EXPECT_THAT(std::vector<int>(dpRam->bytes.begin(), dpRam->bytes.begin() + 6),
                testing::ElementsAre(0, 1, 0, 2, 3, 0));
}

TEST(OutAreaTest, BringsWhatStandsBeforeASegmentThatLeavesItsArray) {
    const auto dpRam = std::make_shared<RecordingHostInterface>();
    const auto area = OutArea::Create(0, 3500, dpRam);
    const Bytes whole = Array<unsigned char>::Create(4);
    area->MapOutputData(1, whole, 0, 1);
    area->MapOutputData(3, whole, 1, 1); // with the next two a run of neighbours
    area->MapOutputData(4, whole, 2, 2);
    area->MapOutputData(6, Array<unsigned char>::Create(2), 1, 2);
    std::iota(dpRam->bytes.begin(), dpRam->bytes.begin() + 8, static_cast<unsigned char>(0));
    ExpectFailure<ArgumentOutOfRangeException>(
        "offset (1) + count (2) must not be greater than the length of array (2)", [&] { area->Update(); });
    EXPECT_THAT(Values(whole), testing::ElementsAre(1, 3, 4, 5));
}

TEST(ProcessAreasTest, NeighboursInTheAreaArePartWhereDpRamOffsetsWrap) {
    const auto dpRam = std::make_shared<RecordingHostInterface>(0x10000);
    const auto in = InArea::Create(0xFFF0, 0x20, dpRam);
    const auto out = OutArea::Create(0xFFF0, 0x20, dpRam);
    const Bytes bytes = Array<unsigned char>::Create(0x20);
    for (unsigned short offset = 0; offset < 0x20; offset = static_cast<unsigned short>(offset + 8)) {
        in->MapInputData(offset, bytes, offset, 8);
        out->MapOutputData(offset, bytes, offset, 8);
    }
    in->Acquired();
    in->Update();
    out->Update();
    EXPECT_EQ(dpRam->TakeLog(), (Log{"W fff0+16", "W 0000+16", "R fff0+16", "R 0000+16"}));
}

/// The places in the log of blocks, byte by byte.
static std::vector<int> BytesOf(const Log& log) {
    std::vector<int> bytes;
    for (const std::string& block : log)
        for (int i = 0; i < std::stoi(block.substr(7)); ++i)
            bytes.push_back(std::stoi(block.substr(2, 4), nullptr, 16) + i);
    return bytes;
}

/// However segments lie in the area and in their arrays, the bus sees each of their bytes once, in the order
/// of their mapping, and each byte arrives.
TEST(ProcessAreasTest, MoveEveryByteInTheOrderOfTheMapping) {
    std::mt19937 random(1);
    const auto below = [&](int end) { return static_cast<int>(random() % static_cast<unsigned int>(end)); };
    for (int world = 0; world < 100; ++world) {
        const auto dpRam = std::make_shared<RecordingHostInterface>();
        const auto in = InArea::Create(0x296, 3500, dpRam);
        const auto out = OutArea::Create(0x1096, 3500, dpRam);
        const Bytes arrays[] = {Array<unsigned char>::Create(2000), Array<unsigned char>::Create(2000)};
        const Bytes images[] = {Array<unsigned char>::Create(2000), Array<unsigned char>::Create(2000)};
        std::vector<int> places;
        std::vector<unsigned char*> mapped;
        int offset = 0;
        int index = 0;
        for (int i = 0; i < 12; ++i) {
            offset += below(2) * below(9); // every other one is a neighbour in the area, or in its array
            index = below(2) == 0 ? index : below(1900);
            const int count = 1 + below(69);
            const int array = below(4) / 3;
            in->MapInputData(static_cast<unsigned short>(offset), arrays[array], index, count);
            out->MapOutputData(static_cast<unsigned short>(offset), images[array], index, count);
            for (int byte = 0; byte < count; ++byte) {
                places.push_back(offset++);
                mapped.push_back(arrays[array]->Data() + index++);
            }
        }
        in->Acquired();
        ASSERT_TRUE(in->Update());
        in->Acquired();
        for (unsigned char* const byte : mapped) {
            dpRam->TakeLog();
            ASSERT_FALSE(in->Update());
            *byte = static_cast<unsigned char>(*byte + 1 + below(255));
            ASSERT_TRUE(in->Update());
            in->Acquired();
        }
        std::vector<int> written = BytesOf(dpRam->TakeLog());
        std::copy_n(dpRam->bytes.begin() + 0x296, 3500, dpRam->bytes.begin() + 0x1096);
        out->Update();
        std::vector<int> read = BytesOf(dpRam->TakeLog());
        for (std::size_t i = 0; i < places.size(); ++i) {
            written.at(i) -= 0x296;
            read.at(i) -= 0x1096;
        }
        EXPECT_EQ(written, places);
        EXPECT_EQ(read, places);
        for (int array = 0; array < 2; ++array)
            EXPECT_EQ(Values(arrays[array]), Values(images[array]));
    }
}
