// SPDX-License-Identifier: MIT
#include "tests/modules/dpvm/config/RecordStreams.h"
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/TemporaryFolder.h"

#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/config/DdbParser.h"
#include "vesk/system/io/IOException.h"

#include <array>
#include <set>
#include <tuple>

using namespace Vesk;
using namespace Vesk::Modules::DPVM::Config;
using System::ArgumentException;
using System::FormatException;
using System::IO::EndOfStreamException;

class DdbParserTest : public testing::Test {
protected:
    static Bytes SlaveOf(int inputs, int outputs, int extended) {
        DatabaseFileBuilder::SlaveContent content;
        for (int i = 0; i < inputs; ++i)
            content.inputs.push_back(i);
        for (int i = 0; i < outputs; ++i)
            content.outputs.push_back(i);
        content.extended = Bytes(static_cast<std::size_t>(extended), 0x5A);
        return DatabaseFileBuilder::SlaveRecord(content);
    }

    /// One fragment of a slave record.
    DatabaseFileBuilder& Fragment(int address, int number, int last, const Bytes& data = Bytes(256)) {
        return file.Message(0x14, address << 8 | number, last << 8 | 0xEE, data,
                            static_cast<int>(data.size()));
    }

    static std::shared_ptr<IBusConfig> Parse(const Bytes& bytes) {
        return DdbParser::FromStream(StreamOf(bytes));
    }

    /// Expects the failure, and the stream at `position` after it.
    template <class ExceptionType>
    static void ExpectRefused(const std::string& message, const Bytes& bytes, int position) {
        SCOPED_TRACE(message);
        const auto stream = StreamOf(bytes);
        ExpectFailure<ExceptionType>(message, [&] { DdbParser::FromStream(stream); });
        EXPECT_EQ(stream->Position(), position);
    }

    DatabaseFileBuilder file;
};

// Positions in a file: the first message's header and data, and the second's.
static constexpr int HEADER1 = 9;
static constexpr int DATA1 = HEADER1 + 32;
static constexpr int HEADER2 = HEADER1 + 288;
static constexpr int DATA2 = HEADER2 + 32;

TEST_F(DdbParserTest, ReadsMasterAndSlavesOfOneAndMoreFragments) {
    const Bytes one = SlaveOf(2, 1, 0);
    const Bytes two = SlaveOf(100, 100, 67);   // 512 bytes, and the pad byte makes a third fragment
    const Bytes three = SlaveOf(122, 122, 68); // 600 bytes and a pad byte
    const Bytes file12 = file.Master().Slave(12, one).Slave(5, three).Slave(126, two).Build();
    const auto stream = StreamOf(file12);
    const auto config = DdbParser::FromStream(stream);
    EXPECT_EQ(stream->Position(), stream->Length());
    EXPECT_EQ(config->Checksum(), file.Checksum());
    ASSERT_EQ(config->SlaveAddresses()->Count(), 3);
    EXPECT_EQ(config->SlaveAddresses()->Get(1), 5);
    EXPECT_EQ(Written(config->Master()), DatabaseFileBuilder::MasterRecord());
    EXPECT_EQ(Written(config->Slave(12)), one);
    EXPECT_EQ(Written(config->Slave(5)), three);
    EXPECT_EQ(Written(config->Slave(126)), two);
}

TEST_F(DdbParserTest, ReadsFromTheStreamsPosition) {
    Bytes bytes(5, 0xAA);
    const Bytes content = file.Master().Build();
    bytes.insert(bytes.end(), content.begin(), content.end());
    const auto stream = StreamOf(bytes);
    stream->Seek(5, System::IO::SeekOrigin::BEGIN);
    const auto config = DdbParser::FromStream(stream);
    EXPECT_EQ(config->Checksum(), file.Checksum());
    EXPECT_EQ(config->SlaveAddresses()->Count(), 0) << "a master alone will do";
}

TEST_F(DdbParserTest, ReadsAFile) {
    const TemporaryFolder folder;
    const Bytes bytes = file.Master().Slave(3, SlaveOf(122, 122, 68)).Slave(4, SlaveOf(1, 1, 0)).Build();
    const auto config = DdbParser::FromPath(folder.Put("plant.ddb", std::string(bytes.begin(), bytes.end())));
    EXPECT_EQ(config->Checksum(), file.Checksum());
    EXPECT_THROW(DdbParser::FromPath(folder.Path("missing.ddb")), std::shared_ptr<System::Exception>);
    ExpectFailure<System::ArgumentNullException>("stream must not be null",
                                                 [] { DdbParser::FromStream(nullptr); });
}

TEST_F(DdbParserTest, TakesTheChecksumInEitherCase) {
    file.Master();
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08X", file.Checksum());
    EXPECT_EQ(Parse(file.Checksum(digits).Build())->Checksum(), file.Checksum());
}

TEST_F(DdbParserTest, RefusesAnotherFirstLine) {
    file.Master();
    ExpectRefused<FormatException>("\"0123456g\" is not a number in base 16",
                                   file.Checksum("0123456g").Build(), 8);
    ExpectRefused<FormatException>("\" 1234567\" is not a number in base 16",
                                   file.Checksum(" 1234567").Build(), 8);
    ExpectRefused<FormatException>("d", file.Checksum("01234567\r").Build(), HEADER1);
    ExpectRefused<FormatException>("38", file.Checksum("012345678").Build(), HEADER1);
}

TEST_F(DdbParserTest, RefusesAFileThatIsCutShort) {
    const Bytes whole = file.Master().Slave(3, SlaveOf(2, 0, 0)).Build();
    const auto cut = [&](int length) { return Bytes(whole.begin(), whole.begin() + length); };
    for (const int length : {0, 1, 7})
        ExpectRefused<EndOfStreamException>("Stream ends at byte " + std::to_string(length), cut(length),
                                            length);
    ExpectRefused<EndOfStreamException>("Stream ends after the checksum", cut(8), 8);
    ExpectRefused<EndOfStreamException>("Stream ends at byte 9", cut(9), 9);
    ExpectRefused<FormatException>("1", cut(10), HEADER1);
    ExpectRefused<FormatException>("20", cut(DATA1), HEADER1);
    ExpectRefused<FormatException>("11f", cut(HEADER2 - 1), HEADER1);
    ExpectRefused<FormatException>("121", cut(HEADER2 + 1), HEADER1);
    ExpectRefused<FormatException>("23f", cut(HEADER2 + 287), HEADER1);
}

TEST_F(DdbParserTest, RefusesAChecksumThatDoesNotMatch) {
    file.Master().Checksum("deadbeef");
    ExpectRefused<ConfigException>("calculated CRC (598371953) != expected CRC (3735928559)", file.Build(),
                                   HEADER2);
}

TEST_F(DdbParserTest, DropsARecordWhoseLastFragmentIsMissing) {
    file.Master().Slave(3, SlaveOf(2, 0, 0));
    Fragment(4, 1, 3);
    Fragment(4, 2, 3);
    const auto config = Parse(file.Build());
    EXPECT_EQ(config->SlaveAddresses()->Count(), 1);
    EXPECT_EQ(config->Checksum(), file.Checksum());
}

TEST_F(DdbParserTest, RefusesMessagesOfOtherCommands) {
    file.Message(0x14, 0x0101, 0x0100, Bytes(96), 96);
    ExpectRefused<ConfigException>("command (20) != MASTER_RECORD_DOWNLOAD (18)", file.Build(), DATA1);
    file = DatabaseFileBuilder().Master().Master();
    ExpectRefused<ConfigException>("command (18) != SLAVE_RECORD_DOWNLOAD (20)", file.Build(), DATA2);
    file = DatabaseFileBuilder().Master().Message(0x1400, 0x0101, 0x0100, {}, 0);
    ExpectRefused<ConfigException>("command (5120) != SLAVE_RECORD_DOWNLOAD (20)", file.Build(), DATA2);
}

TEST_F(DdbParserTest, RefusesHeadersThatAreNoMessages) {
    const std::tuple<int, int, const char*, int> cases[] = {
        // offset, value, message, position
        {HEADER1 + 2, 7, "7", DATA1}, // message type
        {HEADER2 + 2, 0, "0", DATA2},
        {HEADER1 + 3, 0xCA, "138", DATA1}, // error code
        {HEADER2 + 3, 0x05, "5", DATA2},
    };
    const Bytes good = file.Master().Slave(3, SlaveOf(2, 0, 0)).Build();
    for (const auto& [offset, value, message, position] : cases)
        ExpectRefused<ArgumentException>(message, With(good, offset, value), position);
}

TEST_F(DdbParserTest, LooksAtNothingElseInAHeader) {
    Bytes bytes = file.Master().Slave(3, SlaveOf(2, 0, 0)).Build();
    for (const int header : {HEADER1, HEADER2})
        for (const int offset : {0, 1, 8, 9, 10, 11, 12, 13, 14, 15, 20, 31})
            bytes[static_cast<std::size_t>(header + offset)] ^= 0x5A;
    EXPECT_EQ(Parse(bytes)->Checksum(), file.Checksum());
}

TEST_F(DdbParserTest, RefusesFragmentsOutOfOrder) {
    using Fragments = std::vector<std::array<int, 3>>; // address, number, last
    const std::pair<Fragments, const char*> cases[] = {
        {{{3, 0, 1}}, "Invalid fragmentNumber (0)"},
        {{{3, 2, 2}}, "fragmentNumber (2) != next fragment (1)"},
        {{{3, 1, 3}, {3, 3, 3}}, "fragmentNumber (3) != next fragment (2)"},
        {{{3, 1, 3}, {3, 1, 3}}, "fragmentNumber (1) != next fragment (2)"},
        {{{3, 1, 2}, {4, 2, 2}}, "fragment node address (4) != current node address (3)"},
    };
    for (const auto& [fragments, message] : cases) {
        file = DatabaseFileBuilder().Master();
        for (const auto& [address, number, last] : fragments)
            Fragment(address, number, last);
        ExpectRefused<ConfigException>(message, file.Build(),
                                       DATA1 + 288 * static_cast<int>(fragments.size()));
    }
    file = DatabaseFileBuilder().Master().Slave(3, SlaveOf(1, 1, 0));
    Fragment(3, 2, 2);
    ExpectRefused<ConfigException>("fragmentNumber (2) != next fragment (1)", file.Build(), DATA2 + 288);
}

TEST_F(DdbParserTest, RefusesAnAddressTwice) {
    file.Master().Slave(3, SlaveOf(2, 0, 0)).Slave(3, SlaveOf(0, 2, 0));
    ExpectRefused<ArgumentException>("Key already exists", file.Build(), HEADER1 + 3 * 288);
}

TEST_F(DdbParserTest, RefusesMoreDataThanAMessageHolds) {
    file.Message(0x12, 0, 0, DatabaseFileBuilder::MasterRecord(), 257);
    ExpectRefused<ConfigException>("data size (257) > 256", file.Build(), DATA1);
    file = DatabaseFileBuilder().Master().Message(0x14, 0x0301, 0x0200, Bytes(256), 0xFFFF);
    ExpectRefused<ConfigException>("data size (65535) > 256", file.Build(), DATA2);
}

TEST_F(DdbParserTest, PassesOnWhatTheRecordsRefuse) {
    file.Message(0x12, 0, 0, Bytes(96), 96);
    ExpectRefused<ConfigException>("block length (0) != expected (96)", file.Build(), HEADER2);
    file = DatabaseFileBuilder();
    file.Message(0x12, 0, 0, DatabaseFileBuilder::MasterRecord(), 32);
    ExpectRefused<EndOfStreamException>("Stream ends at byte 32", file.Build(), HEADER2);
    file = DatabaseFileBuilder().Master();
    Fragment(3, 1, 1, Bytes{0, 30});
    ExpectRefused<ConfigException>("block length (30) not in range [44 : 1740]", file.Build(), HEADER2 + 288);
}

TEST_F(DdbParserTest, TakesWhatARecordNeedsOfItsFragments) {
    Bytes slave = SlaveOf(2, 0, 0);
    file.Master().Slave(3, slave);
    slave.resize(slave.size() + 7, 0x99);
    const auto checksum = file.Checksum();
    file = DatabaseFileBuilder().Master();
    Fragment(3, 1, 2, Bytes(slave.begin(), slave.begin() + 20));
    Fragment(3, 2, 2, Bytes(slave.begin() + 20, slave.end()));
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08x", checksum);
    EXPECT_EQ(Parse(file.Checksum(digits).Build())->Checksum(), checksum);
}

TEST_F(DdbParserTest, ReadsTheExamplePlant) {
    const auto plant = DdbParser::FromPath(SOURCE_DIR "/examples/plant.ddb");
    EXPECT_EQ(plant->Master()->StationAddress(), 1);
    ASSERT_EQ(plant->SlaveAddresses()->Count(), 12);
    std::set<std::pair<bool, int>> places; // of input or output data
    const auto take = [&places](bool input, const auto& table, int dataLength) {
        EXPECT_EQ(table->Count(), dataLength);
        for (int i = 0; i < dataLength; ++i)
            EXPECT_TRUE(table->Get(i) < 3500 && places.insert({input, table->Get(i)}).second);
    };
    for (int i = 0; i < 12; ++i) {
        const auto slave = plant->Slave(plant->SlaveAddresses()->Get(i));
        take(true, slave->AddressTable()->InputOffsetTable(), slave->UserData()->InputDataLength());
        take(false, slave->AddressTable()->OutputOffsetTable(), slave->UserData()->OutputDataLength());
    }
}
