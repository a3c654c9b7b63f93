// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/FirmwareFileBuilder.h"
#include "tests/support/TemporaryFolder.h"

#include "vesk/system/io/IOException.h"

using Builder = FirmwareFileBuilder;
using System::FormatException;
using System::IO::EndOfStreamException;
using Vesk::Modules::Bootloader::TarnFile;

TEST(TarnFileTest, DescriptionEndsAtItsFirstZeroOrAt64Bytes) {
    EXPECT_EQ(Builder().Put(4, {0, 'x', 0xFF, 0}).Read()->Description.Value(), "Demo");
    Builder builder;
    for (int i = 0; i < 64; ++i)
        builder.Put(i, {0xC0 + i});
    EXPECT_EQ(builder.Read()->Description.Value(), builder.Content().substr(0, 64));
    EXPECT_EQ(builder.Put(0, {0}).Read()->Description.Value(), "");
}

TEST(TarnFileTest, RefusesAnotherHeaderAtItsFirstFault) {
    const std::pair<Builder, const char*> cases[] = {
        {Builder().Type(0), "UNKNOWN: 0"},
        {Builder().Type(4), "UNKNOWN: 4"},
        {Builder().Type(0xABCD).Put(114, {1}), "UNKNOWN: abcd"},
        {Builder().Type(9).Put(64, {0x5A, 0xA5}), "5aa5"},
        {Builder().Put(64, {0x00, 0x0A}), "a"},
        {Builder().Put(114, {7, 8}).Length(0xFFFFFFFF), "Unknown data in reserved[0]: 7\n"},
        {Builder().Put(127, {255}), "Unknown data in reserved[13]: 255\n"},
    };
    for (const auto& [file, message] : cases)
        ExpectFailure<FormatException>(message, [&file = file] { file.Read(); });
}

TEST(TarnFileTest, ReadsTheProgramAndNothingBehindIt) {
    const TemporaryFolder folder;
    for (const int size : {0, 1, 600}) {
        const auto file = Builder().Program(size).Size(128 + size + 5);
        const auto stream = file.Stream();
        for (const auto& read :
             {TarnFile::FromStream(stream), TarnFile::FromPath(folder.Put("demo.fw", file.Content()))}) {
            const auto& data = read->ProgramData;
            EXPECT_EQ(std::string(data->Data(), data->Data() + data->Count()),
                      file.Content().substr(128, static_cast<std::size_t>(size)));
        }
        EXPECT_EQ(stream->Position(), 128 + size);
    }
    EXPECT_THROW(TarnFile::FromPath(folder.Path("missing.fw")), System::Thrown);
}

TEST(TarnFileTest, NoticesEveryPlaceWhereAFileCanEnd) {
    for (int size = 0; size < 131; ++size) {
        const int end = size >= 5 && size < 64 ? 64 : size; // behind the description the magic is looked for
        ExpectFailure<EndOfStreamException>(size < 128 ? "Stream ends at byte " + std::to_string(end)
                                                       : "Stream holds " + std::to_string(size - 128) +
                                                             " of 3 program bytes",
                                            [&] { Builder().Program(3).Size(size).Read(); });
    }

    /// Promises more than it has.
    struct Promising : System::IO::MemoryStream {
        explicit Promising(const std::string& bytes)
            : MemoryStream(System::Array<unsigned char>::Create({bytes.begin(), bytes.end()})) {}

        std::int64_t Length() override { return 1000; }
    };

    ExpectFailure<EndOfStreamException>("Stream ends after 2 of 3 program bytes", [] {
        TarnFile::FromStream(std::make_shared<Promising>(Builder().Program(3).Size(130).Content()));
    });
}

TEST(TarnFileTest, AllocatesNothingForALengthThatTheStreamDoesNotHold) {
    ExpectFailure<EndOfStreamException>("Stream holds 72 of 2147483647 program bytes",
                                        [] { Builder().Size(200).Length(0x7FFFFFFF).Read(); });
    ExpectFailure<System::ArgumentOutOfRangeException>("size (-2147483648) must not be less than zero (0)",
                                                       [] { Builder().Size(200).Length(0x80000000).Read(); });
}
