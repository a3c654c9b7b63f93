// SPDX-License-Identifier: MIT
// The header that applications get: it compiles without a warning, and its accessors do what its text says.
#include "busdescription/header/Header.h"
#include "tests/support/RunTool.h"
#include "tests/support/TemporaryFolder.h"

using namespace BusDescription;
using testing::HasSubstr;

namespace {

const std::string TEXT = R"(
[bus]
rate = "1.5M"
master = 1
watchdog = "off"
[[slave]]
name = "test-drive"
address = 5
ident = 1
identifier-bytes = "c0 1f 1f"
max-diagnosis = 6
to-bus-at = [0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,100,101,102,103,104,105,106,107,108,109,110,111,112,113,114,115]
[slave.signals]
low = { from-bus = 0, type = "int16" }
swapped = { from-bus = 2, type = "uint32", order = "little" }
ratio = { from-bus = 6, type = "float32" }
ready = { from-bus = 10, type = "bool", bit = 7 }
exact = { from-bus = 11, type = "float64" }
level = { from-bus = 19, type = "int16", scale = 0.5, zero = 10, unit = "mm \\" }
text = { from-bus = 21, type = "bytes", length = 2 }
set-point = { to-bus = 0, type = "int16", scale = 0.1 }
wide = { to-bus = 2, type = "uint64", order = "little" }
on = { to-bus = 10, type = "bool", bit = 3 }
real = { to-bus = 11, type = "float32", scale = 2 }
small = { to-bus = 15, type = "uint8", scale = 1 }
)";

constexpr const char* USE = R"(
#include "Test.h"
#include <array>
using Drive = Test::TestDrive;
constexpr std::array<unsigned char, 32> IN{0xff, 0xfe, 1, 2, 3, 4, 0x3f, 0xc0, 0, 0, 0x80, 0xc0, 0, 0, 0, 0, 0, 0, 0,
                                           0, 0x64, 'a', 'b'};
constexpr Drive::FromBus DATA(IN);
static_assert(Drive::ADDRESS == 5 && Drive::TO_BUS_LENGTH == 32 && Drive::FROM_BUS_OFFSET == 0);
static_assert(Drive::Low(DATA) == -2);
static_assert(Drive::Swapped(DATA) == 0x04030201);
static_assert(Drive::Ratio(DATA) > 1.4f && Drive::Ratio(DATA) < 1.6f);
static_assert(Drive::Ready(DATA));
static_assert(Drive::Exact(DATA) < -1.9 && Drive::Exact(DATA) > -2.1);
static_assert(Drive::Level(DATA) > 59.9 && Drive::Level(DATA) < 60.1);
static_assert(Drive::Text(DATA)[1] == 'b');

constexpr std::array<unsigned char, 32> Written(double setPoint, double small) {
    std::array<unsigned char, 32> data{};
    data[10] = 0x81;
    Drive::SetSetPoint(Drive::ToBus(data), setPoint);
    Drive::SetWide(Drive::ToBus(data), 0x0102030405060708);
    Drive::SetOn(Drive::ToBus(data), true);
    Drive::SetReal(Drive::ToBus(data), 3.0);
    Drive::SetSmall(Drive::ToBus(data), small);
    return data;
}
constexpr auto OUT = Written(-12.34, 0.0 / 1.0 - 5.0);
static_assert(OUT[0] == 0xff && OUT[1] == 0x85); // -123
static_assert(OUT[2] == 8 && OUT[9] == 1 && OUT[10] == 0x89);
static_assert(OUT[11] == 0x3f && OUT[12] == 0xc0 && OUT[15] == 0);
static_assert(Written(1e9, 254.6)[0] == 0x7f && Written(1e9, 254.6)[15] == 255);

struct Module {
    void MapInputData(int, const std::shared_ptr<System::Array<unsigned char>>&, int, int) {}
    void MapOutputData(int, const std::shared_ptr<System::Array<unsigned char>>&, int, int) {}
};
double Use(Module& module) {
    const Drive drive;
    drive.Map(module);
    drive.SetSetPoint(drive.Level());
    return drive.Text()[0] + drive.SetPoint();
}
)";

std::string Made(const std::string& text, const std::string& space, Findings& findings) {
    DeviceFiles files("");
    const Description description = ReadText(text, "plant.toml", findings);
    const auto bus = Compile(description, files, findings);
    return bus ? Header(description, *bus, space, findings) : findings.at(0).ToString();
}

TEST(HeaderTest, CompilesWithoutAWarningAndReadsAndWritesSignals) {
    TemporaryFolder folder;
    Findings findings;
    const std::string header = Made(TEXT, "Test", findings);
    EXPECT_THAT(
        header,
        HasSubstr("module.MapInputData(0, toBus, 0, 16);\n        module.MapInputData(100, toBus, 16, "
                  "16);\n        module.MapOutputData(0, fromBus, 0, 32);\n"));
    folder.Put("Test.h", header);
    const std::string use = folder.Put("use.cpp", USE);
    for (const std::string compiler : {"g++", "clang++"})
        if (RunTool::Run({"-c", "command -v " + compiler}, "/bin/sh").status == 0)
            EXPECT_EQ(RunTool::Run({"-c", compiler +
                                              " -std=c++20 -Wall -Wextra -Wpedantic -Wconversion -Wshadow "
                                              "-Wsign-conversion -Werror -fsyntax-only -I " SOURCE_DIR " " +
                                              use},
                                   "/bin/sh")
                          .err,
                      "");
}

TEST(HeaderTest, RefusesNamesThatAreTakenInIt) {
    const std::string slave = "address = 5\nident = 1\nidentifier-bytes = \"30\"\nmax-diagnosis = 6\n";
    const std::string bus = "[bus]\nrate = \"1.5M\"\nmaster = 1\nwatchdog = \"off\"\n[[slave]]\n";
    for (const char* const more :
         {"name = \"access\"\n", "name = \"a\"\nsignals.map = { to-bus = 0, type = \"int8\" }\n",
          "signals.a-b = { to-bus = 0, type = \"int8\" }\nsignals.aB = { to-bus = 0, type = "
          "\"int8\" }\n"}) {
        Findings findings;
        EXPECT_EQ(Made(bus + slave + more, "Test", findings), "");
        EXPECT_THAT(findings.at(0).text, HasSubstr("in the header, which is something else there"));
    }
}

TEST(HeaderTest, TheExampleIsMadeOfItsText) {
    Findings findings;
    EXPECT_EQ(Made(TemporaryFolder::Read(SOURCE_DIR "/examples/plant.toml"), "Plant", findings),
              TemporaryFolder::Read(SOURCE_DIR "/examples/Plant.h"));
}

} // namespace
