// SPDX-License-Identifier: MIT
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/Life.h"
#include "tests/support/RunTool.h"

#include "tools/vesk/files/DpRamMap.h"
#include "vesk/hostinterface/RuntimeConfig.h"

#include <random>

using nlohmann::json;
using testing::HasSubstr;

namespace {

class DumpCommandTest : public testing::Test {
protected:
    void Put(std::size_t offset, const std::vector<int>& bytes) {
        for (const int byte : bytes)
            _dpRam.at(offset++) = static_cast<char>(byte);
    }

    /// Runs `vesk dump` on the DPRAM as it is.
    std::string Dump(const RunTool::Arguments& options = {}) {
        return RunTool::Text(RunTool::Join({"dump", _folder.Put("dump", _dpRam)}, options));
    }

    TemporaryFolder _folder;
    std::string _dpRam = std::string(8192, '\0');
};

TEST_F(DumpCommandTest, NamesEveryBlockAndRegisterOfTheMaster) {
    Put(0x0000, {2, 1, 0, 0, 0, 0, 0, 0, 0, 9, 0x02, 0x01, 0, 1, 0, 5, 3, 4, 5});
    Put(0x0014, {0x12, 0x34, 0, 7, 0, 2, 0, 0, 0, 1, 0, 0, 0, 5, 0xAB});
    Put(0x003A, {0x01, 0x00, 'm', '.', 'c', 0x07});
    Put(0x0056, {0, 5, 0x40, 2, 0, 0x14, 0, 3, 0, 1, 0, 1, 0, 0, 0, 0, 0x28, 2, 3, 0});
    Put(0x0076, {0xDE, 0xAD, 0xBF});
    Put(0x0176, {0, 4, 0x87, 2, 0, 0x14, 0, 0, 0, 1, 0, 1});
    Put(0x02A6, {0x11, 0x22});
    Put(0x1042, {0, 0x07, 0, 0x02, 0x80, 0x09, 0x28, 0, 0, 0, 0, 1});
    Put(0x1078, {0xC0, 0x2A});
    Put(0x1E41, {0x77});
    Put(0x1FFA, {0x0C, 0x24, 0x0C, 0, 0x24});

    EXPECT_EQ(Dump(), R"(DPRAM of the module as the master

0x0000  identity
  bootloader            2.1
  unused1               0x0
  unused2               0x0
  serial                0x9
  moduleType            0x201 (513)
  vendorId              0x1
  fieldbusType          0x5
  software              3.4.5

0x0014  fatalEvent
  reported              yes
  errorCode             0x1234 (4660)
  errorCause            0x7
  taskId                0x2
  timeStamp             4294967301 ms
  additionalInfo
    0x0022  ab 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
    0x0032  8 bytes of zero
  sourceLine            0x100 (256)
  sourceFile            "m.c\x07"

0x0056  mailboxIn
  message               SlaveRecordDownload, slave 40, fragment 2 of 3
  kind                  request
  messageId             5
  type                  Fieldbus
  error                 No error
  command               0x14
  dataSize              3
  totalFrameCount       1
  frameNumber           1
  dataOffset            0x0
  extended              0x2802 0x300 0x0 0x0 0x0 0x0 0x0 0x0
  data
    0x0076  de ad bf

0x0176  mailboxOut
  message               SlaveRecordDownload
  kind                  response
  messageId             4
  type                  Fieldbus
  error                 Invalid Address (0x87)
  command               0x14
  dataSize              0
  totalFrameCount       1
  frameNumber           1
  dataOffset            0x0
  extended              0x0 0x0 0x0 0x0 0x0 0x0 0x0 0x0
  data                  none

0x0296  inputArea
  data
    0x0296  16 bytes of zero
    0x02a6  11 22 00 00 00 00 00 00 00 00 00 00 00 00 00 00
    0x02b6  3468 bytes of zero

0x1042  outArea
  indication            0x7 moduleStatus fieldbusStatus outputData
  moduleStatus          0x2 online

0x1046  fieldbusStatus
  change                0x8009 slaveConfigured masterStatus reserved:0x8000
  slaveConfigured       3, 5, 40
  dataTransfer          none
  slaveDiagnostic       none
  operationMode         OPERATE
  masterStatus
    0x1078  c0 2a 00 00 00 00 00 00 00 00 00 00 00 00
  dpv1Connection        none

0x1096  outputArea
  data
    0x1096  3488 bytes of zero
    0x1e36  00 00 00 00 00 00 00 00 00 00 00 77

0x1e42  unused
  data
    0x1e42  440 bytes of zero

0x1ffa  handshake
  applicationIndication 0xc mOut mIn
  velmoIndication       0x24 mOut fatal
  applicationCompanion  0xc (12)
  velmoCompanion        0x24 (36)
)");

    const json map = json::parse(Dump({"--json"}));
    EXPECT_THAT(map, HasFacts(R"({
        "layout": "master",
        "identity": {"serial": 9},
        "fatalEvent": {"timeStamp": 4294967301},
        "mailboxIn": {"offset": 86, "message": "SlaveRecordDownload, slave 40, fragment 2 of 3", "data": "deadbf"},
        "mailboxOut": {"error": "Invalid Address"},
        "fieldbusStatus": {"slaveConfigured": [3, 5, 40], "change": {
            "value": 32777, "bits": ["slaveConfigured", "masterStatus"], "reserved": 32768}}})"));
    EXPECT_EQ(map["inputArea"]["data"].get<std::string>().size(), 7000U);
}

TEST_F(DumpCommandTest, NamesEveryBlockAndRegisterOfTheBootloader) {
    Put(0x1BFE, {0, 1, 0x40, 4, 0, 2, 0, 2, 0, 9, 0, 3, 0, 2, 1, 0});
    Put(0x1C1E, {0xAA, 0xBB});
    Put(0x1FBE, {2, 3, 0, 0, 0, 0, 0, 0, 0, 7});
    Put(0x1FDE, {1, 1});
    Put(0x1FFD, {0x80, 0, 0x90});

    const std::string text = Dump({"--bootloader"});
    for (const char* const line :
         {"0x0000  unused\n", "    0x0000  7166 bytes of zero\n",
          "0x1bfe  mailboxIn\n  message               FwDownloadData, frame 3 of 9 at 0x20100\n",
          "    0x1c1e  aa bb\n", "0x1d1e  mailboxOut\n  message               none\n",
          "0x1fbe  bootloaderCtrl\n  bootloader            2.3\n  serial                0x7\n",
          "  moduleType            0x101 (257)\n", "  applicationIndication 0x80 mIn\n",
          "  velmoIndication       0x90 init mIn\n"})
        EXPECT_THAT(text, HasSubstr(line));
    const json map = json::parse(Dump({"--bootloader", "--json"}));
    EXPECT_EQ(map["layout"], "bootloader");
    EXPECT_TRUE(map["mailboxOut"]["message"].is_null());
    EXPECT_EQ(map["handshake"]["velmoIndication"]["bits"], json({"init", "mIn"}));
}

TEST_F(DumpCommandTest, DescribesRequestsByTheirParameters) {
    const std::string undefined = "not a message: its error code or message type is not defined ";

    const struct {
        std::vector<int> header; // from the information word on
        std::string message, data = "";
    } CASES[] = {
        {{0x40, 1, 0, 2, 0, 0}, "VelmoInit"},
        {{0x40, 2, 0, 2, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0x80, 0}, "SetOperationMode, mode CLEAR"},
        {{0x40, 2, 0, 2, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0x41, 0}, "SetOperationMode, mode 0x41"},
        {{0x40, 2, 0, 6, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 126, 7, 0x80, 0x1A},
         "SetSlaveAddress, slave 126, new address 7, ident number 0x801a"},
        {{0x40, 2, 0, 0x11, 0, 8}, "EndDatabaseDownload, description \"0badcafe\"", "0badcafe"},
        {{0x40, 2, 0, 0x28, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 6, 1, 2, 3, 0},
         "Class2Write, reference 0x6, slot 1, index 2, length 3"},
        {{0x40, 6, 0, 3, 0, 0}, "FlashErase"},
        {{0x40, 3, 0, 1, 0, 0}, "unknown command 0x1 of type Memory"},
        {{0x40, 0x99, 0, 1, 0, 0}, undefined + "(System.ArgumentException: 153)"},
        {{0xCB, 2, 0, 1, 0, 0}, undefined + "(System.ArgumentException: 139)"},
    };

    for (const auto& [header, message, data] : CASES) {
        _dpRam.assign(8192, '\0');
        Put(0x58, header);
        _dpRam.replace(0x76, data.size(), data);
        EXPECT_THAT(Dump(), HasSubstr("  message               " + message + "\n"));
    }
    Put(0x58, {0x40, 2, 0, 0x10, 0xFF, 0xFF});
    EXPECT_THAT(Dump(), HasSubstr("dataSize              65535 (more than a message can have: 256)\n"));
}

TEST_F(DumpCommandTest, ShowsTheRequestOfADownloadThatWasCutShort) {
    DatabaseFileBuilder::SlaveContent content;
    content.inputs.resize(100);
    content.outputs.resize(100);
    content.parameters.resize(200);
    Life life;
    life.Begin(DatabaseFileBuilder().Master().Slave(40, DatabaseFileBuilder::SlaveRecord(content)).Read());
    const auto secondFragment = [&] {
        const std::string bytes = TemporaryFolder::Read(life.module.DpRamPath());
        return bytes.substr(0x58, 4) == std::string("\x40\x02\x00\x14", 4) &&
               bytes.substr(0x66, 2) == "\x28\x02";
    };
    life.UpdateUntil(secondFragment);
    const std::string dump = _folder.Path("hostinterface.bin");
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = dump;
    life.master.reset();
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;

    const json map = RunTool::Json({"dump", dump});
    EXPECT_EQ(map["mailboxIn"]["message"], "SlaveRecordDownload, slave 40, fragment 2 of 3");
    EXPECT_EQ(map["mailboxOut"]["kind"], "response");
    EXPECT_EQ(map["identity"]["moduleType"], 0x201);
    EXPECT_THAT(map["handshake"]["applicationIndication"]["bits"], testing::Contains("mIn"));
}

TEST_F(DumpCommandTest, MapsAnyBytes) {
    std::mt19937 random(42);
    std::array<unsigned char, VeskTool::DpRamMap::SIZE> bytes{};
    for (int round = 0; round < 40; ++round) {
        for (unsigned char& byte : bytes)
            byte = static_cast<unsigned char>(random());
        if (round % 2) // a message that is understood as far as its header goes
            for (const std::size_t area : {0x56U, 0x176U, 0x1BFEU, 0x1D1EU}) {
                bytes[area + 2] = 0x40;
                bytes[area + 3] = static_cast<unsigned char>(1 + round % 6);
            }
        for (const auto& map : {VeskTool::DpRamMap::Master(bytes), VeskTool::DpRamMap::Bootloader(bytes)}) {
            EXPECT_TRUE(json::accept(map.ToJson().dump()));
            for (const char character : map.ToText())
                ASSERT_TRUE(character == '\n' || (character >= ' ' && character <= '~'));
        }
    }
}

TEST_F(DumpCommandTest, TakesNothingButARegularFileOfTheRightSize) {
    const struct {
        std::string path, error;
    } CASES[] = {
        {_folder.Put("empty", ""), ": 0 bytes; a dump of the DPRAM has 8192"},
        {_folder.Put("short", std::string(8191, 'x')), ": 8191 bytes; a dump of the DPRAM has 8192"},
        {_folder.Put("long", std::string(8193, 'x')), ": 8193 bytes; a dump of the DPRAM has 8192"},
        {_folder.Path("missing"), ": No such file or directory"},
        {"/dev/zero", ": not a regular file"},
    };

    for (const auto& [path, error] : CASES) {
        RunTool::ExpectFailure({"dump", path}, 1, HasSubstr(path + error + "\n"));
        EXPECT_EQ(RunTool::Json({"dump", path}, 1)["error"]["message"], path + error);
    }
    EXPECT_EQ(RunTool::Run({"dump"}).status, 2);
}

} // namespace
