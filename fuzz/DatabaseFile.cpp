// SPDX-License-Identifier: MIT
// The configuration database file, from a stream and from a file. A file whose only fault is its checksum is
// read once more with the right one, because no mutation would ever hit that. What a database is decompiled
// to makes the same bytes.
#include "fuzz/Properties.h"

#include "busdescription/decompile/Decompile.h"
#include "busdescription/records/DatabaseBytes.h"
#include "tests/support/DatabaseFileBuilder.h"
#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/DPVMMessages.h"
#include "vesk/modules/dpvm/config/DdbParser.h"
#include "vesk/system/io/IOException.h"

#include <algorithm>
#include <cstdio>

using namespace Vesk::Modules::DPVM;
using Config::DdbParser;
using Config::IBusConfig;
using Fuzz::Bytes;
using Fuzz::Require;

namespace {

struct Result {
    std::shared_ptr<IBusConfig> config;
    std::string failure;

    std::string Text() const { return config ? config->ToString().Value() : failure; }
};

template <class Parse>
Result Read(const Parse& parse) {
    Result result;
    result.failure =
        Fuzz::FailureOf<System::ArgumentException, System::FormatException, System::IO::EndOfStreamException,
                        Vesk::ConfigException>([&] { result.config = parse(); });
    return result;
}

/// The file's text, its objects and their failures; the largest text is that of a file full of records.
constexpr std::size_t FIXED_COST = 256 * 1024;
constexpr std::size_t COST_PER_BYTE = 24;

Result ReadStream(const Bytes& file) {
    const auto stream = Fuzz::ToStream(file);
    const Fuzz::AllocationBudget budget(FIXED_COST + COST_PER_BYTE * file.size());
    return Read([&] { return DdbParser::FromStream(stream); });
}

/// The checksum that the file should have, if nothing else is wrong with it; empty otherwise.
std::string MissedChecksum(const std::string& failure) {
    unsigned int calculated = 0;
    if (std::sscanf(failure.c_str(), "%*[^:]: calculated CRC (%u) !=", &calculated) != 1)
        return "";
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08x", calculated);
    return digits;
}

/// What a download would send makes a file that reads as the same configuration.
void CheckRoundTrip(IBusConfig& config) {
    DatabaseFileBuilder again;
    again.Master(Fuzz::Written(*config.Master()));
    const auto addresses = config.SlaveAddresses();
    for (int i = 0; i < addresses->Count(); ++i) {
        const unsigned char address = addresses->Get(i);
        Bytes record;
        const auto fragments = DPVMMessages::SlaveRecordDownload(address, config.Slave(address));
        for (int fragment = 0; fragment < fragments->Count(); ++fragment) {
            const Bytes data = Fuzz::ToBytes(*fragments->Get(fragment)->Data());
            record.insert(record.end(), data.begin(), data.end());
        }
        Require(record == Fuzz::Written(*config.Slave(address)), "fragments are the record");
        again.Slave(address, record);
    }
    Require(again.Checksum() == config.Checksum(), "the checksum is that of the records");
    const Result reread = ReadStream(again.Build());
    Require(reread.config && reread.Text() == config.ToString().Value(),
            "what was written reads as what was read", reread.Text());
}

/// It takes ten times as long as all the rest.
constexpr unsigned int ONE_IN = 16;

void CheckDecompiled(IBusConfig& config) {
    BusDescription::DeviceFiles files("");
    BusDescription::Findings findings;
    const std::string text = BusDescription::Decompile(config, "file", files, {});
    const auto bus =
        BusDescription::Compile(BusDescription::ReadText(text, "text", findings), files, findings);
    Require(bus && BusDescription::DatabaseBytes(*bus->config) == BusDescription::DatabaseBytes(config),
            "what it is decompiled to gives the same bytes", text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Bytes file(data, data + size);
    Result result = ReadStream(file);
    if (const std::string checksum = MissedChecksum(result.failure); !checksum.empty()) {
        std::copy(checksum.begin(), checksum.end(), file.begin());
        result = ReadStream(file);
        Require(result.config != nullptr, "the right checksum is accepted", result.failure);
    }
    const Fuzz::TemporaryFile onDisk(file);
    const Result fromPath = Read([&] { return DdbParser::FromPath(onDisk.Path()); });
    Require(fromPath.Text() == result.Text(), "a file reads like a stream", fromPath.Text());
    if (result.config) {
        CheckRoundTrip(*result.config);
        if (result.config->Checksum() % ONE_IN == 0)
            CheckDecompiled(*result.config);
    }
    return 0;
}
