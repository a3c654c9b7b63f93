// SPDX-License-Identifier: MIT
#include "tests/support/RunTool.h"

#include "tools/vesk/explain/Explanations.h"
#include "tools/vesk/explain/Requests.h"
#include "vesk/hostinterface/BootloaderDpRam.h"
#include "vesk/hostinterface/MasterDpRam.h"
#include "vesk/modules/InitMessages.h"
#include "vesk/modules/bootloader/BootloaderMessages.h"
#include "vesk/modules/bootloader/ProductionMessages.h"
#include "vesk/modules/dpvm/DPVMMessages.h"
#include "vesk/modules/dpvm/Vt22Messages.h"
#include "virtualmodule/faults/Faults.h"

#include <regex>

using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using VeskTool::Explain;
using VeskTool::Explanation;

namespace {

std::vector<std::string> NamesOf(const std::vector<Explanation>& explanations) {
    std::vector<std::string> names;
    for (const Explanation& one : explanations)
        names.push_back(one.name);
    return names;
}

/// What `pattern` captures in the sources of the library, with each line break of a call made a blank.
std::vector<std::string> FindInLibrary(const char* pattern) {
    std::vector<std::string> found;
    const std::regex regex(pattern);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(SOURCE_DIR "/vesk")) {
        const std::string text = entry.is_regular_file() ? TemporaryFolder::Read(entry.path()) : "";
        for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match)
            found.push_back((*match)[1]);
    }
    return found;
}

TEST(ExplainCommandTest, KnowsEveryExceptionTypeOfTheLibrary) {
    const auto types = FindInLibrary("TypeName\\(\\) const \\{\\s*return \"([A-Za-z0-9.]+)\"");
    ASSERT_GE(types.size(), 19U);
    for (const std::string& type : types) {
        const auto found = Explain(type);
        ASSERT_THAT(NamesOf(found), ElementsAre(type));
        EXPECT_EQ(found.front().kind, "exception");
        EXPECT_NE(found.front().meaning, "");
        EXPECT_NE(found.front().check, "");
        EXPECT_THAT(NamesOf(Explain(type.substr(type.rfind('.') + 1))), Contains(type));
    }
}

TEST(ExplainCommandTest, KnowsEveryMessageOfTheLibrary) {
    auto messages = FindInLibrary("Exception::Create\\(\\s*\"([A-Za-z][^\"]+)\"");
    const auto built = FindInLibrary("Exception::Create\\(\\s*(?:System::Text::)?StringBuilder\\(\\)\\s*"
                                     "\\.Append(?:Line)?\\(\"([^\"]+)\"");
    messages.insert(messages.end(), built.begin(), built.end());
    ASSERT_GE(messages.size(), 25U);
    for (const char* const wordedElsewhere :
         {"Missing PowerOn indication at bootup!",
          "Unexpected indication at bootup!\nActual:   PowerOn Log\n",
          "Unexpected module type!\nExpected: 201, Read: 101",
          "Unexpected fieldbus type!",
          "Unexpected vendor id!",
          "Timeout waiting for DOWNLOAD_COMPLETE",
          "Timeout waiting for INITIALIZED",
          "Reserved bits set in indication register\n8\n",
          "Reserved bits set in module status register",
          "Input data mapped outside of available area [ 20 < 24 ]",
          "Start of segment within existing segment",
          "MessageId of response header does not match outstanding request:",
          "Timeout after 10 seconds.",
          "block length (90) != expected (96)",
          "written length (30) not in range [44 : 1740]",
          "calculated CRC (1) != expected CRC (2)",
          "command (20) != MASTER_RECORD_DOWNLOAD (18)",
          "fragment node address (9) != current node address (8)",
          "UNKNOWN: ffff",
          "BOOTLOADER_FIRMWARE",
          "offset (32) + count (300) must not be greater than the length of array (288)"})
        messages.emplace_back(wordedElsewhere);
    for (const std::string& message : messages) {
        const auto found = Explain(message);
        EXPECT_THAT(found, Contains(Field(&Explanation::kind, "message"))) << message;
        EXPECT_THAT(found, Each(Field(&Explanation::check, Not(IsEmpty())))) << message;
    }
}

TEST(ExplainCommandTest, KnowsWhatEveryFaultOfTheVirtualModuleEndsIn) {
    for (const VirtualModule::FaultKind& fault : VirtualModule::Faults())
        for (const VirtualModule::Outcome* const outcome : fault.outcomes) {
            if (outcome->type.empty())
                continue;
            const std::string type(outcome->type);
            std::string message(outcome->message);
            std::replace(message.begin(), message.end(), '*', '1');
            const auto found = Explain(type + ": " + message);
            EXPECT_THAT(NamesOf(found), Contains(type)) << fault.name;
            if (!message.empty() && outcome->message.front() != '*')
                EXPECT_THAT(found, Contains(Field(&Explanation::kind, "message"))) << message;
        }
}

TEST(ExplainCommandTest, KnowsEveryErrorCodeByNameConstantAndNumber) {
    const std::vector<std::array<const char*, 3>> codes{
        {"No error", "NO_ERROR", "0x0"},
        {"Invalid Message ID", "MESSAGE_ID", "0x80"},
        {"Invalid Message Type", "MESSAGE_TYPE", "0x81"},
        {"Invalid Command", "COMMAND", "0x82"},
        {"Invalid Data Size", "DATA_SIZE", "0x83"},
        {"Invalid Total Frame Count", "TOTAL_FRAME_COUNT", "0x84"},
        {"Invalid Frame Number", "FRAME_NUMBER", "0x85"},
        {"Invalid Offset", "OFFSET", "0x86"},
        {"Invalid Address", "ADDRESS", "0x87"},
        {"Invalid Response", "RESPONSE", "0x88"},
        {"Flash Config Error", "FLASH_CONFIG_ERROR", "0x89"},
        {"Invalid Other", "INVALID_OTHER", "0x8f"}};
    for (const auto& code : codes)
        for (const char* const word : code)
            EXPECT_THAT(Explain(word), Contains(AllOf(Field(&Explanation::name, code[0]),
                                                      Field(&Explanation::kind, "error code"))))
                << word;
}

TEST(ExplainCommandTest, KnowsEveryRegisterBitOfBothLives) {
    using namespace Vesk::Modules::DPVM;
    const auto expectBits = [](const std::string& name, const auto& labels, std::size_t registers) {
        EXPECT_THAT(Explain(name + "."), SizeIs(registers)) << name;
        for (const char* const label : labels) {
            EXPECT_THAT(NamesOf(Explain(label)), Contains(name + "." + label));
            EXPECT_THAT(Explain(name + "." + label), Each(Field(&Explanation::meaning, HasSubstr("Bit "))));
        }
    };
    expectBits("velmoIndication", Vt22VelmoIndication_t::LABELS, 16);
    expectBits("velmoIndication", Vesk::Handshake::VelmoIndication_t::LABELS, 16);
    expectBits("applicationIndication", Vt22ApplicationIndication_t::LABELS, 13);
    expectBits("applicationIndication", Vesk::Handshake::ApplicationIndication_t::LABELS, 13);
    expectBits("outArea.indication", OutAreaIndication_t::LABELS, 3);
    expectBits("outArea.moduleStatus", ModuleStatus_t::LABELS, 2);
    expectBits("fieldbusStatus.change", FieldbusChange_t::LABELS, 5);
}

TEST(ExplainCommandTest, NamesEveryRequestAsTheLibraryDoes) {
    using namespace Vesk::Modules;
    using Bootloader::BootloaderMessages;
    using Bootloader::ProductionMessages;
    using DPVM::DPVMMessages;
    const auto none = System::Array<unsigned char>::Create(0);
    const auto slaves = System::Array<unsigned char>::Create(126);
    const std::vector<std::shared_ptr<Vesk::Mailbox::IRequest>> requests{
        Slave::InitMessages::StartInit(),
        DPVM::Vt22Messages::VelmoInit(0, 0, 0, 0, 0, 0),
        Slave::InitMessages::EndInit(),
        DPVMMessages::SetOperationMode(DPVM::OperationMode_e::STOP),
        DPVMMessages::GetSlaveDiag(3, DPVMMessages::RequestType_e::TYPE_1),
        DPVMMessages::GetSlaveConfig(3),
        DPVMMessages::SetSlaveAddress(3, 4, 5, 0, none),
        DPVMMessages::ReadSlaveInput(3),
        DPVMMessages::ReadSlaveOutput(3),
        DPVMMessages::StartSlave(slaves),
        DPVMMessages::StopSlave(slaves),
        DPVMMessages::GetLiveList(),
        DPVMMessages::StartDatabaseDownload(),
        DPVMMessages::EndDatabaseDownload("00000000"),
        DPVMMessages::DeleteDatabase(),
        DPVMMessages::GetDatabaseInfo(),
        DPVMMessages::Class1Read(3, 0, 0, 0),
        DPVMMessages::Class1Write(3, 0, 0, none),
        DPVMMessages::Class2InitiateNormal(3, 4),
        DPVMMessages::Class2Abort(4, 0, 0),
        DPVMMessages::Class2Read(4, 0, 0, 0),
        DPVMMessages::Class2Write(4, 0, 0, none),
        BootloaderMessages::FwDownloadInit(),
        BootloaderMessages::FwDownloadData(1, 1, 0, none),
        BootloaderMessages::FwDownloadLast(0, 0, 0),
        BootloaderMessages::BlDownloadInit(),
        BootloaderMessages::BlDownloadData(1, 1, 0, none),
        BootloaderMessages::BlDownloadLast(0, 0, 0),
        ProductionMessages::Enable(),
        ProductionMessages::FlashWriteEnable(),
        ProductionMessages::FlashErase()};
    EXPECT_EQ(VeskTool::RequestKinds().size(), requests.size() + 2) << "the two that carry a record";
    for (const auto& request : requests) {
        const auto* const kind = VeskTool::FindRequestKind(*request->Type(), request->Command());
        ASSERT_TRUE(kind) << request->Name().Value();
        EXPECT_EQ(kind->name, request->Name().Value());
        EXPECT_THAT(Explain(kind->name), Contains(Field(&Explanation::kind, "command")));
    }
}

TEST(ExplainCommandTest, UnderstandsWordsAsTheyAreSeen) {
    EXPECT_THAT(NamesOf(Explain("operate")), ElementsAre("OPERATE"));
    EXPECT_THAT(NamesOf(Explain("0xc0")), ElementsAre("OPERATE"));
    EXPECT_THAT(NamesOf(Explain("class2r")), ElementsAre("Class2Read"));
    EXPECT_THAT(NamesOf(Explain("timeout waiting for init")),
                ElementsAre("Timeout waiting for initial IRQ", "Timeout waiting for INITIALIZED"));
    EXPECT_THAT(
        NamesOf(Explain("vesk: Vesk.ModuleIdentityException: Unexpected module type!; Expected: 201")),
        ElementsAre("Unexpected module type!", "Vesk.ModuleIdentityException"));
    EXPECT_THAT(NamesOf(Explain("data size (257) > 256")), ElementsAre("data size (#) > 256"));
    EXPECT_THAT(Explain("data size (x) > 256"), IsEmpty());
    EXPECT_THAT(Explain("op"), IsEmpty()) << "too short to be the beginning of anything";
    EXPECT_THAT(Explain(""), IsEmpty());
}

TEST(ExplainCommandTest, PrintsWhatItMeansAndWhatToCheck) {
    EXPECT_THAT(RunTool::Text({"explain", "Timeout", "waiting", "for", "initial", "IRQ"}),
                testing::MatchesRegex("Timeout waiting for initial IRQ \\(message\\)\n  The module .*\n"
                                      "  Check: .*\n"));
    const json explained = RunTool::Json({"explain", "0x82"});
    EXPECT_EQ(explained["word"], "0x82");
    ASSERT_EQ(explained["matches"].size(), 1U);
    EXPECT_THAT(explained["matches"][0], HasFacts(R"({"kind": "error code", "name": "Invalid Command"})"));
}

TEST(ExplainCommandTest, NamesTheNearestForAnUnknownWord) {
    RunTool::ExpectFailure({"explain", "opperate"}, 1,
                           HasSubstr("vesk: nothing is known of \"opperate\"; nearest:\n  OPERATE\n"));
    const json unknown = RunTool::Json({"explain", "Timeuot waiting for INITIALIZED"}, 1);
    EXPECT_TRUE(unknown["matches"].empty());
    EXPECT_EQ(unknown["nearest"][0], "Timeout waiting for INITIALIZED");
    EXPECT_TRUE(RunTool::Json({"explain", "\xFF\xFE"}, 1)["matches"].empty());
    EXPECT_EQ(RunTool::Run({"explain"}).status, 2);
}

} // namespace
