// SPDX-License-Identifier: MIT
#include "busdescription/decompile/FoundBus.h"

#include "busdescription/compile/Compile.h"
#include "busdescription/decompile/DeviceMatch.h"
#include "busdescription/decompile/Draft.h"
#include "busdescription/description/Units.h"
#include "busdescription/gsd/Identifier.h"

#include <algorithm>

namespace BusDescription {

namespace {

/// Highest address of a slave that takes part.
constexpr unsigned int HIGHEST_SLAVE = 125;

constexpr unsigned int LONGEST_DIAGNOSIS = 244;

/// Makes comments of every line.
std::string Commented(const std::string& text) {
    std::string commented;
    std::size_t start = 0;
    for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', start)) {
        const std::string line = text.substr(start, end - start);
        commented += (line.starts_with("#") ? "" : "# ") + line + "\n";
        start = end + 1;
    }
    return commented;
}

/// The table of one slave.
class SlaveDraft {
public:
    explicit SlaveDraft(const FoundSlave& slave) : _slave(slave) {
        if (!slave.remark.empty())
            _table.Comment(slave.remark);
        _table.Add("name", "\"slave-" + std::to_string(slave.address) + '"');
        _table.Add("address", std::to_string(slave.address));
    }

    std::string Write(DeviceFiles& files, const std::vector<std::string>& gsds) {
        if (!_slave.identNumber || !_slave.identifierBytes)
            return Left("It has not said what it is.");
        if (!UseFile(files, gsds))
            UseBytes();
        return _slave.address <= HIGHEST_SLAVE ? "\n[[slave]]\n" + _table.ToString()
                                               : Left("It has no address of its own yet, give it one.");
    }

private:
    std::string Left(const std::string& why) {
        _table.Comment(why);
        return "\n" + Commented("[[slave]]\n" + _table.ToString());
    }

    bool UseFile(DeviceFiles& files, const std::vector<std::string>& gsds) {
        for (const std::string& gsd : gsds) {
            const Gsd::DeviceFile& file = files.Read(gsd);
            if (!file.Usable() || file.device.identNumber.value != *_slave.identNumber)
                continue;
            if (const auto match = MatchDevice(file.device, *_slave.identifierBytes, {})) {
                _table.Add("gsd", Quoted(gsd));
                _table.Add("modules", ModulesText(file.device, match->modules, {}));
                return true;
            }
            _table.Comment(Quoted(gsd) + " has its ident number, and not these modules.");
        }
        return false;
    }

    void UseBytes() {
        _table.Add("ident", HexText(*_slave.identNumber, 4));
        _table.Add("identifier-bytes", '"' + BytesText(*_slave.identifierBytes) + '"');
        _table.Add("max-diagnosis", std::to_string(LONGEST_DIAGNOSIS));
    }

    const FoundSlave& _slave;
    DraftTable _table;
};

} // namespace

static std::string Draft(const FoundBus& bus, DeviceFiles& files, const std::vector<std::string>& gsds) {
    std::string text =
        "# Made of who answers on the bus by vesk config scan. No slave says what its parameters, its "
        "watchdog\n"
        "# and its signals are, nor, without a device description file, how long its diagnosis may be: look "
        "at\n"
        "# each of these before the text is used.\n\n[bus]\nrate = \"" +
        RateText(*Gsd::RateWithCode(bus.rate)) + "\"\nmaster = " + std::to_string(bus.master) +
        "\nwatchdog = \"off\" # outputs stay as they are when the master is gone: set a time\n";
    for (const FoundSlave& slave : bus.slaves)
        text += SlaveDraft(slave).Write(files, gsds);
    return text;
}

std::string DraftFoundBus(const FoundBus& bus, DeviceFiles& files, const std::vector<std::string>& gsds) {
    std::string text = Draft(bus, files, gsds);
    Findings findings;
    Compile(ReadText(text, "draft", findings), files, findings);
    return HasErrors(findings) ? Draft(bus, files, {}) : text; // the slaves go beyond what a file allows
}

std::string ModuleNames(const Gsd::Device& device, const Bytes& identifierBytes) {
    const auto match = MatchDevice(device, identifierBytes, {});
    std::string names;
    if (match)
        for (const Gsd::Module* module : match->modules)
            names += (names.empty() ? "" : ", ") + Quoted(module->name);
    return names;
}

bool SameModules(const Bytes& a, const Bytes& b) {
    const auto first = Gsd::DecodeIdentifiers(a);
    const auto second = Gsd::DecodeIdentifiers(b);
    return std::equal(first.begin(), first.end(), second.begin(), second.end(),
                      [](const Gsd::Identifier& left, const Gsd::Identifier& right) {
                          return !left.comparable || std::ranges::equal(left.bytes, right.bytes);
                      });
}

} // namespace BusDescription
