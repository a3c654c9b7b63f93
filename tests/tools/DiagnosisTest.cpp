// SPDX-License-Identifier: MIT
#include "tools/vesk/verbs/Diagnosis.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using VeskTool::DecodeIdentifiers;
using VeskTool::Diagnosis;
using Bytes = std::vector<unsigned char>;
using Json = nlohmann::ordered_json;
using testing::HasSubstr;

namespace {

TEST(DiagnosisTest, NamesEachBit) {
    const struct {
        Bytes bytes;
        std::vector<std::string> set;
        std::string cause; // a part of it
    } CASES[] = {
        {{0x00, 0x04, 0x00, 0x01, 0x2A, 0x14}, {}, ""},
        {{0x01, 0x00, 0x00, 0xFF, 0x00, 0x00}, {"stationNonExistent"}, "does not answer on the bus"},
        {{0x02, 0x05, 0x00, 0xFF, 0x2A, 0x14}, {"parameterRequest", "stationNotReady"}, "parameterised"},
        {{0x46, 0x04, 0x00, 0x01, 0x2A, 0x14},
         {"parameterFault", "configurationFault", "stationNotReady"},
         "refuses its parameters"},
        {{0x80, 0x04, 0x00, 0x02, 0x2A, 0x14}, {"masterLock"}, "another master"},
        {{0x30, 0x00, 0x00, 0x01, 0x00, 0x00}, {"invalidSlaveResponse", "notSupported"}, "made no sense"},
        {{0x08, 0x3C, 0x80, 0x01, 0x2A, 0x14},
         {"extendedDiagnostics", "watchdogOn", "freezeMode", "syncMode", "extendedDiagnosticsOverflow"},
         ""},
        {{0x00, 0x82, 0x00, 0x01, 0x2A, 0x14}, {"deactivated", "staticDiagnostics"}, "taken it out"},
    };

    for (const auto& [bytes, set, cause] : CASES) {
        const Diagnosis diagnosis(bytes);
        EXPECT_EQ(diagnosis.Set(), set);
        EXPECT_THAT(diagnosis.Cause(), HasSubstr(cause));
        EXPECT_EQ(diagnosis.Cause().empty(), cause.empty());
        EXPECT_EQ(diagnosis.ToJson()["masterAddress"].is_null(), bytes[3] == 0xFF);
        EXPECT_EQ(diagnosis.IdentNumber(), bytes[4] == 0 ? 0u : 0x2A14u);
    }
}

TEST(DiagnosisTest, SplitsExtendedDiagnosisIntoBlocks) {
    const Json json = Diagnosis(Bytes{0x08, 0x0C, 0x00, 0x01, 0x2A, 0x14, // the standard bytes
                                      0x42, 0x05,                         // modules 0 and 2
                                      0x81, 0x43, 0x26,                   // module 1, channel 3
                                      0x03, 0x11, 0x22,                   // the device
                                      0xC7,                               // its revision
                                      0x05, 0x01})                        // half a block
                          .ToJson();
    EXPECT_EQ(json["blocks"], Json::parse(R"([
        {"kind": "identifier", "modules": [0, 2], "data": "4205"},
        {"kind": "channel", "module": 1, "channel": 3, "direction": "input", "dataType": "bit", "error": 6,
         "errorText": "line break", "data": "814326"},
        {"kind": "device", "data": "031122"},
        {"kind": "revision", "revision": 7, "data": "c7"},
        {"kind": "rest", "data": "0501"}])"));
    const std::string text = Diagnosis::Text(json);
    for (const char* part :
         {"Ident number  0x2a14", "[x] extendedDiagnostics ", "[ ] masterLock", "modules with a fault: 0, 2",
          "module 1, channel 3 (input, bit): line break (6)"})
        EXPECT_THAT(text, HasSubstr(part));
}

TEST(DiagnosisTest, TakesAnyBytes) {
    for (const Bytes& bytes : {Bytes{}, Bytes{0xFF}, Bytes{0x08, 0x0C, 0x00, 0x01, 0x2A}}) {
        const Json json = Diagnosis(bytes).ToJson();
        EXPECT_TRUE(json["identNumber"].is_null());
        EXPECT_TRUE(json["blocks"].empty());
        EXPECT_FALSE(Diagnosis::Text(json).empty());
    }
    // A block of no length must not hold it up.
    const Json json = Diagnosis(Bytes{0, 0, 0, 0, 0, 0, 0x40, 0x01}).ToJson();
    EXPECT_EQ(json["blocks"], Json::parse(R"([{"kind": "rest", "data": "4001"}])"));
}

TEST(IdentifiersTest, SayWhatTheModulesExchange) {
    const struct {
        Bytes bytes;
        const char* modules;
    } CASES[] = {
        {{0x21}, R"([{"identifier": "21", "input": {"length": 2, "unit": "byte", "consistency": "unit"},
                      "output": null}])"},
        {{0x54}, R"([{"identifier": "54", "input": null,
                      "output": {"length": 10, "unit": "word", "consistency": "unit"}}])"},
        {{0xF5}, R"([{"identifier": "f5", "input": {"length": 12, "unit": "word", "consistency": "whole"},
                      "output": {"length": 12, "unit": "word", "consistency": "whole"}}])"},
        {{0xC0, 0x8F, 0x07},
         R"([{"identifier": "c08f07", "input": {"length": 16, "unit": "byte", "consistency": "whole"},
              "output": {"length": 8, "unit": "byte", "consistency": "unit"}, "manufacturerData": ""}])"},
        {{0x00, 0x42, 0xC0, 0xAA, 0xBB},
         R"([{"identifier": "00", "input": null, "output": null, "manufacturerData": ""},
             {"identifier": "42c0aabb", "input": null,
              "output": {"length": 2, "unit": "word", "consistency": "whole"}, "manufacturerData": "aabb"}])"},
        {{0xC0, 0x8F}, R"([{"identifier": "c08f", "cutShort": true}])"},
    };

    for (const auto& [bytes, modules] : CASES)
        EXPECT_EQ(DecodeIdentifiers(bytes), Json::parse(modules));
}

} // namespace
