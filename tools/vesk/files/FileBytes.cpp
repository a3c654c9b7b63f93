// SPDX-License-Identifier: MIT
#include "tools/vesk/files/FileBytes.h"

#include "tools/vesk/explain/Advice.h"
#include "tools/vesk/text/Text.h"
#include "vesk/modules/bootloader/FirmwareHeader.h"
#include "vesk/system/Array.h"
#include "vesk/system/io/File.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace VeskTool {

namespace {

/// An open file, which closes itself.
struct Input {
    explicit Input(const std::string& path)
        : number(path == "-" ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                             : ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)) {}

    ~Input() {
        if (number >= 0)
            ::close(number);
    }

    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    int number;
};

[[noreturn]] void FailToRead(const std::string& path) {
    throw Failure(path + ": cannot be read: " + std::strerror(errno));
}

/// A pipe is as good as a file, a device is not: it may have no end. What stands at "-" is the person's
/// choice.
void CheckKind(const std::string& path, const Input& input) {
    struct stat status {};

    if (::fstat(input.number, &status) != 0)
        FailToRead(path);
    if (S_ISDIR(status.st_mode))
        throw Failure(path + ": is a folder, where a file is needed");
    if (path != "-" && (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode)))
        throw Failure(path + ": is a device, where a file is needed");
}

} // namespace

std::vector<unsigned char> ReadFile(const std::string& path, std::size_t most) {
    const Input input(path);
    if (input.number < 0)
        FailToRead(path);
    CheckKind(path, input);
    std::vector<unsigned char> bytes;
    std::array<unsigned char, 65536> part{};
    while (bytes.size() <= most) {
        const ::ssize_t count = ::read(input.number, part.data(), part.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            FailToRead(path);
        if (count == 0)
            break;
        bytes.insert(bytes.end(), part.begin(), part.begin() + count);
    }
    bytes.resize(std::min(bytes.size(), most + 1));
    return bytes;
}

// ---- what a file is

namespace {

using Beginning = std::span<const unsigned char>;

bool Begins(Beginning bytes, std::string_view text) {
    return bytes.size() >= text.size() && std::equal(text.begin(), text.end(), bytes.begin());
}

bool BeginsADatabase(Beginning bytes) {
    constexpr std::size_t digits = 8;
    return bytes.size() > digits && bytes[digits] == '\n' &&
           std::all_of(bytes.begin(), bytes.begin() + digits,
                       [](unsigned char byte) { return std::isxdigit(byte) != 0; });
}

bool BeginsAFirmware(Beginning bytes) {
    using Vesk::Modules::Bootloader::FirmwareHeader;
    constexpr std::size_t magic = 64;
    return bytes.size() >= FirmwareHeader::SIZE &&
           (bytes[magic] << 8 | bytes[magic + 1]) == FirmwareHeader::MAGIC;
}

/// UTF-8 or any other encoding in which no byte is a control character.
bool IsText(Beginning bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](unsigned char byte) {
        return byte >= ' ' ? byte != 0x7F : byte == '\n' || byte == '\r' || byte == '\t';
    });
}

std::string KindOf(Beginning bytes) {
    constexpr std::size_t dumpSize = 8192;
    constexpr std::size_t enough = 1000;
    if (bytes.empty())
        return "";
    if (Begins(bytes, "\177ELF"))
        return "an ELF program";
    if (Begins(bytes, "\037\213") || Begins(bytes, "PK\003\004"))
        return "a compressed file";
    if (Begins(bytes, "#Profibus_DP"))
        return "the device description of a slave (GSD)";
    if (BeginsADatabase(bytes))
        return "a configuration database file";
    if (BeginsAFirmware(bytes))
        return "a firmware file";
    if (IsText(bytes.first(std::min(bytes.size(), enough))))
        return Begins(bytes, "<") ? "a web page or XML" : "a text";
    if (std::all_of(bytes.begin(), bytes.end(), [](unsigned char byte) { return byte == 0; }))
        return "nothing but zero bytes";
    return bytes.size() == dumpSize ? "a dump of the DPRAM" : "";
}

} // namespace

std::string LooksLike(Beginning bytes) {
    const std::string kind = KindOf(bytes);
    return kind.empty() ? "" : "; it looks like " + kind;
}

void WriteFile(const std::string& path, const std::vector<unsigned char>& bytes, const std::string& source,
               const std::string& what) {
    std::error_code ignored;
    const auto status = std::filesystem::status(path, ignored);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        throw Failure(path + ": is no regular file, so it is not replaced");
    if (std::filesystem::equivalent(path, source, ignored))
        throw Failure(path + ": is " + what + " itself, so it is not replaced");
    System::IO::File::WriteAllBytes(path, System::Array<unsigned char>::Create(bytes));
    const ::mode_t mask = ::umask(0);
    ::umask(mask);
    std::filesystem::permissions(path, static_cast<std::filesystem::perms>(0666 & ~mask));
}

Failure FileFailure(const std::string& path, const std::string& where, const std::exception& exception) {
    return {path + ": " + where + MessageOf(exception), TypeOf(exception), RawMessageOf(exception)};
}

} // namespace VeskTool
