// SPDX-License-Identifier: MIT
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/RunTool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

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
        const auto file = builder.Build();
        return _folder.Put(name, {file.begin(), file.end()});
    }

    TemporaryFolder _folder;
    const Slave _slave40{40, {{0, 1}, {7}, {0x80, 0x00, 0x0F}, {0xC0, 0x01}}};
    const Slave _slave41{41, {{2}, {}, {0x00, 0x00, 0x00}, {0x20}}};
};

TEST_F(ConfigCommandTest, ShowsEveryField) {
    const std::string path = Put("a.ddb", 1, {_slave40, _slave41});
    const auto text = RunTool::Run({"config", "show", path});
    EXPECT_EQ(text.status, 0) << text.err;
    for (const char* const line :
         {"slotTime: 300\n", "class2Name: VT22\n", "Slave @ 40{\n", "userParameters: [80, 00, 0f]\n",
          "outputOffsetTable: [0007]\n", "Slave @ 41{\n"})
        EXPECT_THAT(text.out, HasSubstr(line));
    EXPECT_EQ(text.out.find('\0'), std::string::npos) << "padding goes to the terminal";

    const auto result = RunTool::Run({"config", "show", "--json", path});
    const json config = json::parse(result.out);
    EXPECT_EQ(config.at("checksum"), _folder.Content("a.ddb").substr(0, 8));
    const json& master = config.at("master");
    EXPECT_EQ(master.at("stationAddress"), 1);
    EXPECT_EQ(master.at("targetRotationTime"), 50000);
    EXPECT_EQ(master.at("userData").at("class2Name"), "VT22");
    ASSERT_EQ(config.at("slaves").size(), 2U);
    const json& slave = config.at("slaves").at(0);
    EXPECT_EQ(slave.at("address"), 40);
    EXPECT_EQ(slave.at("parameterData").at("identNr"), 0x1234);
    EXPECT_EQ(slave.at("parameterData").at("userParameters"), "80000f");
    EXPECT_EQ(slave.at("configurationData").at("identifierBytes"), "c001");
    EXPECT_EQ(slave.at("addressTable").at("inputOffsetTable"), json({0, 1}));
    EXPECT_EQ(slave.at("userData"), json({{"inputDataLength", 2}, {"outputDataLength", 1}}));
    EXPECT_EQ(slave.at("extendedUserParameterData").at("extUsrPrmData"), "");

    // Whoever adds a field to a record adds it here too: both forms have the same ones.
    std::istringstream lines(text.out);
    for (std::string line; std::getline(lines, line);) {
        const auto colon = line.find(": ");
        if (colon != std::string::npos && !line.starts_with("Checksum")) {
            EXPECT_THAT(result.out, HasSubstr('"' + line.substr(0, colon) + "\":"));
        }
    }
}

TEST_F(ConfigCommandTest, ComparesFieldByField) {
    const std::string a = Put("a.ddb", 1, {_slave40, _slave41});
    const auto same = RunTool::Run({"config", "diff", a, Put("same.ddb", 1, {_slave40, _slave41})});
    EXPECT_EQ(same.status, 0) << same.err;
    EXPECT_EQ(same.out, "");

    Slave other = _slave40;
    other.second.parameters = {0x80, 0x00, 0x1F};
    const std::string b = Put("b.ddb", 2, {other, {42, _slave41.second}});
    const auto text = RunTool::Run({"config", "diff", a, b});
    EXPECT_EQ(text.status, 1);
    EXPECT_EQ(text.err, "");
    EXPECT_EQ(text.out, "checksum: \"" + _folder.Content("a.ddb").substr(0, 8) + "\" -> \"" +
                            _folder.Content("b.ddb").substr(0, 8) +
                            "\"\n"
                            "master.stationAddress: 1 -> 2\n"
                            "slave 40.parameterData.userParameters: \"80000f\" -> \"80001f\"\n"
                            "slave 41: only in " +
                            a +
                            "\n"
                            "slaveOrder: [40,41] -> [40,42]\n"
                            "slave 42: only in " +
                            b + "\n");

    const auto result = RunTool::Run({"config", "diff", a, b, "--json"});
    EXPECT_EQ(result.status, 1);
    const json diff = json::parse(result.out);
    EXPECT_EQ(diff.at("same"), false);
    EXPECT_EQ(diff.at("differences").at(1), json({{"field", "master.stationAddress"}, {"a", 1}, {"b", 2}}));
    EXPECT_TRUE(diff.at("differences").at(3).at("b").is_null());

    const auto order = RunTool::Run({"config", "diff", a, Put("c.ddb", 1, {_slave41, _slave40})});
    EXPECT_EQ(order.status, 1);
    EXPECT_THAT(order.out, HasSubstr("slaveOrder: [40,41] -> [41,40]\n"));
}

TEST_F(ConfigCommandTest, SaysWhatIsWrongWithAFile) {
    const std::string good = Put("good.ddb", 1, {_slave40});
    const std::string cut = _folder.Put("cut.ddb", _folder.Content("good.ddb").substr(0, 400));
    for (const std::string& path :
         {cut, _folder.Path("missing.ddb"), _folder.Path("."), std::string("/dev/zero")}) {
        for (const RunTool::Arguments& arguments : {RunTool::Arguments{"config", "show", path},
                                                    {"config", "diff", good, path},
                                                    {"config", "diff", path, good}}) {
            const auto result = RunTool::Run(arguments);
            EXPECT_EQ(result.status, 1);
            EXPECT_EQ(result.out, "");
            EXPECT_THAT(result.err, HasSubstr(path));
        }
        const auto asJson = RunTool::Run({"config", "show", path, "--json"});
        EXPECT_THAT(json::parse(asJson.out).at("error").at("message").get<std::string>(), HasSubstr(path));
    }
    for (const RunTool::Arguments& arguments : {RunTool::Arguments{"config"},
                                                {"config", "show"},
                                                {"config", "diff", good},
                                                {"config", "show", good, good}})
        EXPECT_EQ(RunTool::Run(arguments).status, 2);
}

} // namespace
