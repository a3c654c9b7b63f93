// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/FirmwareFileBuilder.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Values.h"

#include "vesk/system/io/IOException.h"

using System::FormatException;
using System::IO::EndOfStreamException;
using Vesk::Modules::Bootloader::FirmwareType_e;
using Vesk::Modules::Bootloader::TarnFile;

TEST(TarnFileTest, ReadsEveryFieldAndWritesALineForEach) {
    EXPECT_EQ(FirmwareFileBuilder().Read()->ToString().Value(),
              "Description: Demo\nFirmware Type: APPLICATION_FIRMWARE\nModule ID: 0x1234\n"
              "Erase Segments: 0x56\nAddress burn start: 0x20000\nProgram length: 0x0\nCRC Start: 0x20010\n"
              "CRC Length: 0x1020304\nCRC: 0xbeef\nOldest major: 2\nOldest minor: 7\nErase segments count: "
              "[01, 02, 03, 04, 05, 06, 07, 08, 09, 0a, 0b, 0c, 0d, 0e, 0f, 10, 11, 12, 13, 14, 15, 16]\n");
}

TEST(TarnFileTest, DescriptionEndsAtItsFirstZeroOrAt64Bytes) {
    FirmwareFileBuilder builder;
    builder.Put(4, {0, 'x', 0xFF, 0});
    EXPECT_EQ(builder.Read()->Description.Value(), "Demo");
    builder.Put(0, {0});
    EXPECT_EQ(builder.Read()->Description.Value(), "");
    for (int i = 0; i < 64; ++i)
        builder.Put(i, {0xC0 + i});
    EXPECT_EQ(builder.Read()->Description.Value(), builder.Content().substr(0, 64));
}

TEST(TarnFileTest, KnowsThreeFirmwareTypes) {
    const char* const NAMES[] = {"UNKNOWN: 0", "BOOTLOADER_FIRMWARE", "APPLICATION_FIRMWARE",
                                 "CONFIGURATION_FIRMWARE", "UNKNOWN: 4"};
    for (int type = 0; type <= 4; ++type) {
        SCOPED_TRACE(type);
        const auto expected = static_cast<FirmwareType_e>(type);
        EXPECT_EQ(TarnFile::FirmwareTypeToString(expected).Value(), NAMES[type]);
        const auto read = [type] { return FirmwareFileBuilder().Type(type).Read(); };
        if (type == 0 || type == 4)
            ExpectFailure<FormatException>(NAMES[type], read);
        else
            EXPECT_EQ(read()->FirmwareType, expected);
    }
    ExpectFailure<FormatException>("UNKNOWN: abcd", [] { FirmwareFileBuilder().Type(0xABCD).Read(); });
}

TEST(TarnFileTest, RefusesAnotherMagicBeforeAnythingElse) {
    FirmwareFileBuilder builder;
    builder.Type(9).Put(114, {1});
    ExpectFailure<FormatException>("UNKNOWN: 9", [&] { builder.Read(); });
    builder.Put(64, {0x5A, 0xA5});
    ExpectFailure<FormatException>("5aa5", [&] { builder.Read(); });
    builder.Put(64, {0x00, 0x0A});
    ExpectFailure<FormatException>("a", [&] { builder.Read(); });
}

TEST(TarnFileTest, RefusesReservedBytesThatAreNotZero) {
    FirmwareFileBuilder builder;
    builder.Length(0xFFFFFFFF); // not looked at before
    for (int index = 13; index >= 0; --index) {
        const int value = index == 6 ? 7 : 255 - index;
        builder.Put(114 + index, {value});
        ExpectFailure<FormatException>("Unknown data in reserved[" + std::to_string(index) +
                                           "]: " + std::to_string(value) + "\n",
                                       [&] { builder.Read(); });
    }
}

TEST(TarnFileTest, ReadsTheProgramAndNothingBehindIt) {
    for (const std::string& program : {std::string(), std::string("\xFF"), std::string(600, 'x') + "end"}) {
        const int size = static_cast<int>(program.size());
        const auto stream = FirmwareFileBuilder().Program(program).Size(128 + size + 5).Stream();
        const auto data = TarnFile::FromStream(stream)->ProgramData;
        EXPECT_EQ(std::string(data->Data(), data->Data() + data->Count()), program);
        EXPECT_EQ(stream->Position(), 128 + size);
    }
}

TEST(TarnFileTest, NoticesEveryPlaceWhereAFileCanEnd) {
    for (int size = 0; size < 131; ++size) {
        const int end = size >= 5 && size < 64 ? 64 : size; // behind the description the magic is looked for
        ExpectFailure<EndOfStreamException>(size < 128 ? "Stream ends at byte " + std::to_string(end)
                                                       : "Stream holds " + std::to_string(size - 128) +
                                                             " of 3 program bytes",
                                            [&] { FirmwareFileBuilder().Program(3).Size(size).Read(); });
    }
}

TEST(TarnFileTest, AllocatesNothingForALengthThatTheStreamDoesNotHold) {
    ExpectFailure<EndOfStreamException>("Stream holds 72 of 2147483647 program bytes",
                                        [] { FirmwareFileBuilder().Size(200).Length(0x7FFFFFFF).Read(); });
    for (const unsigned int length : {0x80000000u, 0xFFFFFFFFu})
        ExpectFailure<System::ArgumentOutOfRangeException>(
            "size (" + std::to_string(static_cast<int>(length)) + ") must not be less than zero (0)",
            [&] { FirmwareFileBuilder().Size(200).Length(length).Read(); });
}

TEST(TarnFileTest, ReadsAFile) {
    const TemporaryFolder folder;
    const auto path = folder.Put("demo.fw", FirmwareFileBuilder().Program(1000).Content());
    EXPECT_EQ(Values(TarnFile::FromPath(path)->ProgramData),
              Values(FirmwareFileBuilder().Program(1000).Read()->ProgramData));
    EXPECT_THROW(TarnFile::FromPath(folder.Path("missing.fw")), System::Thrown);
    ExpectFailure<System::ArgumentNullException>("stream must not be null",
                                                 [] { TarnFile::FromStream(nullptr); });
    ExpectFailure<System::ArgumentNullException>("path must not be null",
                                                 [] { TarnFile::FromPath(nullptr); });
}
