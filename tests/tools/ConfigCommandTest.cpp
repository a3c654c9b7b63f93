// SPDX-License-Identifier: MIT
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/RunTool.h"

using nlohmann::json;
using testing::HasSubstr;

namespace {

class ConfigCommandTest : public testing::Test {
protected:
    using Builder = DatabaseFileBuilder;
    using Slave = std::pair<int, Builder::SlaveContent>;

    std::string Put(const std::string& name, int master, const std::vector<Slave>& slaves) {
        Builder builder;
        builder.Master(Builder::MasterRecord(master));
        for (const auto& [address, content] : slaves)
            builder.Slave(address, Builder::SlaveRecord(content));
        return _folder.Put(name, builder.Content());
    }

    TemporaryFolder _folder;
    const Slave _slave40{40, {{0, 1}, {7}, {0x80, 0x00, 0x0F}, {0xC0, 0x01}}};
    const Slave _slave41{41, {{2}, {}, {0x00, 0x00, 0x00}, {0x20}}};
};

TEST_F(ConfigCommandTest, ShowsEveryField) {
    const std::string path = Put("a.ddb", 1, {_slave40, _slave41});
    const std::string text = RunTool::Text({"config", "show", path});
    for (const char* const line :
         {"slotTime: 300\n", "class2Name: VT22\n", "Slave @ 40{\n", "userParameters: [80, 00, 0f]\n",
          "outputOffsetTable: [0007]\n", "Slave @ 41{\n"})
        EXPECT_THAT(text, HasSubstr(line));
    EXPECT_EQ(text.find('\0'), std::string::npos) << "padding goes to the terminal";

    const json config = RunTool::Json({"config", "show", path});
    EXPECT_EQ(config["checksum"], _folder.Content("a.ddb").substr(0, 8));
    EXPECT_THAT(config["master"], HasFacts(R"({"stationAddress": 1, "targetRotationTime": 50000,
                                               "userData": {"class2Name": "VT22"}})"));
    ASSERT_EQ(config["slaves"].size(), 2U);
    EXPECT_THAT(config["slaves"][0], HasFacts(R"({
        "address": 40,
        "parameterData": {"identNr": 4660, "userParameters": "80000f"},
        "configurationData": {"identifierBytes": "c001"},
        "addressTable": {"inputOffsetTable": [0, 1]},
        "userData": {"inputDataLength": 2, "outputDataLength": 1},
        "extendedUserParameterData": {"extUsrPrmData": ""}})"));

    // Whoever adds a field to a record adds it here too: both forms have the same ones.
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const auto colon = line.find(": ");
        if (colon != std::string::npos && !line.starts_with("Checksum"))
            EXPECT_THAT(config.dump(), HasSubstr('"' + line.substr(0, colon) + "\":"));
    }
}

TEST_F(ConfigCommandTest, ComparesFieldByField) {
    const std::string a = Put("a.ddb", 1, {_slave40, _slave41});
    const std::string same = Put("same.ddb", 1, {_slave40, _slave41});
    EXPECT_EQ(RunTool::Text({"config", "diff", a, same}), "");

    Slave other = _slave40;
    other.second.parameters = {0x80, 0x00, 0x1F};
    const std::string b = Put("b.ddb", 2, {other, {42, _slave41.second}});
    const auto checksum = [&](const char* name) { return '"' + _folder.Content(name).substr(0, 8) + '"'; };
    EXPECT_EQ(RunTool::Text({"config", "diff", a, b}, 1),
              "checksum: " + checksum("a.ddb") + " -> " + checksum("b.ddb") +
                  "\nmaster.stationAddress: 1 -> 2\n"
                  "slave 40.parameterData.userParameters: \"80000f\" -> \"80001f\"\n"
                  "slave 41: only in " +
                  a + "\nslaveOrder: [40,41] -> [40,42]\nslave 42: only in " + b + "\n");

    const json diff = RunTool::Json({"config", "diff", a, b}, 1);
    EXPECT_EQ(diff["same"], false);
    EXPECT_EQ(diff["differences"][1], json({{"field", "master.stationAddress"}, {"a", 1}, {"b", 2}}));
    EXPECT_TRUE(diff["differences"][3]["b"].is_null());

    const std::string order = Put("c.ddb", 1, {_slave41, _slave40});
    EXPECT_THAT(RunTool::Text({"config", "diff", a, order}, 1),
                HasSubstr("slaveOrder: [40,41] -> [41,40]\n"));
}

TEST_F(ConfigCommandTest, SaysWhatIsWrongWithAFile) {
    const std::string good = Put("good.ddb", 1, {_slave40});
    for (const std::string& path :
         {_folder.Put("cut.ddb", _folder.Content("good.ddb").substr(0, 400)), _folder.Path("missing.ddb")}) {
        for (const RunTool::Arguments& arguments : {RunTool::Arguments{"config", "show", path},
                                                    {"config", "diff", good, path},
                                                    {"config", "diff", path, good}})
            RunTool::ExpectFailure(arguments, 1, HasSubstr(path));
        const json error = RunTool::Json({"config", "show", path}, 1)["error"];
        EXPECT_THAT(error["message"].get<std::string>(), HasSubstr(path));
    }
    for (const RunTool::Arguments& arguments : {RunTool::Arguments{"config"},
                                                {"config", "show"},
                                                {"config", "diff", good},
                                                {"config", "show", good, good}})
        EXPECT_EQ(RunTool::Run(arguments).status, 2);
}

} // namespace
