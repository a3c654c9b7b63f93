// SPDX-License-Identifier: MIT
#include "virtualmodule/flash/Flash.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <unistd.h>

namespace VirtualModule {

namespace {

// The file: this mark, the fields in the order of Encode, and the CRC-32 of everything before it.
constexpr std::string_view MARK = "VMFLASH1";
constexpr std::size_t CRC_SIZE = 4;

std::uint32_t Crc32(ByteView bytes) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const std::uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = crc & 1 ? crc >> 1 ^ 0xEDB88320 : crc >> 1;
    }
    return ~crc;
}

void AppendBlock(Bytes& to, ByteView block) {
    Append32(to, static_cast<std::uint32_t>(block.size()));
    Append(to, block);
}

/// Takes the fields off the front of what is left; `std::runtime_error` when too little is.
class Reader {
public:
    explicit Reader(ByteView bytes) : _rest(bytes) {}

    ByteView Take(std::size_t count) {
        if (count > _rest.size())
            throw std::runtime_error("cut short");
        const ByteView taken = _rest.first(count);
        _rest = _rest.subspan(count);
        return taken;
    }

    std::uint8_t Take8() { return Take(1)[0]; }

    std::uint32_t Take32() { return Get32(Take(4), 0); }

    Bytes TakeBlock() {
        const ByteView block = Take(Take32());
        return {block.begin(), block.end()};
    }

    bool AtEnd() const { return _rest.empty(); }

private:
    ByteView _rest;
};

void EncodeRegion(Bytes& to, const FlashRegion& region) {
    to.insert(to.end(),
              {std::uint8_t{region.valid}, region.version.major, region.version.minor, region.version.build});
    AppendBlock(to, region.image);
}

FlashRegion DecodeRegion(Reader& from) {
    FlashRegion region;
    region.valid = from.Take8() != 0;
    region.version = {from.Take8(), from.Take8(), from.Take8()};
    region.image = from.TakeBlock();
    return region;
}

void EncodeDatabase(Bytes& to, const Database& database) {
    to.push_back(static_cast<std::uint8_t>(database.state));
    AppendBlock(to, database.master);
    to.push_back(static_cast<std::uint8_t>(database.slaves.size()));
    for (const auto& [address, record] : database.slaves) {
        to.push_back(address);
        AppendBlock(to, record);
    }
    AppendBlock(to, database.description);
}

Database DecodeDatabase(Reader& from) {
    Database database;
    database.state = static_cast<Database::State>(from.Take8());
    database.master = from.TakeBlock();
    for (unsigned left = from.Take8(); left > 0; --left) {
        const std::uint8_t address = from.Take8();
        database.slaves[address] = from.TakeBlock();
    }
    database.description = from.TakeBlock();
    return database;
}

Bytes Encode(const Flash& flash) {
    Bytes bytes(MARK.begin(), MARK.end());
    Append32(bytes, flash.serial);
    EncodeRegion(bytes, flash.bootloader);
    EncodeRegion(bytes, flash.application);
    EncodeDatabase(bytes, flash.database);
    Append32(bytes, Crc32(bytes));
    return bytes;
}

Flash Decode(ByteView bytes) {
    if (bytes.size() < MARK.size() + CRC_SIZE || !std::equal(MARK.begin(), MARK.end(), bytes.begin()))
        throw std::runtime_error("not a flash file");
    const ByteView content = bytes.first(bytes.size() - CRC_SIZE);
    if (Get32(bytes, content.size()) != Crc32(content))
        throw std::runtime_error("damaged or cut short: its checksum does not match");
    Reader from(content.subspan(MARK.size()));
    Flash flash;
    flash.serial = from.Take32();
    flash.bootloader = DecodeRegion(from);
    flash.application = DecodeRegion(from);
    flash.database = DecodeDatabase(from);
    if (!from.AtEnd())
        throw std::runtime_error("bytes left over at its end");
    if (!flash.database.Valid())
        throw std::runtime_error("its configuration database is invalid");
    return flash;
}

[[noreturn]] void Fail(const std::string& path, const std::string& reason) {
    throw std::runtime_error("flash file " + path + ": " + reason);
}

/// The bytes of the file at `path`, as many as a flash file may have.
Bytes ReadFile(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0)
        Fail(path, std::strerror(errno));
    Bytes bytes;
    std::array<std::uint8_t, 4096> block;
    ::ssize_t count = 0;
    while (bytes.size() <= Flash::MAX_FILE_SIZE &&
           (count = ::read(descriptor, block.data(), block.size())) > 0)
        Append(bytes, ByteView(block).first(static_cast<std::size_t>(count)));
    const int error = count < 0 ? errno : 0;
    ::close(descriptor);
    if (error != 0)
        Fail(path, std::strerror(error));
    if (bytes.size() > Flash::MAX_FILE_SIZE)
        Fail(path, "not a flash file: more than " + std::to_string(Flash::MAX_FILE_SIZE) + " bytes");
    return bytes;
}

/// A new file beside the one to be replaced; unless it takes that one's place, it goes away again.
class Replacement {
public:
    explicit Replacement(const std::string& path) : _path(path), _temporary(path + Flash::UNFINISHED) {
        // Made anew, so that it is nobody else's link to somewhere.
        ::unlink(_temporary.c_str());
        _descriptor = ::open(_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (_descriptor < 0)
            Fail(_temporary, std::strerror(errno));
    }

    ~Replacement() {
        if (_descriptor >= 0) {
            ::close(_descriptor);
            ::unlink(_temporary.c_str());
        }
    }

    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    void Write(ByteView bytes) {
        while (!bytes.empty()) {
            const ::ssize_t written = ::write(_descriptor, bytes.data(), bytes.size());
            if (written < 0 && errno == EINTR)
                continue;
            Check(written >= 0);
            bytes = bytes.subspan(static_cast<std::size_t>(written));
        }
    }

    void TakePlace() {
        Check(::fsync(_descriptor) == 0);
        Check(::rename(_temporary.c_str(), _path.c_str()) == 0);
        ::close(_descriptor);
        _descriptor = -1;
        SyncFolder();
    }

private:
    void Check(bool done) const {
        if (!done)
            Fail(_path, std::strerror(errno));
    }

    // The rename itself must last too; a file system that cannot sync a folder has done what it can.
    void SyncFolder() const {
        const auto folder = std::filesystem::path(_path).parent_path();
        const int descriptor =
            ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (descriptor >= 0) {
            ::fsync(descriptor);
            ::close(descriptor);
        }
    }

    std::string _path;
    std::string _temporary;
    int _descriptor = -1;
};

} // namespace

Flash Flash::Load(const std::string& path) {
    const Bytes bytes = ReadFile(path);
    try {
        return Decode(bytes);
    } catch (const std::runtime_error& reason) {
        Fail(path, reason.what());
    }
}

void Flash::Save(const std::string& path) const {
    Replacement file(path);
    file.Write(Encode(*this));
    file.TakePlace();
}

} // namespace VirtualModule
