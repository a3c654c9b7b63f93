// SPDX-License-Identifier: MIT
#include "tests/support/FirmwareFileBuilder.h"
#include "tests/support/Golden.h"
#include "tests/support/ModuleLines.h"
#include "tests/support/RunTool.h"

#include "tools/vesk/jobs/Flash.h"
#include "tools/vesk/text/Failure.h"
#include "tools/vesk/text/Interruption.h"
#include "vesk/system/DateTime.h"

#include <csignal>
#include <map>
#include <sstream>

using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

static const std::string EXAMPLE = SOURCE_DIR "/examples/firmware/vt22-1.5.0.fw";

/// A clock that a loop which waits for it need not be told about: each look at it takes a millisecond.
static std::int64_t Ticking() {
    static std::int64_t now = 0;
    return now += 1'000'000;
}

TEST(FlashCommand, AsksOnATerminalAndDrawsABar) {
    const auto yes = RunTool::RunOnTerminal({"flash", EXAMPLE, "--virtual"}, "y\n");
    EXPECT_EQ(yes.status, 0) << yes.out;
    EXPECT_THAT(yes.out, AllOf(HasSubstr("Replace the application of this module? [y/N] "),
                               HasSubstr("\r[##########] 31/31 requests, 6420/6420 bytes, "),
                               HasSubstr("firmware 1.5.0 (was 1.4.2)")));
    for (const char* answer : {"n\n", "\n", "\x04"}) { // the last one ends the input
        const auto no = RunTool::RunOnTerminal({"flash", EXAMPLE, "--virtual"}, answer);
        EXPECT_EQ(no.status, 1) << no.out;
        EXPECT_THAT(no.out, AllOf(HasSubstr("vesk: Nothing was written"), Not(HasSubstr("requests"))));
    }
    const auto interrupted = RunTool::RunOnTerminal({"flash", EXAMPLE, "--virtual"}, "\x03", "[y/N] ");
    EXPECT_EQ(interrupted.status, 128 + SIGINT) << interrupted.out;
    EXPECT_THAT(interrupted.out, HasSubstr("vesk: stopped by SIGINT at the question; nothing was changed"));
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
            if (const auto signal = _signals.extract(line.rfind("request ", 0) == 0 ? _taken : 0))
                std::raise(signal.mapped());
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
            const auto& checks = VeskTool::Flash::Checks();
            VeskTool::Flash({.firmwarePath = folder.Put("file", file.Content()),
                             .bootloader = bootloader,
                             .yes = true,
                             .force = {checks.begin(), checks.end()}},
                            link, console)
                .Execute();
        } catch (const VeskTool::Failure& failure) {
            return failure.what();
        } catch (const VeskTool::Interrupted& interrupted) {
            return words.str() + interrupted.What();
        }
        return words.str();
    }

    VirtualModule::Flash _flash;
    VirtualModule::InProcess _module{_flash, Ticking};
    std::map<int, int> _signals; // by the request at which each comes
    int _taken = 0;
    bool _master = true;
};

TEST_F(FlashFailureTest, TellsTheRequestTheAddressAndWhatIsLeft) {
    std::string told;
    for (const bool bootloader : {false, true})
        for (int request = 1; request <= (bootloader ? 6 : 9); ++request) {
            const auto file = FirmwareFileBuilder().Type(bootloader ? 1 : 2).Program(600);
            const std::string text = FailureAt(request, file, bootloader);
            told +=
                text.substr(text.find("The module runs") < text.size() ? text.find("The module runs") : 0) +
                "\n";
        }
    ExpectGolden("flash-failures.txt", told);
}

TEST_F(FlashFailureTest, IsNotStoppedInTheMiddleByAccident) {
    VeskTool::WatchSignals();
    const auto file = FirmwareFileBuilder().Program(600);
    const auto done = HasSubstr("The module runs firmware");
    const auto goesOn =
        HasSubstr("vesk: stopping now would end it at request 6 of 8 (FwDownloadData, 0x20100). "
                  "The application is erased; the module keeps its bootloader.\n");
    const std::pair<std::map<int, int>, testing::Matcher<std::string>> cases[]{
        {{{2, SIGPIPE}, {5, SIGHUP}}, AllOf(done, Not(HasSubstr("stop")))},
        {{{5, SIGINT}}, AllOf(goesOn, done)},
        {{{5, SIGTERM}, {6, SIGINT}},
         AllOf(goesOn, testing::EndsWith("stopped by SIGINT at request 7 of 8 (FwDownloadData, 0x20200). The "
                                         "application is erased; the module keeps its bootloader."))},
    };
    for (const auto& [signals, told] : cases) {
        _signals = signals;
        EXPECT_THAT(FailureAt(100, file, false), told);
    }
    VeskTool::WatchSignals(); // and what came is forgotten
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
        std::signal(signal, SIG_DFL);
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
