// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/RecordingHostInterface.h"
#include "tests/support/Values.h"

#include "vesk/io/InArea.h"
#include "vesk/io/OutArea.h"

#include <tuple>

using System::ArgumentOutOfRangeException;
using System::Array;
using Vesk::ConfigException;
using Vesk::IO::InArea;
using Vesk::IO::OutArea;
using Log = std::vector<std::string>;

using Bytes = std::shared_ptr<Array<unsigned char>>;

static void Map(InArea& area, unsigned short offset, const Bytes& bytes, int index, int count) {
    area.MapInputData(offset, bytes, index, count);
}

static void Map(OutArea& area, unsigned short offset, const Bytes& bytes, int index, int count) {
    area.MapOutputData(offset, bytes, index, count);
}

template <class Area>
class PlacementTest : public testing::Test {
protected:
    std::shared_ptr<RecordingHostInterface> _dpRam = std::make_shared<RecordingHostInterface>();
    Bytes _bytes = Array<unsigned char>::Create(70000);
};

using Areas = testing::Types<InArea, OutArea>;
TYPED_TEST_SUITE(PlacementTest, Areas);

TYPED_TEST(PlacementTest, KeepsSegmentsInsideTheAreaAndApart) {
    const auto area = TypeParam::Create(0x296, 100, this->_dpRam);
    Map(*area, 10, this->_bytes, 0, 10);
    Map(*area, 90, this->_bytes, 0, 10);

    const std::string outside = "Segment mapped outside area\n";
    const std::string start = "Start of segment within existing segment\n";
    const std::string end = "End of segment within existing segment\n";
    const std::string around = "Segment wraps around existing segment\n";
    const std::tuple<unsigned short, int, std::string> cases[] = {
        {91, 10, outside + "91 + 10 > 100"},
        {100, 1, outside + "100 + 1 > 100"},
        {65535, 2147483647, outside + "65535 + 2147483647 > 100"},
        {15, 2, start + "15 >= 10 && 15 < 20"},
        {10, 1, start + "10 >= 10 && 10 < 20"},
        {19, 60, start + "19 >= 10 && 19 < 20"},
        {15, -2, start + "15 >= 10 && 15 < 20"},
        {5, 10, end + "15 > 10 && 15 <= 20"},
        {5, 6, end + "11 > 10 && 11 <= 20"},
        {0, 20, end + "20 > 10 && 20 <= 20"},
        {5, 20, around + "5 <= 10 && 25 >= 20"},
        {20, 80, end + "100 > 90 && 100 <= 100"},
    };
    for (const auto& [offset, count, message] : cases)
        ExpectFailure<ConfigException>(
            message, [&, offset = offset, count = count] { Map(*area, offset, this->_bytes, 0, count); });
    EXPECT_EQ(area->TotalMapped(), 20) << "a failed mapping leaves the area as it was";
    EXPECT_EQ(area->HighestEnd(), 100);

    Map(*area, 20, this->_bytes, 0, 5);
    Map(*area, 0, this->_bytes, 0, 10);
    Map(*area, 30, this->_bytes, 0, 0);
    EXPECT_EQ(area->TotalMapped(), 35);
    EXPECT_TRUE(this->_dpRam->log.empty()) << "mapping touches no DPRAM";
}

TYPED_TEST(PlacementTest, RefusesNullAndNegativeCounts) {
    ExpectFailure<System::ArgumentNullException>("hostInterface must not be null",
                                                 [] { return TypeParam::Create(0, 10, nullptr); });
    const auto area = TypeParam::Create(0, 10, this->_dpRam);
    const std::string name = std::is_same_v<TypeParam, InArea> ? "src" : "dst";
    ExpectFailure<System::ArgumentNullException>(name + " must not be null",
                                                 [&] { Map(*area, 0, nullptr, 0, 1); });
    ExpectFailure<ArgumentOutOfRangeException>("size (-1) must not be less than zero (0)",
                                               [&] { Map(*area, 5, this->_bytes, 0, -1); });
    EXPECT_EQ(area->TotalMapped(), 0);
}

TYPED_TEST(PlacementTest, CountsIn16BitsAndWrapsDpRamOffsets) {
    const auto area = TypeParam::Create(0xFF00, 0xFFFF, this->_dpRam);
    Map(*area, 0x0200, this->_bytes, 0, 0x8000); // from DPRAM 0x0100 on
    Map(*area, 0x8200, this->_bytes, 0, 0x7DFF);
    EXPECT_EQ(area->TotalMapped(), 0xFDFF);
    EXPECT_EQ(area->HighestEnd(), 0xFFFF);
    ExpectFailure<ConfigException>("Start of segment within existing segment\n600 >= 512 && 600 < 33280",
                                   [&] { Map(*area, 600, this->_bytes, 0, 1); });
}

class InAreaTest : public testing::Test {
protected:
    void Map(unsigned short offset, int index, int count) { _area->MapInputData(offset, _src, index, count); }

    std::shared_ptr<RecordingHostInterface> _dpRam = std::make_shared<RecordingHostInterface>();
    std::shared_ptr<InArea> _area = InArea::Create(0x296, 3500, _dpRam);
    Bytes _src = Array<unsigned char>::Create({1, 2, 3, 4, 5, 6, 7, 8});
};

TEST_F(InAreaTest, WritesEverySegmentOnceWhenOneHasChanged) {
    Map(4, 2, 2);
    Map(0, 6, 1);
    EXPECT_FALSE(_area->Update()) << "the area is the module's";
    _area->Acquired();
    EXPECT_TRUE(_area->Update()) << "new segments are written even if nothing changed";
    EXPECT_EQ(_dpRam->TakeLog(), (Log{"W 029a+2", "W 0296+1"})) << "in the order of their mapping";
    EXPECT_EQ(_dpRam->Bytes(0x296, 6), (std::vector<int>{7, 0, 0, 0, 3, 4}));
    EXPECT_FALSE(_area->Update()) << "released";

    _area->Acquired();
    EXPECT_FALSE(_area->Update());
    _src->Set(1, 99);
    _src->Set(4, 99);
    EXPECT_FALSE(_area->Update()) << "neighbours of the mapped bytes do not count";
    EXPECT_TRUE(_dpRam->TakeLog().empty());
    _src->Set(3, 40);
    EXPECT_TRUE(_area->Update()) << "still acquired";
    EXPECT_EQ(_dpRam->TakeLog(), (Log{"W 029a+2", "W 0296+1"}));
    EXPECT_EQ(_dpRam->Bytes(0x29B, 1), std::vector<int>{40});
}

TEST_F(InAreaTest, KeepsAChangeForTheNextHandOver) {
    Map(0, 0, 8);
    _area->Acquired();
    EXPECT_TRUE(_area->Update());
    _src->Set(7, 1);
    EXPECT_FALSE(_area->Update());
    _area->Acquired();
    EXPECT_TRUE(_area->Update());
    _area->Acquired();
    EXPECT_FALSE(_area->Update()) << "written, so no change any more";
}

TEST_F(InAreaTest, FailsOnASegmentThatLeavesItsArrayAndStaysAcquired) {
    Map(0, 1, 8);
    _area->Acquired();
    for (int i = 0; i < 2; ++i)
        ExpectFailure<ArgumentOutOfRangeException>(
            "srcOffset (1) + count (8) must not be greater than the length of src (8)",
            [&] { return _area->Update(); });
    EXPECT_TRUE(_dpRam->TakeLog().empty());
}

TEST(OutAreaTest, ReadsEverySegmentInTheOrderOfItsMapping) {
    const auto dpRam = std::make_shared<RecordingHostInterface>();
    const auto area = OutArea::Create(0x1096, 3500, dpRam);
    const Bytes dst = Array<unsigned char>::Create(6);
    area->MapOutputData(2, dst, 4, 2);
    area->MapOutputData(0, dst, 0, 1);
    dpRam->Put(0x1096, {11, 12, 13, 14});
    area->Update();
    area->Update();
    EXPECT_EQ(dpRam->TakeLog(), (Log{"R 1098+2", "R 1096+1", "R 1098+2", "R 1096+1"}));
    EXPECT_EQ(Values(dst), (std::vector<int>{11, 0, 0, 0, 13, 14}));
    area->MapOutputData(10, dst, 5, 2);
    ExpectFailure<ArgumentOutOfRangeException>(
        "arrayoffset (5) + arraycount (2) must not be greater than the length of array (6)",
        [&] { area->Update(); });
}

TEST(SegmentTextTest, NamesPlaceIndexAndCount) {
    const auto dpRam = std::make_shared<RecordingHostInterface>();
    const Bytes bytes = Array<unsigned char>::Create(12);
    EXPECT_EQ(Vesk::IO::OutputSegment::Create(dpRam, 0x1096, bytes, 4, 8)->ToString().Value(),
              "OutputSegment dpRamOffset: 4246, dst: 4, count: 8");
    EXPECT_EQ(Vesk::IO::InputSegment::Create(dpRam, 0x296, bytes, 3, 9)->ToString().Value(),
              "InputSegment dpRamOffset: 662, src: 3, count: 9");
}
