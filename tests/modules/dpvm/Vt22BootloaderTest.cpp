// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/FirmwareFileBuilder.h"
#include "tests/support/RecordingHostInterface.h"
#include "tests/support/TestClock.h"

#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/mailbox/MailboxTimeoutException.h"
#include "vesk/modules/dpvm/Vt22Bootloader.h"

#include <algorithm>
#include <tuple>

using namespace Vesk;
using Modules::DPVM::Vt22Bootloader;
using State = Vt22Bootloader::ModuleState_e;
using System::ArgumentException;
using System::ArgumentOutOfRangeException;
using Bytes = std::vector<int>;
using Log = std::vector<std::string>;

/// A bootloader module object in front of a DPRAM whose other side, the module, is played by the test.
class Vt22BootloaderTest : public testing::Test {
protected:
    Vt22BootloaderTest() { StartOver(); }

    /// Another module object in front of the same module, freshly booted.
    void StartOver() {
        _host = std::make_shared<RecordingHostInterface>();
        _module = Vt22Bootloader::Create(_host);
        _clock.Advance(500'000);
        _module->Update();
        _host->Put(0x1FBE, {2, 7, 0, 0, 0, 0, 0x01, 0x02, 0x03, 0x04});
        _host->Put(0x1FDE, {0x01, 0x01});
        _host->irq = true;
        Update();
    }

    /// What Update does on the bus and to the lines, without the look at the module's register.
    Log Update(std::int64_t nanoseconds = 0) {
        _clock.Advance(nanoseconds);
        _module->Update();
        Log log = _host->TakeLog();
        const Log look{"irq", "R8 1fff", "R8 1fff"};
        if (log.size() >= 3 && std::equal(look.begin(), look.end(), log.begin()))
            log.erase(log.begin(), log.begin() + 3);
        return log;
    }

    /// The time that the host leaves between two writes of its register passes; it announces its next
    /// request.
    void NextRequest() { EXPECT_EQ(Update(500'000).back(), "R8 1ffd"); }

    /// The module acknowledges the request and answers it, with an error code in `error` if not 0.
    void Answer(int error = 0) {
        std::copy_n(&_host->bytes.at(0x1BFE), 6, &_host->bytes.at(0x1D1E));
        _host->Put(0x1D20, {(error & 0x80) | (error & 0x0F), _host->bytes.at(0x1C01)});
        _host->Put(0x1D24, {0, 0, 0, 1, 0, 1});
        _host->Put(0x1FFF, {_host->bytes.at(0x1FFF) ^ 0xC0});
    }

    /// Answers `count` requests and stops with the next one taken.
    void AnswerRequests(int count) {
        NextRequest();
        while (count-- > 0) {
            Answer();
            NextRequest();
        }
    }

    void Begin(const FirmwareFileBuilder& firmware) {
        const auto file = firmware.Read();
        file->FirmwareType == Modules::Bootloader::FirmwareType_e::BOOTLOADER_FIRMWARE
            ? _module->BeginBootloaderDownload(file, &_remaining)
            : _module->BeginFirmwareDownload(file, &_remaining);
    }

    void Begin(int type, int programSize) { Begin(FirmwareFileBuilder().Type(type).Program(programSize)); }

    TestClock _clock;
    std::shared_ptr<RecordingHostInterface> _host;
    std::shared_ptr<Vt22Bootloader> _module;
    int _remaining = -1;
};

TEST_F(Vt22BootloaderTest, ChecksBeforeItBegins) {
    const auto firmware = FirmwareFileBuilder().Read();
    const auto bootloader = FirmwareFileBuilder().Type(1).Read();
    const auto expectNone = [this] {
        ExpectFailure<System::InvalidOperationException>("No download in progress",
                                                         [this] { _module->EndDownload(&_remaining); });
    };
    expectNone();
    ExpectFailure<ArgumentException>("BOOTLOADER_FIRMWARE",
                                     [&] { _module->BeginFirmwareDownload(bootloader, &_remaining); });
    ExpectFailure<ArgumentException>("APPLICATION_FIRMWARE",
                                     [&] { _module->BeginBootloaderDownload(firmware, &_remaining); });
    ExpectFailure<ArgumentException>("CONFIGURATION_FIRMWARE", [this] { Begin(3, 0); });
    ExpectFailure<ArgumentOutOfRangeException>("segments (65536) must not be greater than frames (65535)",
                                               [this] { Begin(2, 65535 * 256 + 1); });
    EXPECT_EQ(_module->State(), State::BOOTED);
    EXPECT_EQ(_remaining, -1);
    EXPECT_EQ(Update(500'000), Log{});
    Begin(1, 0);
    ExpectFailure<ArgumentOutOfRangeException>("_state (3) must be equal to BOOTED (2)",
                                               [this] { Begin(1, 0); });
    for (const State state : {State::POWER_OFF, State::POWER_ON, static_cast<State>(-1)}) {
        _module->ChangeState(state);
        expectNone();
    }
    _module = Vt22Bootloader::Create(_host);
    _module->ChangeState(State::BOOTED);
    ExpectFailure<System::NullReferenceException>("_mailbox is null", [this] { Begin(1, 0); });
    EXPECT_EQ(_module->State(), State::BOOTED) << "what cannot be queued is not begun";
}

TEST_F(Vt22BootloaderTest, SaysWhereTheProgramBelongsAndThenLeavesTheModuleAlone) {
    const std::tuple<int, Bytes, Bytes> cases[] = {
        // type, address of the first segment, checksum, and of which bytes
        {1, {0, 0, 0, 0}, {0x37, 0x4B, 0, 0, 0, 0, 1, 2, 3, 3}},
        {2, {0, 2, 0, 0}, {0x37, 0x4B, 0, 2, 0, 0x10, 1, 4, 3, 0x13}}};
    for (const auto& [type, address, checked] : cases) {
        StartOver();
        Begin(FirmwareFileBuilder().Type(type).Program("123456789"));
        AnswerRequests(_remaining - 2);
        EXPECT_EQ(_host->Bytes(0x1C0A, 4), address);
        Answer();
        NextRequest();
        EXPECT_EQ(_host->Bytes(0x1C1E, 10), checked);
        Answer();
        Update();
        EXPECT_TRUE(_module->EndDownload(&_remaining) && _module->Booted());
        EXPECT_EQ(_remaining, 0);
        _host->Put(0x1FFF, {0x40});
        _clock.Advance(20'000'000'000);
        _module->Update();
        EXPECT_EQ(_host->TakeLog(), Log{});
    }
}

TEST_F(Vt22BootloaderTest, WritesAcknowledgementAndNextRequestTogether) {
    Begin(2, 600);
    _host->beforeAccess = [this](const std::string& access) {
        if (access.starts_with("W8"))
            _clock.Advance(400'000); // a slow bus
    };
    EXPECT_EQ(Update(500'000), (Log{"W 1bfe+32", "W8 1ffd=80", "R8 1ffd"}));
    Answer();
    EXPECT_EQ(Update(499'999), (Log{"R 1d1e+288", "W 1bfe+32"})); // the register has to wait
    EXPECT_EQ(Update(1), (Log{"W8 1ffd=40", "R8 1ffd"}));
    _host->Put(0x1FFF, {0x40}); // a slower module: takes the request first and answers it later
    EXPECT_EQ(Update(), Log{});
    Answer();
    _host->Put(0x1FFF, {0x00});
    EXPECT_EQ(Update(500'000), (Log{"R 1d1e+288", "W 1bfe+32", "W8 1ffd=80", "R8 1ffd"}));
}

TEST_F(Vt22BootloaderTest, EachRequestMayFailAndOnlyTheSlowOnesTakeTenSeconds) {
    for (const auto& [type, requests] : {std::pair(1, 5), {2, 8}})
        for (int answered = 0; answered < requests; ++answered) {
            SCOPED_TRACE(answered);
            const std::weak_ptr<Vt22Bootloader> before = _module;
            StartOver();
            EXPECT_TRUE(before.expired()) << "with its last reference, whatever it waits for";
            _host->beforeAccess = [this](const std::string& access) {
                if (access.starts_with("W "))
                    _clock.Advance(700'000'000); // the time of an answer begins after the request's writing
            };
            Begin(type, 600);
            const State state = type == 2 ? State::FIRMWARE_DOWNLOADING : State::BOOTLOADER_DOWNLOADING;
            AnswerRequests(answered);
            const int seconds = type == 2 && (answered == 2 || answered == 7) ? 10 : 1;
            EXPECT_EQ(Update(seconds * std::int64_t{1'000'000'000} - 1), Log{});
            Answer(0x87);
            ExpectFailure<Mailbox::MailboxResponseException>(
                "Received erroneous mailbox response:\nMailbox.Response\nError: Invalid Address\n...",
                [this] { _module->Update(); });
            EXPECT_EQ(_host->TakeLog(), (Log{"irq", "R8 1fff", "R8 1fff", "R 1d1e+288"}));
            _clock.Advance(1);
            ExpectFailure<Mailbox::MailboxTimeoutException>(
                "Timeout after " + std::to_string(seconds) + " seconds.\n...", [this] { _module->Update(); });
            EXPECT_EQ(_module->State(), state);
            EXPECT_FALSE(_module->EndDownload(&_remaining));
            EXPECT_EQ(_remaining, requests - answered);
        }
}
