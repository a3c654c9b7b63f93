// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"
#include "tests/support/TemporaryFolder.h"

#include "vesk/system/io/File.h"
#include "vesk/system/io/IOException.h"

#include <csignal>
#include <filesystem>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace System;
using namespace System::IO;
namespace fs = std::filesystem;

class FileTest : public testing::Test {
protected:
    void Write(const String& path) { File::WriteAllBytes(path, Array<unsigned char>::Create({0, 255, 'x'})); }

    TemporaryFolder _folder;
    std::string _path = _folder.Path("dump.bin");
};

TEST_F(FileTest, IsCreatedOrReplacedAsAWholeForItsOwnerOnly) {
    const auto expectWritten = [&] {
        Write(_path);
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(_path)));
        EXPECT_EQ(_folder.Content("dump.bin"), std::string("\0\xFFx", 3));
        EXPECT_EQ(fs::status(_path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    };
    expectWritten();
    _folder.Put("dump.bin", "something longer that has to go");
    fs::permissions(_path, fs::perms::all);
    expectWritten();
    for (const std::string& target : {_folder.Put("precious", "kept"), _folder.Path("nowhere")}) {
        fs::remove(_path);
        fs::create_symlink(target, _path); // replaced, not followed
        expectWritten();
    }
    EXPECT_EQ(_folder.Content("precious"), "kept");
    EXPECT_EQ(_folder.Count(), 2);
}

TEST_F(FileTest, FailsWithThePathAndLeavesNothingBehind) {
    const std::string missing = _folder.Path("missing/dump.bin");
    ExpectFailure<FileNotFoundException>(missing + ": No such file or directory", [&] { Write(missing); });
    fs::create_directory(_path);
    ExpectFailure<IOException>(_path + ": Is a directory", [&] { Write(_path); });
    EXPECT_EQ(_folder.Count(), 1);
    const std::string pipe = _folder.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& device : {pipe, std::string("/dev/null")}) {
        ExpectFailure<IOException>(device + ": not a regular file", [&] { Write(device); });
        EXPECT_TRUE(fs::is_other(device)) << "it is not replaced";
    }
    ExpectFailure<ArgumentNullException>("path must not be null", [&] { Write(nullptr); });
    ExpectFailure<ArgumentNullException>("bytes must not be null", [] { File::WriteAllBytes("a", {}); });
}

TEST_F(FileTest, KeepsTheOldFileWhenTheNewOneDoesNotFit) {
    _folder.Put("dump.bin", "old");
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit tight{2, before.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tight), 0);
    ExpectFailure<IOException>(_path + ": File too large", [&] { Write(_path); });
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(_folder.Content("dump.bin"), "old");
    EXPECT_EQ(_folder.Count(), 1);
}
