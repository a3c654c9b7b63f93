// SPDX-License-Identifier: MIT
#include "tests/support/FirmwareFileBuilder.h"
#include "tests/support/TestClock.h"

#include "vesk/core/VeskException.h"
#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/modules/dpvm/Vt22.h"
#include "virtualmodule/InProcess.h"

#include <gmock/gmock.h>

#include <functional>
#include <iostream>

using namespace Vesk::Modules::DPVM;
using VirtualModule::Version;
using Stop = std::function<bool()>;

namespace {

const Stop NEVER = [] { return false; };

/// A sealed program of `size` bytes and its seal, for version 1.`minor`.7.
std::string Image(std::size_t size, char minor = 5) {
    std::string image = "VT22-VERSION:\x01\x01\x07";
    image[14] = minor;
    while (image.size() < size)
        image += static_cast<char>((image.size() * 7 + image.size() / 256) & 0xFF);
    image += "VT22-CRC:";
    const VirtualModule::Bytes bytes(image.begin(), image.end());
    const unsigned crc = VirtualModule::Crc16(bytes);
    return image + static_cast<char>(crc >> 8) + static_cast<char>(crc & 0xFF);
}

VirtualModule::Options AtOnce() {
    VirtualModule::Options options;
    options.bootDelay = options.interruptPeriod = options.eraseTime = options.burnTime = 0;
    return options;
}

} // namespace

/// Firmware updates against a virtual module, in virtual time. The flash lasts from one to the next.
class Vt22BootloaderLifeTest : public testing::Test {
protected:
    explicit Vt22BootloaderLifeTest(VirtualModule::Options options = {})
        : _module(_flash, TestClock::Nanoseconds, options) {
        Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;
        _module.GetModule().SetLog([this](const std::string& line) {
            _taken += line.rfind("request ", 0) == 0;
            _answered += line.rfind("answer ", 0) == 0;
            _writes += line.rfind("host ", 0) == 0;
        });
    }

    ~Vt22BootloaderLifeTest() override {
        _host.reset();
        EXPECT_EQ(_module.GetModule().Violations(), std::vector<std::string>{});
    }

    /// Boots into the bootloader and sends the program, up to its end or to `stop`.
    void Update(const std::string& program, const Stop& stop = NEVER) {
        _host.reset();
        _taken = _answered = _writes = 0;
        _host = Vt22::CreateBootloaderModule(_module.DpRamPath(), 0, _irq, _reset, _bootloaderEnable);
        while (!_host->Booted())
            Step(*_host);
        _host->BeginFirmwareDownload(FirmwareFileBuilder().Program(program).Read(), &_remaining);
        while (!_host->EndDownload(&_remaining) && !stop())
            Step(*_host);
    }

    /// Updates and expects that the module refuses what was downloaded.
    void ExpectRefusedUpdate(const std::string& program) {
        try {
            Update(program);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const std::shared_ptr<System::Exception>& thrown) {
            EXPECT_TRUE(std::dynamic_pointer_cast<Vesk::Mailbox::MailboxResponseException>(thrown));
            EXPECT_THAT(thrown->Message().Value(), testing::HasSubstr("Error: Flash Config Error\n"));
        }
    }

    /// The version that the module shows as the master; nothing when it does not start.
    std::optional<Version> RunMaster() {
        _host.reset();
        const auto master = Vt22::CreateUnconfigured(_module.DpRamPath(), 0, _irq, _reset, _bootloaderEnable);
        try {
            while (!master->Booted())
                Step(*master);
        } catch (const std::shared_ptr<System::Exception>& thrown) {
            EXPECT_TRUE(std::dynamic_pointer_cast<Vesk::StartupException>(thrown));
            return std::nullopt;
        }
        return Version{master->SoftwareMajor(), master->SoftwareMinor(), master->SoftwareBuild()};
    }

    bool Holds(const std::string& program) const {
        const auto& image = _flash.application.image;
        return _flash.application.valid && std::string(image.begin(), image.end()) == program;
    }

    void ExpectRuns(const std::string& program) {
        EXPECT_TRUE(Holds(program));
        EXPECT_EQ(RunMaster(), (Version{1, static_cast<std::uint8_t>(program[14]), 7}));
    }

    template <class Module>
    void Step(Module& module) {
        _clock.Advance(_pace);
        module.Update();
    }

    TestClock _clock;
    std::int64_t _pace = 100'000; // between two Updates
    VirtualModule::Flash _flash;
    VirtualModule::InProcess _module;
    Stop _cut = NEVER; // the module's interrupts do not reach the host any more
    const std::shared_ptr<System::IFunc<bool>> _irq = System::Func<bool>::Create([this] {
        const bool level = _module.VelmoIrq_n();
        return level || _cut();
    });
    const std::shared_ptr<System::IArgFunc<bool, void>> _reset =
        System::ArgFunc<bool, void>::Create([this](bool level) { _module.Reset_n(level); });
    const std::shared_ptr<System::IArgFunc<bool, void>> _bootloaderEnable =
        System::ArgFunc<bool, void>::Create([this](bool level) { _module.BootloaderEnable_n(level); });
    std::shared_ptr<Vt22Bootloader> _host;
    int _remaining = 0;
    // Of the update that runs, as the module sees it.
    int _taken = 0;    // requests
    int _answered = 0; // answers
    int _writes = 0;   // writes of the host's register
};

TEST_F(Vt22BootloaderLifeTest, BringsTheNewFirmwareToRun) {
    EXPECT_EQ(RunMaster(), (Version{1, 4, 2}));
    for (const std::size_t size : {16u, 256u, 257u, 512u, 5000u}) {
        SCOPED_TRACE(size);
        const std::string program = Image(size, static_cast<char>(size % 100));
        Update(program);
        EXPECT_EQ(_remaining, 0);
        ExpectRuns(program);
    }
    const std::string unsealed = "VT22-VERSION:\x01\x09\x07 without a seal";
    Update(unsealed);
    ExpectRuns(unsealed);
}

TEST_F(Vt22BootloaderLifeTest, ModuleRefusesAProgramWithAnyByteChanged) {
    const std::string good = Image(40);
    for (std::size_t at = 0; at < good.size(); ++at) {
        SCOPED_TRACE(at);
        std::string bad = good;
        bad[at] = static_cast<char>(bad[at] ^ 1 << at % 8);
        ExpectRefusedUpdate(bad);
        EXPECT_EQ(_remaining, 1) << "only the last request is refused";
        EXPECT_EQ(RunMaster(), std::nullopt);
    }
    Update(good);
    ExpectRuns(good);
}

TEST_F(Vt22BootloaderLifeTest, EveryInterruptedUpdateCanBeRunAgain) {
    const std::string before = Image(700, 3);
    const std::string program = Image(2000);
    Update(before);
    Update(program);
    const int requests = _answered;
    EXPECT_EQ(requests, 4 + 8 + 1);
    int cuts = 0;
    for (int request = 1; request <= requests; ++request) {
        const Stop taken = [&] { return _taken == request; };
        const Stop answered = [&] { return _answered == request; };
        const Stop seen = [&] { return _remaining == requests - request; };
        for (const Stop* moment : {&taken, &answered, &seen}) {
            SCOPED_TRACE(testing::Message() << "request " << request << ", moment " << cuts % 3);
            Update(before);
            if (moment == &answered)
                _cut = answered; // the module has answered, and the host will never know
            Update(program, *moment);
            _cut = NEVER;
            ++cuts;
            EXPECT_EQ(Holds(before), _taken < 3) << "until it is erased";
            EXPECT_EQ(Holds(program), _answered == requests) << "never less than all of it";
            EXPECT_EQ(RunMaster().has_value(), _taken < 3 || _answered == requests);
            Update(program);
            ExpectRuns(program);
        }
    }
    EXPECT_EQ(cuts, 3 * requests);
    std::cout << "The power was cut at " << cuts << " points of " << requests << " requests.\n";
}

struct Vt22BootloaderFastModuleTest : Vt22BootloaderLifeTest {
    Vt22BootloaderFastModuleTest() : Vt22BootloaderLifeTest(AtOnce()) {}
};

TEST_F(Vt22BootloaderFastModuleTest, SetsNoOtherPaceThanTheSpacingOfTheRegisterWrites) {
    const std::string program = Image(512 * 1024 - 11);
    _pace = 20'000;
    std::int64_t start = 0;
    Update(program, [&] {
        if (start == 0)
            start = TestClock::Nanoseconds();
        return false;
    });
    const std::int64_t elapsed = TestClock::Nanoseconds() - start;
    EXPECT_EQ(_answered, 4 + 2048 + 1);
    EXPECT_EQ(_writes, _answered) << "each acknowledgement leaves with the next request";
    EXPECT_LE(elapsed * 10, _writes * std::int64_t{500'000} * 11);
    EXPECT_TRUE(Holds(program));
}
