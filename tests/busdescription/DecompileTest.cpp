// SPDX-License-Identifier: MIT
// What a database is decompiled to builds the same database.
#include "busdescription/decompile/Decompile.h"
#include "busdescription/decompile/FoundBus.h"
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

/// Slaves of examples/drive.gsd: as its names say, with user parameters that no names give, and with modules
/// that it does not have.
TEST_F(DecompileTest, NamesWhatADeviceFileHas) {
    const std::string slave = "[[slave]]\ngsd = \"drive.gsd\"\n";
    const std::string named =
        "modules = [\"4 words\", { name = \"Encoder\", parameters = { \"Offset\" = -5 } }]\n"
        "parameters = { \"Mode\" = \"Position\", \"Ramp\" = 200 }\nwatchdog-base = \"1 ms\"\n"
        "alarms = [\"process\"]\n";
    const std::string text = "[bus]\nrate = \"1.5M\"\nmaster = 1\nwatchdog = \"5 s\"\nmax-alarms = 2\n" +
                             slave + "address = 2\n" + named + slave +
                             "address = 3\nmodules = [\"4 words\"]\nuser-parameters = \"01 02\"\n" + slave +
                             "address = 4\nidentifier-bytes = \"1f\"\nuser-parameters = \"\"\n";
    DeviceFiles files(SOURCE_DIR "/examples");
    Findings findings;
    const auto bus = Compile(ReadText(text, "plant.toml", findings), files, findings);
    ASSERT_TRUE(bus) << findings.at(0).ToString();
    const std::string made = Decompile(*bus->config, "plant.ddb", files, {"drive.gsd"});
    EXPECT_THAT(made, testing::HasSubstr(named));
    EXPECT_THAT(made, testing::HasSubstr("modules = [\"4 words\"]\nuser-parameters = \"01 02\"\n"));
    EXPECT_THAT(made, testing::HasSubstr("ident = 0x2a14\nidentifier-bytes = \"1f\"\n"));
    const auto again = Compile(ReadText(made, "again.toml", findings), files, findings);
    ASSERT_TRUE(again) << findings.at(0).ToString();
    EXPECT_EQ(DatabaseBytes(*again->config), DatabaseBytes(*bus->config));
}

/// Slaves that do not say enough, or have no address, stay comments of a text that can be used.
TEST_F(DecompileTest, DraftsWhoWasFound) {
    const FoundBus bus{6,
                       2,
                       {{7, 0x1234, Bytes{0x21, 0xC0, 0x00, 0x01}, ""},
                        {8, {}, Bytes{0x10}, "Odd."},
                        {126, 0x1234, Bytes{0x10}, ""}}};
    DeviceFiles files("");
    const std::string text = DraftFoundBus(bus, files, {});
    EXPECT_NE(Built(text), Bytes());
    EXPECT_THAT(text, testing::HasSubstr("\n[[slave]]\nname = \"slave-7\"\naddress = 7\nident = "
                                         "0x1234\nidentifier-bytes = \"21 c0 00 01\"\n"));
    EXPECT_THAT(text, testing::HasSubstr("\n# Odd.\n# It has not said what it is.\n# name = \"slave-8\"\n"));
    EXPECT_THAT(text, testing::HasSubstr("# address = 126\n# ident = 0x1234\n"));
}

/// An entry that a slave is not to compare may be anything there, and nothing else.
TEST_F(DecompileTest, ComparesModules) {
    EXPECT_TRUE(SameModules({0x21, 0x0F, 0x31}, {0x21, 0x10, 0x31}));
    EXPECT_FALSE(SameModules({0x21, 0x0F, 0x31}, {0x21, 0x10, 0x32}));
    EXPECT_FALSE(SameModules({0x21}, {0x21, 0x10}));
}

} // namespace
