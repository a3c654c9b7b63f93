// SPDX-License-Identifier: MIT
#include "tests/modules/dpvm/Vt22BootloaderFixture.h"
#include "tests/support/Values.h"

#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/mailbox/MailboxTimeoutException.h"
#include "vesk/mailbox/Response.h"

using namespace Vesk;
using System::ArgumentException;
using System::ArgumentNullException;
using System::ArgumentOutOfRangeException;

class Vt22BootloaderDownloadTest : public Vt22BootloaderFixture {
protected:
    /// Spoils a download with `spoil(type, answered)`, one for each request of each type that may be the
    /// last.
    template <class Spoil>
    void AtEachRequest(const Spoil& spoil) {
        for (const int type : {1, 2})
            for (int answered = 0; answered < (type == 2 ? 8 : 5); ++answered) {
                SCOPED_TRACE(std::to_string(answered) + " answered, type " + std::to_string(type));
                StartOver();
                Begin(type, 600);
                const State state = _module->State();
                AnswerRequests(answered);
                spoil(type, answered);
                EXPECT_EQ(_module->State(), state);
                EXPECT_FALSE(_module->EndDownload(&_remaining));
                EXPECT_EQ(_remaining, (type == 2 ? 8 : 5) - answered);
            }
    }
};

TEST_F(Vt22BootloaderDownloadTest, ChecksBeforeItBegins) {
    const auto firmware = FirmwareFileBuilder().Read();
    const auto bootloader = FirmwareFileBuilder().Type(1).Read();
    const auto configuration = FirmwareFileBuilder().Type(3).Read();
    ExpectFailure<ArgumentNullException>("firmware must not be null",
                                         [&] { _module->BeginFirmwareDownload(nullptr, nullptr); });
    ExpectFailure<ArgumentNullException>("remaining must not be null",
                                         [&] { _module->BeginBootloaderDownload(bootloader, nullptr); });
    ExpectFailure<ArgumentOutOfRangeException>("_state (0) must be equal to BOOTED (2)", [&] {
        _module->BeginFirmwareDownload(bootloader, &_remaining);
    });
    Boot();
    ExpectFailure<ArgumentException>("BOOTLOADER_FIRMWARE",
                                     [&] { _module->BeginFirmwareDownload(bootloader, &_remaining); });
    ExpectFailure<ArgumentException>("APPLICATION_FIRMWARE",
                                     [&] { _module->BeginBootloaderDownload(firmware, &_remaining); });
    ExpectFailure<ArgumentException>("CONFIGURATION_FIRMWARE",
                                     [&] { _module->BeginFirmwareDownload(configuration, &_remaining); });
    ExpectFailure<ArgumentOutOfRangeException>("segments (65536) must not be greater than frames (65535)",
                                               [this] { Begin(2, 65535 * 256 + 1); });
    EXPECT_EQ(_module->State(), State::BOOTED);
    EXPECT_EQ(_remaining, -1);
    _clock.Advance(500'000);
    EXPECT_EQ(Update(), (Log{"irq", "R8 1fff", "R8 1fff"}));
    Begin(1, 0);
    ExpectFailure<ArgumentOutOfRangeException>("_state (3) must be equal to BOOTED (2)",
                                               [this] { Begin(1, 0); });
}

TEST_F(Vt22BootloaderDownloadTest, EndsOnlyWhatHasBegun) {
    const auto expectNone = [this] {
        ExpectFailure<ArgumentNullException>("remaining must not be null",
                                             [this] { _module->EndDownload(nullptr); });
        ExpectFailure<System::InvalidOperationException>("No download in progress",
                                                         [this] { _module->EndDownload(&_remaining); });
    };
    expectNone();
    PowerOn();
    expectNone();
    StartOver();
    expectNone();
    EXPECT_EQ(_remaining, -1);
}

TEST_F(Vt22BootloaderDownloadTest, RefusesAStepThatIsOutOfItsTurn) {
    const auto fine =
        Mailbox::Response::Create(Mailbox::ErrorCode::NO_ERROR, System::Array<unsigned short>::Create(8),
                                  System::Array<unsigned char>::Create(0));
    ExpectFailure<ArgumentNullException>("response must not be null",
                                         [this] { _module->DownloadNext(nullptr); });
    ExpectFailure<System::NullReferenceException>("_downloadQueue is null",
                                                  [&] { _module->DownloadNext(fine); });
    _module->ChangeState(State::BOOTED);
    ExpectFailure<System::NullReferenceException>("_mailbox is null", [this] { _module->Update(); });
    ExpectFailure<System::NullReferenceException>("_mailbox is null", [this] { Begin(1, 0); });
    EXPECT_EQ(_remaining, -1) << "nothing has begun";
}

TEST_F(Vt22BootloaderDownloadTest, DownloadsEveryByteInItsPlace) {
    for (const int type : {1, 2})
        for (const int size : {0, 1, 255, 256, 257, 512, 600}) {
            SCOPED_TRACE(std::to_string(size) + " bytes, type " + std::to_string(type));
            StartOver();
            Begin(type, size);
            const int segments = (size + 255) / 256;
            const int requests = segments + (type == 2 ? 5 : 2);
            EXPECT_EQ(_module->State(),
                      type == 2 ? State::FIRMWARE_DOWNLOADING : State::BOOTLOADER_DOWNLOADING);
            for (int answered = 0; answered < requests; ++answered) {
                EXPECT_EQ(_remaining, requests - answered);
                NextRequest();
                Answer();
                Update();
                EXPECT_EQ(_module->EndDownload(&_remaining), answered == requests - 1);
            }
            EXPECT_EQ(_remaining, 0);
            EXPECT_EQ(_module->State(), State::DOWNLOAD_COMPLETE);

            std::vector<Frame> expected{{4, 4, 1, 1, 0, {}}};
            if (type == 2)
                expected = {{6, 1, 1, 1, 0, {}},
                            {6, 2, 1, 1, 0, {}},
                            {6, 3, 1, 1, 0, {}},
                            {4, 1, 1, 1, 0, std::vector<int>(8)}};
            const auto program = Values(FirmwareFileBuilder().Program(size).Read()->ProgramData);
            for (int first = 0; first < size; first += 256) {
                const auto begin = program.begin() + first;
                expected.push_back({4, type == 2 ? 2 : 5, segments, first / 256 + 1,
                                    (type == 2 ? 0x20000 : 0) + first,
                                    std::vector<int>(begin, begin + std::min(size - first, 256))});
            }
            ASSERT_EQ(_frames.size(), expected.size() + 1);
            EXPECT_TRUE(std::equal(expected.begin(), expected.end(), _frames.begin()));
        }
}

TEST_F(Vt22BootloaderDownloadTest, LastRequestCarriesTheChecksumOfTheProgram) {
    const std::pair<int, std::vector<int>> cases[] = {
        {1, {0x37, 0x4B, 0x00, 0x00, 0x00, 0x00, 0x01, 0x02, 0x03, 0x03}},
        {2, {0x37, 0x4B, 0x00, 0x02, 0x00, 0x10, 0x01, 0x04, 0x03, 0x13, 0, 0, 0, 0, 0, 0, 0, 0, 0,
             0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0, 0, 0, 0, 0, 0, 0, 0, 0}},
    };
    for (const auto& [type, data] : cases) {
        StartOver();
        Begin(FirmwareFileBuilder().Type(type).Program("123456789"));
        AnswerRequests(_remaining - 1);
        EXPECT_EQ(_frames.back(), (Frame{4, type == 1 ? 6 : 3, 1, 1, 0, data}));
    }
}

TEST_F(Vt22BootloaderDownloadTest, WritesAcknowledgementAndNextRequestTogether) {
    const auto log = [](Log accesses) {
        accesses.insert(accesses.begin(), {"irq", "R8 1fff", "R8 1fff"});
        return accesses;
    };
    Boot();
    Begin(2, 600);
    _clock.Advance(500'000);
    EXPECT_EQ(Update(), log({"W 1bfe+32", "W8 1ffd=80", "R8 1ffd"}));
    Answer();
    EXPECT_EQ(Update(), log({"R 1d1e+288", "W 1bfe+32"})); // the register has to wait
    _clock.Advance(500'000);
    EXPECT_EQ(Update(), log({"W8 1ffd=40", "R8 1ffd"}));
    _host->Put(0x1FFF, {0x40}); // a slower module: takes the request first and answers it later
    EXPECT_EQ(Update(), log({}));
    Answer();
    _host->Put(0x1FFF, {0x00});
    _clock.Advance(500'000);
    EXPECT_EQ(Update(), log({"R 1d1e+288", "W 1bfe+32", "W8 1ffd=80", "R8 1ffd"}));
}

TEST_F(Vt22BootloaderDownloadTest, MailboxHoldsTheRequestInItsWireForm) {
    Boot();
    Begin(2, 600);
    AnswerRequests(5);
    EXPECT_EQ(_host->Bytes(0x1BFE, 32),
              (std::vector<int>{0x00, 0x06, 0x40, 0x04, 0x00, 0x02, 0x01, 0x00, 0x00, 0x03, 0x00,
                                0x02, 0x00, 0x02, 0x01, 0x00, 0,    0,    0,    0,    0,    0,
                                0,    0,    0,    0,    0,    0,    0,    0,    0,    0}));
}

TEST_F(Vt22BootloaderDownloadTest, OnlyTheSlowRequestsMayTakeTenSeconds) {
    AtEachRequest([this](int type, int answered) {
        const int seconds = type == 2 && (answered == 2 || answered == 7) ? 10 : 1; // erase and last
        _clock.Advance(seconds * std::int64_t{1'000'000'000} - 1);
        EXPECT_NO_THROW(_module->Update());
        _clock.Advance(1);
        for (int attempt = 0; attempt < 2; ++attempt)
            try {
                _module->Update();
                ADD_FAILURE() << "no time-out";
            } catch (const std::shared_ptr<System::Exception>& thrown) {
                EXPECT_TRUE(std::dynamic_pointer_cast<Mailbox::MailboxTimeoutException>(thrown));
                const std::string message = "Timeout after " + std::to_string(seconds) + " seconds.\n";
                EXPECT_TRUE(thrown->Message().Value().starts_with(message)) << thrown->Message().Value();
            }
    });
}

TEST_F(Vt22BootloaderDownloadTest, ErrorAnswerEndsTheDownloadAtAnyRequest) {
    AtEachRequest([this](int, int) {
        Answer(0x87);
        _host->TakeLog();
        ExpectFailure<Mailbox::MailboxResponseException>(
            "Received erroneous mailbox response:\nMailbox.Response\nError: Invalid Address\n"
            "Extended: [0000, 0000, 0000, 0000, 0000, 0000, 0000, 0000]\nData: []\n\n",
            [this] { _module->Update(); });
        EXPECT_EQ(_host->TakeLog(), (Log{"irq", "R8 1fff", "R8 1fff", "R 1d1e+288"}));
    });
}

TEST_F(Vt22BootloaderDownloadTest, LeavesTheModuleAloneOnceComplete) {
    Boot();
    Begin(1, 0);
    AnswerRequests(1);
    Answer();
    Update();
    ASSERT_EQ(_module->State(), State::DOWNLOAD_COMPLETE);
    EXPECT_TRUE(_module->Booted());
    _host->Put(0x1FFF, {0x40});
    _clock.Advance(20'000'000'000);
    EXPECT_EQ(Update(), Log{});
    EXPECT_TRUE(_module->EndDownload(&_remaining));
    ExpectFailure<ArgumentOutOfRangeException>("_state (5) must be equal to BOOTED (2)",
                                               [this] { Begin(1, 0); });
}

TEST_F(Vt22BootloaderDownloadTest, FastModuleSetsNoOtherPaceThanTheRegisterWrites) {
    Boot();
    Begin(2, 512 * 1024);
    const int requests = _remaining;
    EXPECT_EQ(requests, 4 + 2048 + 1);
    int writes = 0;
    std::int64_t elapsed = 0;
    while (_module->State() == State::FIRMWARE_DOWNLOADING && elapsed < 10'000'000'000) {
        const Log log = Update();
        writes += static_cast<int>(
            std::count_if(log.begin(), log.end(), [](const auto& access) { return access.find("W8") == 0; }));
        if (TakeRequest())
            Answer();
        _clock.Advance(20'000);
        elapsed += 20'000;
    }
    EXPECT_EQ(_module->State(), State::DOWNLOAD_COMPLETE);
    EXPECT_EQ(writes, requests);
    EXPECT_LE(elapsed * 10, writes * std::int64_t{500'000} * 11);
}

TEST_F(Vt22BootloaderDownloadTest, IsGoneWithItsLastReferenceDuringADownload) {
    Boot();
    Begin(2, 600);
    AnswerRequests(3);
    const std::weak_ptr<Vt22Bootloader> observer = _module;
    _module = nullptr;
    EXPECT_TRUE(observer.expired());
}
