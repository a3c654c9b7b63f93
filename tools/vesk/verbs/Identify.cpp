// SPDX-License-Identifier: MIT
#include "tools/vesk/text/Text.h"
#include "tools/vesk/verbs/Verb.h"
#include "tools/vesk/verbs/Verbs.h"

namespace VeskTool {

static Json AnswerIdentify(Session& session, const Json&) {
    auto& module = session.Module();
    return {{"moduleType", module.ModuleType()},     {"fieldbusType", module.FieldbusType()},
            {"vendorId", module.VendorId()},         {"serial", module.Serial()},
            {"software", session.FirmwareVersion()}, {"bootloader", session.BootloaderVersion()}};
}

static std::string IdentifyText(const Json& facts, const Paint&) {
    const auto hex = [&facts](const char* key) { return Hex(facts[key].get<unsigned int>()); };
    // A module that has booted has these three values; the library checks them.
    return "Module      " + hex("moduleType") + ", VT22\n" +                    //
           "Fieldbus    " + hex("fieldbusType") + ", PROFIBUS DP-V1 master\n" + //
           "Vendor      " + hex("vendorId") + "\n" +                            //
           "Serial      " + hex("serial") + "\n" +                              //
           "Firmware    " + facts["software"].get<std::string>() + "\n" +       //
           "Bootloader  " + facts["bootloader"].get<std::string>() + "\n";
}

Action AddIdentify(CLI::App& app) {
    static constexpr Verb IDENTIFY{Need::BOOTED, AnswerIdentify, IdentifyText};
    const auto command = std::make_shared<VerbCommand>(app, IDENTIFY);
    return [command] { return command->Execute(); };
}

} // namespace VeskTool
