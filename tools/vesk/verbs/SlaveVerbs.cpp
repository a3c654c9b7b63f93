// SPDX-License-Identifier: MIT
// The verbs that ask for one thing of one slave: diag, slave-config, input and output.
#include "tools/vesk/Commands.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Numbers.h"
#include "tools/vesk/text/Text.h"
#include "tools/vesk/verbs/Diagnosis.h"
#include "tools/vesk/verbs/Verb.h"

namespace VeskTool {

using Vesk::Modules::DPVM::IDPVMModule;

namespace {

using Service = void (IDPVMModule::*)(unsigned char, IDPVMModule::ResponseAction);

/// What the module answers about the slave that the arguments name.
std::vector<unsigned char> AskAbout(Session& session, const Json& arguments, Service service,
                                    const std::string& what) {
    const auto address = arguments["address"].get<unsigned char>();
    const auto data = session
                          .Ask(
                              [&](IDPVMModule::ResponseAction action) {
                                  (session.Module().*service)(address, std::move(action));
                              },
                              what + " of slave " + std::to_string(address))
                          ->Data();
    return {data->Data(), data->Data() + data->Count()};
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

constexpr auto* ON_THE_BUS = "Resets the module and takes it onto the bus, in OPERATE with all inputs 0.\n";

} // namespace

void AddSlaveVerbs(CLI::App& program, int& status) {
    static constexpr Verb DIAG{"diag", Need::OPERATING, AnswerDiag, DiagText};
    static constexpr Verb SLAVE_CONFIG{"slave-config", Need::OPERATING, AnswerSlaveConfig, SlaveConfigText};
    static constexpr Verb INPUT{"input", Need::OPERATING, AnswerInput, DataText};
    static constexpr Verb OUTPUT{"output", Need::OPERATING, AnswerOutput, DataText};
    const auto add = [&](const Verb& verb, const std::string& description, const std::string& example) {
        VerbCommand::Add(program, status, verb, description + "\n" + ON_THE_BUS + "Example: " + example)
            ->AddAddress();
    };
    add(DIAG, "Show a slave's diagnosis, the standard bytes bit by bit and what follows block by block.",
        "vesk diag 5");
    add(SLAVE_CONFIG, "Show the modules that a slave is made of, as it says itself.", "vesk slave-config 33");
    add(INPUT, "Show the input data that the master sends to a slave.", "vesk input 5");
    add(OUTPUT, "Show the output data that the master gets from a slave.", "vesk output 5 --json");
}

} // namespace VeskTool
