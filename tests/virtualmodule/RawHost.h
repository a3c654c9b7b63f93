// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/Module.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

/// A host of a few lines that pokes bytes into the DPRAM, so that nothing but the layout tables stands
/// between a test and the module. Time passes only while it waits for an interrupt.
struct RawHost {
    static constexpr std::size_t MAILBOX_OUT = 0x0176;
    static constexpr std::uint8_t OUT = 1, IN = 2, M_OUT = 4, M_IN = 8, POWER_ON = 16, FATAL = 32, LOG = 64;

    using Bytes = VirtualModule::Bytes;
    using Words = std::array<std::uint16_t, 8>;

    struct Reply {
        unsigned error;
        Words extended;
        Bytes data;

        bool Ok() const { return error == 0; }
    };

    explicit RawHost(VirtualModule::Options options = {})
        : module(
              ram, lines, flash, [this] { return now; }, options) {}

    void PowerOn() {
        lines.DriveReset_n(false);
        module.Step();
        lines.DriveBootloaderEnable_n(true);
        lines.DriveReset_n(true);
        owed = 0;
        EXPECT_EQ(Await(), POWER_ON);
    }

    /// Waits up to 20 ms for the interrupt; the indication, or -1.
    int Await() {
        for (int i = 0; i < 20; ++i, now += 1'000'000) {
            module.Step();
            if (!lines.ReadIrq_n()) {
                owed = static_cast<std::uint8_t>(owed | (ram[0x1FFB] & M_OUT));
                return ram[0x1FFB];
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

    void PutRequest(std::size_t at, unsigned type, unsigned command, Words extended, const Bytes& data,
                    unsigned frames = 1, unsigned frame = 1, unsigned offset = 0) {
        Bytes area{0, 0};
        for (const unsigned word :
             {0x4000 | type, command, unsigned(data.size()), frames, frame, offset >> 16, offset & 0xFFFF})
            VirtualModule::Append16(area, word);
        area[0] = id = static_cast<std::uint8_t>(id + 1);
        for (const std::uint16_t word : extended)
            VirtualModule::Append16(area, word);
        VirtualModule::Append(area, data);
        std::copy(area.begin(), area.end(), ram.begin() + static_cast<std::ptrdiff_t>(at));
    }

    Reply GetReply(std::size_t at) const {
        const VirtualModule::ByteView area{ram.data() + at, 288};
        EXPECT_EQ(area[0], id);
        EXPECT_EQ(area[2] & 0x70, 0) << "request flag or unused bits";
        Reply reply{area[2], {}, {}};
        for (std::size_t i = 0; i < 8; ++i)
            reply.extended[i] = VirtualModule::Get16(area, 16 + 2 * i);
        const auto data = area.subspan(32, VirtualModule::Get16(area, 6));
        reply.data.assign(data.begin(), data.end());
        return reply;
    }

    /// Sends a request to the master and waits for its answer.
    Reply Request(unsigned type, unsigned command, Words extended = {}, const Bytes& data = {}) {
        PutRequest(0x0056, type, command, extended, data);
        const int indication = Turn(M_IN);
        EXPECT_EQ(indication & (M_IN | M_OUT), M_IN | M_OUT);
        lastIndication = indication;
        return GetReply(MAILBOX_OUT);
    }

    Reply Fieldbus(unsigned command, Words extended = {}, const Bytes& data = {}) {
        return Request(2, command, extended, data);
    }

    /// A master record with station address 1, all else zero.
    static Bytes MasterRecord() {
        Bytes record(96);
        record[1] = 96;
        record[2] = 1;
        record[33] = 64;
        return record;
    }

    /// A slave record with one identifier byte and no user parameters; a pad follows each of the first two
    /// blocks.
    static Bytes SlaveRecord(unsigned ident, const std::vector<unsigned>& inputs,
                             const std::vector<unsigned>& outputs, unsigned inputLength,
                             unsigned outputLength) {
        Bytes record(16);
        VirtualModule::Append(record, Bytes{0, 9, 0, 0, 0, 0, VirtualModule::High(ident),
                                            VirtualModule::Low(ident), 0, 0 /* pad */});
        VirtualModule::Append(record, Bytes{0, 3, 0x31, 0 /* pad */});
        VirtualModule::Append16(record, unsigned(4 + 2 * (inputs.size() + outputs.size())));
        VirtualModule::Append16(record, unsigned(inputs.size() << 8 | outputs.size()));
        for (const auto& table : {inputs, outputs})
            for (const unsigned entry : table)
                VirtualModule::Append16(record, entry);
        VirtualModule::Append(record,
                              Bytes{0, 6, std::uint8_t(outputLength), std::uint8_t(inputLength), 0, 0, 0, 2});
        record[0] = VirtualModule::High(unsigned(record.size() - 2));
        record[1] = VirtualModule::Low(unsigned(record.size() - 2));
        return record;
    }

    /// A complete database: slave 5 (ident 1234) has input bytes at 0, 2, 3 and output bytes at 10, 11; slave
    /// 9 (ident 0099) has input byte 7 and output byte 20.
    void Configure() {
        flash.database.master = MasterRecord();
        flash.database.slaves[5] = SlaveRecord(0x1234, {0, 2}, {10}, 3, 2);
        flash.database.slaves[9] = SlaveRecord(0x0099, {7}, {20}, 1, 1);
        flash.database.description = {'0', 'A', '1', 'b', '2', 'c', '3', 'd'};
        flash.database.state = VirtualModule::Database::State::COMPLETE;
    }

    /// From power-on to the bus; leaves the first hand-over of both areas to be answered.
    void Initialise() {
        PowerOn();
        InitialiseBooted();
    }

    /// Stops (0x0C) or starts (0x0B) a slave.
    void StopOrStart(unsigned command, std::size_t address) {
        Bytes stations(126);
        stations[address] = 1;
        EXPECT_TRUE(Fieldbus(command, {}, stations).Ok());
    }

    void InitialiseBooted() {
        EXPECT_TRUE(Request(1, 1).Ok());
        EXPECT_TRUE(Request(1, 2, {}, {0, 8, 0, 8, 0, 8, 0, 21, 0, 21, 0, 21}).Ok());
        EXPECT_TRUE(Request(1, 3).Ok());
    }

    Bytes Memory(std::size_t at, std::size_t size) const {
        const auto from = ram.begin() + static_cast<std::ptrdiff_t>(at);
        return Bytes(from, from + static_cast<std::ptrdiff_t>(size));
    }

    std::array<std::uint8_t, 8192> ram{};
    VirtualModule::Lines lines;
    VirtualModule::Flash flash;
    std::int64_t now = 0;
    VirtualModule::Module module;
    std::uint8_t owed = 0;
    std::uint8_t id = 0;
    int lastIndication = 0;
};
