// SPDX-License-Identifier: MIT
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/RunTool.h"

#include <algorithm>

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const std::string PLANT = SOURCE_DIR "/examples/plant.ddb";

TEST(RunCommand, LetsThePlantRunWithItsFileOrWithout) {
    for (const RunTool::Arguments& file : {RunTool::Arguments{PLANT}, {}})
        EXPECT_THAT(RunTool::Text(RunTool::Join({"run", "--cycles", "5"}, file)),
                    HasSubstr("All held: 12 slaves, 5 cycles, 0 mismatches, 2 lives.\n"));
}

TEST(RunCommand, ReportsAsJson) {
    const auto report = RunTool::Json({"run", PLANT, "--cycles", "3"});
    EXPECT_THAT(report, HasFacts(R"({"ok": true, "exchange": {"cycles": 3, "mismatches": 0},
                                     "database": {"slaves": 12}, "module": {"software": "1.4.2"},
                                     "bus": {"operationMode": "OPERATE"}})"));
    EXPECT_EQ(report["config"], PLANT);
    EXPECT_EQ(report["bus"]["dataTransfer"], report["bus"]["slaveConfigured"]);
    const auto powerOffs = [&](const char* life) {
        const auto& states = report[life]["states"];
        return std::count_if(states.begin(), states.end(),
                             [](const auto& step) { return step["state"] == "POWER_OFF"; });
    };
    EXPECT_EQ(powerOffs("firstLife"), 2) << "one before the download";
    EXPECT_EQ(powerOffs("secondLife"), 1);
}

TEST(RunCommand, NamesTheFileAndWhatIsWrongWithIt) {
    const TemporaryFolder folder;
    const std::string plant = TemporaryFolder::Read(PLANT);
    std::string otherChecksum = plant;
    otherChecksum[0] = otherChecksum[0] == '0' ? '1' : '0';
    const auto slave = DatabaseFileBuilder::SlaveRecord({{0}, {0}});
    const std::string withoutMaster = DatabaseFileBuilder().Slave(3, slave).Content();

    const struct {
        std::string path, error;
    } CASES[] = {
        {folder.Put("cut", plant.substr(0, 500)), "cut short"},
        {folder.Put("shorter", plant.substr(0, plant.size() - 288)), "calculated CRC ("},
        {folder.Put("checksum", otherChecksum), "calculated CRC ("},
        {folder.Put("master", withoutMaster), "aster"},
        {folder.Put("empty", ""), "0 bytes; "},
        {folder.Path("missing"), "No such file or directory"},
        {folder.Path(""), "is a directory"},
    };

    for (const auto& [path, error] : CASES)
        RunTool::ExpectFailure({"run", path}, 1,
                               AllOf(StartsWith("vesk: "), HasSubstr(path), HasSubstr(error)));
    EXPECT_EQ(RunTool::Run({"run", PLANT, "--cycles", "-1"}).status, 2);
}

} // namespace
