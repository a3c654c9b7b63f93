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

TEST(TarnFileTest, ReadsEveryField) {
    const auto file = FirmwareFileBuilder().Program("Program").Read();
    EXPECT_EQ(file->Description.Value(), "Demo");
    EXPECT_EQ(file->FirmwareType, FirmwareType_e::APPLICATION_FIRMWARE);
    EXPECT_EQ(file->ModuleId, 0x1234);
    EXPECT_EQ(file->EraseSegments, 0x56);
    EXPECT_EQ(file->AddressBurnStart, 0x00020000u);
    EXPECT_EQ(file->CrcStart, 0x00020010u);
    EXPECT_EQ(file->CrcLength, 0x01020304u);
    EXPECT_EQ(file->Crc, 0xBEEF);
    EXPECT_EQ(file->OldestMajor, 2);
    EXPECT_EQ(file->OldestMinor, 7);
    EXPECT_EQ(
        Values(file->EraseSegmentsCount),
        (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22}));
    EXPECT_EQ(Values(file->ProgramData), (std::vector<int>{'P', 'r', 'o', 'g', 'r', 'a', 'm'}));
}

TEST(TarnFileTest, WritesOneLinePerField) {
    EXPECT_EQ(FirmwareFileBuilder().Read()->ToString().Value(),
              "Description: Demo\n"
              "Firmware Type: APPLICATION_FIRMWARE\n"
              "Module ID: 0x1234\n"
              "Erase Segments: 0x56\n"
              "Address burn start: 0x20000\n"
              "Program length: 0x0\n"
              "CRC Start: 0x20010\n"
              "CRC Length: 0x1020304\n"
              "CRC: 0xbeef\n"
              "Oldest major: 2\n"
              "Oldest minor: 7\n"
              "Erase segments count: [01, 02, 03, 04, 05, 06, 07, 08, 09, 0a, 0b, 0c, 0d, 0e, 0f, 10, 11, "
              "12, 13, 14, 15, 16]\n");
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
    const auto text = [](int index, int value) {
        return "Unknown data in reserved[" + std::to_string(index) + "]: " + std::to_string(value) + "\n";
    };
    FirmwareFileBuilder builder;
    builder.Length(0xFFFFFFFF); // not looked at before
    for (int index = 13; index >= 0; --index) {
        builder.Put(114 + index, {index == 6 ? 7 : 255 - index});
        ExpectFailure<FormatException>(text(index, index == 6 ? 7 : 255 - index), [&] { builder.Read(); });
    }
}

TEST(TarnFileTest, ReadsTheProgramAndNothingBehindIt) {
    for (const int count : {0, 1, 600}) {
        const auto stream = FirmwareFileBuilder().Program(count).Size(128 + count + 5).Stream();
        EXPECT_EQ(TarnFile::FromStream(stream)->ProgramData->Count(), count);
        EXPECT_EQ(stream->Position(), 128 + count);
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
