// SPDX-License-Identifier: MIT
#include "tests/support/ExpectFailure.h"

#include "vesk/core/ErrorStrings.h"
#include "vesk/core/VeskException.h"

using namespace Vesk;

TEST(ErrorStrings, AreWordedExactly) {
    const std::pair<System::String, const char*> cases[] = {
        {ErrorStrings::Invalid("slave address", 200), "Invalid slave address (200)"},
        {ErrorStrings::GreaterThan("count", 7, 5), "count (7) > 5"},
        {ErrorStrings::GreaterThan("count", 7, "limit", 5), "count (7) > limit (5)"},
        {ErrorStrings::LessThan("x", 4294967295u, 0), "x (4294967295) < 0"},
        {ErrorStrings::LessThan("x", 3, "least", 4), "x (3) < least (4)"},
        {ErrorStrings::NotEqual("length", 12, "expected", 16), "length (12) != expected (16)"},
        {ErrorStrings::NotInRange("slot", 130, 0, 125), "slot (130) not in range [0 : 125]"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(text.Value(), expected);
}

template <class Type>
static void ExpectFamilyMember(const char* name) {
    const auto failure = ExpectFailure<Type>("text", [] { System::_env_throw(Type::Create("text")); });
    EXPECT_EQ(failure->TypeName().Value(), name);
    EXPECT_EQ(failure->ToString().Value(), std::string(name) + ": text");
    EXPECT_EQ(failure->InnerException(), nullptr);
    EXPECT_TRUE(std::dynamic_pointer_cast<VeskException>(failure)) << name;
}

TEST(VeskException, IsOneFamily) {
    ExpectFamilyMember<ConfigException>("Vesk.ConfigException");
    ExpectFamilyMember<StartupException>("Vesk.StartupException");
    ExpectFamilyMember<ModuleStateException>("Vesk.ModuleStateException");
    ExpectFamilyMember<ModuleIdentityException>("Vesk.ModuleIdentityException");
}
