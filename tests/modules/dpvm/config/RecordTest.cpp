// SPDX-License-Identifier: MIT
#include "tests/modules/dpvm/config/RecordStreams.h"
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/Values.h"

#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/config/Block.h"
#include "vesk/modules/dpvm/config/MasterRecord.h"
#include "vesk/modules/dpvm/config/SlaveRecord.h"
#include "vesk/system/io/IOException.h"

#include <tuple>

using namespace Vesk;
using namespace Vesk::Modules::DPVM::Config;
using System::IO::EndOfStreamException;

/// A master record, whose name fills its 32 bytes.
static const Bytes MASTER = [] {
    Bytes bytes = {
        0x00, 0x60, 0x02, 0x06, 0x01, 0x2C, 0x00, 0x0B, 0x03, 0x84, 0x05, 0x07, // length to setupTime
        0x00, 0x01, 0x86, 0xA0, 0x0A, 0x7E, 0x03, 0x80, 0x00, 0x14, 0x03, 0xE8, // up to pollTimeout
        0x00, 0x78, 0x08, 0x09, 0x00, 0x00, 0x00, 0x00, 0x00, 0x40, 'C',  '2',  'M',
    };
    bytes.resize(65);
    for (const int byte :
         {0xC4, 1,    2,  3,  4,  0,  0,  5,  6,  7, 8, 0, 0, 0, 0, 9, 10, 11, 12, // up to groupFreeze
          0x12, 0x34, 13, 14, 15, 16, 17, 18, 19, 0, 0, 0})
        bytes.push_back(static_cast<unsigned char>(byte));
    return bytes;
}();

// Parameter data of odd length (19), so a pad byte; the length (64) does not count it.
static const Bytes SLAVE = {
    0x00, 0x40, 0x80, 0x01, 0xF4, 0x00, 0xF0, 0x05, 0x06, 0x07, 0x00, 0x64, 0x00, 0x00, 0x00, 0x00, // header
    0x00, 0x13, 0x88, 0x02, 0x0A, 0x0B, 0x12, 0x34, 0x03,             // parameter data
    0xA0, 0xA1, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xA9, 0x00, // userParameters, pad
    0x00, 0x06, 0xC0, 0x01, 0x02, 0x03,                               // configuration data
    0x00, 0x0A, 0x02, 0x01, 0x01, 0x02, 0x03, 0x04, 0x0D, 0xAB,       // address table
    0x00, 0x06, 0x01, 0x02, 0x00, 0x00,                               // user data
    0x00, 0x07, 0xE0, 0xE1, 0xE2, 0xE3, 0xE4,                         // extended user parameter data
};

static constexpr int TABLE = 42;
static constexpr int USER_DATA = 52;
static constexpr int EXTENDED = 58;

static Bytes FirstOf(const Bytes& bytes, int count) {
    return {bytes.begin(), bytes.begin() + count};
}

TEST(RecordTest, WritesWhatItReadWithReservedAndPadBytesZero) {
    Bytes dirty = MASTER;
    for (const int offset : {28, 31, 70, 71, 76, 79, 93, 95})
        dirty = With(dirty, offset, 0xEE);
    const auto master = Read<MasterRecord>(dirty);
    EXPECT_EQ(Written(master), MASTER);
    EXPECT_EQ(Written(master->UserData()), Bytes(MASTER.begin() + 32, MASTER.end()));
    dirty = SLAVE;
    for (const int offset : {5, 12, 15, 35, 56, 57})
        dirty = With(dirty, offset, 0xEE);
    const auto slave = Read<SlaveRecord>(dirty);
    EXPECT_EQ(Written(slave), SLAVE);

    // Pads count from the start of a record, which may stand anywhere.
    dirty.insert(dirty.begin(), 0xEE);
    const auto stream = StreamOf(dirty);
    stream->Seek(1, System::IO::SeekOrigin::BEGIN);
    EXPECT_EQ(Written(SlaveRecord::FromStream(stream)), SLAVE);
    stream->Seek(1, System::IO::SeekOrigin::BEGIN);
    slave->ToStream(stream);
    std::vector<int> placed(SLAVE.begin(), SLAVE.end());
    placed.insert(placed.begin(), 0xEE);
    EXPECT_EQ(Values(stream->ToArray()), placed);
}

TEST(SlaveRecord, TakesFrom44To1740BytesWithAnyPadBytes) {
    const auto record = [](int parameters, int identifiers, int inputs, int outputs, int extended) {
        const auto bytes = [](int count) { return Bytes(static_cast<std::size_t>(count), 0x55); };
        const auto offsets = [](int count) { return std::vector<int>(static_cast<std::size_t>(count), 7); };
        return DatabaseFileBuilder::SlaveRecord(
            {offsets(inputs), offsets(outputs), bytes(parameters), bytes(identifiers), bytes(extended)});
    };
    for (const auto& [bytes, length, written] : {std::tuple{record(1, 2, 1, 0, 0), 44, 44u}, // both even
                                                 {record(2, 2, 1, 0, 0), 45, 46u}, // parameter data odd
                                                 {record(1, 3, 1, 0, 0), 45, 46u}, // configuration odd
                                                 {record(0, 1, 0, 2, 0), 44, 46u}, // both odd
                                                 {record(237, 244, 244, 244, 244), 1740, 1740u}}) {
        ASSERT_EQ(bytes[0] << 8 | bytes[1], length);
        ASSERT_EQ(bytes.size(), written);
        EXPECT_EQ(Written(Read<SlaveRecord>(bytes)), bytes) << length;
    }
}

TEST(RecordTest, LeavesTheStreamWhereItFailed) {
    const std::tuple<bool, Bytes, const char*, int> cases[] = {
        {true, With(MASTER, 1, 0x5F), "block length (95) != expected (96)", 2},
        {true, With(MASTER, 0, 1), "block length (352) != expected (96)", 2},
        {true, With(MASTER, 33, 0x41), "block length (65) != expected (64)", 34},
        {false, With(SLAVE, 1, 43), "block length (43) not in range [44 : 1740]", 2},
        {false, With(With(SLAVE, 0, 6), 1, 205), "block length (1741) not in range [44 : 1740]", 2},
        {false, With(SLAVE, 17, 8), "block length (8) not in range [9 : 246]", 18},
        {false, With(SLAVE, 17, 247), "block length (247) not in range [9 : 246]", 18},
        {false, With(SLAVE, 37, 2), "block length (2) not in range [3 : 246]", 38},
        {false, With(SLAVE, 37, 247), "block length (247) not in range [3 : 246]", 38},
        {false, With(SLAVE, TABLE + 1, 5), "block length (5) not in range [6 : 980]", TABLE + 2},
        {false, With(With(SLAVE, TABLE, 3), TABLE + 1, 213), "block length (981) not in range [6 : 980]",
         TABLE + 2},
        {false, With(SLAVE, USER_DATA + 1, 5), "block length (5) not in range [6 : 6]", USER_DATA + 2},
        {false, With(SLAVE, USER_DATA + 1, 7), "block length (7) not in range [6 : 6]", USER_DATA + 2},
        {false, With(SLAVE, EXTENDED + 1, 1), "block length (1) not in range [2 : 246]", EXTENDED + 2},
        {false, With(SLAVE, EXTENDED + 1, 247), "block length (247) not in range [2 : 246]", EXTENDED + 2},
        {false, With(With(SLAVE, TABLE + 2, 245), TABLE + 3, 246),
         "input table length (245) not in range [0 : 244]", TABLE + 4},
        {false, With(SLAVE, TABLE + 3, 255), "output table length (255) not in range [0 : 244]", TABLE + 4},
        {false, With(SLAVE, TABLE + 1, 8), "read length (10) != block length (8)", USER_DATA},
        {false, With(SLAVE, EXTENDED + 1, 6), "read length (63) != block length (64)", EXTENDED + 6},
        {false, With(SLAVE, 1, 65), "read length (64) != block length (65)", EXTENDED + 7},
        {false, FirstOf(SLAVE, 30), "read length (14) != block length (19)", 30},
        {false, FirstOf(SLAVE, 39), "read length (3) != block length (6)", 39},
    };
    for (const auto& [master, bytes, message, position] : cases) {
        const auto stream = StreamOf(bytes);
        ExpectFailure<ConfigException>(message, [&, master = master] {
            master ? static_cast<void>(MasterRecord::FromStream(stream))
                   : static_cast<void>(SlaveRecord::FromStream(stream));
        });
        EXPECT_EQ(stream->Position(), position) << message;
    }
}

TEST(RecordTest, NeedsEveryByteThatItLooksAt) {
    for (int length = 0; length < 93; ++length)
        EXPECT_THROW(Read<MasterRecord>(FirstOf(MASTER, length)), System::Thrown) << length;
    EXPECT_EQ(Written(Read<MasterRecord>(FirstOf(MASTER, 93))), MASTER) << "but for reserved ones";
    ExpectFailure<EndOfStreamException>("Stream ends at byte 92",
                                        [] { Read<MasterRecord>(FirstOf(MASTER, 92)); });
    for (const int length : {0, 1, 3, 11, 17, 24, 36, 43, 45, 47, 51, 53, 55, 58, 59, 60, 64})
        ExpectFailure<EndOfStreamException>("Stream ends at byte " + std::to_string(length),
                                            [&] { Read<SlaveRecord>(FirstOf(SLAVE, length)); });
}

// Records only ever hold what fits, so the writer's own checks are met here.
TEST(BlockWriterTest, RefusesALengthThatTheBlockMayNotHaveAndLeavesItsFieldZero) {
    const std::tuple<BlockLength, const char*, std::vector<int>, const char*> cases[] = {
        {BlockLength::Exactly(4), "AB", {0, 0, 'A', 'B', 0}, "written length (5) != expected (4)"},
        {BlockLength::Exactly(5), "ABCD", {0, 0, 'A', 'B', 'C', 'D'}, "written length (6) != expected (5)"},
        {BlockLength::Between(6, 9), "", {0, 0, 0, 0, 0}, "written length (5) not in range [6 : 9]"},
        {BlockLength::Between(2, 4), "", {0, 0, 0, 0, 0}, "written length (5) not in range [2 : 4]"},
    };
    for (const auto& [limits, text, written, message] : cases) {
        const auto stream = System::IO::MemoryStream::Create();
        BlockWriter block(stream, limits);
        block.Text("text", text, 3);
        ExpectFailure<ConfigException>(message, [&] { block.Finish(); });
        EXPECT_EQ(Values(stream->ToArray()), written);
        EXPECT_EQ(stream->Position(), stream->Length());
    }
}
