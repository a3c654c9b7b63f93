// SPDX-License-Identifier: MIT
#include "tests/modules/dpvm/config/RecordStreams.h"
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/Values.h"

#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/config/SlaveBlocks.h"
#include "vesk/modules/dpvm/config/SlaveRecord.h"
#include "vesk/system/io/IOException.h"

#include <functional>

using namespace Vesk;
using namespace Vesk::Modules::DPVM::Config;
using System::IO::EndOfStreamException;

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

static constexpr int PARAMETERS = 16;
static constexpr int CONFIGURATION = 36;
static constexpr int TABLE = 42;
static constexpr int USER_DATA = 52;
static constexpr int EXTENDED = 58;

static Bytes FirstOf(const Bytes& bytes, int count) {
    return {bytes.begin(), bytes.begin() + count};
}

static Bytes RecordOf(int parameters, int identifiers, int inputs, int outputs, int extended) {
    DatabaseFileBuilder::SlaveContent content;
    content.parameters = Bytes(static_cast<std::size_t>(parameters), 0x11);
    content.identifiers = Bytes(static_cast<std::size_t>(identifiers), 0x22);
    content.inputs = std::vector<int>(static_cast<std::size_t>(inputs), 0x3334);
    content.outputs = std::vector<int>(static_cast<std::size_t>(outputs), 0x4445);
    content.extended = Bytes(static_cast<std::size_t>(extended), 0x55);
    return DatabaseFileBuilder::SlaveRecord(content);
}

TEST(SlaveRecord, OffersEveryFieldUnderItsName) {
    const auto slave = Read<SlaveRecord>(SLAVE);
    EXPECT_EQ(slave->SlaveFlags(), 0x80);
    EXPECT_EQ(slave->SlaveType(), 1);
    EXPECT_EQ(slave->MaxDiagnosticDataLength(), 0xF4);
    EXPECT_EQ(slave->MaxChannelDataLength(), 0xF0);
    EXPECT_EQ(slave->DiagUpdDelay(), 5);
    EXPECT_EQ(slave->AlarmMode(), 6);
    EXPECT_EQ(slave->AdditionalSlaveFlags(), 7);
    EXPECT_EQ(slave->MSAC1Timeout(), 100);

    const auto parameters = slave->ParameterData();
    EXPECT_EQ(parameters->StationStatus(), 0x88);
    EXPECT_EQ(parameters->WatchdogFactor1(), 2);
    EXPECT_EQ(parameters->WatchdogFactor2(), 10);
    EXPECT_EQ(parameters->MinStationDelayTimeResponder(), 11);
    EXPECT_EQ(parameters->IdentNr(), 0x1234);
    EXPECT_EQ(parameters->GroupIdent(), 3);
    EXPECT_EQ(Values(parameters->UserParameters()),
              (std::vector<int>{0xA0, 0xA1, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xA9}));

    EXPECT_EQ(Values(slave->ConfigurationData()->IdentifierBytes()), (std::vector<int>{0xC0, 1, 2, 3}));
    EXPECT_EQ(Values(slave->AddressTable()->InputOffsetTable()), (std::vector<int>{0x0102, 0x0304}));
    EXPECT_EQ(Values(slave->AddressTable()->OutputOffsetTable()), (std::vector<int>{0x0DAB}));
    EXPECT_EQ(slave->UserData()->InputDataLength(), 2);
    EXPECT_EQ(slave->UserData()->OutputDataLength(), 1);
    EXPECT_EQ(Values(slave->ExtendedUserParameterData()->ExtUsrPrmData()),
              (std::vector<int>{0xE0, 0xE1, 0xE2, 0xE3, 0xE4}));
}

TEST(SlaveRecord, PrintsALinePerFieldAndItsBlocks) {
    EXPECT_EQ(Read<SlaveRecord>(SLAVE)->ToString().Value(),
              "slaveFlags: 128\n"
              "slaveType: 1\n"
              "maxDiagnosticDataLength: 244\n"
              "maxChannelDataLength: 240\n"
              "diagUpdDelay: 5\n"
              "alarmMode: 6\n"
              "additionalSlaveFlags: 7\n"
              "mSAC1Timeout: 100\n"
              "\n"
              "Parameter data{\n"
              "stationStatus: 136\n"
              "watchdogFactor1: 2\n"
              "watchdogFactor2: 10\n"
              "minStationDelayTimeResponder: 11\n"
              "identNr: 4660\n"
              "groupIdent: 3\n"
              "userParameters: [a0, a1, a2, a3, a4, a5, a6, a7, a8, a9]\n"
              "}\n"
              "\n"
              "Configuration data{\n"
              "identifierBytes: [c0, 01, 02, 03]\n"
              "}\n"
              "\n"
              "Address table{\n"
              "inputOffsetTable: [0102, 0304]\n"
              "outputOffsetTable: [0dab]\n"
              "}\n"
              "\n"
              "User data{\n"
              "inputDataLength: 2\n"
              "outputDataLength: 1\n"
              "}\n"
              "\n"
              "Extended user data{\n"
              "extUsrPrmData: [e0, e1, e2, e3, e4]\n"
              "}\n");
}

TEST(SlaveRecord, WritesWhatItReadWithReservedAndPadBytesZero) {
    Bytes dirty = SLAVE;
    for (const int offset : {5, 12, 15, 35, 56, 57})
        dirty = With(dirty, offset, 0xEE);
    EXPECT_EQ(Written(Read<SlaveRecord>(dirty)), SLAVE);
}

TEST(SlaveRecord, PadsOddParametersAndOddConfiguration) {
    const struct {
        int parameters, identifiers, length, written;
    } cases[] = {
        {1, 2, 44, 44}, // both blocks even
        {2, 2, 45, 46}, // parameter data odd
        {1, 3, 45, 46}, // configuration data odd
        {2, 3, 46, 48}, // both odd
    };

    for (const auto& [parameters, identifiers, length, written] : cases) {
        const Bytes bytes = RecordOf(parameters, identifiers, 1, 0, 0);
        ASSERT_EQ(bytes[1], length);
        ASSERT_EQ(bytes.size(), static_cast<std::size_t>(written));
        EXPECT_EQ(Written(Read<SlaveRecord>(bytes)), bytes) << length;
    }
}

TEST(SlaveRecord, TakesFrom44To1740Bytes) {
    for (const auto& bytes : {RecordOf(0, 3, 1, 0, 0), RecordOf(0, 1, 0, 2, 0), // 44
                              RecordOf(237, 244, 244, 244, 244),                // 1740
                              RecordOf(236, 243, 244, 244, 244)}) {             // 1738 and two pad bytes
        EXPECT_EQ(Written(Read<SlaveRecord>(bytes)), bytes);
    }
    for (const auto& [low, message] : {std::pair(42, "block length (42) not in range [44 : 1740]"),
                                       std::pair(43, "block length (43) not in range [44 : 1740]"),
                                       std::pair(30, "block length (30) not in range [44 : 1740]")}) {
        const auto stream = StreamOf(With(SLAVE, 1, low));
        ExpectFailure<ConfigException>(message, [&] { return SlaveRecord::FromStream(stream); });
        EXPECT_EQ(stream->Position(), 2);
    }
    ExpectFailure<ConfigException>("block length (1741) not in range [44 : 1740]",
                                   [] { return Read<SlaveRecord>(With(With(SLAVE, 0, 6), 1, 0xCD)); });
}

// One kind of block: how to read a block of some length and write it again, and the lengths it may have.
struct BlockCase {
    const char* name;
    int low;
    int high;
    std::function<Bytes(const std::shared_ptr<System::IO::Stream>&)> copy;
};

template <class Block>
static BlockCase CaseOf(const char* name, int low, int high) {
    return {name, low, high, [](const auto& stream) { return Written(Block::FromStream(stream)); }};
}

static Bytes BlockOf(const BlockCase& block, int length) {
    Bytes bytes(static_cast<std::size_t>(std::max(length, 6)), 0x77);
    bytes[0] = static_cast<unsigned char>(length >> 8);
    bytes[1] = static_cast<unsigned char>(length & 0xFF);
    if (block.high == 980) {
        bytes[2] = static_cast<unsigned char>((length - 4) / 2 / 2);
        bytes[3] = static_cast<unsigned char>((length - 4) / 2 - bytes[2]);
    }
    if (block.high == 6)
        bytes[4] = bytes[5] = 0;
    bytes.resize(static_cast<std::size_t>(std::max(length, 2)));
    return bytes;
}

TEST(SlaveBlocks, TakeEveryLengthOfTheirRangeOnly) {
    const BlockCase cases[] = {
        CaseOf<SlaveParameterData>("parameter data", 9, 246),
        CaseOf<SlaveConfigurationData>("configuration data", 3, 246),
        CaseOf<SlaveAddressTable>("address table", 6, 980),
        CaseOf<SlaveUserData>("user data", 6, 6),
        CaseOf<SlaveExtendedUserParameterData>("extended", 2, 246),
    };
    for (const BlockCase& block : cases) {
        SCOPED_TRACE(block.name);
        for (const int length : {block.low, block.high}) {
            const Bytes bytes = BlockOf(block, length);
            EXPECT_EQ(block.copy(StreamOf(bytes)), bytes) << length;
        }
        for (const int length : {0, block.low - 1, block.high + 1, block.high + 2, 0xFFFF}) {
            const auto stream = StreamOf(BlockOf(block, length));
            ExpectFailure<ConfigException>("block length (" + std::to_string(length) + ") not in range [" +
                                               std::to_string(block.low) + " : " +
                                               std::to_string(block.high) + "]",
                                           [&] { return block.copy(stream); });
            EXPECT_EQ(stream->Position(), 2);
        }
    }
}

TEST(SlaveRecord, LeavesTheStreamWhereABlockFailed) {
    const struct {
        Bytes bytes;
        const char* message;
        int position;
    } cases[] = {
        {With(SLAVE, PARAMETERS + 1, 8), "block length (8) not in range [9 : 246]", PARAMETERS + 2},
        {With(SLAVE, CONFIGURATION + 1, 2), "block length (2) not in range [3 : 246]", CONFIGURATION + 2},
        {With(SLAVE, TABLE + 1, 5), "block length (5) not in range [6 : 980]", TABLE + 2},
        {With(SLAVE, TABLE + 2, 245), "input table length (245) not in range [0 : 244]", TABLE + 4},
        {With(SLAVE, TABLE + 3, 255), "output table length (255) not in range [0 : 244]", TABLE + 4},
        {With(With(SLAVE, TABLE + 2, 245), TABLE + 3, 246), "input table length (245) not in range [0 : 244]",
         TABLE + 4},
        {With(SLAVE, TABLE + 1, 8), "read length (10) != block length (8)", USER_DATA},
        {With(SLAVE, TABLE + 1, 11), "read length (10) != block length (11)", USER_DATA},
        {With(SLAVE, USER_DATA + 1, 8), "block length (8) not in range [6 : 6]", USER_DATA + 2},
        {With(SLAVE, EXTENDED + 1, 1), "block length (1) not in range [2 : 246]", EXTENDED + 2},
        {With(SLAVE, EXTENDED + 1, 6), "read length (63) != block length (64)", EXTENDED + 6},
        {With(SLAVE, 1, 65), "read length (64) != block length (65)", EXTENDED + 7},
        {FirstOf(SLAVE, 30), "read length (14) != block length (19)", 30},
        {FirstOf(SLAVE, 39), "read length (3) != block length (6)", 39},
    };

    for (const auto& [bytes, message, position] : cases) {
        const auto stream = StreamOf(bytes);
        ExpectFailure<ConfigException>(message, [&] { return SlaveRecord::FromStream(stream); });
        EXPECT_EQ(stream->Position(), position) << message;
    }
}

TEST(SlaveRecord, EndsWithTheStream) {
    for (const int length : {0, 1, 3, 11, 17, 24, 36, 43, 45, 47, 51, 53, 55, 58, 59, 60, 64}) {
        const auto stream = StreamOf(FirstOf(SLAVE, length));
        ExpectFailure<EndOfStreamException>("Stream ends at byte " + std::to_string(length),
                                            [&] { return SlaveRecord::FromStream(stream); });
    }
}

TEST(SlaveRecord, NeedsAStream) {
    ExpectFailure<System::ArgumentNullException>("stream must not be null",
                                                 [] { return SlaveRecord::FromStream(nullptr); });
    ExpectFailure<System::ArgumentNullException>("stream must not be null",
                                                 [] { Read<SlaveRecord>(SLAVE)->ToStream(nullptr); });
}
