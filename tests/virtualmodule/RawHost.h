// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/DatabaseFileBuilder.h"

#include "virtualmodule/Module.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

/// A host of a few lines that pokes bytes into the DPRAM, so that nothing but the layout tables stands
/// between a test and the module. Time passes only while it waits for an interrupt.
struct RawHost {
    static constexpr std::uint8_t OUT = 1, M_OUT = 4, M_IN = 8;

    using Bytes = VirtualModule::Bytes;
    using Words = std::array<std::uint16_t, 8>;

    struct Request {
        unsigned command; // its type in front: 0x217 is command 0x17 of the fieldbus
        Words extended{};
        Bytes data{};
        unsigned frames = 1, frame = 1, offset = 0;
    };

    /// The error that a request is answered with, and the request.
    struct Line {
        unsigned error;
        Request request;
    };

    explicit RawHost(VirtualModule::Options options = {})
        : module(
              ram, lines, flash, [this] { return now; }, options) {}

    /// Boots the master, or the bootloader; false if it stays silent.
    bool PowerOn(bool bootloader = false) {
        lines.DriveReset_n(false);
        module.Step();
        lines.DriveBootloaderEnable_n(!bootloader);
        lines.DriveReset_n(true);
        owed = 0;
        inBootloader = bootloader;
        return Await() >= 0;
    }

    /// Waits up to a second for the interrupt; the module's register, or -1.
    int Await() {
        const std::size_t place = inBootloader ? 0x1FFF : 0x1FFB;
        for (int i = 0; i < 1000; ++i, now += 1'000'000) {
            module.Step();
            if (!lines.ReadIrq_n()) {
                owed = static_cast<std::uint8_t>(owed | (inBootloader ? 0 : ram[place] & M_OUT));
                return ram[place];
            }
        }
        return -1;
    }

    /// Writes the host register, with the acknowledgement that is due.
    void Answer(unsigned bits = 0) {
        ram[0x1FFA] = ram[0x1FFC] = static_cast<std::uint8_t>(bits | owed);
        owed = 0;
    }

    /// One answer and the indication that follows it.
    int Turn(unsigned bits = 0) {
        Answer(bits);
        return Await();
    }

    void Put(const Request& request) {
        Bytes area{id = static_cast<std::uint8_t>(id + 1), 0};
        for (const unsigned word :
             {0x4000 | request.command >> 8, request.command & 0xFF, unsigned(request.data.size()),
              request.frames, request.frame, request.offset >> 16, request.offset & 0xFFFF})
            VirtualModule::Append16(area, word);
        for (const std::uint16_t word : request.extended)
            VirtualModule::Append16(area, word);
        VirtualModule::Append(area, request.data);
        std::copy(area.begin(), area.end(), ram.begin() + (inBootloader ? 0x1BFE : 0x56));
    }

    /// Sends a request and waits for its answer; the error code.
    unsigned Ask(const Request& request) {
        Put(request);
        if (inBootloader) {
            const std::uint8_t before = ram[0x1FFF];
            ram[0x1FFD] ^= 0x80;
            while ((ram[0x1FFF] ^ before) != 0xC0 && Await() >= 0) {
            }
            ram[0x1FFD] ^= 0x40;
        } else {
            EXPECT_EQ(Turn(M_IN) & (M_IN | M_OUT), M_IN | M_OUT);
        }
        const std::size_t at = inBootloader ? 0x1D1E : 0x176;
        EXPECT_EQ(ram[at], id);
        data.assign(&ram[at + 32], &ram[at + 32] + VirtualModule::Get16(ram, at + 6));
        return ram[at + 2];
    }

    void Converse(const auto&... said) {
        for (const Line& line : {said...})
            EXPECT_EQ(Ask(line.request), line.error) << VirtualModule::Hex(line.request.command);
    }

    /// A complete database: slave 5 has input bytes at 0, 2, 3 and output bytes at 10, 11; slave 9 has input
    /// byte 7 and output byte 20.
    void Configure() {
        flash.database.master = DatabaseFileBuilder::MasterRecord();
        flash.database.slaves = {{5, DatabaseFileBuilder::SlaveRecord({{0, 2, 3}, {10, 11}, {}})},
                                 {9, DatabaseFileBuilder::SlaveRecord({{7}, {20}, {}})}};
        flash.database.description = {'0', 'A', '1', 'b', '2', 'c', '3', 'd'};
        flash.database.state = VirtualModule::Database::State::COMPLETE;
    }

    /// From power-on to the bus; leaves the first hand-over of both areas to be answered.
    void Initialise() {
        EXPECT_TRUE(PowerOn());
        Converse(Line{0, {0x101}}, Line{0, {0x102, {}, LENGTHS}}, Line{0, {0x103}});
    }

    const Bytes LENGTHS{0, 8, 0, 8, 0, 8, 0, 21, 0, 21, 0, 21}; // of that database
    std::array<std::uint8_t, 8192> ram{};
    VirtualModule::Lines lines;
    VirtualModule::Flash flash;
    std::int64_t now = 0;
    VirtualModule::Module module;
    bool inBootloader = false;
    std::uint8_t owed = 0;
    std::uint8_t id = 0;
    Bytes data; // of the last answer
};
