// SPDX-License-Identifier: MIT
// The verbs that talk to a module, as a person runs them: on the virtual module that comes up with the plant
// of the examples.
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/RunTool.h"

#include <cstdlib>

using Json = nlohmann::json;
using Arguments = RunTool::Arguments;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

const std::string PLANT = SOURCE_DIR "/examples/plant.ddb";

/// The file of another configuration than the plant's, with one slave of two bytes each way.
std::string OtherConfig(const TemporaryFolder& folder) {
    const auto slave = DatabaseFileBuilder::SlaveRecord({{0, 1}, {0, 1}});
    return folder.Put("other.ddb", DatabaseFileBuilder().Master().Slave(7, slave).Content());
}

/// The facts that the verb prints, with the exit status that goes with them.
Json Facts(const Arguments& arguments, int status = 0) {
    const ToolResult result = RunTool::Run(RunTool::Join(arguments, {"--json"}));
    EXPECT_EQ(result.status, status) << result.err;
    EXPECT_THAT(result.err,
                HasSubstr("a virtual module in this process serves, with the plant of the examples"));
    return Json::parse(result.out);
}

/// The error of a verb: the same in words on standard error and as JSON.
void ExpectError(const Arguments& arguments, int status, const std::string& type, const std::string& part) {
    const Json error = RunTool::Json(arguments, status)["error"];
    const std::string message = error["message"];
    EXPECT_EQ(error["type"], type);
    EXPECT_THAT(message, HasSubstr(part));
    EXPECT_FALSE(error["hint"].get<std::string>().empty()) << error;
    RunTool::ExpectFailure(arguments, status, HasSubstr(message.substr(0, message.find('\n'))));
}

/// The one element of an array whose "address" that is.
Json At(const Json& array, int address) {
    for (const Json& element : array)
        if (element["address"] == address)
            return element;
    return {};
}

TEST(Verbs, IdentifyTheModule) {
    const Json module{{"moduleType", 0x201}, {"fieldbusType", 5},   {"vendorId", 1},
                      {"serial", 0x220001},  {"software", "1.4.2"}, {"bootloader", "2.1"}};
    EXPECT_EQ(Facts({"identify"}), module);
    EXPECT_THAT(RunTool::Text({"identify"}),
                AllOf(HasSubstr("0x201, VT22"), HasSubstr("0x220001"), HasSubstr("1.4.2")));
}

TEST(Verbs, ShowTheStatus) {
    const Json status = Facts({"status", "--config", PLANT});
    EXPECT_EQ(status["ok"], true) << status;
    EXPECT_EQ(status["slaves"].size(), 12u);
    EXPECT_THAT(RunTool::Text({"status"}),
                AllOf(HasSubstr("operation mode  OPERATE\n"), HasSubstr("12 of 12 exchange data"),
                      HasSubstr("Everything is operational."), Not(HasSubstr("\033"))));

    const TemporaryFolder folder;
    const Json other = Facts({"status", "--config", OtherConfig(folder)}, 1);
    EXPECT_EQ(other["problem"]["step"], "database");
}

TEST(Verbs, ColourOnATerminalOnly) {
    EXPECT_THAT(RunTool::RunOnTerminal({"status"}, "").out, HasSubstr("\033[32mok"));
    ::setenv("NO_COLOR", "1", 1);
    EXPECT_THAT(RunTool::RunOnTerminal({"status"}, "").out, AllOf(HasSubstr("ok "), Not(HasSubstr("\033"))));
    ::unsetenv("NO_COLOR");
}

TEST(Verbs, ShowTheSlaves) {
    const Json slaves = Facts({"slaves", "--config", PLANT});
    EXPECT_EQ(slaves["slaves"].size(), 12u);
    EXPECT_EQ(slaves["configMatches"], true);
    EXPECT_EQ(slaves["lists"]["dataTransfer"], Json::parse("[3,4,5,8,9,10,11,14,20,21,33,40]"));
    EXPECT_THAT(At(slaves["slaves"], 10), HasFacts(R"({
        "identNumber": 19207, "inputLength": 8, "outputLength": 8, "configured": true, "dataTransfer": true,
        "diagnostic": false, "dpv1Connection": true, "identifiers": "2717",
        "record": {"parameterData": {"identNr": 19207}}})"));

    EXPECT_THAT(RunTool::Text({"slaves"}),
                AllOf(HasSubstr("10       0x4b07  8    8    yes         yes            no           yes\n"),
                      HasSubstr("\n   10 X X . . X . . . . .\n"), HasSubstr("\n    0 . M . X X X . . X X\n"),
                      Not(HasSubstr("identifiers"))));
    EXPECT_THAT(RunTool::Text({"slaves", "-v", "--config", PLANT}),
                AllOf(HasSubstr("identifiers  2717\n"), HasSubstr("parameterData.watchdogFactor1")));

    const Json stations = Facts({"livelist"})["stations"];
    EXPECT_EQ(stations.size(), 13u);
    EXPECT_EQ(At(stations, 1)["kind"], "master in the ring");
    EXPECT_EQ(At(stations, 40)["kind"], "slave");
}

TEST(Verbs, AskOneSlave) {
    EXPECT_THAT(Facts({"diag", "0x5"}),
                HasFacts(R"({"data": "000400012a14", "identNumber": 10772, "masterAddress": 1,
                             "status": {"stationNonExistent": false}})"));
    EXPECT_THAT(RunTool::Text({"diag", "5"}), AllOf(HasSubstr("0x2a14"), HasSubstr("[ ] parameterFault")));

    const Json config = Facts({"slave-config", "33"});
    EXPECT_EQ(config["data"], "c08f8f");
    EXPECT_EQ(config["modules"][0]["input"]["length"], 16);
    EXPECT_THAT(RunTool::Text({"slave-config", "33"}),
                HasSubstr("module 0: c08f8f, 16 bytes in (bytes, consistent as a whole)"));

    for (const char* verb : {"input", "output"}) {
        const Json data = Facts({verb, "4"});
        EXPECT_EQ(data, Json::parse(R"({"address": 4, "length": 4, "data": "00000000"})"));
        EXPECT_EQ(RunTool::Text({verb, "4"}),
                  "4 bytes\n0x0000  00 00 00 00                                      ....\n");
    }
}

TEST(Verbs, ReadRecords) {
    for (const auto& [options, number] : {std::pair{Arguments{}, 1}, std::pair{Arguments{"--class2"}, 2}}) {
        const Json record = Facts(RunTool::Join({"read", "3", "0", "1", "13"}, options));
        EXPECT_EQ(record["data"], "5669727475616c20736c617665"); // Virtual slave
        EXPECT_EQ(record["length"], 13);
        EXPECT_EQ(record["class"], number);
    }
    EXPECT_THAT(RunTool::Text({"read", "3", "0", "1"}),
                HasSubstr("56 69 72 74 75 61 6c 20 73 6c 61 76 65 2c 20 69  Virtual slave, i"));
}

TEST(Verbs, WriteRecords) {
    const TemporaryFolder folder;
    const std::string file = folder.Put("record", std::string("\x00\xFF\x0A", 3));

    const std::pair<Arguments, const char*> CASES[] = {
        {{"0a0B ff"}, "0a0bff"},
        {{"--text", "run"}, "72756e"},
        {{"--file", file}, "00ff0a"},
        {{"--class2", "00"}, "00"},
    };
    for (const auto& [data, hex] : CASES)
        EXPECT_EQ(Facts(RunTool::Join({"write", "3", "1", "200"}, data))["data"], hex);
    EXPECT_EQ(RunTool::Text({"write", "3", "1", "200", "0a0b"}),
              "Written: record 1/200 of slave 3, 2 bytes, Class 1\n");
}

TEST(Verbs, ChangeTheBus) {
    EXPECT_EQ(
        Facts({"stop", "5", "8"})["slaves"],
        Json::parse(R"([{"address": 5, "dataTransfer": false}, {"address": 8, "dataTransfer": false}])"));
    EXPECT_EQ(RunTool::Text({"start", "5"}), "Slave 5 exchanges data\n");

    for (const auto& [mode, name] : {std::pair{"stop", "STOP"}, std::pair{"clear", "CLEAR"},
                                     std::pair{"OPERATE", "OPERATE"}, std::pair{"offline", "OFFLINE"}}) {
        const Json facts = Facts({"mode", mode});
        EXPECT_EQ(facts["mode"], name);
        EXPECT_EQ(facts["online"], name != std::string("OFFLINE"));
    }
    EXPECT_EQ(RunTool::Text({"mode", "clear"}), "The master is online, in CLEAR\n");

    EXPECT_EQ(Facts({"set-address", "3", "50", "0x2a10", "--lock"}),
              Json::parse(R"({"ok": true, "old": 3, "new": 50, "identNumber": 10768, "locked": true})"));
    EXPECT_EQ(RunTool::Text({"set-address", "3", "50", "0x2a10"}), "Slave 3 answers at 50 now\n");
}

TEST(Verbs, BringTheDatabaseInLine) {
    const Json plant = Facts({"database"})["database"];
    EXPECT_THAT(plant, HasFacts(R"({"slaves": 12, "inputLength": 188, "outputLength": 197})"));
    EXPECT_THAT(RunTool::Text({"database"}), HasSubstr(plant["description"].get<std::string>()));

    EXPECT_EQ(Facts({"verify", PLANT})["differences"], Json::array());
    EXPECT_EQ(Facts({"download", PLANT})["downloaded"], false);

    const TemporaryFolder folder;
    const std::string other = OtherConfig(folder);
    EXPECT_EQ(Facts({"verify", other}, 1)["differences"],
              Json::parse(R"(["description", "slaves", "inputLength", "outputLength"])"));
    EXPECT_THAT(RunTool::Text({"verify", other}, 1),
                HasSubstr("slaves        12 in the module, 1 in the file\n"));
    const Json facts = Facts({"download", other});
    EXPECT_EQ(facts["downloaded"], true);
    EXPECT_EQ(facts["database"]["slaves"], 1);
    EXPECT_THAT(RunTool::Text({"download", other}),
                AllOf(HasSubstr("100 %  2/2 requests, "), HasSubstr("\nDownloaded: ")));
}

TEST(Verbs, CheckBeforeTheySend) {
    const TemporaryFolder folder;
    const std::string big = folder.Put("big", std::string(241, 'x'));
    const std::pair<Arguments, std::string> CASES[] = {
        {{"diag", "127"}, "ADDRESS: 127 is not a number from 0 to 126"},
        {{"input", "-1"}, "-1"},
        {{"output", "five"}, "five is not a number from 0 to 126"},
        {{"slave-config"}, "ADDRESS is required"},
        {{"read", "5", "255", "0"}, "SLOT: 255 is not a number from 0 to 254"},
        {{"read", "5", "0", "256"}, "INDEX: 256 is not a number from 0 to 255"},
        {{"read", "5", "0", "0", "241"}, "LENGTH: 241 is not a number from 1 to 240"},
        {{"read", "5", "0", "0", "0"}, "LENGTH: 0 is not"},
        {{"write", "5", "1", "200", "0g"}, "DATA: \"g\" is no hexadecimal digit"},
        {{"write", "5", "1", "200", "0a0"}, "DATA: \"0a0\" has half a byte"},
        {{"write", "5", "1", "200", "0 a0"}, "DATA: \"0 a0\" has half a byte"},
        {{"write", "5", "1", "200", ""}, "DATA: 0 bytes are not a length from 1 to 240"},
        {{"write", "5", "1", "200", "--file", big}, "--file: 241 bytes are not a length from 1 to 240"},
        {{"write", "5", "1", "200", "00", "--text", "x"}, ""},
        {{"write", "5", "1", "200"}, ""},
        {{"stop", "5", "126"}, "ADDRESS: 126 is not a number from 0 to 125"},
        {{"mode", "run"}, "MODE: run not in {offline,stop,clear,operate}"},
        {{"set-address", "127", "5", "1"}, "OLD: 127 is not a number from 0 to 126"},
        {{"set-address", "3", "126", "1"}, "NEW: 126 is not a number from 0 to 125"},
        {{"set-address", "3", "4", "0x10000"}, "IDENT: 0x10000 is not a number from 0 to 65535 (0xffff)"},
        {{"identify", "--trace", "bus"}, "bus"},
    };
    for (const auto& [arguments, message] : CASES)
        ExpectError(arguments, 2, "Usage", message);
}

TEST(Verbs, SayWhyTheModuleSaidNo) {
    const std::pair<Arguments, std::string> CASES[] = {
        {{"diag", "77"}, "The module refused the diagnosis of slave 77: Invalid Address (0x87)"},
        {{"read", "5", "3", "9"}, "the read of record 3/9 of slave 5: Invalid Address"},
        {{"read", "5", "3", "9", "--class2"}, "the read of record 3/9 of slave 5: Invalid Address"},
        {{"write", "77", "0", "0", "00", "--class2"}, "the connection to slave 77: Invalid Address"},
        {{"set-address", "3", "4", "0x2a10"}, "the new address 4 for slave 3: Invalid Address"},
        {{"set-address", "3", "50", "0x1111"}, "the new address 50 for slave 3: Invalid Other"},
    };
    for (const auto& [arguments, message] : CASES)
        ExpectError(arguments, 1, "Refusal", message);
    ExpectError({"stop", "5", "77"}, 1, "Failure",
                "Slave 77 is not in the module's database, which has 3-5, 8-11, 14");
    for (const char* verb : {"download", "verify"})
        EXPECT_THAT(RunTool::Run({verb, "/nowhere.ddb"}).err,
                    AllOf(StartsWith("vesk: "), HasSubstr("/nowhere.ddb"), Not(HasSubstr("virtual module"))));
}

TEST(Verbs, TraceOnRequest) {
    const ToolResult mailbox = RunTool::Run({"--trace", "mailbox", "database"});
    EXPECT_THAT(mailbox.err, AllOf(HasSubstr("sending mailbox"), Not(HasSubstr("powerOn"))));
    const ToolResult both = RunTool::Run({"database", "--trace", "mailbox,handshake"});
    EXPECT_THAT(both.err, AllOf(HasSubstr("sending mailbox"), HasSubstr("powerOn")));
    EXPECT_EQ(both.out, mailbox.out);
}

} // namespace
