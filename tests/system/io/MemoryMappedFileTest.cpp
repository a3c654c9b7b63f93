// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Values.h"

#include "vesk/system/io/FileStream.h"
#include "vesk/system/io/IOException.h"
#include "vesk/system/io/MemoryMappedFile.h"

#include <functional>
#include <tuple>

using namespace System;
using namespace System::IO;
using Bytes = Array<unsigned char>;

static std::shared_ptr<MemoryMappedFile> Map(const String& path, int offset, int capacity) {
    return MemoryMappedFile::CreateFromPath(path, FileMode::OPEN, offset, capacity,
                                            MemoryMappedFileAccess::READ_WRITE);
}

/// Eight bytes at an offset that is no multiple of a page, up to the end of the file.
class MemoryMappedFileTest : public testing::Test {
protected:
    static constexpr int OFFSET = 5003;

    TemporaryFolder _folder;
    std::string _path = _folder.Put("dpram", std::string(OFFSET, '-') + "ABCDEFGH");
    std::shared_ptr<MemoryMappedFile> _file = Map(_path, OFFSET, 8);
    std::shared_ptr<MemoryMappedViewAccessor> _view = _file->CreateViewAccessor(0, 8);
};

TEST_F(MemoryMappedFileTest, ReadsAndWritesTheFileItself) {
    EXPECT_EQ(_file->Capacity(), 8);
    EXPECT_EQ(_view->Capacity(), 8);
    EXPECT_EQ(_view->ReadByte(0), 'A');
    EXPECT_EQ(_view->ReadByte(7), 'H');
    _view->WriteByte(0, 'a');
    _view->WriteArray(6, Bytes::Create({1, 'g', 'h'}), 1, 2);
    EXPECT_EQ(_folder.Content("dpram"), std::string(OFFSET, '-') + "aBCDEFgh");

    const auto part = _file->CreateViewAccessor(2, 3);
    EXPECT_EQ(part->Capacity(), 3);
    EXPECT_EQ(part->ReadByte(2), 'E');
    part->WriteByte(0, 'c');
    EXPECT_EQ(_view->ReadByte(2), 'c');
}

TEST_F(MemoryMappedFileTest, TransfersBlocksUpToTheEndOfTheView) {
    const auto array = Bytes::Create(10);
    _view->ReadArray(5, array, 1, 9);
    EXPECT_EQ(Values(array), (std::vector<int>{0, 'F', 'G', 'H', 0, 0, 0, 0, 0, 0}));
    _view->ReadArray(8, array, 10, 0);
    _view->ReadArray(8, array, 0, 5);
    _view->WriteArray(7, Bytes::Create({'x', 'y', 'z'}), 0, 3);
    EXPECT_EQ(_folder.Content("dpram"), std::string(OFFSET, '-') + "ABCDEFGx");
}

TEST_F(MemoryMappedFileTest, ChecksEveryOffset) {
    const auto array = Bytes::Create(10);
    const std::pair<int, const char*> bytes[] = {{-1, "offset (-1) must not be less than zero (0)"},
                                                 {8, "offset (8) must not be equal to capacity_ (8)"},
                                                 {9, "offset (9) must not be greater than capacity_ (8)"}};
    for (const auto& [at, message] : bytes) {
        ExpectFailure<ArgumentOutOfRangeException>(message, [&, offset = at] { _view->ReadByte(offset); });
        ExpectFailure<ArgumentOutOfRangeException>(message,
                                                   [&, offset = at] { _view->WriteByte(offset, 0); });
    }

    const std::tuple<int, int, int, std::string> blocks[] = {
        // offset, offset in the array, count
        {-1, 0, 1, "offset (-1) must not be less than zero (0)"},
        {9, -1, -1, "offset (9) must not be greater than capacity_ (8)"},
        {0, -1, -1, "arrayoffset (-1) must not be less than zero (0)"},
        {0, 0, -1, "arraycount (-1) must not be less than zero (0)"},
        {0, 2, 9, "arrayoffset (2) + arraycount (9) must not be greater than the length of array (10)"},
        {8, 2147483647, 2147483647,
         "arrayoffset (2147483647) + arraycount (2147483647) must not be greater than the length of array "
         "(10)"},
    };
    for (const auto& [offset, first, count, message] : blocks) {
        ExpectFailure<ArgumentOutOfRangeException>(
            message, [&, o = offset, f = first, c = count] { _view->ReadArray(o, array, f, c); });
        ExpectFailure<ArgumentOutOfRangeException>(
            message, [&, o = offset, f = first, c = count] { _view->WriteArray(o, array, f, c); });
    }
    ExpectFailure<ArgumentNullException>("array must not be null",
                                         [&] { _view->ReadArray(0, nullptr, 0, 0); });
    EXPECT_EQ(_folder.Content("dpram"), std::string(OFFSET, '-') + "ABCDEFGH");
}

TEST_F(MemoryMappedFileTest, IsDeadOnceItIsClosedOrGone) {
    const auto array = Bytes::Create(1);
    const auto second = _file->CreateViewAccessor(4, 4);
    _file->Close();
    _file->Close();
    const std::function<void()> uses[] = {
        [&] { _view->ReadByte(0); },
        [&] { second->WriteByte(0, 1); },
        [&] { _view->ReadArray(0, array, 0, 1); },
        [&] { second->WriteArray(0, array, 0, 0); },
    };
    for (const auto& use : uses)
        ExpectFailure<NullReferenceException>("view is null", use);
    ExpectFailure<NullReferenceException>("mapping is null", [&] { _file->CreateViewAccessor(0, 1); });

    const auto third = Map(_path, OFFSET, 8)->CreateViewAccessor(0, 8);
    ExpectFailure<NullReferenceException>("view is null", [&] { third->ReadByte(0); });
}

TEST_F(MemoryMappedFileTest, IsRefusedWhereItCannotBeMapped) {
    const std::string missing = _folder.Path("missing");
    ExpectFailure<ArgumentOutOfRangeException>("offset (-1) must not be less than zero (0)",
                                               [&] { Map(missing, -1, 8); });
    ExpectFailure<ArgumentOutOfRangeException>("capacity (-1) must not be less than zero (0)",
                                               [&] { Map(missing, 0, -1); });
    ExpectFailure<ArgumentNullException>("path must not be null", [] { return Map(nullptr, 0, 8); });
    ExpectFailure<FileNotFoundException>(missing + ": No such file or directory",
                                         [&] { return Map(missing, 0, 8); });
    ExpectFailure<IOException>(_folder.Path("") + ": Is a directory",
                               [&] { return Map(_folder.Path(""), 0, 8); });
    ExpectFailure<IOException>(_path + ": 5011 bytes long, the mapping needs 5012",
                               [&] { return Map(_path, OFFSET, 9); });
    ExpectFailure<IOException>(_path + ": 5011 bytes long, the mapping needs 4294967294",
                               [&] { return Map(_path, 2147483647, 2147483647); });
    EXPECT_NE(Map("/dev/zero", 0, 8), nullptr) << "the size of a device says nothing";
}

TEST_F(MemoryMappedFileTest, RefusesAViewThatLeavesIt) {
    const std::tuple<int, int, const char*> cases[] = {
        {-1, 1, "offset (-1) must not be less than zero (0)"},
        {0, -1, "count (-1) must not be less than zero (0)"},
        {1, 8, "offset (1) + count (8) must not be greater than the length of mapping (8)"}};
    for (const auto& [offset, count, message] : cases)
        ExpectFailure<ArgumentOutOfRangeException>(
            message, [&, o = offset, c = count] { _file->CreateViewAccessor(o, c); });
}
