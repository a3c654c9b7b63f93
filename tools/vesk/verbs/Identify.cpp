// SPDX-License-Identifier: MIT
#include "tools/vesk/Commands.h"
#include "tools/vesk/text/Text.h"
#include "tools/vesk/verbs/Verb.h"

namespace VeskTool {

static Json AnswerIdentify(Session& session, const Json&) {
    auto& module = session.Module();
    return {{"moduleType", module.ModuleType()},
            {"fieldbusType", module.FieldbusType()},
            {"vendorId", module.VendorId()},
            {"serial", module.Serial()},
            {"software", Version({module.SoftwareMajor(), module.SoftwareMinor(), module.SoftwareBuild()})},
            {"bootloader", Version({module.BootloaderMajor(), module.BootloaderMinor()})}};
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

void AddIdentify(CLI::App& program, int& status) {
    static constexpr Verb IDENTIFY{"identify", Need::BOOTED, AnswerIdentify, IdentifyText};
    VerbCommand::Add(program, status, IDENTIFY,
                     "Show what the module is: type, fieldbus, vendor, serial number, versions.\n"
                     "Resets the module.\n"
                     "Example: vesk identify --json");
}

} // namespace VeskTool
