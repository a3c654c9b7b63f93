// SPDX-License-Identifier: MIT
// What becomes of a description: records whose bytes are worked out by hand, and what is wrong with it.
#include "busdescription/compile/Compile.h"
#include "busdescription/compile/BusTiming.h"
#include "busdescription/description/Units.h"
#include "busdescription/records/DatabaseBytes.h"
#include "tests/support/TemporaryFolder.h"
#include "vesk/system/io/MemoryStream.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace BusDescription;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const std::string BUS = "[bus]\nrate = \"1.5M\"\nmaster = 1\n";
const std::string DRIVE =
    "[[slave]]\nname = \"drive\"\naddress = 5\nident = 0x2a14\nidentifier-bytes = \"21 11\"\n"
    "user-parameters = \"00 00\"\nmax-diagnosis = 32\nwatchdog = \"100 ms\"\n";

// A modular DP-V1 slave: one constant byte behind the status bytes, a parameter in one bit of it, and modules
// with an output of one byte (to the bus), with two bytes in, and with a parameter of their own.
constexpr const char* DEVICE = R"(#Profibus_DP
GSD_Revision = 3
Vendor_Name = "Example"
Model_Name = "Drive"
Revision = "1"
Ident_Number = 0x2A14
Protocol_Ident = 0
Station_Type = 0
1.5M_supp = 1
MaxTsdr_1.5M = 200
Sync_Mode_supp = 1
Min_Slave_Intervall = 6
Modular_Station = 1
Max_Module = 3
Max_Input_Len = 8
Max_Output_Len = 2
Max_Data_Len = 9
Max_Diag_Data_Len = 40
DPV1_Slave = 1
C1_Read_Write_supp = 1
C1_Max_Data_Len = 100
C1_Response_Timeout = 50
Diagnostic_Alarm_supp = 1
PrmText = 1
Text(0) = "slow"
Text(1) = "fast"
EndPrmText
ExtUserPrmData = 1 "Ramp"
Bit(2) 1 0-1
Prm_Text_Ref = 1
EndExtUserPrmData
ExtUserPrmData = 2 "Level"
Unsigned16 500 0-1000
EndExtUserPrmData
Max_User_Prm_Data_Len = 10
Ext_User_Prm_Data_Const(0) = 0x00,0x00,0x08,0x41
Ext_User_Prm_Data_Ref(3) = 1
Module = "One out" 0x20
1
EndModule
Module = "Two in" 0x11
2
EndModule
Module = "Channel" 0x40, 0x00, 0x11
3
Ext_Module_Prm_Data_Len = 3
Ext_User_Prm_Data_Const(0) = 0x07
Ext_User_Prm_Data_Ref(1) = 2
EndModule
)";

class CompileTest : public testing::Test {
protected:
    CompileTest() { _folder.Put("drive.gsd", DEVICE); }

    std::optional<CompiledBus> Compiled(const std::string& text) {
        _findings.clear();
        DeviceFiles files(_folder.Path(""));
        return Compile(ReadText(text, "plant.toml", _findings), files, _findings);
    }

    /// What was found, without the file's name.
    std::vector<std::string> Found(const std::string& text) {
        Compiled(text);
        std::vector<std::string> found;
        for (const Finding& finding : _findings)
            found.push_back(finding.ToString().substr(finding.file.size() + 1));
        return found;
    }

    template <class Record>
    static std::string Written(Record& record) {
        const auto stream = System::IO::MemoryStream::Create();
        record.ToStream(stream);
        const auto bytes = stream->ToArray();
        return BytesText({bytes->begin(), bytes->end()});
    }

    std::string Slave(const std::string& text, unsigned char address = 5) {
        const auto bus = Compiled(text);
        return bus ? Written(*bus->config->Slave(address)) : _findings.at(0).ToString();
    }

    TemporaryFolder _folder;
    Findings _findings;
};

TEST_F(CompileTest, WritesTheBytesOfASlaveWithoutAFile) {
    EXPECT_EQ(Slave(BUS + DRIVE), "00 33 80 00 20 00 00 00 00 00 00 00 00 00 00 00 " // header
                                  "00 0b 88 01 0a 0b 2a 14 00 00 00 00 "             // parameters and a pad
                                  "00 04 21 11 "                                     // identifiers
                                  "00 0c 02 02 00 00 00 01 00 00 00 01 "             // places
                                  "00 06 02 02 00 00 00 02");
    EXPECT_EQ(Slave(BUS + DRIVE +
                    "dpv1 = true\nfail-safe = true\nnew-parameters = true\npublisher = true\n"
                    "extra-alarm-sap = true\ndpv1-data-types = true\nslave-type = 1\nmax-channel-data = 240\n"
                    "diagnosis-delay = 2\nalarm-mode = 3\nadditional-flags = 4\nc1-timeout = \"1 s\"\n"
                    "sync = true\nfreeze = true\nmin-station-delay = 20\ngroups = [1, 8]\n"
                    "extended-user-parameters = \"aa bb\"\nto-bus-at = 16\nfrom-bus-at = [9, 7]\n"),
              "00 35 fe 01 20 00 f0 02 03 04 00 64 00 00 00 00 00 0b b8 01 0a 14 2a 14 81 00 00 00 "
              "00 04 21 11 00 0c 02 02 00 10 00 11 00 09 00 07 00 06 02 02 00 00 00 04 aa bb");
}

TEST_F(CompileTest, ComputesTheBusParameters) {
    const auto bus = Compiled(BUS + DRIVE);
    // An exchange takes 37 + 11 * 11 + 150 + 11 * 11 = 429 bit times, or 286 µs. A rotation has, beside it,
    // 5753 for a long acyclic message, 3036 for a diagnosis, 403 for the gap and 70 for the token.
    EXPECT_EQ(Written(*bus->config->Master()).substr(0, 28 * 3 - 1),
              "00 60 01 06 01 2c 00 0b 00 96 00 01 00 00 25 e4 0a 7e 01 00 00 03 03 e8 00 3c 00 00");
    const auto place = [&bus](const char* field) { return bus->master.OriginOf(field); };
    EXPECT_EQ(place("dataRate"), "plant.toml:2:8");
    EXPECT_EQ(place("slotTime"), "the table of 1.5M");

    struct Case {
        const char* rate;
        unsigned int code, slotTime, maxDelay, quiet, setup;
    };

    for (const Case& each : {Case{"9.6k", 0, 100, 60, 0, 1},
                             {"19.2k", 1, 100, 60, 0, 1},
                             {"31.25k", 10, 100, 60, 0, 1},
                             {"45.45k", 11, 100, 60, 0, 1},
                             {"93.75k", 2, 100, 60, 0, 1},
                             {"187.5k", 3, 100, 60, 0, 1},
                             {"500k", 4, 200, 100, 0, 1},
                             {"3M", 7, 400, 250, 3, 4},
                             {"6M", 8, 600, 450, 6, 8},
                             {"12M", 9, 1000, 800, 9, 16}}) {
        const auto other = Compiled("[bus]\nrate = \"" + std::string(each.rate) + "\"\nmaster = 1\n" + DRIVE);
        const RecordPlan& master = other->master;
        EXPECT_THAT((std::vector{master.Number("dataRate"), master.Number("slotTime"),
                                 master.Number("maxStationDelayTime"), master.Number("quietTime"),
                                 master.Number("setupTime"), master.Number("minStationDelayTime")}),
                    ElementsAre(each.code, each.slotTime, each.maxDelay, each.quiet, each.setup, 11))
            << each.rate;
    }
}

TEST_F(CompileTest, TakesWhatTheDeviceFileSays) {
    const std::string text =
        "[[slave]]\nname = \"drive\"\naddress = 5\ngsd = \"drive.gsd\"\nwatchdog = \"off\"\n"
        "modules = [\"One out\", \"Two in\", { name = \"Channel\", parameters = { Level = 3 } }]\n";
    EXPECT_EQ(Slave(BUS + text), "00 3f 88 00 28 00 64 00 00 00 00 32 00 00 00 00 "
                                 "00 10 80 01 01 0b 2a 14 00 00 00 08 45 07 00 03 " // constants, bits, Level
                                 "00 07 20 11 40 00 11 00 "
                                 "00 10 01 05 00 00 00 00 00 01 00 02 00 03 00 04 00 06 05 01 00 00 00 02");
    const std::string asked = "dpv1 = true\nalarms = [\"diagnostic\"]\nparameters = { Ramp = \"slow\" }\n"
                              "sync = true\n";
    EXPECT_THAT(Slave(BUS + "max-alarms = 1\n" + text + asked),
                HasSubstr("00 10 a0 01 01 0b 2a 14 00 80 20 08 41 07 00 03 "));
    const RecordPlan master = Compiled(BUS + text)->master;
    EXPECT_EQ(master.Number("maxStationDelayTime"), 200);
    EXPECT_EQ(master.Number("slotTime"), 300);
    EXPECT_EQ(master.Number("minSlaveInterval"), 6); // of the device; the exchange is shorter
}

TEST_F(CompileTest, ChoosesTheWatchdogFactors) {
    const std::pair<std::uint64_t, std::pair<unsigned int, unsigned int>> cases[] = {
        {1, {1, 1}},    {255, {1, 255}},     {256, {2, 128}}, {257, {2, 129}},
        {511, {7, 73}}, {65025, {255, 255}}, {65026, {0, 0}},
    };
    for (const auto& [wanted, factors] : cases)
        EXPECT_EQ(WatchdogFactors(wanted), factors) << wanted;
}

/// A text with one mistake, and what is said about it.
struct Mistake {
    std::string text;
    std::string said;
};

TEST_F(CompileTest, SaysWhereAMistakeIsAndWhatIsExpected) {
    const std::string file =
        "[[slave]]\nname = \"drive\"\naddress = 5\nwatchdog = \"off\"\ngsd = \"drive.gsd\"\n";
    const Mistake mistakes[] = {
        {"", "1:1: error: the table [bus] is missing, with rate and master"},
        {"[bus]\nrate = 1.5M\n", "2:11: error: "},
        {"[[[slave]]\n", " error: is no TOML; "},
        {"[bus]\nmaster = 1\n", "1:1: error: bus: rate is missing, such as \"1.5M\""},
        {"[bus]\nrate = \"1.5\"\nmaster = 1\n",
         "2:8: error: bus: rate is \"1.5\", expected one of 9.6k, 19.2k, "
         "31.25k, 45.45k, 93.75k, 187.5k, 500k, 1.5M, 3M, 6M, 12M, did you "
         "mean 1.5M?"},
        {BUS + "wachdog = \"1 s\"\n", "4:1: error: bus: unknown key wachdog, did you mean watchdog?"},
        {BUS + "watchdog = \"1 h\"\n",
         "4:12: error: bus: watchdog is \"1 h\", expected a time such as \"100 ms\", "
         "\"off\", or two factors from 1 to 255"},
        {BUS + "slot-time = 20\n",
         "4:13: error: bus: slot-time is 20, expected a number from 37 to 16383 (bit times)"},
        {BUS + "slot-time = 160\n",
         "4:13: error: bus: slot-time is 160, expected 165 to 16383 (from max-station-delay + 15)"},
        {BUS + "poll-timeout = \"1.5 ms\"\n",
         "4:16: error: bus: poll-timeout is \"1.5 ms\", expected a time such "
         "as \"100 ms\", in steps of 1 ms up to 65535 ms"},
        {BUS + DRIVE + "address = 5\n", "12:11: error: "},
        {BUS + DRIVE + DRIVE, "12:1: error: slave drive: another slave has this name"},
        {BUS + DRIVE + DRIVE, "14:11: error: slave drive: address 5 is that of slave drive"},
        {BUS + DRIVE + "to-bus-at = 3499\n",
         "12:13: error: slave drive: its data to the bus reach byte 3500, and "
         "the area ends at byte 3499"},
        {BUS + DRIVE + "to-bus-at = [1]\n",
         "12:13: error: slave drive: 1 places to the bus are given, and the "
         "identifier bytes say 2 bytes"},
        {BUS + DRIVE + "to-bus-at = [1, 1]\n",
         "12:13: error: slave drive: its data to the bus lie on those of slave drive at byte 1"},
        {BUS + DRIVE + "dpv1 = true\n",
         "4:1: error: slave drive: max-channel-data is missing, the most bytes of an "
         "acyclic service, from 0 to 244"},
        {BUS + DRIVE + "modules = [\"a\"]\n",
         "12:11: error: slave drive: modules and parameters need a gsd, the "
         "slave's device description file"},
        {BUS + DRIVE + "alarms = [\"proces\"]\n", "12:11: error: slave drive: an alarm is \"proces\", "
                                                  "expected diagnostic, process, pull-plug, status, update "
                                                  "or manufacturer, did you mean process?"},
        {BUS + DRIVE + "slave-flags = 0x80\nactive = true\n",
         "13:10: error: slave drive: active and slave-flags set the same, expected one of them"},
        {BUS + DRIVE + "signals = { speed = { from-bus = 1, type = \"int16\" } }\n",
         "12:13: error: slave drive: signal speed ends at byte 3, and the slave has 2 bytes from the bus"},
        {BUS + DRIVE + "signals = { speed = { from-bus = 0, type = \"int\" } }\n",
         "12:44: error: slave drive: signal speed: type is \"int\", expected bool, int8, "},
        {BUS + "[[slave]]\naddress = 1\nident = 1\nidentifier-bytes = \"b0\"\n",
         "4:1: error: slave slave-1: watchdog is missing, a time such as \"100 ms\", or \"off\""},
        {BUS + "[[slave]]\naddress = 1\nident = 1\nidentifier-bytes = \"41\"\n",
         "7:20: error: slave slave-1: the identifier bytes end within the entry 41"},
        {BUS + file + "modules = [\"Two inn\"]\n",
         "9:12: error: slave drive: no module \"Two inn\", did you mean Two in?"},
        {BUS + file + "modules = [\"One out\"]\nparameters = { Ramp = \"quick\" }\n",
         "10:16: error: slave drive: the parameter \"Ramp\" cannot be \"quick\": expected "},
        {BUS + file + "modules = [\"One out\"]\nfreeze = true\n",
         "10:10: error: slave drive: freeze is true, and the device does not have it, by drive.gsd"},
        {BUS + file + "modules = [\"One out\", \"One out\", \"One out\"]\n",
         "9:11: error: slave drive: has 3 bytes to the bus, expected at most 2"},
        {BUS + "[[slave]]\naddress = 9\ngsd = \"none.gsd\"\nwatchdog = \"off\"\n",
         "6:7: error: slave slave-9: gsd cannot be used, see none.gsd"},
        {"[bus]\nrate = \"9.6k\"\nmaster = 1\n" + DRIVE,
         "11:12: warning: slave drive: a watchdog of 100 ms switches it off for no reason, expected at least "
         "three "
         "target rotations, "},
        {BUS + "target-rotation-time = 9000\n" + DRIVE,
         "4:24: warning: bus: target-rotation-time is 9000 bit times, and one rotation may take 9700"},
        {"[bus]\nrate = \"500k\"\nmaster = 1\n" + file + "modules = [\"One out\"]\n",
         "8:7: warning: slave drive: the device does not have the rate 500 of the bus, by drive.gsd"},
    };
    for (const Mistake& mistake : mistakes)
        EXPECT_THAT(Found(mistake.text), testing::Contains(testing::StartsWith(mistake.said)))
            << mistake.text;
}

TEST_F(CompileTest, SaysAllAtOnceAndNothingTwice) {
    EXPECT_THAT(
        Found(
            "[bus]\nrate = \"2M\"\nmaster = 126\nretires = 1\n\n[[slave]]\nname = \"a b\"\naddress = \"5\"\n"
            "ident = 70000\nidentifier-bytes = \"2\"\nwatchdog = 100\nspeed = 1\n"),
        ElementsAre(HasSubstr("2:8: error: bus: rate is \"2M\""),
                    HasSubstr("3:10: error: bus: master is 126"),
                    HasSubstr("4:1: error: bus: unknown key retires, did you mean retries?"),
                    HasSubstr("6:1: error: slave a b: max-diagnosis is missing"),
                    HasSubstr("7:8: error: slave a b: name is \"a b\""), HasSubstr("8:11: error: "),
                    HasSubstr("9:9: error: "), HasSubstr("10:20: error: "), HasSubstr("11:12: error: "),
                    HasSubstr("12:1: error: slave a b: unknown key speed")));
}

TEST_F(CompileTest, ReadsDurationsAndBytes) {
    EXPECT_EQ(ParseDuration("1.5s"), milliseconds(1500));
    EXPECT_EQ(ParseDuration("0.4 ms"), std::chrono::microseconds(400));
    for (const char* const wrong :
         {"", "s", "1", "1 m", ".5 s", "1. s", "1.2.3 s", "0.5 us", "3601 s", "-1 s"})
        EXPECT_FALSE(ParseDuration(wrong)) << wrong;
    EXPECT_EQ(ParseBytes("21 0fA0 "), (Bytes{0x21, 0x0F, 0xA0}));
    for (const char* const wrong : {"2", "2 1", "0x21", "21,0f"})
        EXPECT_FALSE(ParseBytes(wrong)) << wrong;
}

TEST_F(CompileTest, TheExampleIsItsDatabase) {
    const auto bus = Compiled(TemporaryFolder::Read(SOURCE_DIR "/examples/plant.toml"));
    const std::string database = TemporaryFolder::Read(SOURCE_DIR "/examples/plant.ddb");
    EXPECT_TRUE(_findings.empty());
    EXPECT_EQ(DatabaseBytes(*bus->config), Bytes(database.begin(), database.end()));
}

} // namespace
