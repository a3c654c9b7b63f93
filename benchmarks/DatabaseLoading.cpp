// SPDX-License-Identifier: MIT
// How long does it take to load the database of a full bus, 125 slaves of 600 bytes each, beside reading it
// without its checksum, and how fast are the checksums?
#include "benchmarks/Measure.h"
#include "tests/support/DatabaseFileBuilder.h"

#include "vesk/hostinterface/MailboxDpRam.h"
#include "vesk/mailbox/Header.h"
#include "vesk/modules/bootloader/CRC16.h"
#include "vesk/modules/dpvm/config/BusConfig.h"
#include "vesk/modules/dpvm/config/CRC32.h"
#include "vesk/modules/dpvm/config/DdbParser.h"
#include "vesk/modules/dpvm/config/MasterRecord.h"
#include "vesk/modules/dpvm/config/SlaveRecord.h"
#include "vesk/system/io/MemoryStream.h"

#include <numeric>

using System::Array;
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

/// Reads the file's messages and records as the library does, and leaves its checksum alone.
static void ReadWithoutChecksum(const std::shared_ptr<System::IArray<unsigned char>>& file) {
    using namespace Vesk::Modules::DPVM::Config;
    namespace MailboxDpRam = Vesk::HostInterface::MailboxDpRam;
    const auto stream = System::IO::MemoryStream::Create(file);
    const auto header = Array<unsigned char>::Create(MailboxDpRam::HEADER_SIZE);
    const auto record = Array<unsigned char>::Create(4 * MailboxDpRam::MAX_DATA_SIZE);
    const auto builder = BusConfig::Builder::Create();
    stream->Seek(9, System::IO::SeekOrigin::BEGIN); // behind the line with the checksum
    int size = 0;
    while (stream->Position() < stream->Length()) {
        stream->Read(header, 0, MailboxDpRam::HEADER_SIZE);
        const auto message = Vesk::Mailbox::Header::FromArray(header, 0, false);
        stream->Read(record, size, message->DataSize);
        stream->Seek(MailboxDpRam::MAX_DATA_SIZE - message->DataSize, System::IO::SeekOrigin::CURRENT);
        size += message->DataSize;
        if (message->DataSize == MailboxDpRam::MAX_DATA_SIZE)
            continue; // the record goes on
        const auto bytes =
            System::IO::MemoryStream::Create(System::ArraySegment<unsigned char>::Create(record, 0, size));
        const bool master = message->Extended->Get(0) == 0;
        if (master)
            builder->Master(MasterRecord::FromStream(bytes));
        else
            builder->Slave(static_cast<unsigned char>(message->Extended->Get(0) >> 8),
                           SlaveRecord::FromStream(bytes));
        size = 0;
    }
    benchmark::DoNotOptimize(builder);
}

static void Load(benchmark::State& state) {
    DatabaseFileBuilder builder;
    const Bytes master = DatabaseFileBuilder::MasterRecord();
    const Bytes record = Record();
    builder.Master(master);
    for (int address = 1; address <= SLAVES; ++address)
        builder.Slave(address, record);
    const auto file = Array<unsigned char>::Create(builder.Build());

    Compare(
        state, {"<= 1.5 x without checksum", 1.5, 0}, 1, [&] { ReadWithoutChecksum(file); },
        [&] { benchmark::DoNotOptimize(DdbParser::FromStream(System::IO::MemoryStream::Create(file))); });
}

/// A program image of 512 KiB; its limit is the same memory summed up.
template <class Checksum>
static void Digest(benchmark::State& state) {
    constexpr int SIZE = 512 * 1024;
    const auto image = Array<unsigned char>::Create(SIZE);
    std::iota(image->Data(), image->Data() + SIZE, static_cast<unsigned char>(0));
    Compare(
        state, {"<= 1 ns for each byte", 0, SIZE}, 1,
        [&] {
            unsigned int sum = 0;
            for (int i = 0; i < SIZE; ++i)
                sum += image->Data()[i];
            benchmark::DoNotOptimize(sum);
        },
        [&] {
            const auto checksum = Checksum::Create();
            checksum->Digest(image, 0, SIZE);
            benchmark::DoNotOptimize(checksum);
        });
}

BENCHMARK(Digest<Vesk::Modules::DPVM::Config::CRC32>)->Name("CRC-32 of 512 KiB")->UseManualTime();
BENCHMARK(Digest<Vesk::Modules::Bootloader::CRC16>)->Name("CRC-16 of 512 KiB")->UseManualTime();
BENCHMARK(Load)->Name("loading a database, 125 slaves of 600 bytes")->UseManualTime();
