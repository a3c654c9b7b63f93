// SPDX-License-Identifier: MIT
// The verbs that ask for one thing of one slave: diag, slave-config, input and output.
#include "tools/vesk/explain/Diagnosis.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Elements.h"
#include "tools/vesk/text/Numbers.h"
#include "tools/vesk/text/Text.h"
#include "tools/vesk/verbs/Verb.h"
#include "tools/vesk/verbs/Verbs.h"

namespace VeskTool {

using Vesk::Modules::DPVM::IDPVMModule;

namespace {

/// What the module answers about the slave that the arguments name.
std::vector<unsigned char> AskAbout(Session& session, const Json& arguments, Session::SlaveService service,
                                    const std::string& what) {
    const auto address = arguments["address"].get<unsigned int>();
    return Elements(
        *session.Ask(session.About(address, service), what + " of slave " + std::to_string(address))->Data());
}

// ---- vesk diag

Json AnswerDiag(Session& session, const Json& arguments) {
    const auto bytes = AskAbout(session, arguments, &IDPVMModule::GetSlaveDiag, "the diagnosis");
    Json facts{{"address", arguments["address"]}};
    facts.update(Diagnosis(bytes).ToJson());
    return facts;
}

std::string DiagText(const Json& facts, const Paint&) {
    return "Slave         " + facts["address"].dump() + "\n" + Diagnosis::Text(facts);
}

// ---- vesk slave-config

Json AnswerSlaveConfig(Session& session, const Json& arguments) {
    const auto bytes = AskAbout(session, arguments, &IDPVMModule::GetSlaveConfig, "the configuration");
    return {
        {"address", arguments["address"]}, {"modules", DecodeIdentifiers(bytes)}, {"data", HexDigits(bytes)}};
}

std::string LengthText(const Json& length, const char* direction) {
    if (length.is_null())
        return "";
    return ", " + length["length"].dump() + " bytes " + direction + " (" + length["unit"].get<std::string>() +
           "s, consistent as " + (length["consistency"] == "whole" ? "a whole" : "units") + ")";
}

std::string ModuleText(const Json& module) {
    if (module.contains("cutShort"))
        return ", cut short";
    const std::string lengths = LengthText(module["input"], "in") + LengthText(module["output"], "out");
    const std::string manufacturer = module.value("manufacturerData", "");
    return (lengths.empty() ? ", empty slot" : lengths) +
           (manufacturer.empty() ? "" : ", manufacturer's data " + manufacturer);
}

std::string SlaveConfigText(const Json& facts, const Paint&) {
    std::string text = "Slave " + facts["address"].dump() + ", identifiers " +
                       facts["data"].get<std::string>() +
                       "; \"in\" goes to the slave, \"out\" comes from it\n";
    int number = 0;
    for (const Json& module : facts["modules"])
        text += "  module " + std::to_string(number++) + ": " + module["identifier"].get<std::string>() +
                ModuleText(module) + "\n";
    return text;
}

// ---- vesk input, vesk output

Json DataToJson(const Json& arguments, const std::vector<unsigned char>& bytes) {
    return {{"address", arguments["address"]}, {"length", bytes.size()}, {"data", HexDigits(bytes)}};
}

Json AnswerInput(Session& session, const Json& arguments) {
    return DataToJson(arguments,
                      AskAbout(session, arguments, &IDPVMModule::ReadSlaveInput, "the input data"));
}

Json AnswerOutput(Session& session, const Json& arguments) {
    return DataToJson(arguments,
                      AskAbout(session, arguments, &IDPVMModule::ReadSlaveOutput, "the output data"));
}

std::string DataText(const Json& facts, const Paint&) {
    const auto bytes = ParseHex("data", facts["data"].get<std::string>());
    return std::to_string(bytes.size()) + " bytes\n" + HexDump(bytes);
}

Action AddSlaveVerb(CLI::App& app, const Verb& verb) {
    const auto command = std::make_shared<VerbCommand>(app, verb);
    command->AddAddress();
    return [command] { return command->Execute(); };
}

} // namespace

Action AddDiag(CLI::App& command) {
    static constexpr Verb DIAG{Need::OPERATING, AnswerDiag, DiagText};
    return AddSlaveVerb(command, DIAG);
}

Action AddSlaveConfig(CLI::App& command) {
    static constexpr Verb SLAVE_CONFIG{Need::OPERATING, AnswerSlaveConfig, SlaveConfigText};
    return AddSlaveVerb(command, SLAVE_CONFIG);
}

Action AddInput(CLI::App& command) {
    static constexpr Verb INPUT{Need::OPERATING, AnswerInput, DataText};
    return AddSlaveVerb(command, INPUT);
}

Action AddOutput(CLI::App& command) {
    static constexpr Verb OUTPUT{Need::OPERATING, AnswerOutput, DataText};
    return AddSlaveVerb(command, OUTPUT);
}

} // namespace VeskTool
