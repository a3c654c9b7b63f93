// SPDX-License-Identifier: MIT
// What a host must never do, and that the module names it and lives on.
#include "tests/virtualmodule/RawHost.h"

using namespace VirtualModule;

namespace {

struct Host : RawHost {
    /// The answer to a request is never taken, so that the next one stays in mailbox-in.
    void FillMailboxes() { Ask({0x217}), owed = 0, Turn(M_IN); }

    void Spoil(std::size_t at) { ram[at] ^= 1, Answer(); }
};

using Sin = std::pair<const char*, std::function<void(Host&)>>;

void ExpectNamed(const Sin& sin, Host& host) {
    EXPECT_THAT(host.module.Violations(), testing::IsEmpty());
    sin.second(host);
    host.Await();
    EXPECT_THAT(host.module.Violations(), testing::ElementsAre(testing::StartsWith(sin.first)));
}

} // namespace

TEST(WatchTest, NamesWhatAHostMustNotDo) {
    const Sin inBootloader[]{
        {"area command in the bootloader: 0x1c", [](Host& h) { h.ram[0x1FFD] = 0x1C; }},
        {"event acknowledged that was not reported: 0x20", [](Host& h) { h.ram[0x1FFD] = 0x20; }},
        {"mailbox-out acknowledged that was not updated", [](Host& h) { h.ram[0x1FFD] = 0x40; }},
        {"write outside the host's areas: 1 bytes at 0x1fbe",
         [](Host& h) { h.Put({0x601}), h.ram[0x1FBE] ^= 1, h.ram[0x1FFD] = 0x80; }},
    };
    for (const Sin& sin : inBootloader) {
        Host host;
        host.PowerOn(true);
        ExpectNamed(sin, host);
    }

    // On the bus, with an interrupt to be answered; of the areas the host has the input area.
    const Sin inMaster[]{
        {"host register written without an interrupt: 0x08",
         [](Host& h) { h.Answer(), h.module.Step(), h.Answer(8); }},
        {"host register written without an interrupt: 0x00, the line was not read",
         [](Host& h) { h.Answer(), h.now += 1'000'000, h.module.Step(), h.Answer(); }},
        {"reserved bit written: 0x40", [](Host& h) { h.Answer(0x40); }},
        {"register and companion differ: 0x00 and 0x01", [](Host& h) { h.Answer(), h.ram[0x1FFC] = 1; }},
        {"area released that was not handed over: output area", [](Host& h) { h.Answer(1); }},
        {"area released that was not handed over: input area", [](Host& h) { h.PowerOn(), h.Answer(2); }},
        {"area released that was not handed over: log area", [](Host& h) { h.Answer(16); }},
        {"mailbox-out acknowledged that was not updated", [](Host& h) { h.Answer(4); }},
        {"write outside the host's areas: 2 bytes at 0x1048",
         [](Host& h) { h.ram[0x1049] ^= 1, h.Spoil(0x1048); }},
        {"write outside the host's areas: 1 bytes at 0x0a", [](Host& h) { h.Spoil(0xA), h.Turn(); }},
        {"malformed request: data size 257",
         [](Host& h) { h.Put({0x217}), h.ram[0x5C] = h.ram[0x5D] = 1, h.Answer(8); }},
        {"malformed request: marked", [](Host& h) { h.Put({0x30017}), h.Answer(8); }},
        {"request notified into a full mailbox", [](Host& h) { h.FillMailboxes(), h.Answer(8); }},
        {"request written into a full mailbox: 1 bytes at 0x57",
         [](Host& h) { h.FillMailboxes(), h.Spoil(0x57); }},
    };
    for (const Sin& sin : inMaster) {
        Host host;
        host.Configure();
        host.Initialise();
        host.Turn(1);
        ExpectNamed(sin, host);
    }
}

TEST(WatchTest, SurvivesAnythingThatTheMemoryHolds) {
    RawHost host;
    host.Configure();
    host.Initialise();
    std::uint32_t random = 1;
    for (int round = 0; round < 1000; ++round) {
        for (int i = 0; i < 40; ++i) {
            random = random * 1664525 + 1013904223;
            const std::size_t at = i % 2 == 0 ? 0x56 + (random >> 8) % 64 : (random >> 8) % 8192;
            host.ram[at] = static_cast<std::uint8_t>(random >> 24);
        }
        // A well-formed request, so that much of it comes to the commands.
        const auto type = static_cast<std::uint8_t>(1 + round % 2);
        const auto command = static_cast<std::uint8_t>(host.ram[0x5B] & 0x3F);
        const Bytes header{0x40, type, 0, command, 0, host.ram[0x5D], 0, 1, 0, 1, 0, 0, 0, 0};
        std::copy(header.begin(), header.end(), host.ram.begin() + 0x58);
        host.Answer(0x0F);
        host.now += 1'000'000;
        host.module.Step();
        host.lines.ReadIrq_n();
    }
    EXPECT_THAT(host.module.Violations(), testing::SizeIs(1000)) << "kept within bounds";
    EXPECT_TRUE(host.PowerOn());
}
