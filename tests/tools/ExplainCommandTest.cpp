// SPDX-License-Identifier: MIT
#include "tests/support/FirmwareFileBuilder.h"
#include "tests/support/RunTool.h"
#include "tests/support/TemporaryFolder.h"

#include "tools/vesk/explain/Advice.h"
#include "tools/vesk/explain/Explanations.h"
#include "tools/vesk/session/Session.h"
#include "vesk/modules/dpvm/config/DdbParser.h"

#include <regex>
#include <set>

using testing::HasSubstr;
using Vesk::Modules::DPVM::Config::DdbParser;
using VeskTool::Explain;

namespace {

/// What `pattern` captures in the sources of a folder.
std::set<std::string> FindIn(const char* folder, const char* pattern) {
    std::set<std::string> found;
    const std::regex regex(pattern);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const auto extension = entry.path().extension();
        const std::string text =
            extension == ".h" || extension == ".cpp" ? TemporaryFolder::Read(entry.path()) : "";
        found.insert(std::sregex_token_iterator(text.begin(), text.end(), regex, 1), {});
    }
    return found;
}

std::set<std::string> FindInLibrary(const char* pattern) {
    return FindIn(SOURCE_DIR "/vesk", pattern);
}

/// Each failure says what to check, and each of its words stands in a literal of the folders; their types.
std::set<std::string> ExpectSaid(const std::vector<const Failures::Outcome*>& failures,
                                 const std::vector<const char*>& folders) {
    std::set<std::string> types;
    std::string literals;
    for (const char* folder : folders)
        for (const std::string& literal : FindIn(folder, "\"([^\"\\n]+)\""))
            literals += literal + "\n";
    for (const auto* const failure : failures) {
        types.insert(std::string(failure->type));
        EXPECT_FALSE(failure->means.empty() || failure->check.empty()) << failure->message;
        std::string words = std::regex_replace(std::string(failure->message), std::regex("[^A-Za-z_]"), " ");
        for (std::istringstream stream(words); stream >> words;)
            EXPECT_THAT(literals, HasSubstr(words)) << failure->message;
    }
    return types;
}

TEST(ExplainCommandTest, KnowsWhatIsSaidAndNothingElse) {
    ExpectSaid(Failures::ToolFailures(),
               {SOURCE_DIR "/tools", SOURCE_DIR "/virtualmodule", SOURCE_DIR "/dbus"});
    const auto types = ExpectSaid(Failures::AllFailures(), {SOURCE_DIR "/vesk"});
    EXPECT_EQ(types, FindInLibrary("TypeName\\(\\) const \\{\\s*return \"([A-Za-z0-9.]+)\""));
    // The names of the commands, and the first words of what is thrown, up to the first value in it.
    for (const auto& [kind, pattern] :
         {std::pair("command", "MailboxCommand \\w+\\{[^\"]+\"(\\w+)\""),
          {"message", "Exception::Create\\([^\";]*\"([A-Z][^\":\\\\]* [^\":\\\\]*)"}}) {
        EXPECT_GE(FindInLibrary(pattern).size(), 30U) << pattern;
        for (const std::string& words : FindInLibrary(pattern))
            EXPECT_EQ(Explain(words).at(0).kind, kind) << words;
    }
}

/// Whatever happens to a file, there is more to say than what its type of exception says.
TEST(ExplainCommandTest, KnowsWhatIsWrongWithADamagedFile) {
    std::set<const Failures::Outcome*> seen;
    const auto damage = [&](const std::string& file, std::size_t size, const auto& parse) {
        for (std::size_t i = 0; i < 2 * size; ++i)
            try {
                auto bad = i < size ? file.substr(0, i) : std::string(file).replace(i - size, 1, 1, '\1');
                const auto bytes =
                    System::Array<unsigned char>::Create(std::vector<unsigned char>(bad.begin(), bad.end()));
                parse(System::IO::MemoryStream::Create(bytes));
            } catch (const std::shared_ptr<System::Exception>& thrown) {
                seen.insert(Failures::FindFailure(thrown->TypeName().Value(), thrown->Message().Value()));
            }
    };
    damage(FirmwareFileBuilder().Program(3).Content(), 131, Vesk::Modules::Bootloader::TarnFile::FromStream);
    damage(TemporaryFolder::Read(SOURCE_DIR "/examples/plant.ddb"), 1000, DdbParser::FromStream);
    EXPECT_GE(seen.size(), 15U);
    for (const auto* const failure : seen)
        EXPECT_NE(failure->message, "*") << failure->type;
}

TEST(ExplainCommandTest, SaysTheSameOfAFailureAsTheHintBelowIt) {
    const auto meaningOf = [](const Failures::Outcome& failure, const std::string& text) {
        return std::string(Failures::FindFailure(failure.type, text)->means);
    };
    for (const auto* const failure : Failures::AllFailures()) {
        const auto text = std::regex_replace(std::string(failure->message), std::regex("[*#]"), "1");
        const std::string line = std::string(failure->type) + (text.empty() ? "" : ": " + text);
        EXPECT_EQ(Explain("vesk: " + line).at(0).meaning, meaningOf(*failure, text));
    }
    for (const auto* const failure : Failures::ToolFailures()) {
        const auto text = std::regex_replace(std::string(failure->message), std::regex("[*#]"), "1");
        if (failure->message != "*")
            EXPECT_EQ(Explain("vesk: " + text).at(0).meaning, meaningOf(*failure, text)) << text;
    }
    const auto expectSame = [](const std::exception& failure) {
        const auto explained = Explain("vesk: " + VeskTool::OneLine(failure)).at(0);
        EXPECT_EQ(VeskTool::AdviceFor(failure).cause, explained.meaning) << failure.what();
        EXPECT_EQ(VeskTool::AdviceFor(failure).next.find(explained.check), 0U) << failure.what();
    };
    expectSame(System::Thrown(System::InvalidOperationException::Create(nullptr)));
    const auto codes = Vesk::Mailbox::ErrorCode::VALUES.Value();
    for (int i = 0; i < codes->Count(); ++i)
        expectSame(VeskTool::Refusal("it", *codes->Get(i)));
}

/// The names in all objects of the JSON.
void CollectNames(const nlohmann::json& json, std::set<std::string>& names) {
    for (const auto& [name, value] : json.items()) {
        if (!json.is_structured())
            return;
        if (json.is_object())
            names.insert(name);
        CollectNames(value, names);
    }
}

TEST(ExplainCommandTest, KnowsTheWordsOfWhatIsShown) {
    const TemporaryFolder folder;
    const std::string dump = folder.Put("dump", std::string(0x2000, '\0'));
    const auto plant = RunTool::Json({"config", "show", SOURCE_DIR "/examples/plant.ddb"});
    std::set<std::string> names;
    CollectNames(RunTool::Json({"dump", dump}), names);
    CollectNames(RunTool::Json({"dump", dump, "--bootloader"}), names);
    CollectNames(RunTool::Json({"diag", "5"})["status"], names);
    CollectNames(plant["master"], names);
    CollectNames(plant["slaves"][0], names);
    for (const std::string own : // of JSON alone
         {"layout", "offset", "value", "bits", "reserved", "address", "userData", "parameterData",
          "configurationData", "addressTable", "extendedUserParameterData"})
        names.erase(own);
    EXPECT_GT(names.size(), 90U);
    for (const std::string& name : names)
        EXPECT_FALSE(Explain(name).empty()) << name;
    EXPECT_EQ(Explain("VelmoInd: powerOn").at(0).name, "velmoIndication.powerOn") << "as a trace has it";
}

TEST(ExplainCommandTest, UnderstandsWordsAsTheyAreSeen) {
    for (const std::string row :
         {"operate=OPERATE;", "0xc0=OPERATE;", "ADDRESS=Invalid Address;", "booted=BOOTED;",
          "op=", "data size (y) >=", "class2r=Class2Read;",
          "dpv1Connection=fieldbusStatus.change.dpv1Connection;dpv1Connection;",
          "timeout waiting for init=Timeout waiting for initial IRQ;Timeout waiting for INITIALIZED;"
          "Timeout waiting for …;"}) {
        std::string found = row.substr(0, row.find('=') + 1);
        for (const auto& explanation : Explain(row.substr(0, row.find('='))))
            found += explanation.name + ";";
        EXPECT_EQ(found, row);
    }
    RunTool::ExpectFailure({"explain", "opperate"}, 1, HasSubstr("of \"opperate\"; nearest:\n  OPERATE\n"));
    EXPECT_THAT(RunTool::Text({"explain", "Timeout", "waiting", "for", "initial", "IRQ"}),
                testing::MatchesRegex("Timeout waiting .*\\(message\\)\n  The .*\n  Check .*\n  A .*\n"));
}

} // namespace
