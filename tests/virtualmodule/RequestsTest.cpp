// SPDX-License-Identifier: MIT
// Conversations with the module in which the host asks for what it must not, or comes out of its turn.
#include "tests/virtualmodule/RawHost.h"

using namespace VirtualModule;

namespace {

constexpr unsigned OK = 0, TYPE = 0x81, COMMAND = 0x82, SIZE = 0x83, COUNT = 0x84, NUMBER = 0x85,
                   OFFSET = 0x86, ADDRESS = 0x87, RESPONSE = 0x88, CONFIG = 0x89, OTHER = 0x8F;
constexpr unsigned START_INIT = 0x101, VELMO_INIT = 0x102, END_INIT = 0x103;
constexpr unsigned SET_MODE = 0x202, DIAG = 0x204, SET_ADDRESS = 0x206, READ_OUTPUT = 0x20A,
                   START_SLAVE = 0x20B, STOP_SLAVE = 0x20C, LIVE_LIST = 0x218;
constexpr unsigned READ1 = 0x220, WRITE1 = 0x221, INITIATE = 0x225, ABORT = 0x226, READ2 = 0x227,
                   WRITE2 = 0x228;
constexpr unsigned START = 0x210, END = 0x211, MASTER = 0x212, SLAVE = 0x214, DELETE = 0x216, INFO = 0x217;
constexpr unsigned ENABLE = 0x601, WRITE_ENABLE = 0x602, ERASE = 0x603;
constexpr unsigned FW_INIT = 0x401, FW_DATA = 0x402, FW_LAST = 0x403;
constexpr unsigned BL_INIT = 0x404, BL_DATA = 0x405, BL_LAST = 0x406;
constexpr unsigned CRC = 0x4B37; // CRC-16/MODBUS of the digits 1 to 9

struct RequestsTest : testing::Test, RawHost {
    RequestsTest() { Configure(); }

    void TearDown() override { EXPECT_THAT(module.Violations(), testing::IsEmpty()); }

    static Request Fragment(unsigned address, unsigned number, unsigned count, const Bytes& data) {
        return {SLAVE, {Word(address, number), Word(count, 0)}, data};
    }

    static Request Last(unsigned command, std::size_t size, unsigned crc) {
        Bytes information{Low(crc), High(crc)};
        information.resize(size);
        return {command, {}, information};
    }

    void UnlockAndErase() {
        PowerOn(true);
        for (const unsigned command : {ENABLE, WRITE_ENABLE, ERASE})
            Converse(Line{OK, {command}});
        Converse(Line{OK, {FW_INIT, {}, Bytes(8)}});
    }

    const Bytes image{'1', '2', '3', '4', '5', '6', '7', '8', '9'};
    const Bytes head{'1', '2', '3', '4'}, tail{'5', '6', '7', '8', '9'};
};

TEST_F(RequestsTest, InitialisationHasItsOrder) {
    EXPECT_TRUE(PowerOn() && now == 1'000'000 && Turn() == 0 && now == 2'000'000) << "the delay and the pace";
    Converse(Line{TYPE, {ENABLE}}, Line{SIZE, {INFO, {}, {1}}}, Line{COUNT, {INFO, {}, {}, 2}},
             Line{NUMBER, {INFO, {}, {}, 1, 2}}, Line{OFFSET, {INFO, {}, {}, 1, 1, 7}},
             Line{COMMAND, {0x201}}, Line{COMMAND, {VELMO_INIT, {}, LENGTHS}}, Line{OTHER, {LIVE_LIST}},
             Line{OK, {START_INIT}}, Line{OTHER, {VELMO_INIT, {}, Bytes(12)}},
             Line{SIZE, {VELMO_INIT, {}, Bytes(11)}}, Line{COMMAND, {END_INIT}},
             Line{OK, {SET_MODE, {0x4000}}}, Line{OK, {VELMO_INIT, {}, LENGTHS}}, Line{OK, {END_INIT}});
    EXPECT_EQ(ram[0x1078], 0x40) << "the mode that was chosen before";
    Converse(Line{COMMAND, {START_INIT}}, Line{COMMAND, {START}}, Line{OTHER, {READ1, {0x0500, 0x0001}}},
             Line{OK, {INFO}});
    EXPECT_THAT(Bytes(data.begin() + 6, data.begin() + 9), testing::ElementsAre('3', 'd', 0xFF));
}

TEST_F(RequestsTest, DownloadOfADatabaseHasItsOrder) {
    const Bytes slave = DatabaseFileBuilder::SlaveRecord({{1, 2}, {}, {}}), full(256);
    const Request master{MASTER, {}, DatabaseFileBuilder::MasterRecord()};
    PowerOn();
    Converse(Line{COMMAND, {DELETE}}, Line{OK, {START}}, Line{COMMAND, master}, Line{OK, {INFO}},
             Line{OK, {DELETE}}, Line{OTHER, {INFO}}, Line{COMMAND, Fragment(125, 1, 1, slave)},
             Line{COMMAND, {END}}, Line{CONFIG, {MASTER, {}, Bytes(96)}}, Line{OK, master},
             Line{COMMAND, master}, Line{ADDRESS, Fragment(126, 1, 1, slave)},
             Line{ADDRESS, Fragment(1, 1, 1, slave)}, Line{COUNT, Fragment(125, 1, 0, slave)},
             Line{NUMBER, Fragment(125, 0, 2, full)}, Line{NUMBER, Fragment(125, 2, 2, full)},
             Line{SIZE, Fragment(125, 1, 2, slave)}, Line{OK, Fragment(125, 1, 2, full)},
             Line{ADDRESS, Fragment(124, 2, 2, slave)}, Line{COUNT, Fragment(125, 2, 3, slave)},
             Line{NUMBER, Fragment(125, 1, 2, full)}, Line{COMMAND, {END}},
             Line{CONFIG, Fragment(125, 2, 2, slave)}, Line{OK, Fragment(125, 1, 1, slave)},
             Line{ADDRESS, Fragment(125, 1, 1, slave)}, Line{OTHER, {INFO}}, Line{OK, {END}},
             Line{COMMAND, Fragment(124, 1, 1, slave)}, Line{OK, {INFO}});
    EXPECT_EQ(flash.database.slaves.size(), 1u);
    EXPECT_EQ(flash.writes, 4u);
}

TEST_F(RequestsTest, ServicesNeedTheirSlave) {
    const Request initiate{INITIATE, {6, 0x0500}}, read2{READ2, {6, 0x0102, 0xF000}};
    Bytes stations(126);
    stations[5] = 1;
    Initialise();
    Turn(OUT);
    Converse(Line{OTHER, {DIAG, {0x0502}}}, Line{OTHER, {SET_MODE, {0x4100}}},
             Line{OTHER, {SET_ADDRESS, {0x050A, 0x1234}}}, Line{SIZE, {START_SLAVE, {}, Bytes(125)}},
             Line{SIZE, {READ1, {0x0501, 0x02F1}}}, Line{SIZE, {WRITE1, {0x0501, 0x0202}, {7, 8, 9}}},
             Line{SIZE, {WRITE1, {0x0501, 0x0200}, Bytes(256)}},
             Line{OK, {WRITE1, {0x0501, 0x0203}, {7, 8, 9}}}, Line{ADDRESS, {READ1, {0x0501, 0x0302}}},
             Line{ADDRESS, {READ1, {0x0901, 0x0202}}}, Line{ADDRESS, {READ1, {0x0600, 0x0007}}},
             Line{ADDRESS, read2}, Line{ADDRESS, {READ_OUTPUT, {0x0600}}},
             Line{ADDRESS, {READ_OUTPUT, {0x7F00}}}, Line{OK, {LIVE_LIST}});
    EXPECT_EQ(Bytes(data.begin(), data.begin() + 7), (Bytes{4, 3, 4, 4, 4, 0, 4}));
    Converse(Line{OK, {DIAG, {0x0501}}});
    EXPECT_EQ(data, (Bytes{0, 4, 0, 1, 0x12, 0x34}));

    Converse(Line{OK, {STOP_SLAVE, {}, stations}}, Line{OK, {DIAG, {0x0501}}});
    EXPECT_EQ(data, (Bytes{2, 5, 0, 0xFF, 0x12, 0x34}));
    Converse(Line{OK, initiate}, Line{OK, {WRITE2, {6, 0x0102, 0x0300}, {1, 2, 3}}}, Line{OK, read2});
    EXPECT_EQ(data, (Bytes{1, 2, 3}));
    module.SetSlavePresent(20, false);
    Converse(Line{OTHER, {READ1, {0x0501, 0x0203}}}, Line{OTHER, {INITIATE, {6, 0x0900}}},
             Line{OTHER, {SET_ADDRESS, {0x050A, 0x1235}}});
    for (const unsigned taken : {9u, 1u, 20u, 126u})
        Converse(Line{ADDRESS, {SET_ADDRESS, {Word(5, taken), 0x1234}}});
    Converse(Line{OK, {SET_ADDRESS, {0x050A, 0x1234, 0x0100}}}, Line{OK, {DIAG, {0x0501}}});
    EXPECT_EQ(data, (Bytes{1, 0, 0, 0xFF, 0, 0})) << "it has gone from there";
    Converse(Line{ADDRESS, read2}, Line{RESPONSE, {READ_OUTPUT, {0x0500}}}, Line{RESPONSE, initiate},
             Line{OTHER, {SET_ADDRESS, {0x0A05, 0x1234}}}, Line{OK, {INITIATE, {7, 0x0900}}},
             Line{OK, {SET_MODE}}, Line{OTHER, {INITIATE, {8, 0x0900}}}, Line{OK, {SET_MODE, {0xC000}}},
             Line{ADDRESS, {ABORT, {7}}});
}

TEST_F(RequestsTest, DownloadOfAProgramHasItsOrder) {
    PowerOn(true);
    Converse(Line{TYPE, {INFO}}, Line{COMMAND, {WRITE_ENABLE}}, Line{COMMAND, {FW_INIT, {}, Bytes(8)}},
             Line{COMMAND, {FW_DATA, {}, head}}, Line{COMMAND, Last(FW_LAST, 38, CRC)},
             Line{COMMAND, {BL_DATA, {}, image}}, Line{OK, {ENABLE}}, Line{COMMAND, {ERASE}},
             Line{OK, {BL_INIT}}, Line{OFFSET, {BL_DATA, {}, image, 1, 1, 1}}, Line{OK, {BL_DATA, {}, image}},
             Line{COMMAND, Last(FW_LAST, 38, CRC)}, Line{CONFIG, Last(BL_LAST, 10, 0x374B)});
    EXPECT_TRUE(flash.application.valid);
    EXPECT_EQ(flash.bootloader.version, (Version{2, 1, 0})) << "the old one stays";
    Converse(Line{OK, {BL_INIT}}, Line{OK, {BL_DATA, {}, image}}, Line{OK, Last(BL_LAST, 10, CRC)});
    EXPECT_EQ(flash.bootloader.version, (Version{2, 0x4B, 0x37}));

    UnlockAndErase();
    Converse(Line{NUMBER, Last(FW_LAST, 38, CRC)}, Line{NUMBER, {FW_DATA, {}, head, 2, 2}},
             Line{SIZE, {FW_DATA, {}, {}, 2}}, Line{SIZE, Last(FW_LAST, 10, CRC)},
             Line{COUNT, {FW_DATA, {}, head, 0}}, Line{OK, {FW_DATA, {}, head, 2, 1, 0xFFFFFFFE}},
             Line{NUMBER, {FW_DATA, {}, tail, 2, 1, 2}}, Line{NUMBER, Last(FW_LAST, 38, CRC)},
             Line{COUNT, {FW_DATA, {}, tail, 3, 2, 2}}, Line{OFFSET, {FW_DATA, {}, tail, 2, 2, 2}});
}

TEST_F(RequestsTest, FailedDownloadLeavesNothingToBoot) {
    UnlockAndErase();
    Converse(Line{OK, {FW_DATA, {}, image}}, Line{CONFIG, Last(FW_LAST, 38, CRC + 1)});
    EXPECT_FALSE(PowerOn());
    UnlockAndErase();
    Converse(Line{OK, {FW_DATA, {}, image}});
    Put(Last(FW_LAST, 38, CRC));
    ram[0x1FFD] ^= 0x80;
    EXPECT_TRUE(Await() >= 0 && !PowerOn()) << "the power is cut while it is burnt";
    UnlockAndErase();
    const std::int64_t before = now;
    Converse(Line{OK, {FW_DATA, {}, image}}, Line{OK, Last(FW_LAST, 38, CRC)});
    EXPECT_GE(now - before, 100'000'000) << "burning takes its time";
    EXPECT_TRUE(PowerOn());
}

} // namespace
