// SPDX-License-Identifier: MIT
#include "tests/modules/dpvm/config/RecordStreams.h"
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/Values.h"

#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/config/SlaveBlocks.h"
#include "vesk/modules/dpvm/config/SlaveRecord.h"
#include "vesk/system/io/IOException.h"

#include <tuple>

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
    const auto parameters = slave->ParameterData();
    EXPECT_EQ((std::vector<int>{slave->SlaveFlags(), slave->SlaveType(), slave->MaxDiagnosticDataLength(),
                                slave->MaxChannelDataLength(), slave->DiagUpdDelay(), slave->AlarmMode(),
                                slave->AdditionalSlaveFlags(), slave->MSAC1Timeout(),
                                slave->UserData()->InputDataLength(), slave->UserData()->OutputDataLength()}),
              (std::vector<int>{0x80, 1, 0xF4, 0xF0, 5, 6, 7, 100, 2, 1}));
    EXPECT_EQ((std::vector<int>{parameters->StationStatus(), parameters->WatchdogFactor1(),
                                parameters->WatchdogFactor2(), parameters->MinStationDelayTimeResponder(),
                                parameters->IdentNr(), parameters->GroupIdent()}),
              (std::vector<int>{0x88, 2, 10, 11, 0x1234, 3}));
    EXPECT_EQ(Values(parameters->UserParameters()),
              (std::vector<int>{0xA0, 0xA1, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xA9}));
    EXPECT_EQ(Values(slave->ConfigurationData()->IdentifierBytes()), (std::vector<int>{0xC0, 1, 2, 3}));
    EXPECT_EQ(Values(slave->AddressTable()->InputOffsetTable()), (std::vector<int>{0x0102, 0x0304}));
    EXPECT_EQ(Values(slave->AddressTable()->OutputOffsetTable()), (std::vector<int>{0x0DAB}));
    EXPECT_EQ(Values(slave->ExtendedUserParameterData()->ExtUsrPrmData()),
              (std::vector<int>{0xE0, 0xE1, 0xE2, 0xE3, 0xE4}));
}

TEST(SlaveRecord, PrintsALinePerFieldAndItsBlocks) {
    EXPECT_EQ(Read<SlaveRecord>(SLAVE)->ToString().Value(),
              "slaveFlags: 128\nslaveType: 1\nmaxDiagnosticDataLength: 244\nmaxChannelDataLength: 240\n"
              "diagUpdDelay: 5\nalarmMode: 6\nadditionalSlaveFlags: 7\nmSAC1Timeout: 100\n\n"
              "Parameter data{\nstationStatus: 136\nwatchdogFactor1: 2\nwatchdogFactor2: 10\n"
              "minStationDelayTimeResponder: 11\nidentNr: 4660\ngroupIdent: 3\n"
              "userParameters: [a0, a1, a2, a3, a4, a5, a6, a7, a8, a9]\n}\n\n"
              "Configuration data{\nidentifierBytes: [c0, 01, 02, 03]\n}\n\n"
              "Address table{\ninputOffsetTable: [0102, 0304]\noutputOffsetTable: [0dab]\n}\n\n"
              "User data{\ninputDataLength: 2\noutputDataLength: 1\n}\n\n"
              "Extended user data{\nextUsrPrmData: [e0, e1, e2, e3, e4]\n}\n");
}

TEST(SlaveRecord, WritesWhatItReadWithReservedAndPadBytesZero) {
    Bytes dirty = SLAVE;
    for (const int offset : {5, 12, 15, 35, 56, 57})
        dirty = With(dirty, offset, 0xEE);
    EXPECT_EQ(Written(Read<SlaveRecord>(dirty)), SLAVE);
}

TEST(SlaveRecord, TakesFrom44To1740BytesWithAnyPadBytes) {
    for (const auto& [bytes, length, written] : {std::tuple{RecordOf(1, 2, 1, 0, 0), 44, 44u}, // both even
                                                 {RecordOf(2, 2, 1, 0, 0), 45, 46u}, // parameter data odd
                                                 {RecordOf(1, 3, 1, 0, 0), 45, 46u}, // configuration odd
                                                 {RecordOf(0, 1, 0, 2, 0), 44, 46u}, // both odd
                                                 {RecordOf(237, 244, 244, 244, 244), 1740, 1740u},
                                                 {RecordOf(236, 243, 244, 244, 244), 1738, 1740u}}) {
        ASSERT_EQ(bytes[0] << 8 | bytes[1], length);
        ASSERT_EQ(bytes.size(), written);
        EXPECT_EQ(Written(Read<SlaveRecord>(bytes)), bytes) << length;
    }
    for (const int length : {30, 42, 43, 1741}) {
        const auto stream = StreamOf(With(With(SLAVE, 0, length >> 8), 1, length & 0xFF));
        ExpectFailure<ConfigException>("block length (" + std::to_string(length) +
                                           ") not in range [44 : 1740]",
                                       [&] { SlaveRecord::FromStream(stream); });
        EXPECT_EQ(stream->Position(), 2);
    }
}

/// Reads and writes a kind of block that may have from `low` to `high` bytes.
template <class Block>
static void ExpectLengths(const char* name, int low, int high) {
    SCOPED_TRACE(name);
    for (const int length : {low, high, 0, low - 1, high + 1, high + 2, 0xFFFF}) {
        Bytes bytes(static_cast<std::size_t>(std::max(length, 6)), 0x77);
        bytes[0] = static_cast<unsigned char>(length >> 8);
        bytes[1] = static_cast<unsigned char>(length & 0xFF);
        if (high == 980) { // the numbers of entries have to fit
            bytes[2] = static_cast<unsigned char>((length - 4) / 2 / 2);
            bytes[3] = static_cast<unsigned char>((length - 4) / 2 - bytes[2]);
        }
        if (high == 6) // reserved
            bytes[4] = bytes[5] = 0;
        bytes.resize(static_cast<std::size_t>(std::max(length, 2)));
        const auto stream = StreamOf(bytes);
        if (length >= low && length <= high) {
            EXPECT_EQ(Written(Block::FromStream(stream)), bytes) << length;
            continue;
        }
        ExpectFailure<ConfigException>("block length (" + std::to_string(length) + ") not in range [" +
                                           std::to_string(low) + " : " + std::to_string(high) + "]",
                                       [&] { Block::FromStream(stream); });
        EXPECT_EQ(stream->Position(), 2);
    }
}

TEST(SlaveBlocks, TakeEveryLengthOfTheirRangeOnly) {
    ExpectLengths<SlaveParameterData>("parameter data", 9, 246);
    ExpectLengths<SlaveConfigurationData>("configuration data", 3, 246);
    ExpectLengths<SlaveAddressTable>("address table", 6, 980);
    ExpectLengths<SlaveUserData>("user data", 6, 6);
    ExpectLengths<SlaveExtendedUserParameterData>("extended", 2, 246);
}

TEST(SlaveRecord, LeavesTheStreamWhereABlockFailed) {
    const std::tuple<Bytes, const char*, int> cases[] = {
        {With(SLAVE, TABLE + 2, 245), "input table length (245) not in range [0 : 244]", TABLE + 4},
        {With(SLAVE, TABLE + 3, 255), "output table length (255) not in range [0 : 244]", TABLE + 4},
        {With(With(SLAVE, TABLE + 2, 245), TABLE + 3, 246), "input table length (245) not in range [0 : 244]",
         TABLE + 4},
        {With(SLAVE, TABLE + 1, 8), "read length (10) != block length (8)", USER_DATA},
        {With(SLAVE, TABLE + 1, 11), "read length (10) != block length (11)", USER_DATA},
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
        ExpectFailure<EndOfStreamException>("Stream ends at byte " + std::to_string(length),
                                            [&] { Read<SlaveRecord>(FirstOf(SLAVE, length)); });
    }
}

TEST(SlaveRecord, NeedsAStream) {
    ExpectFailure<System::ArgumentNullException>("stream must not be null",
                                                 [] { return SlaveRecord::FromStream(nullptr); });
    ExpectFailure<System::ArgumentNullException>("stream must not be null",
                                                 [] { Read<SlaveRecord>(SLAVE)->ToStream(nullptr); });
}
