// SPDX-License-Identifier: MIT
// Writes what the fuzzers start from, one folder for each of them:
//
//     fuzz_seeds FOLDER EXAMPLES TESTS
#include "fuzz/Steps.h"

#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/FirmwareFileBuilder.h"
#include "virtualmodule/Module.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

using Bytes = std::vector<unsigned char>;
using Fuzz::BootloaderStep;
using Fuzz::MasterStep;

namespace {

std::filesystem::path folder;

void Put(const std::string& fuzzer, const std::string& name, const Bytes& seed) {
    std::filesystem::create_directories(folder / fuzzer);
    std::ofstream file(folder / fuzzer / name, std::ios::binary);
    file.exceptions(std::ios::failbit | std::ios::badbit);
    file.write(reinterpret_cast<const char*>(seed.data()), static_cast<std::streamsize>(seed.size()));
}

Bytes Joined(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

Bytes Content(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    file.exceptions(std::ios::badbit);
    return {std::istreambuf_iterator<char>(file), {}};
}

// ---- files

const DatabaseFileBuilder::SlaveContent SMALL{{0, 1}, {0}};
const DatabaseFileBuilder::SlaveContent LARGE{
    {0, 1, 2}, {5, 6}, Bytes(237, 0x33), {0xC0, 0x81}, Bytes(9, 0x44)};

void PutDatabaseFiles() {
    Put("DatabaseFile", "master", DatabaseFileBuilder().Master().Build());
    Put("DatabaseFile", "slaves",
        DatabaseFileBuilder()
            .Master()
            .Slave(3, DatabaseFileBuilder::SlaveRecord(SMALL))
            .Slave(4, DatabaseFileBuilder::SlaveRecord(LARGE))
            .Build());
    Put("DatabaseFile", "cut",
        DatabaseFileBuilder().Master().Message(0x14, 0x0301, 0x0200, Bytes(256, 1), 256).Build());
    Put("DatabaseFile", "oversized", DatabaseFileBuilder().Message(0x12, 0, 0, {}, 257).Build());
}

void PutRecords() {
    const Bytes master = DatabaseFileBuilder::MasterRecord();
    const Bytes slave = DatabaseFileBuilder::SlaveRecord(LARGE);
    Put("Record", "master", Joined({{0}, master}));
    Put("Record", "userdata", Joined({{1}, Bytes(master.begin() + 32, master.end())}));
    Put("Record", "slave", Joined({{2}, slave}));
    Put("Record", "small-slave", Joined({{2}, DatabaseFileBuilder::SlaveRecord(SMALL)}));
    std::size_t block = 16;
    for (unsigned char kind = 3; kind < 8; ++kind) {
        const std::size_t length = static_cast<std::size_t>(slave[block] << 8 | slave[block + 1]);
        const auto begin = slave.begin() + static_cast<std::ptrdiff_t>(block);
        Put("Record", "block" + std::to_string(kind),
            Joined({{kind}, Bytes(begin, begin + static_cast<std::ptrdiff_t>(length))}));
        block += length + length % 2;
    }
}

void PutFirmwareFiles() {
    const auto put = [](const std::string& name, const FirmwareFileBuilder& file) {
        const std::string content = file.Content();
        Put("FirmwareFile", name, Bytes(content.begin(), content.end()));
    };
    put("application", FirmwareFileBuilder().Program(300));
    put("bootloader", FirmwareFileBuilder().Type(1).Program(1));
    put("empty", FirmwareFileBuilder().Type(3));
    put("lies", FirmwareFileBuilder().Length(0x7FFFFFFF));
    put("full-description", FirmwareFileBuilder().Program(2).Put(4, {' ', 'o', 'f', ' ', 't', 'h', 'e', 0}));
}

void PutMessages() {
    const Bytes request{0x01, 0x02, 0x40, 0x02, 0x00, 0x17, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0,
                        0,    0,    0,    0,    0,    0,    0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    Put("MailboxHeader", "big-endian", Joined({{0}, request}));
    Put("MailboxHeader", "little-endian",
        Joined({{3}, {9, 9, 9}, {2, 1, 0x02, 0x40, 0x17, 0, 0, 0, 1, 0, 1, 0, 4, 3, 2, 1}, Bytes(16)}));
    Bytes response = request;
    response[2] = 0;
    response[7] = 8;
    for (unsigned char i = 16; i < 26; ++i)
        response[i] = i;
    Put("DatabaseInfo", "answer", Joined({response, {'0', '1', 'a', 'b', 'c', 'd', 'e', 'f'}}));
    Put("DatabaseInfo", "erased", Joined({response, {'0', '1', 0, 0, 0xFF, 0xFF, 0xFF, 0xFF}}));
    response[2] = 0x8F;
    Put("DatabaseInfo", "error", Joined({response, Bytes(8)}));
    Put("LinesFile", "life", {4, 0, 0, 0, 0, 0x82, 0x81, 0x83, 0x00, 0x01, 0x81, 0x83, 0x80});
    Put("LinesFile", "short", {3, 1, 1, 1, 0});
}

/// What a module leaves in its DPRAM, in both layouts.
void PutDumps() {
    for (const bool bootloader : {false, true}) {
        std::vector<std::uint8_t> memory(0x2000);
        VirtualModule::Lines lines;
        VirtualModule::Flash flash;
        std::int64_t now = 0;
        VirtualModule::Module module({memory.data(), memory.size()}, lines, flash, [&now] { return now; });
        lines.DriveBootloaderEnable_n(!bootloader);
        lines.DriveReset_n(true);
        module.Step();
        now += 1'000'000'000;
        module.Step();
        const Bytes layout{static_cast<unsigned char>(bootloader)};
        Put("DpRamDump", bootloader ? "bootloader" : "master", Joined({layout, memory}));
        // The mailboxes, with the same message in both.
        const std::size_t mailbox = bootloader ? 0x1BFE : 0x0056;
        const Bytes message{0x00, 0x07, 0x40, 0x02, 0x00, 0x21, 0x00, 0x03, 0x00, 0x01, 0x00, 0x01};
        std::copy(message.begin(), message.end(), memory.begin() + static_cast<std::ptrdiff_t>(mailbox));
        std::copy(message.begin(), message.end(),
                  memory.begin() + static_cast<std::ptrdiff_t>(mailbox + 288));
        Put("DpRamDump", bootloader ? "bootloader-messages" : "master-messages", Joined({layout, memory}));
    }
}

// ---- lives

Bytes Step(MasterStep step, const Bytes& arguments = {}) {
    return Joined({{static_cast<unsigned char>(step)}, arguments});
}

Bytes Step(BootloaderStep step, const Bytes& arguments = {}) {
    return Joined({{static_cast<unsigned char>(step)}, arguments});
}

/// The answer to a request, taken and acknowledged.
template <class Kind>
Bytes Answer(Kind step, const Bytes& words = Bytes(10)) {
    return Joined({Step(step, {0, 0}), words, Step(Kind::UPDATE, {1, 3})});
}

/// Nothing goes wrong on the bus.
const Bytes HONEST{0};

void PutMasterLives() {
    using enum MasterStep;
    const Bytes pulse = Step(UPDATE, {0, 2});
    const Bytes mappings =
        Joined({Step(MAP_INPUT, {0, 0, 6, 0, 0, 0, 4}), Step(MAP_OUTPUT, {0, 0, 6, 0, 0, 0, 4})});
    const Bytes work = Joined({Step(CHANGE_INPUT, {1, 7}), Step(SERVICE, {8, 7, 3, 0, 0, 0}),
                               Step(SERVICE, {10, 7, 3, 1, 2, 2}), Step(SERVICE, {9, 7, 3, 1, 2, 0}),
                               Step(SERVICE, {0, 0, 0, 0x40, 0, 0}), Step(UPDATE, {60, 0}), Step(LOOK)});
    const Bytes life = Joined({pulse, Step(UPDATE, {250, 0}), Step(UPDATE, {100, 0}), mappings,
                               Step(INITIALIZE), Step(UPDATE, {80, 0}), work, HONEST});
    for (const unsigned options : {Fuzz::WITH_PEER | Fuzz::CONFIGURED | Fuzz::WITH_CALLBACKS,
                                   Fuzz::WITH_PEER | Fuzz::CONFIGURED | Fuzz::WITH_BAD_CALLBACKS,
                                   Fuzz::WITH_PEER | Fuzz::TRACED | Fuzz::WITH_CALLBACKS})
        Put("MasterLife", "peer" + std::to_string(options),
            Joined({{static_cast<unsigned char>(options)}, life}));

    const Bytes info{0x0D, 0xAC, 0x0D, 0xAC, 0x0D, 0xAC, 0x0D, 0xAC, 2, 0};
    const Bytes boot = Joined({pulse, Step(REPORT_BOOT, {0}), Step(UPDATE, {1, 3})});
    const Bytes initialized = Joined(
        {boot, mappings, Step(INITIALIZE), Step(RAISE, {0}), Step(UPDATE, {1, 3}), Answer(ANSWER, info),
         Answer(ANSWER), Answer(ANSWER), Answer(ANSWER), Step(REPORT_STATUS, {7, 2, 0x1F, 0xC0}),
         Step(UPDATE, {1, 3}), Step(SERVICE, {8, 7, 3, 0, 0, 0}), Step(UPDATE, {1, 3}), Answer(ANSWER)});
    Put("MasterLife", "alone", Joined({{Fuzz::WITH_CALLBACKS}, initialized, HONEST}));
    const Bytes service = Joined({Step(SERVICE, {8, 7, 3, 0, 0, 0}), Step(UPDATE, {1, 3})});
    for (const unsigned char place : Bytes{1, 3, 5}) { // id, type and command of an answer to something else
        const Bytes stray = Joined({Step(ANSWER, {0, 15}), Bytes(25), {place}, Step(UPDATE, {1, 3})});
        Put("MasterLife", "stray" + std::to_string(place),
            Joined({{0}, initialized, service, stray, Answer(ANSWER), HONEST}));
    }
    const Bytes acquired = Joined({Step(REPORT_STATUS, {4, 0, 0, 0}), Step(UPDATE, {1, 3})});
    Put("MasterLife", "beyond-input", // a mapping that leaves its array
        Joined({{0}, boot, Step(MAP_INPUT, {0, 0, 6, 0x0D, 0xA8, 0, 8}), acquired, HONEST}));
    Put("MasterLife", "beyond-output",
        Joined({{0}, boot, Step(MAP_OUTPUT, {0, 0, 2, 0, 12, 0, 8}), acquired, HONEST}));
    Bytes download = Joined({boot, Step(RAISE, {0}), Step(UPDATE, {1, 3})});
    for (int request = 0; request < 9; ++request)
        download = Joined({download, Answer(ANSWER)});
    Put("MasterLife", "download", Joined({{Fuzz::CONFIGURED | Fuzz::TRACED}, download, HONEST}));
    Put("MasterLife", "steps",
        Joined({{0},
                Step(POWER_ON),
                Step(CREATE_AREAS),
                Step(CHANGE_STATE, {8}),
                Step(CHAIN, {1, 0, 0}),
                Step(RESET),
                Step(POKE, {0, 10, 2, 1, 2}),
                Step(MODULE_EVENT, {0, 0}),
                HONEST}));
}

void PutBootloaderLives() {
    using enum BootloaderStep;
    const Bytes pulse = Step(UPDATE, {0, 2});
    for (const unsigned char what : Bytes{0, 1}) {
        const Bytes file{static_cast<unsigned char>(what ? 3 : 0)};
        const Bytes download = Step(DOWNLOAD, Joined({{what}, file}));
        Put("BootloaderLife", "peer" + std::to_string(what),
            Joined({{Fuzz::WITH_PEER},
                    pulse,
                    Step(UPDATE, {20, 0}),
                    download,
                    Step(UPDATE, {200, 3}),
                    Step(END_DOWNLOAD),
                    Step(LOOK),
                    HONEST}));
        Bytes alone = Joined({{Fuzz::TRACED},
                              pulse,
                              Step(REPORT_BOOT, {2}),
                              Step(UPDATE, {1, 3}),
                              download,
                              Step(UPDATE, {1, 3})});
        for (int request = 0; request < 8; ++request)
            alone = Joined({alone, Answer(ANSWER)});
        Put("BootloaderLife", "alone" + std::to_string(what), Joined({alone, Step(END_DOWNLOAD), HONEST}));
    }
    Put("BootloaderLife", "steps",
        Joined({{0},
                Step(POWER_ON),
                Step(CREATE_AREAS),
                Step(CHANGE_STATE, {4}),
                Step(CHAIN, {0, 0}),
                Step(RESET),
                Step(SEGMENTS, {5}),
                HONEST}));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: fuzz_seeds FOLDER EXAMPLES TESTS\n");
        return 2;
    }
    folder = argv[1];
    const std::filesystem::path examples = argv[2];
    const std::filesystem::path tests = argv[3];
    PutDatabaseFiles();
    Put("DatabaseFile", "plant", Content(examples / "plant.ddb"));
    Put("Description", "plant", Content(examples / "plant.toml"));
    PutRecords();
    PutFirmwareFiles();
    Put("FirmwareFile", "example", Content(examples / "firmware" / "vt22-1.5.0.fw"));
    Put("Gsd", "drive", Content(examples / "drive.gsd"));
    for (const auto& file : std::filesystem::directory_iterator(tests / "data" / "gsd"))
        Put("Gsd", file.path().filename(), Content(file.path()));
    PutMessages();
    PutDumps();
    PutMasterLives();
    PutBootloaderLives();
    return 0;
}
