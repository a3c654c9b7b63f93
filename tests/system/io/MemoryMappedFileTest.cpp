// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Values.h"

#include "vesk/system/io/IOException.h"
#include "vesk/system/io/MemoryMappedFile.h"

#include <tuple>

using namespace System;
using namespace System::IO;
using Bytes = Array<unsigned char>;
using OutOfRange = ArgumentOutOfRangeException;

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

TEST_F(MemoryMappedFileTest, ReadsAndWritesTheFileItselfUpToItsEnd) {
    const auto part = _file->CreateViewAccessor(2, 3);
    EXPECT_EQ(_file->Capacity() + part->Capacity() + _file->CreateViewAccessor(8, 0)->Capacity(), 8 + 3);
    part->WriteByte(0, 'c');
    EXPECT_EQ(_view->ReadByte(2), 'c');
    const auto array = Bytes::Create(10);
    _view->ReadArray(5, array, 1, 9);
    EXPECT_EQ(Values(array), (std::vector<int>{0, 'F', 'G', 'H', 0, 0, 0, 0, 0, 0}));
    _view->ReadArray(8, array, 0, 5);
    _view->WriteArray(6, Bytes::Create({1, 'g', 'h', 'i'}), 1, 3);
    EXPECT_EQ(_folder.Content("dpram"), std::string(OFFSET, '-') + "ABcDEFgh");
}

TEST_F(MemoryMappedFileTest, ChecksEveryOffset) {
    for (const auto& [offset, message] : {std::pair(-1, "offset (-1) must not be less than zero (0)"),
                                          {8, "offset (8) must not be equal to capacity_ (8)"},
                                          {9, "offset (9) must not be greater than capacity_ (8)"}}) {
        ExpectFailure<OutOfRange>(message, [&, o = offset] { _view->ReadByte(o); });
        ExpectFailure<OutOfRange>(message, [&, o = offset] { _view->WriteByte(o, 0); });
    }

    const auto array = Bytes::Create(10);
    const std::tuple<int, int, int, const char*> blocks[] = {
        // offset, offset in the array, count
        {-1, 0, 1, "offset (-1) must not be less than zero (0)"},
        {9, -1, -1, "offset (9) must not be greater than capacity_ (8)"},
        {0, -1, -1, "arrayoffset (-1) must not be less than zero (0)"},
        {0, 0, -1, "arraycount (-1) must not be less than zero (0)"},
        {8, 2147483647, 9,
         "arrayoffset (2147483647) + arraycount (9) must not be greater than the length of array (10)"},
    };
    for (const auto& [offset, first, count, message] : blocks) {
        ExpectFailure<OutOfRange>(
            message, [&, o = offset, f = first, c = count] { _view->ReadArray(o, array, f, c); });
        ExpectFailure<OutOfRange>(
            message, [&, o = offset, f = first, c = count] { _view->WriteArray(o, array, f, c); });
    }
    ExpectFailure<ArgumentNullException>("array must not be null", [&] { _view->ReadArray(0, {}, 0, 0); });

    const std::tuple<int, int, const char*> views[] = {
        {-1, 1, "offset (-1) must not be less than zero (0)"},
        {0, -1, "count (-1) must not be less than zero (0)"},
        {1, 8, "offset (1) + count (8) must not be greater than the length of mapping (8)"}};
    for (const auto& [offset, count, message] : views)
        ExpectFailure<OutOfRange>(message, [&, o = offset, c = count] { _file->CreateViewAccessor(o, c); });
}

TEST_F(MemoryMappedFileTest, IsDeadOnceItIsClosedOrGone) {
    const auto other = Map(_path, OFFSET, 8)->CreateViewAccessor(0, 8);
    _file->Close();
    _file->Close();
    ExpectFailure<NullReferenceException>("view is null", [&] { _view->ReadByte(0); });
    ExpectFailure<NullReferenceException>("view is null", [&] { other->WriteArray(0, nullptr, 0, 0); });
    ExpectFailure<NullReferenceException>("mapping is null", [&] { _file->CreateViewAccessor(0, 1); });
}

TEST_F(MemoryMappedFileTest, IsRefusedWhereItCannotBeMapped) {
    ExpectFailure<OutOfRange>("offset (-1) must not be less than zero (0)", [&] { Map(_path, -1, 8); });
    ExpectFailure<OutOfRange>("capacity (-1) must not be less than zero (0)", [&] { Map(_path, 0, -1); });
    ExpectFailure<ArgumentNullException>("path must not be null", [] { Map(nullptr, 0, 8); });
    const std::string missing = _folder.Path("missing");
    ExpectFailure<FileNotFoundException>(missing + ": No such file or directory",
                                         [&] { Map(missing, 0, 1); });
    const std::tuple<std::string, int, int, const char*> cases[] = {
        {_folder.Path(""), 0, 8, "Is a directory"},
        {_path, OFFSET, 9, "5011 bytes long, the mapping needs 5012"},
        {_path, 2147483647, 2147483647, "5011 bytes long, the mapping needs 4294967294"},
        {_path, 0, 0, "Invalid argument"}, // says the system
    };
    for (const auto& [path, offset, count, text] : cases)
        ExpectFailure<IOException>(path + ": " + text,
                                   [&, p = path, o = offset, c = count] { Map(p, o, c); });
    EXPECT_NE(Map("/dev/zero", 0, 8), nullptr) << "the size of a device says nothing";
}
