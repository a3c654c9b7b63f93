// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/core/ErrorStrings.h"
#include "vesk/core/FormatArray.h"
#include "vesk/core/VeskException.h"

using namespace Vesk;

TEST(Texts, AreWordedExactly) {
    const auto bytes = System::Array<unsigned char>::Create({0, 10, 255});
    const auto words = System::Array<unsigned short>::Create({1, 0xFFFF});
    const std::pair<System::String, const char*> cases[] = {
        {ErrorStrings::Invalid("slave address", 200), "Invalid slave address (200)"},
        {ErrorStrings::GreaterThan("count", 7, 5), "count (7) > 5"},
        {ErrorStrings::GreaterThan("count", 7, "limit", 5), "count (7) > limit (5)"},
        {ErrorStrings::LessThan("x", 4294967295u, 0), "x (4294967295) < 0"},
        {ErrorStrings::LessThan("x", 3, "least", 4), "x (3) < least (4)"},
        {ErrorStrings::NotEqual("length", 12, "expected", 16), "length (12) != expected (16)"},
        {ErrorStrings::NotInRange("slot", 130, 0, 125), "slot (130) not in range [0 : 125]"},
        {FormatArray(bytes, 0, 3, nullptr, 2, 16), "[00, 0a, ff]"},
        {FormatArray(bytes, 2, 1, "b", 10, 2), "[b0011111111]"},
        {FormatArray(bytes, 3, 0, "0x", 2, 16), "[]"},
        {FormatArray(words, 0, 2, "0x", 4, 16), "[0x0001, 0xffff]"},
        {VeskException::Create("text")->ToString(), "Vesk.VeskException: text"},
        {ConfigException::Create("text")->ToString(), "Vesk.ConfigException: text"},
        {StartupException::Create("text")->ToString(), "Vesk.StartupException: text"},
        {ModuleStateException::Create("text")->ToString(), "Vesk.ModuleStateException: text"},
        {ModuleIdentityException::Create("text")->ToString(), "Vesk.ModuleIdentityException: text"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(text.Value(), expected);
}
