// SPDX-License-Identifier: MIT
#include "tests/modules/dpvm/config/RecordStreams.h"
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/TemporaryFolder.h"

#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/config/DdbParser.h"
#include "vesk/system/io/IOException.h"

using namespace Vesk;
using namespace Vesk::Modules::DPVM::Config;
using File = DatabaseFileBuilder;
using System::ArgumentException;
using System::FormatException;
using System::IO::EndOfStreamException;

// Positions in a file: the first message's header and data, and the second's.
static constexpr int HEADER1 = 9;
static constexpr int DATA1 = HEADER1 + 32;
static constexpr int HEADER2 = HEADER1 + 288;
static constexpr int DATA2 = HEADER2 + 32;
static constexpr int DATA3 = DATA2 + 288;

static Bytes SlaveOf(std::size_t inputs, std::size_t outputs, std::size_t extended) {
    File::SlaveContent content;
    content.inputs.resize(inputs, 1);
    content.outputs.resize(outputs, 2);
    content.extended.resize(extended, 0x5A);
    return File::SlaveRecord(content);
}

namespace {

struct Fragment {
    int address, number, last;
    Bytes data = Bytes(256);
};

} // namespace

/// A file with a master and fragments of slave records.
static Bytes FileOf(const std::vector<Fragment>& fragments) {
    File file;
    file.Master();
    for (const auto& [address, number, last, data] : fragments)
        file.Message(0x14, address << 8 | number, last << 8 | 0xEE, data, static_cast<int>(data.size()));
    return file.Build();
}

/// Expects the failure, and the stream at `position` after it.
template <class ExceptionType>
static void ExpectRefused(const std::string& message, const Bytes& bytes, int position) {
    SCOPED_TRACE(message);
    const auto stream = StreamOf(bytes);
    ExpectFailure<ExceptionType>(message, [&] { DdbParser::FromStream(stream); });
    EXPECT_EQ(stream->Position(), position);
}

TEST(DdbParserTest, ReadsMasterAndSlavesOfOneAndMoreFragmentsFromTheStreamsPosition) {
    const Bytes one = SlaveOf(2, 1, 0);
    const Bytes two = SlaveOf(100, 100, 67);   // 512 bytes, and the pad byte makes a third fragment
    const Bytes three = SlaveOf(122, 122, 68); // 600 bytes and a pad byte
    File file;
    Bytes bytes = file.Master().Slave(12, one).Slave(5, three).Slave(126, two).Build();
    const TemporaryFolder folder;
    EXPECT_EQ(DdbParser::FromPath(folder.Put("plant.ddb", file.Content()))->Checksum(), file.Checksum());
    EXPECT_THROW(DdbParser::FromPath(folder.Path("missing.ddb")), System::Thrown);

    bytes.insert(bytes.begin(), 5, 0xAA);
    const auto stream = StreamOf(bytes);
    stream->Seek(5, System::IO::SeekOrigin::BEGIN);
    const auto config = DdbParser::FromStream(stream);
    EXPECT_EQ(stream->Position(), stream->Length());
    EXPECT_EQ(config->Checksum(), file.Checksum());
    ASSERT_EQ(config->SlaveAddresses()->Count(), 3);
    EXPECT_EQ(config->SlaveAddresses()->Get(1), 5);
    EXPECT_EQ(Written(config->Master()), File::MasterRecord());
    EXPECT_EQ(Written(config->Slave(12)), one);
    EXPECT_EQ(Written(config->Slave(5)), three);
    EXPECT_EQ(Written(config->Slave(126)), two);
}

TEST(DdbParserTest, RefusesAnotherFirstLine) {
    const auto with = [](const char* line) { return File().Master().Checksum(line).Build(); };
    ExpectRefused<FormatException>("\"0123456g\" is not a number in base 16", with("0123456g"), 8);
    ExpectRefused<FormatException>("d", with("01234567\r"), HEADER1);
    ExpectRefused<FormatException>("38", with("012345678"), HEADER1);
    ExpectRefused<ConfigException>("calculated CRC (598371953) != expected CRC (3735928559)",
                                   with("deadbeef"), HEADER2);
    EXPECT_EQ(DdbParser::FromStream(StreamOf(with("23AA6E71")))->SlaveAddresses()->Count(), 0)
        << "either case, and a master alone will do";
}

TEST(DdbParserTest, RefusesAFileThatIsCutShort) {
    const Bytes whole = File().Master().Slave(3, SlaveOf(2, 0, 0)).Build();
    const auto cut = [&](int length) { return Bytes(whole.begin(), whole.begin() + length); };
    for (const int length : {0, 7, 9})
        ExpectRefused<EndOfStreamException>("Stream ends at byte " + std::to_string(length), cut(length),
                                            length);
    ExpectRefused<EndOfStreamException>("Stream ends after the checksum", cut(8), 8);
    ExpectRefused<FormatException>("1", cut(10), HEADER1);
    ExpectRefused<FormatException>("11f", cut(HEADER2 - 1), HEADER1);
    ExpectRefused<FormatException>("121", cut(HEADER2 + 1), HEADER1);
    const Bytes record = File().Message(0x12, 0, 0, File::MasterRecord(), 32).Build();
    ExpectRefused<EndOfStreamException>("Stream ends at byte 32", record, HEADER2);
}

TEST(DdbParserTest, RefusesHeadersOfOtherMessagesAndLooksAtNothingElse) {
    const Bytes good = File().Master().Slave(3, SlaveOf(2, 0, 0)).Build();
    ExpectRefused<ArgumentException>("7", With(good, HEADER1 + 2, 7), DATA1);      // message type
    ExpectRefused<ArgumentException>("138", With(good, HEADER1 + 3, 0xCA), DATA1); // error code
    ExpectRefused<ArgumentException>("5", With(good, HEADER2 + 3, 0x05), DATA2);
    ExpectRefused<ConfigException>("command (20) != MASTER_RECORD_DOWNLOAD (18)", With(good, HEADER1 + 4, 20),
                                   DATA1);
    ExpectRefused<ConfigException>("command (18) != SLAVE_RECORD_DOWNLOAD (20)", With(good, HEADER2 + 4, 18),
                                   DATA2);
    ExpectRefused<ConfigException>("command (276) != SLAVE_RECORD_DOWNLOAD (20)", With(good, HEADER2 + 5, 1),
                                   DATA2);
    ExpectRefused<ConfigException>("data size (352) > 256", With(good, HEADER1 + 7, 1), DATA1);
    ExpectRefused<ConfigException>("data size (257) > 256", With(With(good, HEADER2 + 6, 1), HEADER2 + 7, 1),
                                   DATA2);
    Bytes bytes = good;
    for (const int header : {HEADER1, HEADER2})
        for (const int offset : {0, 1, 8, 9, 10, 11, 12, 13, 14, 15, 20, 31})
            bytes[static_cast<std::size_t>(header + offset)] ^= 0x5A;
    EXPECT_EQ(DdbParser::FromStream(StreamOf(bytes))->Checksum(),
              File().Master().Slave(3, SlaveOf(2, 0, 0)).Checksum());
}

TEST(DdbParserTest, RefusesFragmentsOutOfOrder) {
    const std::pair<std::vector<Fragment>, const char*> cases[] = {
        {{{3, 0, 1}}, "Invalid fragmentNumber (0)"},
        {{{3, 2, 2}}, "fragmentNumber (2) != next fragment (1)"},
        {{{3, 1, 3}, {3, 3, 3}}, "fragmentNumber (3) != next fragment (2)"},
        {{{3, 1, 3}, {3, 1, 3}}, "fragmentNumber (1) != next fragment (2)"},
        {{{3, 1, 2}, {4, 2, 2}}, "fragment node address (4) != current node address (3)"},
        {{{3, 1, 1, SlaveOf(1, 1, 0)}, {3, 2, 2}}, "fragmentNumber (2) != next fragment (1)"},
    };
    for (const auto& [fragments, message] : cases)
        ExpectRefused<ConfigException>(message, FileOf(fragments), fragments.size() == 1 ? DATA2 : DATA3);
    const Bytes slave = SlaveOf(1, 1, 0);
    ExpectRefused<ArgumentException>("Key already exists", FileOf({{3, 1, 1, slave}, {3, 1, 1, slave}}),
                                     DATA3 + 256);
}

TEST(DdbParserTest, TakesWhatARecordNeedsOfItsFragmentsAndDropsWhatTheFileCutsOff) {
    Bytes slave = SlaveOf(2, 0, 0);
    const auto checksum = File().Master().Slave(3, slave).Checksum();
    slave.resize(slave.size() + 7, 0x99);
    Bytes bytes = FileOf({{3, 1, 2, Bytes(slave.begin(), slave.begin() + 20)},
                          {3, 2, 2, Bytes(slave.begin() + 20, slave.end())},
                          {4, 1, 3},
                          {4, 2, 3}});
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08x", checksum);
    std::copy_n(digits, 8, bytes.begin());
    const auto config = DdbParser::FromStream(StreamOf(bytes));
    EXPECT_EQ(config->SlaveAddresses()->Count(), 1);
    EXPECT_EQ(config->Checksum(), checksum);
}
