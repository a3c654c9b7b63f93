// SPDX-License-Identifier: MIT
#include "tests/support/FirmwareFileBuilder.h"
#include "tests/support/RunTool.h"
#include "tests/support/TemporaryFolder.h"

#include "tools/vesk/explain/Advice.h"
#include "tools/vesk/explain/Explanations.h"
#include "tools/vesk/session/Session.h"
#include "vesk/mailbox/ErrorCode.h"
#include "vesk/modules/dpvm/config/DdbParser.h"

#include <regex>
#include <set>

using Failures::Outcome;
using testing::HasSubstr;
using VeskTool::Explain;

namespace {

/// What `pattern` captures in the sources of the library.
std::set<std::string> FindInLibrary(const char* pattern) {
    std::set<std::string> found;
    const std::regex regex(pattern);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(SOURCE_DIR "/vesk")) {
        const std::string text = entry.is_regular_file() ? TemporaryFolder::Read(entry.path()) : "";
        found.insert(std::sregex_token_iterator(text.begin(), text.end(), regex, 1), {});
    }
    return found;
}

TEST(ExplainCommandTest, KnowsWhatTheLibrarySaysAndNothingElse) {
    std::set<std::string> types;
    std::string literals;
    for (const std::string& literal : FindInLibrary("\"((?:[^\"\\\\\\n]|\\\\.)+)\""))
        literals += literal + "\n";
    for (const Outcome* const failure : Failures::AllFailures()) {
        types.insert(std::string(failure->type));
        EXPECT_FALSE(failure->means.empty() || failure->check.empty()) << failure->message;
        std::string words = std::regex_replace(std::string(failure->message), std::regex("[^A-Za-z_]"), " ");
        for (std::istringstream stream(words); stream >> words;)
            EXPECT_THAT(literals, HasSubstr(words)) << failure->message;
    }
    EXPECT_EQ(types, FindInLibrary("TypeName\\(\\) const \\{\\s*return \"([A-Za-z0-9.]+)\""));
    // The first words of what is thrown, up to the first value in it.
    for (const std::string& words : FindInLibrary("Exception::Create\\([^\";]*\"([A-Z][^\":]+)"))
        EXPECT_EQ(Explain(words).at(0).kind, "message") << words;
}

/// Whatever happens to a file, there is more to say than what its type of exception says.
TEST(ExplainCommandTest, KnowsWhatIsWrongWithADamagedFile) {
    std::set<const Outcome*> seen;
    const auto damage = [&](const std::string& file, std::size_t size, const auto& parse) {
        for (std::size_t i = 0; i < size; ++i)
            for (const auto& damaged : {file.substr(0, i), std::string(file).replace(i, 1, 1, '\1')})
                try {
                    const std::vector<unsigned char> bytes(damaged.begin(), damaged.end());
                    parse(System::IO::MemoryStream::Create(System::Array<unsigned char>::Create(bytes)));
                } catch (const std::shared_ptr<System::Exception>& thrown) {
                    const std::string message = thrown->Message().Value();
                    const auto* const known = Failures::FindFailure(thrown->TypeName().Value(), message);
                    EXPECT_NE(known->message, "*") << message;
                    seen.insert(known);
                }
    };
    damage(FirmwareFileBuilder().Program(3).Content(), 131, Vesk::Modules::Bootloader::TarnFile::FromStream);
    damage(TemporaryFolder::Read(SOURCE_DIR "/examples/plant.ddb"), 2000,
           Vesk::Modules::DPVM::Config::DdbParser::FromStream);
    EXPECT_GE(seen.size(), 18U);
}

/// An example of a failure.
struct Example : System::Exception {
    Example(std::string typeName, System::String text) : Exception(std::move(text)), type(typeName) {}

    System::String TypeName() const override { return type; }

    const System::String type;
};

TEST(ExplainCommandTest, SaysTheSameOfAFailureAsTheHintBelowIt) {
    const auto expectSame = [](const std::exception& failure) {
        const auto explained = Explain("vesk: " + VeskTool::OneLine(failure)).at(0);
        const VeskTool::Advice advice = VeskTool::AdviceFor(failure);
        EXPECT_EQ(advice.cause, explained.meaning) << failure.what();
        EXPECT_THAT(advice.next, testing::StartsWith(explained.check)) << failure.what();
        EXPECT_THAT(advice.next, testing::EndsWith(explained.next)) << failure.what();
    };
    for (const Outcome* const failure : Failures::AllFailures()) {
        const auto message = std::regex_replace(std::string(failure->message), std::regex("[*#]"), "1");
        expectSame(System::Thrown(std::make_shared<Example>(
            std::string(failure->type), message.empty() ? System::String() : System::String(message))));
    }
    const auto codes = Vesk::Mailbox::ErrorCode::VALUES.Value();
    for (int i = 0; i < codes->Count(); ++i)
        expectSame(VeskTool::Refusal("it", *codes->Get(i)));
}

TEST(ExplainCommandTest, UnderstandsWordsAsTheyAreSeen) {
    const std::map<std::string, std::string> words{
        {"operate", "OPERATE;"},
        {"0xc0", "OPERATE;"},
        {"ADDRESS", "Invalid Address;"},
        {"op", ""},
        {"", ""},
        {"class2r", "Class2Read;"},
        {"dpv1Connection", "fieldbusStatus.change.dpv1Connection;"},
        {"timeout waiting for init", "Timeout waiting for initial IRQ;Timeout waiting for INITIALIZED;"},
        {"data size (257) > 256", "data size (#) > 256;"},
        {"data size (y) >", ""}};
    for (const auto& [word, names] : words) {
        std::string found;
        for (const auto& explanation : Explain(word))
            found += explanation.name + ";";
        EXPECT_EQ(found, names) << word;
    }
}

TEST(ExplainCommandTest, PrintsWhatItKnowsOrTheNearest) {
    EXPECT_THAT(RunTool::Text({"explain", "Timeout", "waiting", "for", "initial", "IRQ"}),
                testing::MatchesRegex("Timeout waiting .*\\(message\\)\n  The .*\n  Check .*\n  A .*\n"));
    EXPECT_THAT(RunTool::Json({"explain", "0x82"})["matches"][0],
                HasFacts(R"({"kind": "error code", "name": "Invalid Command", "next": ""})"));
    RunTool::ExpectFailure({"explain", "opperate"}, 1, HasSubstr("of \"opperate\"; nearest:\n  OPERATE\n"));
    EXPECT_EQ(RunTool::Json({"explain", "\xFF\xFE"}, 1)["nearest"].size(), 5U);
}

} // namespace
