// SPDX-License-Identifier: MIT
// The firmware file, from a stream and from a file.
#include "fuzz/Properties.h"

#include "vesk/modules/bootloader/TarnFile.h"
#include "vesk/modules/dpvm/Vt22Bootloader.h"
#include "vesk/system/io/IOException.h"

#include <algorithm>

using Fuzz::Bytes;
using Fuzz::Require;
using Vesk::Modules::Bootloader::TarnFile;
using Vesk::Modules::DPVM::Vt22Bootloader;

namespace {

struct Result {
    std::shared_ptr<TarnFile> file;
    std::string failure;
};

template <class Parse>
Result Read(const Parse& parse) {
    Result result;
    result.failure =
        Fuzz::FailureOf<System::ArgumentException, System::FormatException, System::IO::EndOfStreamException>(
            [&] { result.file = parse(); });
    return result;
}

void Append(Bytes& to, std::uint64_t value, int width) {
    for (int i = width - 1; i >= 0; --i)
        to.push_back(static_cast<unsigned char>(value >> 8 * i & 0xFF));
}

/// The file as its fields say, byte by byte.
Bytes Write(const TarnFile& firmware) {
    const std::string& description = firmware.Description.Value();
    Bytes file(description.begin(), description.end());
    file.resize(64);
    Append(file, 0xA55A, 2);
    Append(file, static_cast<unsigned short>(firmware.FirmwareType), 2);
    Append(file, firmware.ModuleId, 2);
    Append(file, firmware.EraseSegments, 2);
    Append(file, firmware.AddressBurnStart, 4);
    Append(file, static_cast<std::uint64_t>(firmware.ProgramData->Count()), 4);
    Append(file, firmware.CrcStart, 4);
    Append(file, firmware.CrcLength, 4);
    Append(file, firmware.Crc, 2);
    Append(file, firmware.OldestMajor, 1);
    Append(file, firmware.OldestMinor, 1);
    const Bytes counts = Fuzz::ToBytes(*firmware.EraseSegmentsCount);
    file.insert(file.end(), counts.begin(), counts.end());
    file.resize(128);
    const Bytes program = Fuzz::ToBytes(*firmware.ProgramData);
    file.insert(file.end(), program.begin(), program.end());
    return file;
}

void Check(const TarnFile& firmware, Bytes input) {
    const auto descriptionEnd = input.begin() + 64;
    std::fill(std::find(input.begin(), descriptionEnd, 0), descriptionEnd, static_cast<unsigned char>(0));
    const Bytes written = Write(firmware);
    input.resize(std::min(input.size(), written.size())); // what follows the program is not the file's
    Require(written == input, "what was read writes back to the same bytes", firmware);

    Bytes joined;
    const auto segments = Vt22Bootloader::GetSegments(firmware.ProgramData);
    for (const auto& segment : *segments) {
        Require(segment->Count() > 0 && segment->Count() <= 256, "a segment has 1 to 256 bytes");
        const Bytes bytes = Fuzz::ToBytes(*segment);
        joined.insert(joined.end(), bytes.begin(), bytes.end());
    }
    Require(joined == Fuzz::ToBytes(*firmware.ProgramData), "the segments are the program");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes input(data, data + size);
    Result result;
    {
        const auto stream = Fuzz::ToStream(input);
        const Fuzz::AllocationBudget budget(4096 + 2 * size);
        result = Read([&] { return TarnFile::FromStream(stream); });
    }
    const Fuzz::TemporaryFile onDisk(input);
    const Result fromPath = Read([&] { return TarnFile::FromPath(onDisk.Path()); });
    Require(fromPath.failure == result.failure, "a file reads like a stream", fromPath.failure);
    if (!result.file)
        return 0;
    Require(Write(*fromPath.file) == Write(*result.file), "a file reads like a stream");
    Check(*result.file, input);
    return 0;
}
