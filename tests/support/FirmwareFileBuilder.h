// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/bootloader/TarnFile.h"
#include "vesk/system/io/MemoryStream.h"

#include <algorithm>
#include <initializer_list>
#include <string>
#include <vector>

/// Composes a firmware file byte by byte. It starts as an application firmware without a program: "Demo",
/// type 2, module 0x1234, 0x56 erase segments, burnt to 0x00020000, checksum 0xbeef over 0x01020304 bytes
/// from 0x00020010 on, version 2.7 or newer, erase segment counts 1 to 22.
class FirmwareFileBuilder {
public:
    FirmwareFileBuilder() : _bytes(128) {
        Put(0, {'D', 'e', 'm', 'o'});
        Put(64, {0xA5, 0x5A, 0x00, 0x02, 0x12, 0x34, 0x00, 0x56, 0x00, 0x02, 0x00, 0x00});
        Put(80, {0x00, 0x02, 0x00, 0x10, 0x01, 0x02, 0x03, 0x04, 0xBE, 0xEF, 0x02, 0x07});
        for (int i = 0; i < 22; ++i)
            Put(92 + i, {i + 1});
    }

    /// Overwrites bytes from `offset` on.
    FirmwareFileBuilder& Put(int offset, std::initializer_list<int> values) {
        std::transform(values.begin(), values.end(), _bytes.begin() + offset,
                       [](int value) { return static_cast<unsigned char>(value); });
        return *this;
    }

    FirmwareFileBuilder& Type(int type) { return Put(66, {type >> 8, type & 0xFF}); }

    /// Writes the length into the header, whatever the program is.
    FirmwareFileBuilder& Length(unsigned int length) {
        for (int i = 0; i < 4; ++i)
            Put(76 + i, {static_cast<int>(length >> (24 - 8 * i) & 0xFF)});
        return *this;
    }

    /// Sets the program and its length.
    FirmwareFileBuilder& Program(const std::string& program) {
        _bytes.resize(128);
        _bytes.insert(_bytes.end(), program.begin(), program.end());
        return Length(static_cast<unsigned int>(program.size()));
    }

    /// A program of `count` bytes that differ from one 256-byte segment to the next.
    FirmwareFileBuilder& Program(int count) {
        std::string program;
        for (int i = 0; i < count; ++i)
            program += static_cast<char>((i + i / 256 * 3) & 0xFF);
        return Program(program);
    }

    /// Cuts the file off, or fills it up with zeros.
    FirmwareFileBuilder& Size(int size) {
        _bytes.resize(static_cast<std::size_t>(size));
        return *this;
    }

    std::string Content() const { return {_bytes.begin(), _bytes.end()}; }

    std::shared_ptr<System::IO::MemoryStream> Stream() const {
        return System::IO::MemoryStream::Create(System::Array<unsigned char>::Create(_bytes));
    }

    std::shared_ptr<Vesk::Modules::Bootloader::TarnFile> Read() const {
        return Vesk::Modules::Bootloader::TarnFile::FromStream(Stream());
    }

private:
    std::vector<unsigned char> _bytes;
};
