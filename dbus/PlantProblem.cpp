// SPDX-License-Identifier: MIT
#include "dbus/PlantProblem.h"

namespace Vesk::DBus {

namespace Problems = Failures::Problems;
using Modules::DPVM::OperationMode_e;
using Modules::DPVM::Vt22Module;

std::string ModeName(OperationMode_e mode) {
    switch (mode) {
    case OperationMode_e::OFFLINE:
        return "OFFLINE";
    case OperationMode_e::STOP:
        return "STOP";
    case OperationMode_e::CLEAR:
        return "CLEAR";
    case OperationMode_e::OPERATE:
        return "OPERATE";
    }
    return std::to_string(static_cast<int>(mode));
}

static Failures::Problem ProblemOfDatabase(const std::string& description, const std::string& checksum) {
    if (!Failures::IsChecksum(description))
        return Problems::NO_CHECKSUM.With({description});
    if (!checksum.empty() && checksum != description)
        return Problems::OTHER_DATABASE.With({description, checksum});
    return {};
}

static Failures::Problem ProblemOfSlaves(const Facts& facts) {
    for (unsigned int address = 0; address < 8 * facts.configured.size(); ++address) {
        const std::string text = std::to_string(address);
        if (Has(facts.configured, address) && !Has(facts.exchanging, address))
            return Problems::NO_EXCHANGE.With({text, std::string(Problems::NOT_EXCHANGING), text});
        if (Has(facts.configured, address) && Has(facts.diagnostic, address))
            return Problems::DIAGNOSIS.With({text, std::string(Problems::REPORTS_DIAGNOSIS), text});
    }
    return {};
}

Failures::Problem ProblemIn(const Facts& facts, const std::string& checksum) {
    if (facts.failure)
        return Failures::ProblemOf(facts.failure->type, facts.failure->message);
    if (facts.state != Vt22Module::ModuleState_e::INITIALIZED)
        return Problems::COMING_UP.With({Vt22Module::StateToString(facts.state).Value()});
    if (facts.database)
        if (auto problem = ProblemOfDatabase(facts.database->Description.Value(), checksum);
            !problem.what.empty())
            return problem;
    if (!facts.online)
        return Problems::OFF_BUS.With();
    // A mode that was never reported is none of which something could be said.
    if (facts.mode != OperationMode_e::OPERATE && facts.mode != OperationMode_e::OFFLINE)
        return Problems::OTHER_MODE.With({ModeName(facts.mode)});
    return ProblemOfSlaves(facts);
}

} // namespace Vesk::DBus
