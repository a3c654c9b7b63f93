// SPDX-License-Identifier: MIT
// How long does it take to load the database of a full bus, 125 slaves of 600 bytes each, when its checksum
// alone takes its time?
#include "benchmarks/Measure.h"
#include "tests/support/DatabaseFileBuilder.h"

#include "vesk/modules/dpvm/config/DdbParser.h"
#include "vesk/system/io/MemoryStream.h"

#include <numeric>

using Bytes = DatabaseFileBuilder::Bytes;
using Vesk::Modules::DPVM::Config::DdbParser;

static constexpr int SLAVES = 125;
static constexpr std::size_t RECORD_SIZE = 600;

/// The same places for every slave: nobody compares them when a database is loaded.
static Bytes Record() {
    std::vector<int> places(100);
    std::iota(places.begin(), places.end(), 0);
    DatabaseFileBuilder::SlaveContent content{places, places, Bytes(60, 0x55), Bytes(30, 0xC0), Bytes()};
    content.extended.resize(RECORD_SIZE - DatabaseFileBuilder::SlaveRecord(content).size());
    return DatabaseFileBuilder::SlaveRecord(content);
}

/// The register after `data`, bit by bit.
__attribute__((noinline)) static unsigned int Digest(unsigned int value, const unsigned char* data,
                                                     std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        value ^= static_cast<unsigned int>(data[i]) << 24;
        for (int bit = 0; bit < 8; ++bit)
            value = value << 1 ^ ((value & 0x80000000) != 0 ? 0x04C11DB7 : 0);
    }
    return value;
}

static void Load(benchmark::State& state) {
    DatabaseFileBuilder builder;
    const Bytes master = DatabaseFileBuilder::MasterRecord();
    const Bytes record = Record();
    builder.Master(master);
    for (int address = 1; address <= SLAVES; ++address)
        builder.Slave(address, record);
    const auto file = System::Array<unsigned char>::Create(builder.Build());

    Compare(
        state, {"<= 1.3 x its checksum", 1.3, 0}, 1,
        [&] {
            unsigned int checksum = ~Digest(0xFFFFFFFF, master.data(), master.size());
            for (int address = 1; address <= SLAVES; ++address) {
                const auto byte = static_cast<unsigned char>(address);
                checksum = ~Digest(~Digest(checksum, record.data(), record.size()), &byte, 1);
            }
            benchmark::DoNotOptimize(checksum);
        },
        [&] { benchmark::DoNotOptimize(DdbParser::FromStream(System::IO::MemoryStream::Create(file))); });
}

BENCHMARK(Load)->Name("loading a database, 125 slaves of 600 bytes")->UseManualTime();
