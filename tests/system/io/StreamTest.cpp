// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Values.h"

#include "vesk/system/io/BinaryReader.h"
#include "vesk/system/io/BinaryWriter.h"
#include "vesk/system/io/FileStream.h"
#include "vesk/system/io/IOException.h"
#include "vesk/system/io/MemoryStream.h"

#include <sys/stat.h>

using namespace System;
using namespace System::IO;
using Bytes = Array<unsigned char>;

static std::shared_ptr<FileStream> Open(const String& path) {
    return FileStream::Create(path, FileMode::OPEN, FileAccess::READ);
}

/// The same five bytes, from a file and from memory: reading is one contract.
class StreamTest : public testing::TestWithParam<bool> {
protected:
    TemporaryFolder _folder;
    std::string _path = _folder.Put("five", std::string("\x01\x02\x00\xFF\x05", 5));
    std::shared_ptr<Stream> _stream =
        GetParam() ? std::shared_ptr<Stream>(Open(_path))
                   : std::shared_ptr<Stream>(MemoryStream::Create(Bytes::Create({1, 2, 0, 255, 5})));
};

INSTANTIATE_TEST_SUITE_P(Sources, StreamTest, testing::Bool(),
                         [](const auto& source) { return source.param ? "File" : "Memory"; });

TEST_P(StreamTest, ReadsUpToItsEnd) {
    const auto array = Bytes::Create(8);
    EXPECT_EQ(_stream->Length(), 5);
    EXPECT_EQ(_stream->Read(array, 1, 3), 3);
    EXPECT_EQ(_stream->Position(), 3);
    EXPECT_EQ(_stream->ReadByte(), 255);
    EXPECT_EQ(_stream->Read(array, 4, 4), 1);
    EXPECT_EQ(Values(array), (std::vector<int>{0, 1, 2, 0, 5, 0, 0, 0}));
    EXPECT_EQ(_stream->Read(array, 0, 8), 0);
    EXPECT_EQ(_stream->ReadByte(), -1);
    ExpectFailure<ArgumentNullException>("array must not be null", [&] { _stream->Read(nullptr, 0, 1); });
    ExpectFailure<ArgumentOutOfRangeException>(
        "offset (2) + count (7) must not be greater than the length of array (8)",
        [&] { return _stream->Read(array, 2, 7); });
    EXPECT_EQ(_stream->Position(), 5);
}

TEST_P(StreamTest, SeeksFromTheStartAndFromWhereItIs) {
    _stream->Seek(3, SeekOrigin::BEGIN);
    _stream->Seek(-2, SeekOrigin::CURRENT);
    EXPECT_EQ(_stream->ReadByte(), 2);
    const std::string failure =
        GetParam() ? _path + ": Invalid argument" : "Seek to -1, before the start of the stream";
    ExpectFailure<IOException>(failure, [&] { _stream->Seek(-1, SeekOrigin::BEGIN); });
    ExpectFailure<IOException>(failure, [&] { _stream->Seek(-3, SeekOrigin::CURRENT); });
    EXPECT_EQ(_stream->Position(), 2);
    _stream->Seek(9, SeekOrigin::BEGIN);
    EXPECT_EQ(_stream->ReadByte(), -1);
    EXPECT_EQ(_stream->Read(Bytes::Create(2), 0, 2), 0);
}

TEST_P(StreamTest, GivesNumbersInEitherByteOrder) {
    EXPECT_EQ(BinaryReader::Create(_stream, true)->ReadUInt32(), 0x010200FFu);
    _stream->Seek(0, SeekOrigin::BEGIN);
    const auto little = BinaryReader::Create(_stream, false);
    EXPECT_EQ(little->ReadUInt16(), 0x0201);
    EXPECT_EQ(little->ReadUInt8(), 0);
    ExpectFailure<EndOfStreamException>("Stream ends at byte 5", [&] { return little->ReadUInt32(); });
}

TEST(MemoryStream, GrowsUnlessItIsOverAnArray) {
    const auto stream = MemoryStream::Create();
    const auto writer = BinaryWriter::Create(stream);
    writer->WriteUInt32(0x01020384);
    writer->WriteUInt16(0xFE05);
    stream->Write(Bytes::Create({9, 8, 7}), 1, 2);
    stream->Seek(1, SeekOrigin::BEGIN);
    stream->WriteByte(0x22);
    EXPECT_EQ(stream->ReadByte(), 3);
    stream->Seek(10, SeekOrigin::BEGIN);
    EXPECT_EQ(stream->Length(), 8);
    stream->WriteByte(1);
    EXPECT_EQ(Values(stream->ToArray()), (std::vector<int>{1, 0x22, 3, 0x84, 0xFE, 5, 8, 7, 0, 0, 1}));

    const auto array = Bytes::Create({1, 2, 3});
    const auto fixed = MemoryStream::Create(array);
    fixed->Seek(1, SeekOrigin::BEGIN);
    ExpectFailure<IOException>("Write up to 4 in a stream of 3 bytes", [&] {
        fixed->Write(Bytes::Create({9, 9, 9}), 0, 3);
    });
    fixed->Write(Bytes::Create({7, 8}), 0, 2);
    ExpectFailure<IOException>("Write up to 4 in a stream of 3 bytes", [&] { fixed->WriteByte(4); });
    EXPECT_EQ(Values(array), (std::vector<int>{1, 7, 8}));
}

TEST(FileStream, OpensARegularFileOnlyAndForReading) {
    const TemporaryFolder folder;
    const std::string missing = folder.Path("missing"), pipe = folder.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    ExpectFailure<FileNotFoundException>(missing + ": No such file or directory", [&] { Open(missing); });
    ExpectFailure<IOException>(folder.Path("") + ": is a directory", [&] { return Open(folder.Path("")); });
    ExpectFailure<IOException>(pipe + ": not a regular file", [&] { return Open(pipe); });
    const auto unreadable = "/proc/self/mem: Input/output error";
    ExpectFailure<IOException>(unreadable, [] { Open("/proc/self/mem")->ReadByte(); });
    ExpectFailure<IOException>(unreadable, [] { Open("/proc/self/mem")->Read(Bytes::Create(1), 0, 1); });
    const auto file = Open(folder.Put("file", "x"));
    ExpectFailure<InvalidOperationException>(folder.Path("file") + ": opened for reading",
                                             [&] { file->WriteByte(1); });
}
