// SPDX-License-Identifier: MIT
// vesk config check: whether the slaves on the bus are those that are described.
#include "busdescription/compile/SlaveCompiler.h"
#include "busdescription/decompile/FoundBus.h"
#include "tools/vesk/files/ConfigText.h"
#include "tools/vesk/files/DatabaseFile.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Elements.h"
#include "tools/vesk/text/Numbers.h"
#include "tools/vesk/text/Text.h"
#include "tools/vesk/verbs/Stations.h"
#include "tools/vesk/verbs/Verbs.h"

#include <algorithm>

namespace VeskTool {

namespace {

/// Compares described slaves with those found; both as JSON, the latter as AskForFoundSlaves
/// gives them.
class Comparison {
public:
    Comparison(const Json& described, const Json& found, const Json& liveList)
        : _described(described), _found(found), _liveList(liveList) {}

    /// An array of {"kind", "address", "name", "what", "next"}.
    Json Findings() {
        for (const Json& slave : _described)
            Look(slave);
        for (const Json& slave : _found)
            if (At(_described, slave["address"]) == nullptr)
                Additional(slave);
        std::stable_sort(_findings.begin(), _findings.end(),
                         [](const Json& a, const Json& b) { return a["address"] < b["address"]; });
        return _findings;
    }

private:
    static const Json* At(const Json& slaves, const Json& address) {
        const auto found = std::find_if(slaves.begin(), slaves.end(),
                                        [&](const Json& slave) { return slave["address"] == address; });
        return found == slaves.end() ? nullptr : &*found;
    }

    void Add(const char* kind, const Json& slave, const std::string& what, const std::string& next) {
        _findings.push_back({{"kind", kind},
                             {"address", slave["address"]},
                             {"name", slave.value("name", Json())},
                             {"what", what},
                             {"next", next}});
    }

    void Look(const Json& slave) {
        const Json* const there = At(_found, slave["address"]);
        if (there == nullptr && slave["active"])
            return Missing(slave);
        if (there == nullptr)
            return;
        if ((*there)["identNumber"].is_null() || (*there)["identifiers"].is_null())
            return Add("silent", slave, "it answers, and does not say what it is",
                       "Look at its diagnosis: vesk diag " + slave["address"].dump());
        if ((*there)["identNumber"] != slave["identNumber"])
            return OtherDevice(slave, *there);
        const auto wanted = ParseHex("identifiers", slave["identifiers"].get<std::string>());
        const auto had = ParseHex("identifiers", (*there)["identifiers"].get<std::string>());
        if (!BusDescription::SameModules(wanted, had))
            OtherModules(slave, wanted, had);
    }

    void Missing(const Json& slave) {
        for (const Json& station : _liveList)
            if (station["address"] == slave["address"])
                return Add("missing", slave,
                           "a master has its address: " + station["kind"].get<std::string>(),
                           "Give one of the two another address");
        std::string next = "Check its supply, its address and the cable";
        // It may have come to another address.
        for (const Json& other : _found)
            if (other["identNumber"] == slave["identNumber"] && At(_described, other["address"]) == nullptr)
                next = "If it is the one at " + other["address"].dump() +
                       ", which has its ident number: vesk set-address " + other["address"].dump() + " " +
                       slave["address"].dump() + " " + Ident(slave);
        Add("missing", slave, "it does not answer", next);
    }

    void OtherDevice(const Json& slave, const Json& there) {
        Add("ident", slave, "its ident number is " + Ident(there) + ", described is " + Ident(slave),
            "Put the described device there, or describe this one, with its own ident number or its own "
            "device description file");
    }

    void OtherModules(const Json& slave, const std::vector<unsigned char>& wanted,
                      const std::vector<unsigned char>& had) {
        std::string described = Modules(wanted);
        std::string there = Modules(had);
        std::string key = "identifier-bytes = \"" + Blanks(had) + '"';
        if (const std::string gsd = slave.value("gsd", ""); !gsd.empty()) {
            const auto file = BusDescription::Gsd::ReadFile(gsd);
            const std::string wantedNames = BusDescription::ModuleNames(file.device, wanted);
            const std::string hadNames = BusDescription::ModuleNames(file.device, had);
            if (!wantedNames.empty())
                described = wantedNames;
            if (!hadNames.empty()) {
                there = hadNames;
                key = "modules = [" + hadNames + ']';
            }
        }
        Add("modules", slave, "its modules are " + there + ", described are " + described,
            "Plug the described modules, or describe these: " + key);
    }

    void Additional(const Json& slave) {
        const std::string ident =
            slave["identNumber"].is_null() ? "" : ", with the ident number " + Ident(slave);
        if (slave["address"] > HIGHEST_SLAVE)
            Add("additional", slave, "a slave without an address of its own" + ident,
                "Give it one: vesk set-address " + slave["address"].dump() + " NEW " +
                    (ident.empty() ? "IDENT" : Ident(slave)));
        else
            Add("additional", slave, "it answers, and is not described" + ident,
                "Describe it, vesk config scan has its table, or take it off the bus");
    }

    static std::string Ident(const Json& slave) { return Hex(slave["identNumber"].get<unsigned int>()); }

    static std::string Blanks(const std::vector<unsigned char>& bytes) {
        return HexBytes(*System::Array<unsigned char>::Create(bytes));
    }

    /// "21 11 (2 bytes to the bus, 2 bytes from the bus)".
    static std::string Modules(const std::vector<unsigned char>& bytes) {
        return Blanks(bytes) + " (" + IdentifiersText(bytes) + ")";
    }

    const Json& _described;
    const Json& _found;
    const Json& _liveList;
    Json _findings = Json::array();
};

Json AnswerCheck(Session& session, const Json& arguments) {
    const auto database = session.AskForDatabase();
    const Json liveList = AskForLiveList(session);
    const Json found = AskForFoundSlaves(session, liveList);
    const Json& described = arguments["described"];
    const Json findings = Comparison(described, found, liveList).Findings();
    return {{"ok", findings.empty()},
            {"findings", findings},
            {"described", described.size()},
            {"found", found},
            {"database", database ? Json(database->Description.Value()) : Json()},
            {"checksum", arguments["checksum"]}};
}

std::string CheckText(const Json& facts, const Paint& paint) {
    std::string text;
    for (const Json& finding : facts["findings"]) {
        const std::string name = finding["name"].is_null() ? "" : " " + finding["name"].get<std::string>();
        text += paint.Bad(finding["address"].dump() + name + ": " + finding["what"].get<std::string>()) +
                "\n      " + finding["next"].get<std::string>() + ".\n";
    }
    if (facts["ok"])
        text += paint.Good("All " + facts["described"].dump() + " slaves are there as described.") + "\n";
    if (facts["database"] != facts["checksum"])
        text += "The module holds another database than is described: " +
                Printable(facts["database"].get<std::string>()) + " instead of " +
                facts["checksum"].get<std::string>() + ".\n";
    return text;
}

Json DescribedToJson(const DescribedBus& bus) {
    Json slaves = Json::array();
    for (const unsigned char address : Elements(*bus.config->SlaveAddresses())) {
        const auto record = bus.config->Slave(address);
        const BusDescription::SlaveDescription* const text = bus.SlaveAt(address);
        Json slave{{"address", address},
                   {"active", (record->SlaveFlags() & BusDescription::SlaveFlags::ACTIVE) != 0},
                   {"identNumber", record->ParameterData()->IdentNr()},
                   {"identifiers", HexDigits(Elements(*record->ConfigurationData()->IdentifierBytes()))}};
        if (text != nullptr)
            slave["name"] = text->name;
        if (text != nullptr && text->gsd)
            slave["gsd"] = bus.PathOf(text->gsd.value);
        slaves.push_back(std::move(slave));
    }
    return slaves;
}

} // namespace

Action AddConfigCheck(CLI::App& app) {
    static constexpr Verb CHECK{Need::OPERATING, AnswerCheck, CheckText};
    const auto command = std::make_shared<VerbCommand>(app, CHECK);
    command->AddFile([self = command.get()](const std::string& path) {
        const auto bus = LoadDescribedBus(path);
        self->arguments["described"] = DescribedToJson(*bus);
        self->arguments["checksum"] = ChecksumText(bus->config->Checksum());
    });
    return [command] { return command->Execute(); };
}

} // namespace VeskTool
