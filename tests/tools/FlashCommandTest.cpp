// SPDX-License-Identifier: MIT
#include "tests/support/FirmwareFileBuilder.h"
#include "tests/support/ModuleLines.h"
#include "tests/support/RunTool.h"

#include "tools/vesk/jobs/Flash.h"
#include "tools/vesk/text/Failure.h"
#include "vesk/system/DateTime.h"

#include <functional>
#include <sstream>

using testing::AllOf;
using testing::AnyOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

static const std::string EXAMPLE = SOURCE_DIR "/examples/firmware/vt22-1.5.0.fw";

/// A clock that a loop which waits for it need not be told about: each look at it takes a millisecond.
static std::int64_t Ticking() {
    static std::int64_t now = 0;
    return now += 1'000'000;
}

TEST(FlashCommand, UpdatesAndShowsBothVersions) {
    EXPECT_THAT(RunTool::Text({"flash", EXAMPLE, "--yes"}),
                AllOf(HasSubstr("APPLICATION_FIRMWARE for module 0x201, 6420 bytes to 0x20000"),
                      HasSubstr("bootloader 2.1, serial 0x220001\n"),
                      HasSubstr(" 50 %  16/31 requests, 3072/6420 bytes, "),
                      HasSubstr("100 %  31/31 requests, 6420/6420 bytes, "),
                      HasSubstr("firmware 1.5.0 (was 1.4.2), bootloader 2.1 (was 2.1)\n"),
                      Not(HasSubstr("\r"))));
    const TemporaryFolder folder;
    const auto bootloader = FirmwareFileBuilder().Type(1).Program("VT22-VERSION:\x04\x02\x01");
    const std::string path = folder.Put("bootloader", bootloader.Content());
    EXPECT_THAT(RunTool::Text({"flash", path, "--bootloader", "--yes"}),
                HasSubstr("firmware 1.4.2 (was 1.4.2), bootloader 4.2 (was 2.1)\n"));
}

TEST(FlashCommand, AsksOnATerminalAndDrawsABar) {
    const auto yes = RunTool::RunOnTerminal({"flash", EXAMPLE}, "y\n");
    EXPECT_EQ(yes.status, 0) << yes.out;
    EXPECT_THAT(yes.out, AllOf(HasSubstr("Replace the application of this module? [y/N] "),
                               HasSubstr("\r[##########] 31/31 requests, 6420/6420 bytes, "),
                               HasSubstr("firmware 1.5.0 (was 1.4.2)")));
    for (const char* answer : {"n\n", "\n", "\x04"}) { // the last one ends the input
        const auto no = RunTool::RunOnTerminal({"flash", EXAMPLE}, answer);
        EXPECT_EQ(no.status, 1) << no.out;
        EXPECT_THAT(no.out, AllOf(HasSubstr("vesk: Nothing was written"), Not(HasSubstr("requests"))));
    }
}

TEST(FlashCommand, DryRunWritesNothing) {
    EXPECT_THAT(
        RunTool::Text({"flash", EXAMPLE, "--dry-run"}),
        AllOf(HasSubstr("serial 0x220001\nDry run: nothing was written\n"), Not(HasSubstr("requests"))));
}

TEST(FlashCommand, SaysWhyNot) {
    const TemporaryFolder folder;
    std::string damaged = TemporaryFolder::Read(EXAMPLE);
    damaged[3000] = static_cast<char>(damaged[3000] ^ 1);
    const auto put = [&](const char* name, const FirmwareFileBuilder& file) {
        return folder.Put(name, file.Content());
    };

    const struct {
        std::string file;
        std::string option;
        std::string error; // a part of it
    } CASES[] = {
        {put("bl", FirmwareFileBuilder().Type(1).Program(9)), "--yes", "BOOTLOADER_FIRMWARE: give --boot"},
        {put("cfg", FirmwareFileBuilder().Type(3).Program(9)), "--yes", "cannot be downloaded"},
        {put("empty", FirmwareFileBuilder()), "--yes", folder.Path("empty") + " holds no program"},
        {put("short", FirmwareFileBuilder().Program(9).Size(130)), "--yes",
         folder.Path("short") + ": System.IO.EndOfStreamException: Stream holds 2 of 9 program bytes"},
        {put("magic", FirmwareFileBuilder().Put(64, {0x5A, 0xA5})), "--yes",
         folder.Path("magic") + ": System.FormatException: 5aa5 (a firmware file has"},
        {put("huge", FirmwareFileBuilder().Length(0x7FFFFFFF)), "--yes", "0 of 2147483647 program bytes"},
        {folder.Path("missing"), "--yes", folder.Path("missing") + ": No such file"},
        {folder.Put("damaged", damaged), "--dry-run", folder.Path("damaged") + ": damaged, and should"},
        {folder.Path("damaged"), "--yes",
         "request 31 of 31 (FwDownloadLast, 0x20000 to 0x21913) was refused, so the program did not pass the "
         "module's check: Flash Config Error. The application is erased; the module keeps its bootloader.\n"
         "      Look at the file with `vesk firmware show`, and run the update again.\n"},
    };

    for (const auto& [file, option, error] : CASES) {
        SCOPED_TRACE(error);
        const auto result = RunTool::Run({"flash", file, option});
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.err, AllOf(HasSubstr(error), EndsWith("\n")));
        EXPECT_THAT(result.out, Not(HasSubstr("runs firmware")));
    }
    EXPECT_THAT(RunTool::Run({"flash", EXAMPLE, "--yes", "--bootloader"}).err,
                HasSubstr(EXAMPLE + " holds APPLICATION_FIRMWARE, no bootloader"));
    EXPECT_THAT(RunTool::Run({"flash", EXAMPLE}).err,
                HasSubstr("There is no terminal to ask at; give --yes"));
    for (const RunTool::Arguments& arguments : {RunTool::Arguments{"flash"}, {"flash", EXAMPLE, "--force"}})
        RunTool::ExpectFailure(arguments, 2, HasSubstr("--help"));
    EXPECT_THAT(RunTool::Run({"flash", folder.Path("damaged"), "--yes"}).err,
                HasSubstr("vesk: warning: " + folder.Path("damaged") + ": its checksum is 0x1181 and"));
}

/// The update against a module that fails at a chosen request, in virtual time.
class FlashFailureTest : public testing::Test {
protected:
    FlashFailureTest() {
        System::DateTime::SetSource(Ticking);
        _module.GetModule().SetLog([this](const std::string& line) {
            if (line == "boots as the bootloader")
                _taken = 0;
            _taken += line.rfind("request ", 0) == 0;
        });
    }

    ~FlashFailureTest() override { System::DateTime::SetSource(nullptr); }

    /// From the request `request` on, 1 being the first, the interrupts of the bootloader are lost.
    std::string FailureAt(int request, const FirmwareFileBuilder& file, bool bootloader) {
        VeskTool::Link link;
        link.dpRamPath = _module.DpRamPath();
        link.velmoIrq_n = System::Func<bool>::Create(
            [this, request] { return _module.VelmoIrq_n() || (!_master && _taken >= request); });
        link.reset_n = ModuleLines(_module).reset_n;
        link.bootloader_enable_n = System::ArgFunc<bool, void>::Create([this](bool level) {
            _master = level;
            _module.BootloaderEnable_n(level);
        });
        std::stringstream words;
        const VeskTool::Console console{words, words, words};
        const TemporaryFolder folder;
        try {
            VeskTool::Flash({folder.Put("file", file.Content()), bootloader, true, false}, link, console)
                .Execute();
        } catch (const VeskTool::Failure& failure) {
            EXPECT_THAT(failure.Hint(), AnyOf("Run the update again.", ""));
            return failure.what();
        }
        return words.str();
    }

    VirtualModule::Flash _flash;
    VirtualModule::InProcess _module{_flash, Ticking};
    int _taken = 0;
    bool _master = true;
};

TEST_F(FlashFailureTest, TellsTheRequestTheAddressAndWhatIsLeft) {
    const std::string late = " was not answered: Timeout after 1 seconds. ";
    const std::string untouched = "Nothing was erased; the old application is still in place.";
    const std::string erased = "The application is erased; the module keeps its bootloader.";
    const std::string old = "The old bootloader is still in place.";

    const struct {
        bool bootloader;
        int request;
        std::string text;
    } CASES[] = {
        {false, 1, "request 1 of 8 (Enable)" + late + untouched},
        {false, 2, "request 2 of 8 (FlashWriteEnable)" + late + untouched},
        {false, 3,
         "request 3 of 8 (FlashErase) was not answered: Timeout after 10 seconds. The application may be "
         "erased; the module keeps its bootloader"},
        {false, 4, "request 4 of 8 (FwDownloadInit)" + late + erased},
        {false, 5, "request 5 of 8 (FwDownloadData, 0x20000)" + late},
        {false, 7, "request 7 of 8 (FwDownloadData, 0x20200)" + late},
        {false, 8,
         "request 8 of 8 (FwDownloadLast, 0x20010 to 0x1040313) was not answered: Timeout after 10 s"},
        {false, 9, "The module runs firmware 1."},
        {true, 1, "request 1 of 5 (BlDownloadInit)" + late + old},
        {true, 3, "request 3 of 5 (BlDownloadData, 0x100)" + late + old},
        {true, 5, "Whether the new bootloader is in place is not known."},
        {true, 6, "The module runs firmware 1."},
    };

    for (const auto& [bootloader, request, text] : CASES) {
        const auto file = FirmwareFileBuilder().Type(bootloader ? 1 : 2).Program(600);
        EXPECT_THAT(FailureAt(request, file, bootloader), HasSubstr(text));
    }
}

TEST_F(FlashFailureTest, UpdatesAModuleWithoutAnApplication) {
    _flash.application.valid = false;
    EXPECT_THAT(FailureAt(100, FirmwareFileBuilder().Program("VT22-VERSION:\x01\x06\x02"), false),
                AllOf(HasSubstr("no firmware runs (Vesk.StartupException: Timeout waiting for initial IRQ)"),
                      HasSubstr("The module runs firmware 1.6.2 (was none), bootloader 2.1 (was 2.1)")));
    _flash.application.valid = false;
    EXPECT_THAT(
        FailureAt(100, FirmwareFileBuilder().Type(1).Program("VT22-VERSION:\x02\x07\x01"), true),
        StartsWith("The download is complete, but the module does not start as the master: Vesk.Start"));
}
