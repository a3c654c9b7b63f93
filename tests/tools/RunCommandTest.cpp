// SPDX-License-Identifier: MIT
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/RunTool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>

using testing::AllOf;
using testing::HasSubstr;

namespace {

const std::string PLANT = SOURCE_DIR "/examples/plant.ddb";

std::string Content(const DatabaseFileBuilder& file) {
    const auto bytes = file.Build();
    return {bytes.begin(), bytes.end()};
}

} // namespace

TEST(RunCommand, LetsThePlantRunWithItsFileOrWithout) {
    for (const RunTool::Arguments& arguments :
         {RunTool::Arguments{"run", PLANT, "--cycles", "5"}, RunTool::Arguments{"run", "--cycles", "5"}}) {
        const auto result = RunTool::Run(arguments);
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_THAT(result.out, HasSubstr("All held: 12 slaves, 5 cycles, 0 mismatches, 2 lives.\n"));
    }
}

TEST(RunCommand, ReportsAsJson) {
    const auto result = RunTool::Run({"run", PLANT, "--cycles", "3", "--json"});
    ASSERT_EQ(result.status, 0) << result.err;
    const auto report = nlohmann::json::parse(result.out);
    EXPECT_EQ(report.at("ok"), true);
    EXPECT_EQ(report.at("config"), PLANT);
    EXPECT_EQ(report.at("exchange").at("cycles"), 3);
    EXPECT_EQ(report.at("exchange").at("mismatches"), 0);
    EXPECT_EQ(report.at("database").at("slaves"), 12);
    EXPECT_EQ(report.at("module").at("software"), "1.4.2");
    EXPECT_EQ(report.at("bus").at("operationMode"), "OPERATE");
    EXPECT_EQ(report.at("bus").at("dataTransfer"), report.at("bus").at("slaveConfigured"));
    const auto downloads = [&](const char* life) {
        const auto& states = report.at(life).at("states");
        return std::count_if(states.begin(), states.end(),
                             [](const auto& step) { return step.at("state") == "POWER_OFF"; }) -
               1;
    };
    EXPECT_EQ(downloads("firstLife"), 1);
    EXPECT_EQ(downloads("secondLife"), 0);
}

TEST(RunCommand, NamesTheFileAndWhatIsWrongWithIt) {
    const TemporaryFolder folder;
    const std::string plant = TemporaryFolder::Read(PLANT);
    std::string otherChecksum = plant;
    otherChecksum[0] = otherChecksum[0] == '0' ? '1' : '0';
    DatabaseFileBuilder withoutMaster;
    withoutMaster.Slave(3, DatabaseFileBuilder::SlaveRecord({{0}, {0}}));

    const struct {
        std::string path, error;
    } CASES[] = {
        {folder.Put("cut", plant.substr(0, 500)), "cut short"},
        {folder.Put("shorter", plant.substr(0, plant.size() - 288)), "calculated CRC ("},
        {folder.Put("checksum", otherChecksum), "calculated CRC ("},
        {folder.Put("master", Content(withoutMaster)), "aster"},
        {folder.Put("empty", ""), "0 bytes; "},
        {folder.Path("missing"), "No such file or directory"},
        {folder.Path(""), "is a directory"},
    };

    for (const auto& [path, error] : CASES) {
        const auto result = RunTool::Run({"run", path});
        EXPECT_EQ(result.status, 1) << path;
        EXPECT_THAT(result.err, AllOf(HasSubstr("vesk: "), HasSubstr(path), HasSubstr(error)));
        EXPECT_EQ(result.out, "");
    }
    EXPECT_EQ(RunTool::Run({"run", PLANT, "--cycles", "-1"}).status, 2);
}
