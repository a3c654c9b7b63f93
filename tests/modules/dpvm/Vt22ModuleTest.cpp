// SPDX-License-Identifier: MIT
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/RecordingHostInterface.h"
#include "tests/support/TestClock.h"

#include "vesk/core/VeskException.h"
#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/mailbox/MailboxTimeoutException.h"
#include "vesk/mailbox/Response.h"
#include "vesk/modules/dpvm/DPVMMessages.h"
#include "vesk/modules/dpvm/Vt22FatalEventException.h"
#include "vesk/modules/dpvm/Vt22Module.h"

#include <algorithm>
#include <functional>
#include <tuple>

using namespace Vesk::Modules::DPVM;
using System::Array;
using M = DPVMMessages;
using Vesk::ConfigException;
using Vesk::ModuleStateException;
using Vesk::Mailbox::IResponse;
using Vesk::Mailbox::MailboxTimeoutException;
using Log = std::vector<std::string>;
using Words = std::vector<int>;

static constexpr std::int64_t SECOND = 1'000'000'000;
static const char* const ERRONEOUS = "Received erroneous mailbox response:\n...";

/// A master module object on a DPRAM in memory, whose module side the test plays by hand, step by step.
class Vt22ModuleTest : public testing::Test {
protected:
    using State = Vt22Module::ModuleState_e;

    Vt22ModuleTest() { Create(); }

    /// A module object of its own, just created.
    void Create(std::shared_ptr<Config::IBusConfig> config = nullptr) {
        const auto note = [this](const char* name) {
            return System::Func<void>::Create([this, name] { _calls.push_back(name); });
        };
        const auto mode = System::ArgFunc<OperationMode_e, void>::Create([this](OperationMode_e reached) {
            _calls.push_back("mode " + std::to_string(static_cast<int>(reached)));
        });
        _module = Vt22Module::Create(_dpRam, note("offline"), note("online"), mode, std::move(config));
        _dpRam->Put(0, {2, 1, 0, 0, 0, 0, 0, 0, 0, 9, 0x02, 0x01, 0, 1, 0, 5, 3, 4, 5});
    }

    void Update(std::int64_t nanoseconds = 0) {
        _clock.Advance(nanoseconds);
        _module->Update();
    }

    /// The module raises its interrupt with `indication` and the object gets one Update.
    void Raise(int indication) {
        _dpRam->Put(0x1FFB, {indication});
        _dpRam->irq = true;
        const std::shared_ptr<void> whateverHappens(nullptr, [this](void*) { _dpRam->irq = false; });
        Update();
    }

    /// Like Raise, and then 2 ms pass so that the host has answered the interrupt.
    void RaiseAndSettle(int indication) {
        Raise(indication);
        Update(2'000'000);
    }

    /// The module hands the out-area over with these registers, once its last interrupt is answered.
    void HandOver(int indication, int status, int change = 0, int mode = 0) {
        Update(2'000'000);
        _dpRam->Put(0x1042, {indication >> 8, indication & 0xFF, status >> 8, status & 0xFF, change >> 8,
                             change & 0xFF});
        _dpRam->Put(0x1078, {mode});
        Raise(0x01);
    }

    void ExpectFailureOf(const std::string& message, int indication, int status, int change = 0,
                         int mode = 0) {
        ExpectFailure<ModuleStateException>(message, [&] { HandOver(indication, status, change, mode); });
    }

    /// The reset pulse passes, and a good module reports its power-on.
    void Boot() {
        Update(500'000);
        Raise(0x10);
        ASSERT_EQ(_module->State(), State::BOOTED);
        Update(2'000'000);
    }

    /// Answers what BeginInitialization sends until the module is initialised. Its database has so many bytes
    /// each way.
    void Initialize(int length = 0) {
        _module->BeginInitialization();
        Update();
        for (const int command : {0x17, 0x01, 0x02, 0x03}) {
            ASSERT_EQ(Command(), command);
            Answer(0, {length, length, length, length});
        }
        ASSERT_FALSE(_module->Initialized());
        Update();
        ASSERT_TRUE(_module->Initialized());
        _dpRam->TakeLog();
    }

    /// The module takes the request in mailbox-in and answers it with an error of this id.
    void Answer(int error = 0, std::initializer_list<int> extended = {}) {
        const auto request = _dpRam->Bytes(0x56, 6);
        _dpRam->Put(0x176, {request[0], request[1], error, request[3], request[4], request[5], 0, 0, 0, 1, 0,
                            1, 0, 0, 0, 0});
        std::fill_n(_dpRam->bytes.begin() + 0x186, 16, static_cast<unsigned char>(0));
        int offset = 0x186;
        for (const int word : extended) {
            _dpRam->Put(offset, {word >> 8, word & 0xFF});
            offset += 2;
        }
        Raise(0x0C);
    }

    int Word(int offset) const {
        const auto bytes = _dpRam->Bytes(offset, 2);
        return bytes[0] << 8 | bytes[1];
    }

    /// The command of the request in mailbox-in.
    int Command() const { return Word(0x5A); }

    template <class ExceptionType>
    auto ExpectRaise(int indication, const std::string& message) {
        return ExpectFailure<ExceptionType>(message, [&] { Raise(indication); });
    }

    /// Fails each of these requests of the initialisation, or of a download with a configuration, with an
    /// error and with its time-out.
    void FailAtEach(const std::vector<std::pair<int, int>>& requests,
                    const std::shared_ptr<Config::IBusConfig>& config) {
        for (const auto& [command, seconds] : requests)
            for (const bool answered : {true, false}) {
                SCOPED_TRACE(command);
                Create(config);
                Boot();
                if (!config)
                    _module->BeginInitialization();
                Update();
                while (Command() != command)
                    Answer();
                const State state = _module->State();
                if (answered)
                    ExpectFailure<Vesk::Mailbox::MailboxResponseException>(ERRONEOUS,
                                                                           [this] { Answer(0x86); });
                else
                    ExpectTimeout<MailboxTimeoutException>(
                        seconds * SECOND, "Timeout after " + std::to_string(seconds) + " seconds.\n...");
                EXPECT_EQ(_module->State(), state);
            }
    }

    template <class ExceptionType>
    void ExpectTimeout(std::int64_t nanoseconds, const std::string& message) {
        Update(nanoseconds - 1);
        ExpectFailure<ExceptionType>(message, [this] { Update(1); });
    }

    TestClock _clock;
    std::shared_ptr<RecordingHostInterface> _dpRam = std::make_shared<RecordingHostInterface>();
    Log _calls; // of the callbacks
    std::shared_ptr<Vt22Module> _module;
};

// ---- power-up

TEST_F(Vt22ModuleTest, AcceptsNoOtherIndicationThanPowerOnAtBoot) {
    Update(500'000);
    const std::string missing = "Missing PowerOn indication at bootup!\nActual:   ";
    const std::string unexpected = "Unexpected indication at bootup!\nActual:   ";
    for (const auto& [indication, message] : {std::pair{0x00, std::string("Empty indication at bootup!")},
                                              {0x01, missing + "OutAcquired \n"},
                                              {0x80, missing + "\n"},
                                              {0x11, unexpected + "OutAcquired PowerOn \n"},
                                              {0x12, unexpected + "InAreaAcquired PowerOn \n"},
                                              {0x14, unexpected + "MailboxOutUpdated PowerOn \n"},
                                              {0x18, unexpected + "MailboxInAcknowledged PowerOn \n"},
                                              {0x50, unexpected + "PowerOn Log \n"}})
        ExpectRaise<ModuleStateException>(indication, message);
    ExpectRaise<Vt22FatalEventException>(0x3F, "Fatal event reported by VT22 module");
    EXPECT_EQ(_module->State(), State::POWER_ON);
}

TEST_F(Vt22ModuleTest, HasNothingToShowBeforeTheFirstPowerOn) {
    const auto bytes = Array<unsigned char>::Create(1);
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"_outArea is null", [&] { _module->GetSlaveConfiguredList(); }},
        {"_inArea is null", [&] { _module->MapInputData(0, bytes, 0, 1); }},
        {"_outArea is null", [&] { _module->MapOutputData(0, bytes, 0, 1); }},
        {"_mailbox is null", [&] { _module->GetLiveList(nullptr); }},
    };
    for (const auto& [message, call] : cases)
        ExpectFailure<System::NullReferenceException>(message, call);
    ExpectFailure<ModuleStateException>("Module not configured", [this] { _module->GetDatabaseInfo(); });
    ExpectFailure<ModuleStateException>("Module not booted or configured!",
                                        [this] { _module->BeginInitialization(); });
}

TEST_F(Vt22ModuleTest, NamesItsStates) {
    const char* const names[] = {"POWER_OFF",         "POWER_ON",     "BOOTED",      "DOWNLOADING",
                                 "DOWNLOAD_COMPLETE", "INITIALIZING", "INITIALIZED", "UNKNOWN: 7"};
    for (int state = 0; state < 8; ++state)
        EXPECT_EQ(Vt22Module::StateToString(static_cast<State>(state)).Value(), names[state]);
}

// ---- the cycle

TEST_F(Vt22ModuleTest, HandlesAnIndicationInItsOrder) {
    Boot();
    Initialize();
    const auto bytes = Array<unsigned char>::Create(4);
    _module->MapInputData(0, bytes, 0, 2);
    _module->MapOutputData(8, bytes, 2, 2);
    _module->GetLiveList(nullptr);
    _module->GetLiveList(nullptr);
    RaiseAndSettle(0x00);
    _dpRam->TakeLog();
    _dpRam->Put(0x1042, {0, 7, 0, 2, 0, 0x1F});
    const auto lists = {_module->GetSlaveConfiguredList(), _module->GetDataTransferList(),
                        _module->GetSlaveDiagnosticList(), _module->GetDpv1ConnectionLiveList()};
    for (const auto& [offset, value] : {std::pair{0x1048, 1}, {0x1058, 2}, {0x1068, 3}, {0x1086, 4}})
        _dpRam->Put(offset + 15, {value});
    _dpRam->Put(0x1078, {0x40});
    _dpRam->Put(0x176, {0, 5, 0, 2, 0, 0x18, 0, 0});
    Raise(0x0F);
    EXPECT_EQ(_dpRam->TakeLog(),
              (Log{"irq", "R8 1ffb", "R8 1ffe", "R 0176+288", "R16 1042", "R16 1044", "R16 1046", "R 1048+16",
                   "R 1058+16", "R 1068+16", "R 1086+16", "R 1078+14", "R 109e+2", "W 0056+32", "W 0296+2",
                   "W8 1ffa=0f", "W8 1ffc=0f"}))
        << "acknowledgements, releases and the next request leave in one write";
    EXPECT_EQ(_calls, (Log{"online", "mode 64"}));
    for (int expected = 0; const auto& list : lists)
        EXPECT_EQ(list->Get(15), ++expected) << "in place";
    Update();
    EXPECT_EQ(_dpRam->TakeLog(), Log{"irq"}) << "an idle update looks at the line and nothing else";
    Raise(0x00);
    ExpectRaise<System::InvalidOperationException>(0x00, "Application handshake not locked");
    EXPECT_EQ(_module->State(), State::INITIALIZED) << "a failure leaves the state";
}

// ---- the out-area

TEST_F(Vt22ModuleTest, RefusesReservedBitsInEachRegister) {
    Boot();
    for (int bit = 3; bit < 16; ++bit) {
        char text[48];
        std::snprintf(text, sizeof text, " register\n%x\n", 1 << bit);
        ExpectFailureOf(std::string("Reserved bits set in indication") + text, 1 << bit, 0);
        ExpectFailureOf(std::string("Reserved bits set in module status") + text, 1, 1 << bit);
        if (bit >= 5)
            ExpectFailureOf(std::string("Reserved bits set in indication") + text, 2, 0, 1 << bit);
    }
    EXPECT_EQ(_calls, Log{});
}

TEST_F(Vt22ModuleTest, ReportsOfflineAndOnlineButNeverTwiceInARow) {
    Boot();
    HandOver(1, 0x0002);
    ExpectFailureOf("Double online indication received", 1, 0x0002);
    HandOver(1, 0x0001);
    ExpectFailureOf("Double offline indication received", 1, 0x0001);
    HandOver(1, 0x0000);
    HandOver(1, 0x0001);
    HandOver(1, 0x0002);
    ExpectFailureOf("Simultaneous offline and online indication", 1, 0x0003);
    ExpectFailureOf("Double online indication received", 1, 0x0002);
    HandOver(4, 0x0003); // a status that is not named as changed is not read
    EXPECT_EQ(_calls, (Log{"online", "offline", "offline", "online"}));
}

TEST_F(Vt22ModuleTest, CallsBackWithEachNewModeThatIsOne) {
    Boot();
    for (const auto& [change, mode] :
         {std::pair{0x08, 0x00}, {0x08, 0xC0}, {0x08, 0xC0}, {0x01, 0x80}, {0x08, 0x40}, {0x08, 0x80}})
        HandOver(2, 0, change, mode);
    EXPECT_EQ(_calls, (Log{"mode 192", "mode 64", "mode 128"}));
    ExpectFailureOf("Invalid operation mode: 0", 2, 0, 0x08, 0x00);
    ExpectFailureOf("Invalid operation mode: c1", 2, 0, 0x09, 0xC1);
}

// ---- the download and the initialisation

TEST_F(Vt22ModuleTest, GivesEachStepItsTime) {
    const auto config = DatabaseFileBuilder().Master().Read();
    FailAtEach({{0x17, 3}, {0x01, 1}, {0x02, 1}, {0x03, 5}}, nullptr);
    FailAtEach({{0x10, 3}, {0x16, 3}, {0x12, 3}, {0x11, 3}}, config);
    Create(config);
    Boot();
    for (int answer = 0; answer < 3; ++answer) {
        _clock.Advance(29 * SECOND / 10);
        Answer();
    }
    ExpectTimeout<ModuleStateException>(13 * SECOND / 10, "Timeout waiting for DOWNLOAD_COMPLETE");
    Create();
    Boot();
    _module->BeginInitialization();
    ExpectFailure<ModuleStateException>("Module already initialized",
                                        [this] { _module->BeginInitialization(); });
    ExpectTimeout<ModuleStateException>(10 * SECOND, "Timeout waiting for INITIALIZED");
}

TEST_F(Vt22ModuleTest, TellsAModuleWithoutADatabaseByItsAnswer) {
    for (const auto& [error, word] : {std::pair{0x8F, 2}, {0x87, 1}}) { // another word, another error
        Create(DatabaseFileBuilder().Master().Read());
        Boot();
        ExpectFailure<Vesk::Mailbox::MailboxResponseException>(ERRONEOUS, [this, e = error, w = word] {
            Answer(e, {0, 0, 0, 0, 0, 0, 0, w});
        });
    }
}

TEST_F(Vt22ModuleTest, StartsAnewWithEachReset) {
    const auto bytes = Array<unsigned char>::Create(16);
    std::shared_ptr<System::IArray<unsigned char>> list;
    for (int life = 0; life < 2; ++life) {
        Boot();
        EXPECT_NE(_module->GetDataTransferList(), list);
        list = _module->GetDataTransferList();
        _module->MapInputData(0, bytes, 0, 8);
        _module->MapInputData(8, bytes, 0, 8);
        ExpectFailure<ConfigException>("Start of segment within existing segment\n0 >= 0 && 0 < 8",
                                       [&] { _module->MapInputData(0, bytes, 0, 16); });
        _clock.Advance(100 * SECOND);
        RaiseAndSettle(0x00);
        EXPECT_EQ(_module->State(), State::BOOTED) << "no download without a configuration, and no limit";
        Initialize(16); // from the module's own database, which is read anew
        EXPECT_FALSE(_module->Configured());
        ExpectFailure<ModuleStateException>("Module not configured", [this] { _module->GetDatabaseInfo(); });
        Update(100 * SECOND);
        _module->Reset();
    }
}

TEST_F(Vt22ModuleTest, ChecksTheMappingsAgainstTheDatabaseInOrder) {
    // input: offset and count; output: offset and count
    const std::tuple<int, int, int, int, const char*> cases[] = {
        {90, 24, 90, 31, "More input data mapped than available in config [ 20 < 24 ]"},
        {90, 20, 90, 31, "More output data mapped than available in config [ 30 < 31 ]"},
        {91, 10, 100, 11, "Input data mapped outside of available area [ 100 < 101 ]"},
        {80, 20, 100, 11, "Output data mapped outside of available area [ 110 < 111 ]"},
        {80, 20, 80, 30, nullptr},
    };
    for (const auto& [in, inCount, out, outCount, message] : cases) {
        Create();
        Boot();
        const auto bytes = Array<unsigned char>::Create(64);
        _module->MapInputData(static_cast<unsigned short>(in), bytes, 0, inCount);
        _module->MapOutputData(static_cast<unsigned short>(out), bytes, 0, outCount);
        ExpectFailure<System::NullReferenceException>("_databaseInfo is null", [this] {
            _module->Init_StartInit(Vesk::Mailbox::Response::Create(Vesk::Mailbox::ErrorCode::NO_ERROR,
                                                                    Array<unsigned short>::Create(8),
                                                                    Array<unsigned char>::Create(0)));
        });
        _module->BeginInitialization();
        RaiseAndSettle(0x00);
        Answer(0, {30, 20, 110, 100});
        if (message)
            ExpectFailure<ConfigException>(message, [this] { Answer(); });
        else
            Answer();
        EXPECT_EQ(Command(), message ? 0x01 : 0x02) << "nothing further is sent after a failure";
        if (!message)
            EXPECT_EQ(_dpRam->Bytes(0x76, 12), (Words{0, 100, 0, 100, 0, 100, 0, 110, 0, 110, 0, 110}));
    }
}

// ---- the services

TEST_F(Vt22ModuleTest, SendsEachServiceWithItsWordsAndThreeSecondsToAnswer) {
    Boot();
    Initialize();
    const std::string stations(126, '\1'), most(256, 'x');
    const auto array = [](const std::string& text) {
        return Array<unsigned char>::Create({text.begin(), text.end()});
    };
    int answers = 0;
    const auto count = System::ArgFunc<std::shared_ptr<IResponse>, void>::Create(
        [&](const std::shared_ptr<IResponse>&) { ++answers; });
    Vt22Module& m = *_module;

    const std::tuple<std::function<void()>, int, Words, std::string> cases[] = {
        {[&] { m.SetOperationMode(OperationMode_e::CLEAR); }, 0x02, {0x8000}, ""},
        {[&] { m.GetSlaveDiag(126, count); }, 0x04, {0x7E01}, ""},
        {[&] { m.Enqueue(M::GetSlaveDiag(126, M::RequestType_e::TYPE_0), count, 3); }, 0x04, {0x7E00}, ""},
        {[&] { m.GetSlaveConfig(3, count); }, 0x05, {0x0300}, ""},
        {[&] { m.SetSlaveAddress(3, 4, 0x1234, array("u"), count); }, 0x06, {0x0304, 0x1234, 0}, "u"},
        {[&] { m.Enqueue(M::SetSlaveAddress(3, 4, 5, 0xFF, array("u")), count, 3); },
         0x06,
         {0x0304, 5, 0xFF00},
         "u"},
        {[&] { m.ReadSlaveInput(5, count); }, 0x09, {0x0500}, ""},
        {[&] { m.ReadSlaveOutput(5, count); }, 0x0A, {0x0500}, ""},
        {[&] { m.StartSlaves(array(stations), count); }, 0x0B, {}, stations},
        {[&] { m.StopSlaves(array(stations), count); }, 0x0C, {}, stations},
        {[&] { m.GetLiveList(count); }, 0x18, {}, ""},
        {[&] { m.Class1Read(5, 1, 2, 3, count); }, 0x20, {0x0501, 0x0203}, ""},
        {[&] { m.Class1Write(5, 1, 2, array("abc"), count); }, 0x21, {0x0501, 0x0203}, "abc"},
        {[&] { m.Class2Initiate(5, count); }, 0x25, {6, 0x0500}, ""},
        {[&] { m.Class2Abort(5, 7, 8, count); }, 0x26, {6, 0x0708}, ""},
        {[&] { m.Class2Abort(255, 7, 8, count); }, 0x26, {256, 0x0708}, ""},
        {[&] { m.Class2Read(5, 1, 2, 3, count); }, 0x27, {6, 0x0102, 0x0300}, ""},
        {[&] { m.Class2Write(5, 1, 2, array("abc"), count); }, 0x28, {6, 0x0102, 0x0300}, "abc"},
        {[&] { m.Class2Write(5, 1, 2, array(most), count); }, 0x28, {6, 0x0102, 0}, most},
    };
    for (auto [call, command, words, data] : cases) {
        call();
        RaiseAndSettle(0x00);
        words.resize(8);
        EXPECT_EQ(Command(), command);
        for (int i = 0; i < 8; ++i)
            EXPECT_EQ(Word(0x66 + 2 * i), words[static_cast<std::size_t>(i)]) << command;
        const auto bytes = _dpRam->Bytes(0x76, Word(0x5C));
        EXPECT_EQ(std::string(bytes.begin(), bytes.end()), data) << command;
        EXPECT_EQ(Word(0x58), 0x4002) << "a fieldbus request";
        Update(3 * SECOND - 2'000'001);
        Answer(command == 0x18 ? 0x82 : 0);
        RaiseAndSettle(0x00);
    }
    EXPECT_EQ(answers, 18) << "an error reaches the callback too, and SetOperationMode has none";
    _module->SetOperationMode(OperationMode_e::STOP);
    _module->Enqueue(M::GetLiveList(), nullptr, 3);
    Update();
    EXPECT_THROW(Answer(0x82), Vesk::Mailbox::MailboxResponseException) << "which throws it then";
    ExpectTimeout<MailboxTimeoutException>(3 * SECOND, "Timeout after 3 seconds.\n...");
}
