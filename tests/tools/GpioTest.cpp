// SPDX-License-Identifier: MIT
// The module's lines on a GPIO chip, as --gpio names them. The chip is made of this file: its functions stand
// in for libgpiod's and lead to a virtual module.
#include "tests/support/RunTool.h"
#include "tests/support/TestClock.h"
#include "tools/vesk/jobs/Run.h"
#include "tools/vesk/session/LinkOptions.h"
#include "tools/vesk/session/OwnSession.h"
#include "tools/vesk/session/PlantFlash.h"
#include "vesk/hostinterface/RuntimeConfig.h"
#include "virtualmodule/InProcess.h"

#ifdef VESK_WITH_GPIOD
#include "vesk/lines/GpioLines.h"
#endif
#ifdef GPIOD_LINE_BULK_MAX_LINES // libgpiod 1.x, for which it stands in
#include <sstream>
#include <unistd.h>

using namespace VeskTool;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

enum LineNumber : unsigned int { RESET = 2, BOOT = 4, IRQ = 17, TAKEN = 20, LINES = 32 };

VirtualModule::InProcess* module;
std::vector<std::string> requests; // in the order of the host
const char* takenBy;               // the consumer of the line that is taken
int failures;                      // errno of the next reading or driving; 0 for none
int edges[2];                      // a pipe with a byte for each edge

int Drive(unsigned int line, int level) {
    if (line == RESET)
        module->Reset_n(level != 0);
    else
        module->BootloaderEnable_n(level != 0);
    return 0;
}

bool Fails() {
    errno = failures;
    return failures != 0;
}

} // namespace

struct gpiod_chip {};

struct gpiod_line {
    unsigned int number;
};

static gpiod_chip theChip;
static gpiod_line theLines[LINES];

gpiod_chip* gpiod_chip_open_lookup(const char* name) {
    errno = ENOENT;
    return std::string(name) == "gpiochip0:a" ? &theChip : nullptr;
}

void gpiod_chip_close(gpiod_chip*) {
    requests.push_back("close");
}

gpiod_line* gpiod_chip_get_line(gpiod_chip*, unsigned int number) {
    errno = EINVAL;
    if (number >= LINES)
        return nullptr;
    theLines[number].number = number;
    return &theLines[number];
}

int gpiod_line_request_input(gpiod_line* line, const char* consumer) {
    requests.push_back("input " + std::to_string(line->number) + " " + consumer);
    return 0;
}

int gpiod_line_request_falling_edge_events(gpiod_line* line, const char*) {
    requests.push_back("edges " + std::to_string(line->number));
    return ::pipe(edges);
}

int gpiod_line_event_get_fd(gpiod_line*) {
    return edges[0];
}

int gpiod_line_event_read_multiple(gpiod_line*, gpiod_line_event*, unsigned int most) {
    char bytes[64];
    return Fails() ? -1 : static_cast<int>(::read(edges[0], bytes, most));
}

int gpiod_line_request_output(gpiod_line* line, const char* consumer, int level) {
    errno = EBUSY;
    if (line->number == TAKEN)
        return -1;
    requests.push_back("output " + std::to_string(line->number) + " " + consumer + " " +
                       std::to_string(level));
    return Drive(line->number, level);
}

int gpiod_line_update(gpiod_line*) {
    return 0;
}

const char* gpiod_line_consumer(gpiod_line*) {
    return takenBy;
}

int gpiod_line_get_value(gpiod_line* line) {
    if (Fails())
        return -1;
    return line->number == IRQ ? module->VelmoIrq_n() : 0;
}

int gpiod_line_set_value(gpiod_line* line, int level) {
    return Fails() ? -1 : Drive(line->number, level);
}

namespace {

class GpioTest : public testing::Test {
protected:
    GpioTest() {
        Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;
        module = &virtualModule;
        requests.clear();
        failures = 0;
    }

    Link Open(const std::string& gpio) {
        CLI::App app;
        LinkOptions options;
        options.AddTo(app);
        app.parse(std::vector<std::string>{"--gpio=" + gpio, "--dpram=" + virtualModule.DpRamPath()});
        return options.Open();
    }

    TestClock clock;
    VirtualModule::Flash flash = PlantFlash();
    VirtualModule::InProcess virtualModule{flash, TestClock::Nanoseconds};
};

TEST_F(GpioTest, TheLinesBringAModuleUp) {
    {
        OwnSession session(Open("gpiochip0:a:reset=2,irq=17,boot=4"), nullptr);
        EXPECT_THAT(requests, ElementsAre("output 2 vesk 0", "output 4 vesk 1", "input 17 vesk"));
        session.OnUpdate([this] { clock.Advance(1'000'000); });
        session.Reach(Need::OPERATING);
        EXPECT_EQ(session.Mode(), Vesk::Modules::DPVM::OperationMode_e::OPERATE);
    }
    EXPECT_EQ(requests.back(), "close");
    EXPECT_TRUE(virtualModule.GetModule().Violations().empty());
}

TEST_F(GpioTest, ARunAsksBeforeItDrivesAMachine) {
    ASSERT_NE(std::freopen("/dev/null", "r", stdin), nullptr); // the wait for the answer ends at once
    const char* const runs = "line 4 (boot): Input/output error";
    for (const auto& [yes, asks, answer, outcome] : {std::tuple{false, false, "y", "; give --yes to do it"},
                                                     {false, true, "n", "Nothing was written"},
                                                     {false, true, "y", runs},
                                                     {true, false, "", runs}}) {
        std::stringstream words;
        std::istringstream answers(answer);
        failures = 0;
        VeskTool::Run run({.configPath = "", .yes = yes}, Plant()->config,
                          Open("gpiochip0:a:irq=17,reset=2,boot=4"), {words, words, answers, asks});
        failures = EIO;
        EXPECT_THAT([&] { run.Execute(); }, testing::ThrowsMessage<std::exception>(HasSubstr(outcome)));
        const std::string question = "This would replace the database of the module at " +
                                     virtualModule.DpRamPath() + " by the plant of the examples, and drive ";
        EXPECT_EQ(words.str().starts_with(question), asks) << words.str();
    }
}

TEST_F(GpioTest, TheInterruptCanBeWaitedFor) {
    const auto lines = GpioLines::Open("gpiochip0:a", {IRQ, RESET, BOOT}, GpioLines::Interrupt::AWAITED);
    EXPECT_EQ(requests.back(), "edges 17");
    const auto readable = [&] {
        pollfd waiting{lines->InterruptDescriptor(), POLLIN, 0};
        return ::poll(&waiting, 1, 0) == 1;
    };
    lines->TakeInterrupts(); // none, which does not block
    EXPECT_FALSE(readable());
    ASSERT_EQ(::write(edges[1], std::string(40, 'e').data(), 40), 40); // more than are taken at once
    EXPECT_TRUE(readable());
    lines->TakeInterrupts();
    EXPECT_FALSE(readable());
    ASSERT_EQ(::write(edges[1], "e", 1), 1);
    failures = EIO;
    EXPECT_THAT([&] { lines->TakeInterrupts(); },
                testing::ThrowsMessage<std::system_error>(HasSubstr("line 17 (irq): Input/output error")));
    ::close(edges[0]);
    ::close(edges[1]);
}

TEST_F(GpioTest, ALineThatFailsIsNamed) {
    const auto expectFailure = [](const char* message, const std::function<void()>& act) {
        EXPECT_THAT(act, testing::ThrowsMessage<std::exception>(HasSubstr(message)));
    };
    expectFailure("gpiochip9: No such file", [&] { Open("gpiochip9:irq=17,reset=2,boot=4"); });
    expectFailure("line 99 (irq): Invalid", [&] { Open("gpiochip0:a:irq=99,reset=2,boot=4"); });
    for (const auto& [name, shown] : {std::pair{"plc", "plc"}, {nullptr, "somebody whom the kernel"}}) {
        takenBy = name;
        expectFailure(("line 20 (boot) is in use by " + std::string(shown)).c_str(),
                      [&] { Open("gpiochip0:a:irq=17,reset=2,boot=20"); });
    }
    EXPECT_EQ(requests.back(), "close") << "what was taken is given back";

    const Link link = Open("gpiochip0:a:irq=17,reset=2,boot=4");
    failures = EIO;
    expectFailure("line 17 (irq): Input/output error", [&] { link.velmoIrq_n->Invoke(); });
    expectFailure("line 2 (reset): Input/output error", [&] { link.reset_n->Invoke(true); });
    expectFailure("line 4 (boot): Input", [&] { link.bootloader_enable_n->Invoke(false); });
}

} // namespace
#endif
