// SPDX-License-Identifier: MIT
// User parameters of tests/data/gsd, whose bytes are worked out by hand.
#include "busdescription/gsd/ParameterValues.h"
#include "busdescription/gsd/Reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace BusDescription::Gsd;
using Bytes = std::vector<std::uint8_t>;

namespace {

struct Setting {
    std::string name;
    ParameterValues::Value value;
    std::optional<unsigned int> offset = {};
};

class ParameterValuesTest : public testing::Test {
protected:
    ParameterValues Part(bool station) const {
        return station ? ParameterValues::OfStation(_device)
                       : ParameterValues::OfModule(_device, *_device.ModulesNamed(" Two of a kind").at(0));
    }

    const Device _device = ReadFile(SOURCE_DIR "/tests/data/gsd/parameters.gsd").device;
};

TEST_F(ParameterValuesTest, AreConstantsThenDefaultsThenWhatIsSet) {
    // 0x63 with bit 7 set, 5 in the bits 2 to 4 and bit 0 cleared is 0xF6.
    const Bytes defaults{0x00, 0x00, 0x08, 0x00, 0xF6, 0xFF, 0xFE, 1, 2, 3,
                         4,    0xFB, 0x03, 0xFF, 0xFF, 0xFF, 0xFF, 0, 7};

    const struct {
        bool station;
        std::vector<Setting> settings;
        std::size_t from; // the bytes that are not the defaults, and where they begin
        Bytes changed;
    } CASES[] = {
        {true, {}, 0, {}},
        {true, {{"Release", "off"}}, 4, {0x76}},
        {true, {{"Filter", 0}}, 4, {0xE2}},
        {true, {{"Filter", "slow"}, {"No default", 1}}, 4, {0xE7}},
        {true, {{"Filter", 3}, {"Limit", 300}}, 4, {0xEE, 0x01, 0x2C}},
        {true, {{"Limit", -300}}, 5, {0xFE, 0xD4}},
        {true, {{"Step", 0xFFFFFFFE}}, 7, {0xFF, 0xFF, 0xFF, 0xFE}},
        {true, {{"Offset", 10}}, 11, {0x0A}},
        {true, {{"Long", -2147483648LL}, {"Word", 0x1234}}, 13, {0x80, 0, 0, 0, 0x12, 0x34}},
        {false, {}, 0, {0xA0, 0xFB, 0x00, 0xFB, 0x00, 0x00}},
        {false, {{"Offset", 1, 3}}, 0, {0xA0, 0xFB, 0x00, 0x01, 0x00, 0x00}},
    };

    for (const auto& [station, settings, from, changed] : CASES) {
        Bytes expected = station ? defaults : Bytes(6);
        std::copy(changed.begin(), changed.end(), expected.begin() + static_cast<std::ptrdiff_t>(from));
        ParameterValues values = Part(station);
        for (const Setting& setting : settings)
            values.Set(setting.name, setting.value, setting.offset);
        EXPECT_EQ(values.Bytes(), expected);

        // And back: the same settings, in words where they are unique, and no others.
        const auto found = Part(station).SettingsFor(expected);
        ASSERT_TRUE(found);
        EXPECT_EQ(found->size(), settings.size());
        ParameterValues again = Part(station);
        for (const ParameterValue& value : *found)
            again.Set(value.parameter->name,
                      value.text.empty() ? ParameterValues::Value(value.value) : value.text,
                      value.nameIsUnique ? std::nullopt : std::optional(value.reference->offset));
        EXPECT_EQ(again.Bytes(), expected);
    }
}

TEST_F(ParameterValuesTest, ReadsTheValuesOfBytes) {
    std::string said;
    const Bytes bytes{0, 0, 0, 0, 0x88, 0x80, 0x00, 0, 0, 1, 0, 0x80, 9, 0xFF, 0xFF, 0xFF, 0xFE, 1, 0};
    for (const ParameterValue& value : Part(true).Values(bytes))
        said += value.parameter->name + " " + std::to_string(value.value) + " " + value.text + "\n";
    EXPECT_EQ(said,
              "Release 1 on\nFilter 2 \nNo default 0 \nLimit -32768 \nStep 256 \nOffset -128 \nCode 9 \n"
              "Long -2 \nWord 256 \n");
}

TEST_F(ParameterValuesTest, CannotNameEverything) {
    Bytes bytes = Part(true).Bytes();
    bytes[3] = 1; // no parameter lies there
    EXPECT_FALSE(Part(true).SettingsFor(bytes));
    bytes[3] = 0;
    bytes[12] = 8; // may not be changed
    EXPECT_FALSE(Part(true).SettingsFor(bytes));
    bytes[12] = 3;
    bytes[11] = 11; // not in the range
    EXPECT_FALSE(Part(true).SettingsFor(bytes));
    bytes.pop_back();
    EXPECT_FALSE(Part(true).SettingsFor(bytes));
}

TEST_F(ParameterValuesTest, RefusesWhatAParameterIsNot) {
    const struct {
        bool station;
        Setting setting;
        std::string message;
    } CASES[] = {
        {true, {"Relase", 1}, "there is no parameter \"Relase\", did you mean Release?"},
        {true, {"Ramp time", 1}, "there is no parameter \"Ramp time\""},
        {true, {"Code", 8}, "the parameter \"Code\" must not be changed"},
        {true,
         {"Filter", "fats"},
         "the parameter \"Filter\" cannot be \"fats\": expected \"none\" (0), \"slow\" (1), \"fast\" (2), "
         "\"fast\" (3), did you mean fast?"},
        {true,
         {"Filter", "fast"},
         "the parameter \"Filter\" cannot be \"fast\": expected a number, for 2 and 3 have that text"},
        {true, {"Filter", 6}, "the parameter \"Filter\" cannot be 6: expected 0 to 5 (BitArea(2-4))"},
        {true, {"Limit", "1"}, "the parameter \"Limit\" cannot be \"1\": expected -300 to 300 (Signed16)"},
        {true,
         {"Step", 0x100000000},
         "the parameter \"Step\" cannot be 4294967296: expected 0 to 4294967295 (Unsigned32)"},
        {true, {"Limit", 1, 6}, "the parameter \"Limit\" is not at the offset 6, but at 5"},
        {false,
         {"Offset", 1},
         "the parameter \"Offset\" is there more than once, at the offsets 1, 3: say at which one"},
    };

    for (const auto& [station, setting, message] : CASES)
        try {
            ParameterValues values = Part(station);
            values.Set(setting.name, setting.value, setting.offset);
            ADD_FAILURE() << "expected: " << message;
        } catch (const ParameterError& error) {
            EXPECT_EQ(error.what(), message);
        }
}

/// What has no words in the command line.
TEST(DeviceTest, KnowsItsModulesAndSlots) {
    const Device device = ReadFile(SOURCE_DIR "/tests/data/gsd/dialects.gsd").device;
    EXPECT_EQ(device.ModulesNamed("Same").size(), 2U);
    EXPECT_EQ(device.ModulesNamed("same").size(), 0U);
    EXPECT_EQ(device.ModulesWithReference(7).size(), 2U);
    EXPECT_EQ(device.SlotNumbered(3), nullptr);
    ASSERT_NE(device.SlotNumbered(1), nullptr);
    EXPECT_TRUE(device.SlotNumbered(1)->Allows(7));
    EXPECT_FALSE(device.SlotNumbered(1)->Allows(3));
    EXPECT_TRUE(device.SlotNumbered(2)->Allows(8));
    EXPECT_EQ(device.modules[1].safetyKeyword.value, "F_ParamDescCRC");
    EXPECT_EQ(device.identNumber.line, 5U);
    EXPECT_EQ(ReadFile(SOURCE_DIR "/tests/data/gsd/parameters.gsd").device.userParameters.line, 47U);
}

} // namespace
