// SPDX-License-Identifier: MIT
#include "tests/support/RunTool.h"

#include <filesystem>

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;

static const std::string EXAMPLE = SOURCE_DIR "/examples/firmware/vt22-1.5.0.fw";

class FirmwareCommandTest : public testing::Test {
protected:
    /// The command that makes the file "out" of the image "123456789", with these options.
    RunTool::Arguments Building(const RunTool::Arguments& options) const {
        return RunTool::Join({"firmware", "build", _image, "-o", _folder.Path("out")}, options);
    }

    std::string Header() const { return _folder.Content("out").substr(0, 128); }

    static std::string Bytes(std::initializer_list<int> values) {
        std::string bytes;
        for (const int value : values)
            bytes += static_cast<char>(value);
        return bytes;
    }

    const TemporaryFolder _folder;
    const std::string _image = _folder.Put("image", "123456789");
};

TEST_F(FirmwareCommandTest, BuildsEachFieldInItsPlace) {
    RunTool::Text(Building({"--type", "application", "--module-id", "0x201", "--address", "131072"}));
    const std::string text(64, '\0');
    EXPECT_EQ(_folder.Content("out"),
              text + Bytes({0xA5, 0x5A, 0, 2, 2, 1, 0, 0, 0, 2, 0, 0, 0, 0, 0, 9, 0, 2, 0, 0, 0, 0, 0, 9}) +
                  Bytes({0x4B, 0x37, 0, 0}) + std::string(36, '\0') + "123456789");

    // The checksum is over "3456789" and then over "34"; both are old files that are replaced.
    const RunTool::Arguments all{"--type=bootloader",    "--module-id=0xFFFF",
                                 "--address=0xFFFFFFF7", "--description=" + std::string(64, '~'),
                                 "--erase-segments=258", "--erase-segments-count=1,0x02,255",
                                 "--oldest=3.255",       "--crc-start=0xfffffff9"};
    RunTool::Text(Building(all));
    const std::string start =
        std::string(64, '~') + Bytes({0xA5, 0x5A, 0, 1, 0xFF, 0xFF, 1,    2,    0xFF, 0xFF, 0xFF, 0xF7,
                                      0,    0,    0, 9, 0xFF, 0xFF, 0xFF, 0xF9, 0,    0,    0});
    const std::string end = Bytes({3, 255, 1, 2, 255}) + std::string(33, '\0');
    EXPECT_EQ(Header(), start + Bytes({7, 0xE7, 0xFD}) + end);
    RunTool::Text(Building(RunTool::Join(all, {"--crc-length=2"})));
    EXPECT_EQ(Header(), start + Bytes({2, 0x97, 0x14}) + end);
    EXPECT_EQ(_folder.Count(), 2) << "nothing but the image and the file";
}

TEST_F(FirmwareCommandTest, SealsTheProgram) {
    RunTool::Text(Building({"--type=configuration", "--module-id=1", "--address=0", "--seal"}));
    EXPECT_EQ(_folder.Content("out").substr(128), "123456789VT22-CRC:" + Bytes({0x7F, 0x5A}));
}

#ifndef TEST_EMULATOR // the script starts the program itself
TEST_F(FirmwareCommandTest, MakesTheExampleByteForByte) {
    const auto result = RunTool::Run({VESK_TOOL, _folder.Path("out")}, SOURCE_DIR "/examples/firmware/make");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(_folder.Content("out"), TemporaryFolder::Read(EXAMPLE));
    EXPECT_LT(std::filesystem::file_size(EXAMPLE), 16384u);
}
#endif

TEST_F(FirmwareCommandTest, RefusesWhatDoesNotFitBeforeItWrites) {
    const struct {
        std::string option; // besides those that must be there
        int status;
        std::string error;
    } CASES[] = {
        {"--module-id=65536", 2, "--module-id: 65536 is not a number from 0 to 65535 (0xffff)"},
        {"--module-id=0x", 2, "--module-id: 0x is not a number"},
        {"--module-id= 1", 2, "--module-id:  1 is not a number"},
        {"--address=4294967296", 2, "is not a number from 0 to 4294967295 (0xffffffff)"},
        {"--address=0xFFFFFFF8", 1, "a program of 9 bytes at 0xfffffff8 does not fit"},
        {"--erase-segments=-1", 2, "is not a number from 0 to 65535"},
        {"--erase-segments-count=1,256", 2, "256 is not a number from 0 to 255"},
        {"--oldest=2", 2, "--oldest: 2 is not MAJOR.MINOR"},
        {"--oldest=2.256", 2, "--oldest: 256 is not a number from 0 to 255"},
        {"--type=boot", 2, "--type: boot is not bootloader, application or configuration"},
        {"--description=" + std::string(65, 'x'), 2, "65 characters are not a length from 0 to 64"},
        {"--description=a\xC3\xA4", 2, "printable ASCII"},
        {"--crc-start=0xff", 1, "10 bytes from 0xff on, is not inside the program, 9 bytes from 0x100 on"},
        {"--crc-start=0x109", 1, "0 bytes from 0x109 on, is not inside"},
        {"--crc-length=10", 1, "10 bytes from 0x100 on, is not inside"},
    };

    for (const auto& [option, status, error] : CASES) {
        RunTool::Arguments all{option};
        for (const std::string needed : {"--type=application", "--module-id=1", "--address=0x100"})
            if (!needed.starts_with(option.substr(0, option.find('='))))
                all.push_back(needed);
        RunTool::ExpectFailure(Building(all), status, HasSubstr(error));
        EXPECT_EQ(_folder.Count(), 1) << "only the image";
    }
}

TEST_F(FirmwareCommandTest, RefusesFilesThatAreNone) {
    std::filesystem::create_directory(_folder.Path("folder"));
    std::filesystem::create_symlink(_image, _folder.Path("link"));
    std::filesystem::resize_file(_folder.Put("large", ""), 65535 * 256 + 1);

    const struct {
        std::string image, output, error;
    } CASES[] = {
        {_folder.Path("missing"), _folder.Path("out"), "missing: No such file or directory\n"},
        {"/dev/zero", _folder.Path("out"), "/dev/zero: not a regular file\n"},
        {_folder.Put("empty", ""), _folder.Path("out"), "empty: 0 bytes; a program has 1 to 16776960\n"},
        {_folder.Path("large"), _folder.Path("out"), "large: 16776961 bytes; a program has 1 to 16776960\n"},
        {_image, _folder.Path("folder"), "folder: not a regular file\n"},
        {_image, "/dev/full", "/dev/full: not a regular file\n"},
        {_image, _folder.Path("nowhere/out"), "nowhere/out: No such file or directory\n"},
        {_image, _image, "image: is the image itself\n"},
        {_image, _folder.Path("link"), "link: is the image itself\n"},
    };

    for (const auto& [image, output, error] : CASES)
        RunTool::ExpectFailure({"firmware", "build", image, "-o", output, "--type", "application",
                                "--module-id", "1", "--address", "0"},
                               1, HasSubstr(error));
    EXPECT_EQ(_folder.Content("image"), "123456789");
}

TEST_F(FirmwareCommandTest, ShowsAFileAndWhetherItsChecksumFits) {
    EXPECT_THAT(RunTool::Text({"firmware", "show", EXAMPLE}),
                AllOf(HasSubstr("Description: VT22 demo firmware 1.5.0\n"
                                "Firmware Type: APPLICATION_FIRMWARE\nModule ID: 0x201\n"),
                      EndsWith("\nChecksum: fits the program\n")));
    EXPECT_THAT(RunTool::Json({"firmware", "show", EXAMPLE}),
                HasFacts(R"({"type": "APPLICATION_FIRMWARE", "address": 131072, "length": 6420,
                             "oldest": "1.4", "checked": true})"));

    std::string content = TemporaryFolder::Read(EXAMPLE);
    content[200] = static_cast<char>(content[200] ^ 1);
    const auto damaged = RunTool::Run({"firmware", "show", _folder.Put("damaged", content)});
    EXPECT_EQ(damaged.status, 1);
    EXPECT_THAT(damaged.out, EndsWith("\nChecksum: does not fit the program\n"));
    EXPECT_THAT(damaged.err, HasSubstr(_folder.Path("damaged") + ": its checksum is 0x1181 and"));

    content[81] = 1; // the checksum begins 64 KiB below the program
    EXPECT_THAT(RunTool::Text({"firmware", "show", _folder.Put("elsewhere", content)}),
                EndsWith("other bytes than the program's, cannot be checked\n"));
    RunTool::ExpectFailure({"firmware", "show", _image}, 1,
                           HasSubstr(_image + ": System.IO.EndOfStreamException"));
    EXPECT_EQ(RunTool::Run({"firmware"}).status, 2);
}
