// SPDX-License-Identifier: MIT
#include "tools/vesk/explain/Diagnosis.h"
#include "busdescription/gsd/Reader.h"
#include "tests/support/Golden.h"
#include "tools/vesk/text/ByteText.h"

using VeskTool::DecodeIdentifiers;
using VeskTool::Diagnosis;
using Bytes = std::vector<unsigned char>;

namespace {

TEST(DiagnosisTest, SaysWhatTheBytesMean) {
    const Bytes CASES[] = {
        {0x00, 0x04, 0x00, 0x01, 0x2A, 0x14}, // nothing
        {0x01, 0x00, 0x00, 0xFF, 0x00, 0x00}, // not there
        {0x02, 0x05, 0x00, 0xFF, 0x2A, 0x14}, // at the start
        {0x46, 0x04, 0x00, 0x01, 0x2A, 0x14}, // wrong records
        {0x80, 0x04, 0x00, 0x02, 0x2A, 0x14}, // another master
        {0x30, 0x00, 0x00, 0x01, 0x00, 0x00},
        {0x08, 0x3C, 0x80, 0x01, 0x2A, 0x14}, // flags
        {0x00, 0x82, 0x00, 0x01, 0x2A, 0x14}, // taken out
        {0x08, 0x0C, 0x00, 0x01, 0x2A, 0x14, 0x42, 0x05, 0x81, 0x43, 0x26, 0x03, 0x11, 0x22, 0xC7}, // blocks
        {0x08, 0x0C, 0x00, 0x01, 0x2A, 0x14, 0x84, 0x81, 0xB0, 0x05, 0x01}, // half a block
        {0, 0, 0, 0, 0, 0, 0x40, 0x01}, // a block of no length, which must not hold it up
        {},                             // and what is no diagnosis
        {0xFF},
        {0x08, 0x0C, 0x00, 0x01, 0x2A},
    };

    std::string said;
    for (const Bytes& bytes : CASES) {
        const Diagnosis diagnosis(bytes);
        said += "# " + VeskTool::HexDigits(bytes) + "\n" + diagnosis.Cause() + "\n";
        for (const std::string& name : diagnosis.Set()) {
            EXPECT_TRUE(diagnosis.IsSet(name));
            said += name + "\n";
        }
        const auto json = diagnosis.ToJson();
        EXPECT_EQ(json["identNumber"].is_null() ? 0 : json["identNumber"].get<unsigned>(),
                  diagnosis.IdentNumber());
        said += json["blocks"].dump() + "\n" + Diagnosis::Text(json);
    }
    ExpectGolden("diagnosis.txt", said);
}

/// The texts of examples/drive.gsd, and none of another device's.
TEST(DiagnosisTest, HasTheTextsOfADeviceFile) {
    const auto drive = BusDescription::Gsd::ReadFile(SOURCE_DIR "/examples/drive.gsd").device;
    const auto said = [&](const Bytes& device, unsigned char ident = 0x14) {
        Bytes bytes{0x08, 0x0C, 0x00, 0x01, 0x2A, ident};
        bytes.insert(bytes.end(), device.begin(), device.end());
        auto json = Diagnosis(bytes).ToJson();
        Diagnosis::AddTexts(json, drive);
        return Diagnosis::Text(json);
    };
    EXPECT_THAT(said({0x03, 0x03, 0x01}),
                testing::HasSubstr("device        Too hot, Supply voltage too low, Limited by the motor\n"
                                   "              Too hot: See that air reaches the heat sink\n"
                                   "              030301\n"));
    EXPECT_THAT(said({0x03, 0x00, 0xF5}), testing::HasSubstr("device        bits 8 to 11 are 5\n"));
    EXPECT_THAT(said({0x02, 0x02}), testing::HasSubstr("device        Supply voltage too low\n"));
    EXPECT_THAT(said({0x03, 0x03, 0x01}, 0x15), testing::HasSubstr("see its manual"));
}

TEST(DiagnosisTest, SaysWhatTheModulesExchange) {
    std::string said;
    for (const Bytes& bytes : {Bytes{0x21}, Bytes{0x54}, Bytes{0xF5}, Bytes{0xC0, 0x8F, 0x07},
                               Bytes{0x00, 0x42, 0xC0, 0xAA, 0xBB}, Bytes{0x8F, 0x41}, Bytes{0xC0, 0x8F}})
        said += VeskTool::HexDigits(bytes) + "\n" + DecodeIdentifiers(bytes).dump(1) + "\n";
    ExpectGolden("identifiers.txt", said);
}

} // namespace
