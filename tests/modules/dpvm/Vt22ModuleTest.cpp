// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/ScriptedMaster.h"
#include "tests/support/Values.h"

#include "vesk/core/VeskException.h"
#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/mailbox/MailboxTimeoutException.h"
#include "vesk/mailbox/Response.h"
#include "vesk/modules/dpvm/Vt22.h"
#include "vesk/modules/dpvm/Vt22FatalEventException.h"

#include <tuple>

using namespace Vesk::Modules::DPVM;
using System::ArgumentOutOfRangeException;
using System::Array;
using System::NullReferenceException;
using Vesk::ModuleStateException;
using Vesk::Mailbox::IResponse;
using Vesk::Mailbox::MailboxResponseException;
using Log = std::vector<std::string>;
using Words = std::vector<int>;

class Vt22ModuleTest : public ScriptedMaster {
protected:
    Vt22ModuleTest() { Create(); }

    /// A new module object that waits for the answer to this command of its initialisation.
    void InitialiseUpTo(int command) {
        Create();
        Boot();
        _module->BeginInitialization();
        RaiseAndSettle(0x00);
        while (Command() != command)
            Answer();
    }

    template <class ExceptionType>
    auto ExpectUpdate(const std::string& message) {
        return ExpectFailure<ExceptionType>(message, [&] { _module->Update(); });
    }

    template <class ExceptionType>
    auto ExpectRaise(int indication, const std::string& message) {
        return ExpectFailure<ExceptionType>(message, [&] { Raise(indication); });
    }
};

// ---- power-up

TEST_F(Vt22ModuleTest, PulsesResetForHalfAMillisecond) {
    EXPECT_EQ(_dpRam->TakeLog(), (Log{"app", "off"}));
    EXPECT_EQ(_module->State(), State::POWER_OFF);
    _clock.Advance(499'999);
    _module->Update();
    EXPECT_EQ(_dpRam->TakeLog(), Log{});
    _clock.Advance(1);
    _module->Update();
    EXPECT_EQ(_dpRam->TakeLog(), (Log{"irq", "on"}));
    EXPECT_EQ(_module->State(), State::POWER_ON);
    EXPECT_FALSE(_module->Booted() || _module->Configured() || _module->Initialized());
    ExpectFailure<System::ArgumentNullException>("hostInterface must not be null", [] {
        return Vt22Module::Create(nullptr, nullptr, nullptr, nullptr, nullptr);
    });
}

TEST_F(Vt22ModuleTest, RefusesAnInterruptInResetAndADpRamOfAnotherSize) {
    _dpRam->irq = true;
    _clock.Advance(500'000);
    ExpectUpdate<ModuleStateException>("IRQ not cleared at power off");
    EXPECT_EQ(_module->State(), State::POWER_OFF);

    _dpRam = std::make_shared<RecordingHostInterface>(0x2001);
    Create();
    _clock.Advance(500'000);
    ExpectUpdate<ArgumentOutOfRangeException>(
        "_hostInterface->Size() (8193) must be equal to sizeof(DpRam) (8192)");
    ExpectRaise<NullReferenceException>(0x10, "_outArea is null");
}

TEST_F(Vt22ModuleTest, WaitsTwoSecondsForTheFirstInterrupt) {
    PowerOn();
    _clock.Advance(1'999'999'999);
    _module->Update();
    _clock.Advance(1);
    for (int i = 0; i < 2; ++i)
        ExpectUpdate<Vesk::StartupException>("Timeout waiting for initial IRQ");
    Raise(0x10);
    EXPECT_EQ(_module->State(), State::BOOTED) << "an interrupt counts even then";
}

TEST_F(Vt22ModuleTest, AcceptsNoOtherIndicationThanPowerOnAtBoot) {
    PowerOn();
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

TEST_F(Vt22ModuleTest, ReadsTheIdentityAndUnlocksAtBoot) {
    PowerOn();
    _dpRam->TakeLog();
    Raise(0x90);
    EXPECT_EQ(_module->State(), State::BOOTED);
    EXPECT_EQ(_dpRam->TakeLog(), (Log{"irq", "R8 1ffb", "R8 1ffe", "R16 0000", "R16 0002", "R16 0004",
                                      "R32 0006", "R16 000a", "R16 000c", "R16 000e", "R16 0010", "R8 0012"}))
        << "no mailbox and no area in this step";
    EXPECT_EQ((std::vector<unsigned int>{_module->BootloaderMajor(), _module->BootloaderMinor(),
                                         _module->Serial(), _module->SoftwareMajor(),
                                         _module->SoftwareMinor(), _module->SoftwareBuild()}),
              (std::vector<unsigned int>{2, 1, 9, 3, 4, 5}));
    _clock.Advance(2'000'000);
    _module->Update();
    EXPECT_EQ(_dpRam->TakeLog(), (Log{"irq", "W8 1ffa=00", "W8 1ffc=00"}));
}

TEST_F(Vt22ModuleTest, ChecksTheIdentityInOrder) {
    // module type, vendor, fieldbus type
    const std::tuple<int, int, int, const char*> cases[] = {
        {0x0202, 0x1234, 0xABCD, "Unexpected module type!\nExpected: 201, Read: 202"},
        {0x0201, 0x1234, 0xABCD, "Unexpected fieldbus type!\nExpected: 5, Read: abcd"},
        {0x0201, 0x1234, 0x0005, "Unexpected vendor id!\nExpected: 1, Read: 1234"},
    };
    for (const auto& [type, vendor, fieldbus, message] : cases) {
        Create();
        PowerOn();
        _dpRam->Put(10, {type >> 8, type & 0xFF, vendor >> 8, vendor & 0xFF, fieldbus >> 8, fieldbus & 0xFF});
        ExpectRaise<Vesk::ModuleIdentityException>(0x10, message);
        EXPECT_EQ(_module->State(), State::POWER_ON);
    }
}

TEST_F(Vt22ModuleTest, HasNothingToShowBeforeTheFirstPowerOn) {
    const auto bytes = Array<unsigned char>::Create(126);
    const auto expect = [](const char* field, const auto& ask) {
        ExpectFailure<NullReferenceException>(std::string(field) + " is null", ask);
    };
    Vt22Module& m = *_module;
    expect("_deviceIdArea", [&] { return m.Serial(); });
    expect("_deviceIdArea", [&] { return m.SoftwareBuild(); });
    expect("_outArea", [&] { return m.GetSlaveConfiguredList(); });
    expect("_outArea", [&] { return m.GetDpv1ConnectionLiveList(); });
    expect("_inArea", [&] { m.MapInputData(0, bytes, 0, 1); });
    expect("_outArea", [&] { m.MapOutputData(0, bytes, 0, 1); });
    expect("_mailbox", [&] { m.GetLiveList(nullptr); });
    expect("_mailbox", [&] { m.SetOperationMode(OperationMode_e::STOP); });
    ExpectFailure<ArgumentOutOfRangeException>("127", [&] { m.GetSlaveDiag(127, nullptr); });
    ExpectFailure<ModuleStateException>("Module not configured", [&] { return m.GetDatabaseInfo(); });
    ExpectFailure<ModuleStateException>("Module not booted or configured!", [&] { m.BeginInitialization(); });
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
    _dpRam->Put(0x1042, {0, 7, 0, 2, 0, 8});
    _dpRam->Put(0x1078, {0x40});
    _dpRam->Put(0x176, {0, 5, 0, 2, 0, 0x18, 0, 0});
    Raise(0x0F);
    EXPECT_EQ(_dpRam->TakeLog(),
              (Log{"irq", "R8 1ffb", "R8 1ffe", "R 0176+288", "R16 1042", "R16 1044", "R16 1046", "R 1078+14",
                   "R 109e+2", "W 0056+32", "W 0296+2", "W8 1ffa=0f", "W8 1ffc=0f"}))
        << "acknowledgements, releases and the next request leave in one write";
    EXPECT_EQ(_calls, (Log{"online", "mode 64"}));
    _module->Update();
    EXPECT_EQ(_dpRam->TakeLog(), Log{"irq"}) << "an idle update looks at the line and nothing else";
}

TEST_F(Vt22ModuleTest, StopsOnFatalAndUnexpectedPowerOn) {
    Boot();
    _dpRam->Put(0x14, {0x12, 0x34});
    const auto fatal = ExpectRaise<Vt22FatalEventException>(0x3F, "Fatal event reported by VT22 module");
    ASSERT_TRUE(fatal);
    EXPECT_EQ(fatal->Info()->ErrorCode(), 0x1234);
    ExpectRaise<ModuleStateException>(
        0x12, "Unexpected poweron indication from module!\nInAreaAcquired PowerOn \n");
    EXPECT_EQ(_module->State(), State::BOOTED) << "a failure leaves the state";
}

TEST_F(Vt22ModuleTest, FailsWhenTheModuleDoesNotWaitForTheHost) {
    Boot();
    RaiseAndSettle(0x00);
    Raise(0x00);
    ExpectRaise<System::InvalidOperationException>(0x00, "Application handshake not locked");
}

TEST_F(Vt22ModuleTest, RefusesACorruptState) {
    _module->ChangeState(static_cast<State>(7));
    ExpectUpdate<ModuleStateException>("Unknown state: 7");
    _module->ChangeState(static_cast<State>(-1));
    ExpectUpdate<ModuleStateException>("Unknown state: -1");
    EXPECT_EQ(Vt22Module::StateToString(static_cast<State>(7)).Value(), "UNKNOWN: 7");
}

TEST_F(Vt22ModuleTest, RefusesAStepThatIsOutOfItsTurn) {
    const std::shared_ptr<IResponse> fine =
        Vesk::Mailbox::Response::Create(Vesk::Mailbox::ErrorCode::NO_ERROR, Array<unsigned short>::Create(8),
                                        Array<unsigned char>::Create(0));
    using Step = void (Vt22Module::*)(std::shared_ptr<IResponse>);
    const std::pair<Step, const char*> steps[] = {
        {&Vt22Module::Init_GetDatabaseInfo, "_mailbox"},
        {&Vt22Module::Init_StartInit, "_outArea"},
        {&Vt22Module::Init_VelmoInit, "_mailbox"},
        {&Vt22Module::Download_GetDatabaseInfo, "_busConfig"},
        {&Vt22Module::Download_StartDatabaseDownload, "_busConfig"},
        {&Vt22Module::Download_Next, "_downloadQueue"},
    };
    for (const auto& [step, missing] : steps) {
        ExpectFailure<System::ArgumentNullException>("response must not be null",
                                                     [&, step = step] { (_module.get()->*step)(nullptr); });
        ExpectFailure<NullReferenceException>(std::string(missing) + " is null",
                                              [&, step = step] { (_module.get()->*step)(fine); });
    }
    for (const State state : {State::BOOTED, State::DOWNLOAD_COMPLETE, State::INITIALIZED}) {
        _module->ChangeState(state);
        ExpectUpdate<NullReferenceException>("_outArea is null");
    }
    Create();
    Boot();
    ExpectFailure<NullReferenceException>("_databaseInfo is null", [&] { _module->Init_StartInit(fine); });
}

// ---- the initialisation

TEST_F(Vt22ModuleTest, InitialisesAnUnconfiguredModuleFromItsOwnDatabase) {
    Boot();
    RaiseAndSettle(0x00);
    EXPECT_EQ(_module->State(), State::BOOTED) << "no download without a configuration";
    _module->BeginInitialization();
    ExpectFailure<ModuleStateException>("Module already initialized",
                                        [&] { _module->BeginInitialization(); });
    RaiseAndSettle(0x00);
    EXPECT_EQ(Command(), 0x17);
    Answer(0, {0x30, 0x20, 0x0130, 0x0120});
    EXPECT_EQ(Command(), 0x01);
    EXPECT_EQ(Data(), "");
    Answer();
    EXPECT_EQ(Command(), 0x02);
    EXPECT_EQ(Data(), std::string("\x01\x20\x01\x20\x01\x20\x01\x30\x01\x30\x01\x30", 12));
    Answer();
    EXPECT_EQ(Command(), 0x03);
    Answer();
    EXPECT_EQ(_module->State(), State::INITIALIZING);
    _dpRam->TakeLog();
    _module->Update();
    EXPECT_EQ(_module->State(), State::INITIALIZED);
    EXPECT_EQ(_dpRam->TakeLog(), Log{"irq"}) << "the change and the common step in one call";
    EXPECT_FALSE(_module->Configured());
    ExpectFailure<ModuleStateException>("Module not configured", [&] { return _module->GetDatabaseInfo(); });
    ExpectFailure<ModuleStateException>("Module already initialized",
                                        [&] { _module->BeginInitialization(); });
    _clock.Advance(100'000'000'000);
    _module->Update();
}

TEST_F(Vt22ModuleTest, ChecksTheMappingsAgainstTheDatabase) {
    // input or output, offset, count
    const std::tuple<bool, unsigned short, int, const char*> cases[] = {
        {true, 0, 24, "More input data mapped than available in config [ 20 < 24 ]"},
        {false, 0, 31, "More output data mapped than available in config [ 30 < 31 ]"},
        {true, 91, 10, "Input data mapped outside of available area [ 100 < 101 ]"},
        {false, 100, 11, "Output data mapped outside of available area [ 110 < 111 ]"},
        {true, 80, 20, nullptr},
        {false, 80, 30, nullptr},
    };
    for (const auto& [input, offset, count, message] : cases) {
        Create();
        Boot();
        const auto bytes = Array<unsigned char>::Create(64);
        input ? _module->MapInputData(offset, bytes, 0, count)
              : _module->MapOutputData(offset, bytes, 0, count);
        _module->BeginInitialization();
        RaiseAndSettle(0x00);
        Answer(0, {30, 20, 110, 100});
        if (message)
            ExpectFailure<Vesk::ConfigException>(message, [&] { Answer(); });
        else
            Answer();
        EXPECT_EQ(Command(), message ? 0x01 : 0x02) << "nothing further is sent after a failure";
    }
}

TEST_F(Vt22ModuleTest, FailsOnAnErrorAnswerToEachStepOfTheInitialisation) {
    for (const int failing : {0x17, 0x01, 0x02, 0x03}) {
        InitialiseUpTo(failing);
        ExpectFailure<MailboxResponseException>(
            "Received erroneous mailbox response:\nMailbox.Response\nError: Invalid Offset\n"
            "Extended: [0000, 0000, 0000, 0000, 0000, 0000, 0000, 0000]\nData: []\n\n",
            [&] { Answer(0x86); });
        EXPECT_EQ(_module->State(), State::INITIALIZING);
    }
}

TEST_F(Vt22ModuleTest, TimesOutEachStepOfTheInitialisation) {
    for (const auto& [failing, seconds] : {std::pair{0x17, 3}, {0x01, 1}, {0x02, 1}, {0x03, 5}}) {
        InitialiseUpTo(failing);
        _clock.Advance(seconds * 1'000'000'000LL - (failing == 0x17 ? 2'000'000 : 0) - 1);
        _module->Update();
        _clock.Advance(1);
        EXPECT_THROW(_module->Update(), std::shared_ptr<System::Exception>) << failing;
    }
    Create();
    Boot();
    _module->BeginInitialization();
    _clock.Advance(9'999'999'999);
    _module->Update();
    _clock.Advance(1);
    ExpectUpdate<ModuleStateException>("Timeout waiting for INITIALIZED");
}

// ---- the services

TEST_F(Vt22ModuleTest, SendsEachServiceWithItsWordsAndThreeSecondsToAnswer) {
    Boot();
    Initialize();
    const std::string stations(126, '\1');
    const auto bytes = [](const std::string& text) {
        return Array<unsigned char>::Create(std::vector<unsigned char>(text.begin(), text.end()));
    };
    int answers = 0;
    const auto count = System::ArgFunc<std::shared_ptr<IResponse>, void>::Create(
        [&](const std::shared_ptr<IResponse>&) { ++answers; });
    Vt22Module& m = *_module;

    const std::tuple<std::function<void()>, int, Words, std::string> cases[] = {
        {[&] { m.SetOperationMode(OperationMode_e::CLEAR); }, 0x02, {0x8000}, ""},
        {[&] { m.GetSlaveDiag(126, count); }, 0x04, {0x7E01}, ""},
        {[&] { m.GetSlaveConfig(3, count); }, 0x05, {0x0300}, ""},
        {[&] { m.SetSlaveAddress(3, 4, 0x1234, bytes("u"), count); }, 0x06, {0x0304, 0x1234, 0}, "u"},
        {[&] { m.ReadSlaveInput(5, count); }, 0x09, {0x0500}, ""},
        {[&] { m.ReadSlaveOutput(5, count); }, 0x0A, {0x0500}, ""},
        {[&] { m.StartSlaves(bytes(stations), count); }, 0x0B, {}, stations},
        {[&] { m.StopSlaves(bytes(stations), count); }, 0x0C, {}, stations},
        {[&] { m.GetLiveList(count); }, 0x18, {}, ""},
        {[&] { m.Class1Read(5, 1, 2, 3, count); }, 0x20, {0x0501, 0x0203}, ""},
        {[&] { m.Class1Write(5, 1, 2, bytes("abc"), count); }, 0x21, {0x0501, 0x0203}, "abc"},
        {[&] { m.Class2Initiate(5, count); }, 0x25, {6, 0x0500}, ""},
        {[&] { m.Class2Abort(5, 7, 8, count); }, 0x26, {6, 0x0708}, ""},
        {[&] { m.Class2Abort(255, 7, 8, count); }, 0x26, {256, 0x0708}, ""},
        {[&] { m.Class2Read(5, 1, 2, 3, count); }, 0x27, {6, 0x0102, 0x0300}, ""},
        {[&] { m.Class2Write(5, 1, 2, bytes("abc"), count); }, 0x28, {6, 0x0102, 0x0300}, "abc"},
    };
    for (auto [call, command, words, data] : cases) {
        call();
        RaiseAndSettle(0x00);
        words.resize(8);
        EXPECT_EQ(Command(), command);
        EXPECT_EQ(Extended(), words) << command;
        EXPECT_EQ(Data(), data) << command;
        EXPECT_EQ(Word(0x58), 0x4002) << "a fieldbus request";
        _clock.Advance(3'000'000'000LL - 2'000'001);
        _module->Update();
        Answer(command == 0x18 ? 0x82 : 0);
        RaiseAndSettle(0x00);
    }
    EXPECT_EQ(answers, 15) << "an error reaches the callback too, and SetOperationMode has none";
    _module->GetLiveList(count);
    RaiseAndSettle(0x00);
    _clock.Advance(2'998'000'000);
    EXPECT_THROW(_module->Update(), std::exception);
}

TEST_F(Vt22ModuleTest, ThrowsAnErrorAnswerToAServiceWithoutACallback) {
    Boot();
    Initialize();
    _module->SetOperationMode(OperationMode_e::STOP);
    RaiseAndSettle(0x00);
    EXPECT_THROW(Answer(0x82), std::shared_ptr<System::Exception>);
}

TEST_F(Vt22ModuleTest, DropsMappingsAndListsWithEachPowerOn) {
    Boot();
    const auto list = _module->GetDataTransferList();
    const auto bytes = Array<unsigned char>::Create(8);
    _module->MapInputData(0, bytes, 0, 8);
    _module->Reset();
    Boot();
    EXPECT_NE(_module->GetDataTransferList(), list);
    EXPECT_NO_THROW(_module->MapInputData(0, bytes, 0, 8));
}

TEST_F(Vt22ModuleTest, ForgetsItsInitialisationAndItsDatabaseWithAReset) {
    Boot();
    Initialize();
    _module->Reset();
    Boot();
    _module->BeginInitialization();
    _module->Update();
    EXPECT_EQ(_module->State(), State::INITIALIZING);
    EXPECT_EQ(Command(), 0x17) << "the database is read anew";
}

TEST(Vt22Test, AsksForItsConfigurationBeforeItOpensAnything) {
    ExpectFailure<System::ArgumentNullException>("config must not be null", [] {
        return Vt22::CreateConfigured(nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                      nullptr);
    });
    for (const auto& create : {+[] { Vt22::CreateUnconfigured(nullptr, 0, nullptr, nullptr, nullptr); },
                               +[] { Vt22::CreateBootloaderModule(nullptr, 0, nullptr, nullptr, nullptr); }})
        ExpectFailure<System::ArgumentNullException>("path must not be null", create);
}
