// SPDX-License-Identifier: MIT
// Writes the configuration database file of a small plant: one master and twelve slaves at 1.5 Mbit/s. It
// shows how the records are laid out, and makes examples/plant.ddb:
//
//     plant_generator examples/plant.ddb
//
// The file is what a download sends to the module: the checksum, then the recorded mailbox messages.

#include "vesk/mailbox/IRequest.h"
#include "vesk/modules/dpvm/DPVMMessages.h"
#include "vesk/modules/dpvm/config/BusConfig.h"
#include "vesk/modules/dpvm/config/MasterRecord.h"
#include "vesk/modules/dpvm/config/SlaveRecord.h"
#include "vesk/system/Convert.h"
#include "vesk/system/io/File.h"
#include "vesk/system/io/MemoryStream.h"

#include <cstddef>
#include <cstdio>
#include <exception>
#include <string>
#include <utility>
#include <vector>

using namespace Vesk::Modules::DPVM;
using Bytes = std::vector<unsigned char>;

// A station of the plant. Inputs go to the bus, outputs come from it.
struct Station {
    unsigned char address;
    unsigned short identNr;
    int inputs;
    int outputs;
    Bytes identifiers; // the modules that the slave is made of
    Bytes parameters;
    Bytes extendedParameters;
};

// The first three parameter bytes of a DP-V1 slave.
static const Bytes DPV1 = {0x80, 0x00, 0x00};

static const Station PLANT[] = {
    {3, 0x2A10, 4, 4, {0xF1}, {0x00}, {}},                                // conveyor drive 1
    {4, 0x2A10, 4, 4, {0xF1}, {0x00}, {}},                                // conveyor drive 2
    {5, 0x2A14, 12, 12, {0xF5}, {0x80, 0x00, 0x00, 0x04}, {}},            // pump drive, odd parameter data
    {8, 0x31C2, 2, 0, {0x21}, DPV1, {}},                                  // signal lamps: inputs only
    {9, 0x31C4, 0, 8, {0x17}, DPV1, {}},                                  // light barriers: outputs only
    {10, 0x4B07, 8, 8, {0x27, 0x17}, DPV1, {0x06, 0x01, 0x00, 0x10}},     // remote I/O, east
    {11, 0x4B07, 16, 8, {0x2F, 0x17}, DPV1, {0x06, 0x01, 0x00, 0x20}},    // remote I/O, west
    {14, 0x4B09, 4, 0, {0x23}, {0x80, 0x00, 0x00, 0x01, 0x02, 0x03}, {}}, // valve island, odd parameter data
    {20, 0x5E21, 0, 10, {0x54}, DPV1, {}},                                // flow meter
    {21, 0x5E22, 0, 5, {0x14}, DPV1, {}},                                 // level meter
    {33, 0x6D40, 16, 16, {0xC0, 0x8F, 0x8F}, DPV1, {}},                   // weighing terminal
    {40, 0x7F03, 122, 122, {0xC0, 0x7C, 0x7C}, DPV1, Bytes(32, 0x00)},    // operator panel, three fragments
};

static void Append(Bytes& to, const Bytes& bytes) {
    to.insert(to.end(), bytes.begin(), bytes.end());
}

static void AppendByte(Bytes& to, std::size_t value) {
    to.push_back(static_cast<unsigned char>(value));
}

// Records are big-endian.
static void AppendWord(Bytes& to, std::size_t value) {
    AppendByte(to, value >> 8);
    AppendByte(to, value & 0xFF);
}

// A block: its length, which counts itself, then its content.
static void AppendBlock(Bytes& to, const Bytes& content) {
    AppendWord(to, 2 + content.size());
    Append(to, content);
}

// Brings the next block of a slave record to an even place; returns how many bytes that took.
static std::size_t AppendPad(Bytes& to) {
    const std::size_t pads = to.size() % 2;
    to.resize(to.size() + pads);
    return pads;
}

static Bytes MasterUserData() {
    const std::string name = "Plant";
    Bytes content(name.begin(), name.end());
    content.resize(62); // the name is 32 bytes; times, groups and codes stay 0
    return content;
}

static Bytes MasterRecord() {
    Bytes content = {1, 6};     // station address, 1.5 Mbit/s
    AppendWord(content, 300);   // slot time, bit times
    AppendWord(content, 11);    // minimum station delay time
    AppendWord(content, 150);   // maximum station delay time
    Append(content, {0, 1});    // quiet time, setup time
    AppendWord(content, 0);     // target rotation time, high word
    AppendWord(content, 40000); // and low word
    Append(content, {10, 126}); // gap update factor, highest station address
    Append(content, {1, 0});    // maximum retry limit, bus parameter flags
    AppendWord(content, 10);    // minimum slave interval
    AppendWord(content, 1000);  // poll time-out
    AppendWord(content, 100);   // data control time
    Append(content, {0, 0});    // maximum number of alarms, of user global controls
    content.resize(30);         // reserved
    AppendBlock(content, MasterUserData());
    Bytes record;
    AppendBlock(record, content);
    return record;
}

static Bytes ParameterData(const Station& station) {
    Bytes content = {0x88, 10, 10, 11}; // locked for the master, watchdog of 1 s, minimum delay time
    AppendWord(content, station.identNr);
    AppendByte(content, 0); // group ident
    Append(content, station.parameters);
    return content;
}

// Each data byte has its place in the master's process data; stations lie one behind the other.
static Bytes AddressTable(const Station& station, int firstInput, int firstOutput) {
    Bytes content;
    AppendByte(content, static_cast<std::size_t>(station.inputs));
    AppendByte(content, static_cast<std::size_t>(station.outputs));
    for (int place = firstInput; place < firstInput + station.inputs; ++place)
        AppendWord(content, static_cast<std::size_t>(place));
    for (int place = firstOutput; place < firstOutput + station.outputs; ++place)
        AppendWord(content, static_cast<std::size_t>(place));
    return content;
}

static Bytes SlaveRecord(const Station& station, int firstInput, int firstOutput) {
    Bytes record = {0, 0, 0x80, 0, 32, 0, 240, 0, 0, 0}; // length, active, diagnostic and channel lengths
    AppendWord(record, 100);                             // time-out of acyclic Class 1 services
    record.resize(16);                                   // reserved

    AppendBlock(record, ParameterData(station));
    std::size_t pads = AppendPad(record);
    AppendBlock(record, station.identifiers);
    pads += AppendPad(record);
    AppendBlock(record, AddressTable(station, firstInput, firstOutput));
    AppendBlock(record, {static_cast<unsigned char>(station.outputs),
                         static_cast<unsigned char>(station.inputs), 0, 0});
    AppendBlock(record, station.extendedParameters);

    const std::size_t length = record.size() - pads; // which does not count the pad bytes
    record[0] = static_cast<unsigned char>(length >> 8);
    record[1] = static_cast<unsigned char>(length & 0xFF);
    return record;
}

static std::shared_ptr<System::IO::Stream> StreamOf(Bytes bytes) {
    return System::IO::MemoryStream::Create(System::Array<unsigned char>::Create(std::move(bytes)));
}

static std::shared_ptr<Config::IBusConfig> MakePlant() {
    const auto builder = Config::BusConfig::Builder::Create();
    builder->Master(Config::MasterRecord::FromStream(StreamOf(MasterRecord())));
    int input = 0;
    int output = 0;
    for (const Station& station : PLANT) {
        const auto record = StreamOf(SlaveRecord(station, input, output));
        builder->Slave(station.address, Config::SlaveRecord::FromStream(record));
        input += station.inputs;
        output += station.outputs;
    }
    return builder->Build();
}

// Recorded headers are little-endian, unlike everything else.
static void AppendSwapped(Bytes& to, std::size_t value) {
    AppendByte(to, value & 0xFF);
    AppendByte(to, value >> 8);
}

// A recorded message: a header of 32 bytes and a data area of 256.
static void AppendMessage(Bytes& to, Vesk::Mailbox::IRequest& request) {
    const std::size_t start = to.size();
    const auto data = request.Data();
    AppendSwapped(to, 0);                           // message id
    AppendSwapped(to, 0x4000 | request.Type()->Id); // a request
    AppendSwapped(to, request.Command());
    AppendSwapped(to, static_cast<std::size_t>(data->Count()));
    AppendSwapped(to, request.TotalFrameCount());
    AppendSwapped(to, request.FrameNumber());
    AppendSwapped(to, request.Offset() & 0xFFFF);
    AppendSwapped(to, request.Offset() >> 16);
    for (int i = 0; i < 8; ++i)
        AppendSwapped(to, request.Extended()->Get(i));
    to.insert(to.end(), data->Data(), data->Data() + data->Count());
    to.resize(start + 32 + 256);
}

static Bytes DatabaseFile(Config::IBusConfig& config) {
    const std::string line = System::Convert::ToString(config.Checksum(), 16).PadLeft(8, '0').Value() + "\n";
    Bytes file(line.begin(), line.end());
    AppendMessage(file, *DPVMMessages::MasterRecordDownload(config.Master()));
    const auto addresses = config.SlaveAddresses();
    for (int i = 0; i < addresses->Count(); ++i) {
        const unsigned char address = addresses->Get(i);
        const auto fragments = DPVMMessages::SlaveRecordDownload(address, config.Slave(address));
        for (int fragment = 0; fragment < fragments->Count(); ++fragment)
            AppendMessage(file, *fragments->Get(fragment));
    }
    return file;
}

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: plant_generator FILE\n");
        return 2;
    }
    try {
        const auto file = System::Array<unsigned char>::Create(DatabaseFile(*MakePlant()));
        System::IO::File::WriteAllBytes(argv[1], file);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "plant_generator: %s\n", failure.what());
        return 1;
    }
    return 0;
}
