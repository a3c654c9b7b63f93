// SPDX-License-Identifier: MIT
#include "tests/virtualmodule/RawHost.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;
using VirtualModule::Bytes;

struct MasterTest : testing::Test, RawHost {
    MasterTest() { Configure(); }

    void TearDown() override { EXPECT_THAT(module.Violations(), IsEmpty()); }
};

TEST_F(MasterTest, SpeaksOnceForEachWriteOfTheHost) {
    PowerOn();
    EXPECT_EQ(ram[0x1FFE], POWER_ON) << "the companion";
    EXPECT_EQ(Await(), -1) << "the host has not answered";
    Answer();
    module.Step();
    EXPECT_EQ(ram[0x1FFC], 0xFF) << "taken";
    EXPECT_FALSE(lines.ReadIrq_n());
    Answer(); // the same value again counts as a new write
    const std::int64_t raised = now;
    EXPECT_EQ(Await(), 0) << "nothing to tell is told too";
    EXPECT_EQ(now - raised, 1'000'000) << "one period after the interrupt before";
}

TEST_F(MasterTest, AnswersWithTheRequestsOwnHeader) {
    PowerOn();
    EXPECT_TRUE(Fieldbus(0x17).Ok());
    EXPECT_EQ(lastIndication, M_IN | M_OUT);
    Bytes expected{1, 0,  0, 2, 0, 0x17, 0, 32, 0, 1, 0, 1, 0,   0,   0,   0,   0,   3,   0,   4,
                   0, 21, 0, 8, 2, 0,    0, 0,  0, 0, 0, 0, '0', 'A', '1', 'b', '2', 'c', '3', 'd'};
    expected.resize(64, 0xFF);
    EXPECT_EQ(Memory(MAILBOX_OUT, 64), expected);
    EXPECT_EQ(Fieldbus(0x01).error, 0x82u) << "no such command";
    EXPECT_EQ(Request(4, 1).error, 0x81u) << "a type of the bootloader";
    EXPECT_EQ(Fieldbus(0x17, {}, {1}).error, 0x83u);
    const unsigned frames[][4]{{2, 1, 0, 0x84}, {1, 2, 0, 0x85}, {1, 1, 7, 0x86}};
    for (const auto& [count, number, offset, error] : frames) {
        PutRequest(0x0056, 2, 0x17, {}, {}, count, number, offset);
        Turn(M_IN);
        EXPECT_EQ(GetReply(MAILBOX_OUT).error, error);
    }
}

TEST_F(MasterTest, GoesOnlineOnceInitialised) {
    PowerOn();
    EXPECT_EQ(Request(1, 2, {}, Bytes(12)).error, 0x82u) << "VelmoInit before StartInit";
    EXPECT_EQ(Fieldbus(0x18).error, 0x8Fu) << "not on the bus yet";
    EXPECT_TRUE(Request(1, 1).Ok());
    EXPECT_EQ(Request(1, 2, {}, {0, 8, 0, 8, 0, 9, 0, 21, 0, 21, 0, 21}).error, 0x8Fu) << "wrong length";
    EXPECT_EQ(Request(1, 2, {}, Bytes(11)).error, 0x83u);
    EXPECT_EQ(Request(1, 3).error, 0x82u) << "EndInit before VelmoInit";
    EXPECT_TRUE(Request(1, 2, {}, {0, 8, 0, 8, 0, 8, 0, 21, 0, 21, 0, 21}).Ok());
    EXPECT_TRUE(Request(1, 3).Ok());
    EXPECT_EQ(lastIndication, M_IN | M_OUT | IN | OUT);
    EXPECT_THAT(Memory(0x1042, 6), ElementsAre(0, 7, 0, 2, 0, 0x1F)) << "all is new; online";
    EXPECT_THAT(Memory(0x1048, 2), ElementsAre(1 << 5, 1 << 1)) << "configured: 5 and 9";
    EXPECT_THAT(Memory(0x1058, 2), ElementsAre(1 << 5, 1 << 1)) << "in data transfer";
    EXPECT_THAT(Memory(0x1068, 2), ElementsAre(0, 0)) << "no diagnosis";
    EXPECT_EQ(ram[0x1078], 0xC0) << "OPERATE";
    EXPECT_EQ(Request(1, 1).error, 0x82u) << "initialised already";
}

TEST_F(MasterTest, GoesIntoTheModeThatWasChosenBefore) {
    PowerOn();
    EXPECT_TRUE(Fieldbus(0x02, {0x4000}).Ok());
    EXPECT_EQ(lastIndication, M_IN | M_OUT) << "nothing to report off the bus";
    InitialiseBooted();
    EXPECT_EQ(ram[0x1078], 0x40);
    EXPECT_THAT(Memory(0x1058, 2), ElementsAre(0, 0)) << "no data transfer in STOP";
    EXPECT_EQ(Fieldbus(0x20, {0x0500, 0x0001}).error, 0x8Fu);
}

TEST_F(MasterTest, WithoutADatabaseSaysSo) {
    flash.database.state = VirtualModule::Database::State::WRITING;
    PowerOn();
    for (const Reply& reply : {Fieldbus(0x17), Request(1, 1)}) {
        EXPECT_EQ(reply.error, 0x8Fu);
        EXPECT_EQ(reply.extended[7], 1);
    }
}

TEST_F(MasterTest, EchoesInputBytesAtTheirPlaces) {
    Initialise();
    for (std::size_t i = 0; i < 8; ++i)
        ram[0x0296 + i] = static_cast<std::uint8_t>(0xA0 + i);
    EXPECT_EQ(Turn(OUT | IN), OUT | IN) << "consumed, and handed over again";
    EXPECT_THAT(Memory(0x1042, 6), ElementsAre(0, 4, 0, 2, 0, 0)) << "only data changed";
    EXPECT_THAT(Memory(0x1096 + 10, 3), ElementsAre(0xA0, 0xA2, 0)) << "the third byte finds no room";
    EXPECT_EQ(ram[0x1096 + 20], 0xA7);

    ram[0x0296] = 0xBB;
    EXPECT_EQ(Turn(IN), IN) << "the output area is still the host's";
    EXPECT_EQ(ram[0x1096 + 10], 0xA0);
    EXPECT_EQ(Turn(OUT), OUT);
    EXPECT_EQ(ram[0x1096 + 10], 0xBB);
    EXPECT_EQ(Turn(OUT), 0);

    EXPECT_TRUE(Fieldbus(0x02, {0x8000}).Ok());
    EXPECT_EQ(lastIndication, M_IN | M_OUT | OUT);
    EXPECT_THAT(Memory(0x1042, 6), ElementsAre(0, 6, 0, 2, 0, 8));
    EXPECT_EQ(ram[0x1078], 0x80);
    EXPECT_EQ(ram[0x1096 + 10], 0) << "CLEAR gives the slaves zeros";
}

TEST_F(MasterTest, ReportsEveryChangeOnTheBus) {
    const struct {
        const char* what;
        std::function<void()> change;
        Bytes status; // out-area indication, module status, change register
        unsigned dataTransfer, diagnostic, mode;
    } cases[]{
        {"9 leaves", [&] { module.SetSlavePresent(9, false); }, {0, 2, 0, 2, 0, 0x16}, 0x20, 2, 0xC0},
        {"9 returns", [&] { module.SetSlavePresent(9, true); }, {0, 2, 0, 2, 0, 0x16}, 0x220, 0, 0xC0},
        {"STOP", [&] { Fieldbus(0x02, {0x4000}); }, {0, 2, 0, 2, 0, 0x1A}, 0, 0, 0x40},
        {"OFFLINE", [&] { Fieldbus(0x02, {0x0000}); }, {0, 1, 0, 1, 0, 0}, 0, 0, 0x40},
        {"OPERATE", [&] { Fieldbus(0x02, {0xC000}); }, {0, 3, 0, 2, 0, 0x1A}, 0x220, 0, 0xC0},
        {"5 stopped", [&] { StopOrStart(0x0C, 5); }, {0, 2, 0, 2, 0, 0x12}, 0x200, 0, 0xC0},
        {"5 started", [&] { StopOrStart(0x0B, 5); }, {0, 2, 0, 2, 0, 0x12}, 0x220, 0, 0xC0},
    };

    Initialise();
    Turn(OUT);
    for (const auto& [what, change, status, dataTransfer, diagnostic, mode] : cases) {
        SCOPED_TRACE(what);
        lastIndication = 0;
        change();
        if (lastIndication == 0)
            lastIndication = Turn();
        EXPECT_TRUE(lastIndication & OUT);
        EXPECT_EQ(Memory(0x1042, 6), status);
        EXPECT_EQ(ram[0x1058] | ram[0x1059] << 8, int(dataTransfer));
        EXPECT_EQ(ram[0x1069], diagnostic);
        EXPECT_EQ(ram[0x1078], mode);
        EXPECT_EQ(Turn(OUT), 0);
    }
}

TEST_F(MasterTest, FatalEventIsItsLastWord) {
    PowerOn();
    module.RaiseFatal({0x1234, 0x5678, 9, 0x100000002, {0xAA}, 77, "bus.c"});
    EXPECT_EQ(Turn(), FATAL);
    EXPECT_THAT(Memory(0x0014, 16),
                ElementsAre(0x12, 0x34, 0x56, 0x78, 0, 9, 0, 0, 0, 1, 0, 0, 0, 2, 0xAA, 0));
    EXPECT_THAT(Memory(0x003A, 8), ElementsAre(0, 77, 'b', 'u', 's', '.', 'c', 0));
    EXPECT_EQ(Turn(), -1);
    PowerOn();
    module.RaiseLog();
    EXPECT_EQ(Turn(), LOG);
    EXPECT_EQ(Turn(16), 0);
}

TEST(MasterWatch, NamesWhatAHostMustNotDo) {
    struct Host : RawHost {
        /// The answer to a request is never taken, so that the next one stays in mailbox-in.
        void FillMailboxes() {
            Fieldbus(0x17);
            owed = 0;
            Turn(M_IN);
        }

        void PutAndNotify(unsigned type) {
            PutRequest(0x56, type, 0x17, {}, {});
            Answer(M_IN);
        }
    };

    const struct {
        const char* name;
        std::function<void(Host&)>
            sin; // with an interrupt to be answered; of the areas it has the input area
    } cases[]{
        {"host register written without an interrupt: 0x08",
         [](Host& host) {
             host.Answer();
             host.module.Step();
             host.Answer(8);
         }},
        {"host register written without an interrupt: 0x00, the line was not read",
         [](Host& host) {
             host.Answer();
             host.now += 1'000'000;
             host.module.Step();
             host.Answer();
         }},
        {"reserved bit written: 0x40", [](Host& host) { host.Answer(0x40); }},
        {"register and companion differ: 0x00 and 0x01",
         [](Host& host) {
             host.Answer();
             host.ram[0x1FFC] = 1;
         }},
        {"area released that was not handed over: output area", [](Host& host) { host.Answer(1); }},
        {"area released that was not handed over: input area",
         [](Host& host) {
             host.PowerOn(); // nothing is handed over before the initialisation
             host.Answer(2);
         }},
        {"area released that was not handed over: log area", [](Host& host) { host.Answer(16); }},
        {"mailbox-out acknowledged that was not updated", [](Host& host) { host.Answer(4); }},
        {"write outside the host's areas: 2 bytes at 0x1048",
         [](Host& host) {
             host.ram[0x1048] = host.ram[0x1049] = 0x77;
             host.Answer();
         }},
        {"write outside the host's areas: 1 bytes at 0x0a",
         [](Host& host) {
             host.ram[0x000A] ^= 1;
             host.Turn();
             host.Answer(); // told once, not at every look
         }},
        {"malformed request: data size 257",
         [](Host& host) {
             host.PutAndNotify(2);
             host.ram[0x5C] = host.ram[0x5D] = 1;
         }},
        {"malformed request: marked", [](Host& host) { host.PutAndNotify(0x300); }},
        {"request notified into a full mailbox",
         [](Host& host) {
             host.FillMailboxes();
             host.Answer(8);
         }},
        {"request written into a full mailbox: 1 bytes at 0x57",
         [](Host& host) {
             host.FillMailboxes();
             host.ram[0x57] ^= 1;
             host.Answer();
         }},
    };

    for (const auto& [name, sin] : cases) {
        SCOPED_TRACE(name);
        Host host;
        host.Configure();
        host.Initialise();
        host.Turn(1);
        EXPECT_THAT(host.module.Violations(), IsEmpty());
        sin(host);
        host.Await();
        EXPECT_THAT(host.module.Violations(), ElementsAre(StartsWith(name)));
    }
}

TEST(MasterWatch, SurvivesAnythingThatTheMemoryHolds) {
    RawHost host;
    host.Configure();
    host.Initialise();
    std::uint32_t random = 1;
    for (int round = 0; round < 3000; ++round) {
        for (int i = 0; i < 40; ++i) {
            random = random * 1664525 + 1013904223;
            const std::size_t at = i % 2 == 0 ? 0x56 + (random >> 8) % 64 : (random >> 8) % 8192;
            host.ram[at] = static_cast<std::uint8_t>(random >> 24);
        }
        host.ram[0x58] = 0x40;
        host.ram[0x59] = static_cast<std::uint8_t>(1 + round % 2);
        host.ram[0x5A] = 0;
        host.ram[0x5B] &= 0x3F;
        host.ram[0x5C] &= 1;
        const Bytes singleFrame{0, 1, 0, 1, 0, 0, 0, 0};
        std::copy(singleFrame.begin(), singleFrame.end(), host.ram.begin() + 0x5E);
        host.ram[0x1FFA] = host.ram[0x1FFC] = 0x0F;
        host.now += 1'000'000;
        host.module.Step();
        host.lines.ReadIrq_n();
    }
    EXPECT_THAT(host.module.Violations(), SizeIs(1000)) << "kept within bounds";
    host.PowerOn();
}

} // namespace
