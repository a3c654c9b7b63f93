// SPDX-License-Identifier: MIT
// What a database is decompiled to builds the same database.
#include "busdescription/decompile/Decompile.h"
#include "busdescription/records/DatabaseBytes.h"
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

using namespace BusDescription;

namespace {

using Builder = DatabaseFileBuilder;

class DecompileTest : public testing::Test {
protected:
    static std::string Decompiled(Vesk::Modules::DPVM::Config::IBusConfig& config) {
        DeviceFiles files("");
        return Decompile(config, "plant.ddb", files, {});
    }

    /// The database of a text.
    static Bytes Built(const std::string& text) {
        DeviceFiles files("");
        Findings findings;
        const auto bus = Compile(ReadText(text, "plant.toml", findings), files, findings);
        EXPECT_FALSE(HasErrors(findings)) << findings.at(0).ToString() << "\n" << text;
        return bus ? DatabaseBytes(*bus->config) : Bytes();
    }

    /// A number of at most `most`, small ones and the greatest more often than others.
    std::size_t Any(std::size_t most) {
        return _random() % 4 == 0 ? most : _random() % (_random() % (most + 1) + 1);
    }

    Bytes AnyBytes(std::size_t least, std::size_t most) {
        Bytes bytes(least + Any(most - least));
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(_random());
        return bytes;
    }

    /// Offsets one behind the other, or anywhere.
    std::vector<int> AnyPlaces(std::size_t count) {
        std::vector<int> places(count);
        const int first = static_cast<int>(Any(3000));
        const bool run = _random() % 2 == 0;
        for (std::size_t i = 0; i < count; ++i)
            places[i] = run ? first + static_cast<int>(i) : static_cast<int>(Any(0xFFFF));
        return places;
    }

    Bytes AnyMaster() {
        Bytes record = AnyBytes(96, 96);
        const Bytes plain = Builder::MasterRecord();
        for (const unsigned int fixed :
             {0U, 1U, 28U, 29U, 30U, 31U, 32U, 33U, 70U, 71U, 76U, 77U, 78U, 79U, 93U, 94U, 95U})
            record[fixed] = plain[fixed]; // lengths and what is reserved
        return _random() % 2 == 0 ? record : plain;
    }

    Bytes AnySlave() {
        Builder::SlaveContent content;
        content.identifiers = AnyBytes(1, 244);
        content.parameters = AnyBytes(0, 237);
        content.extended = AnyBytes(2, 244);
        content.inputs = AnyPlaces(1 + Any(243));
        content.outputs = AnyPlaces(Any(244));
        Bytes record = Builder::SlaveRecord(content);
        for (const unsigned int any :
             {2U, 3U, 4U, 6U, 7U, 8U, 9U, 10U, 11U, 18U, 19U, 20U, 21U, 22U, 23U, 24U})
            if (_random() % 2 == 0)
                record[any] = static_cast<std::uint8_t>(_random());
        return record;
    }

    std::mt19937 _random{17};
};

TEST_F(DecompileTest, WhatComesOutBuildsTheSameBytes) {
    for (int round = 0; round < 60; ++round) {
        Builder file;
        file.Master(AnyMaster());
        std::vector<int> addresses(256);
        std::iota(addresses.begin(), addresses.end(), 0);
        std::shuffle(addresses.begin(), addresses.end(), _random);
        addresses.resize(Any(5));
        for (const int address : addresses)
            file.Slave(address, AnySlave());
        const auto config = file.Read();
        const std::string text = Decompiled(*config);
        ASSERT_EQ(Built(text), DatabaseBytes(*config)) << "round " << round << "\n" << text;
    }
}

} // namespace
