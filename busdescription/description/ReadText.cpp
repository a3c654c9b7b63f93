// SPDX-License-Identifier: MIT
#include "busdescription/description/TableReader.h"

#include "busdescription/description/SignalValue.h"
#include "busdescription/description/Units.h"
#include "busdescription/findings/Nearest.h"
#include "busdescription/gsd/Device.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace BusDescription {

namespace {

constexpr std::uint32_t ANY = 0xFFFFFFFF;
constexpr std::uint32_t LAST_PLACE = 3499;

std::vector<std::string> TypeNames() {
    std::vector<std::string> names;
    names.reserve(SignalTypes().size());
    for (const SignalTypeRow& row : SignalTypes())
        names.emplace_back(row.name);
    return names;
}

std::vector<std::string> AlarmNames() {
    return {"diagnostic", "process", "pull-plug", "status", "update", "manufacturer"};
}

Given<std::uint32_t> ReadRate(TableReader& table) {
    const toml::node* node = table.Take("rate");
    if (node == nullptr)
        return {};
    if (const auto* code = node->as_integer();
        code != nullptr && code->get() >= 0 && code->get() <= 255 && table.TheReport().unchecked)
        return {static_cast<std::uint32_t>(code->get()), PlaceOf(*node)};
    std::vector<std::string> names;
    names.reserve(Gsd::RATES.size());
    for (const Gsd::Rate& rate : Gsd::RATES)
        names.push_back(RateText(rate));
    const auto* text = node->as_string();
    for (std::size_t i = 0; text != nullptr && i < names.size(); ++i)
        if (text->get() == names[i])
            return {Gsd::RATES[i].code, PlaceOf(*node)};
    std::string expected;
    for (const std::string& name : names)
        expected += (expected.empty() ? "one of " : ", ") + name;
    table.Unexpected(*node, "rate", expected + (text == nullptr ? "" : DidYouMean(text->get(), names)));
    return {0, PlaceOf(*node)};
}

/// Each of the values that the parameters of one name are given.
class ParameterReader {
public:
    ParameterReader(TableReader& owner, std::vector<ParameterChoice>& choices)
        : _owner(owner), _choices(choices) {}

    void Read() {
        const toml::node* node = _owner.Take("parameters");
        if (node == nullptr)
            return;
        const toml::table* table = node->as_table();
        if (table == nullptr)
            return _owner.Unexpected(*node, "parameters", R"(a table such as { "Mode" = "speed" })");
        for (const auto& [key, value] : *table)
            if (const toml::array* several = value.as_array())
                for (const toml::node& each : *several)
                    ReadOne(std::string(key.str()), PlaceOf(key.source()), each);
            else
                ReadOne(std::string(key.str()), PlaceOf(key.source()), value);
        std::stable_sort(
            _choices.begin(), _choices.end(), [](const ParameterChoice& a, const ParameterChoice& b) {
                return std::pair(a.place.line, a.place.column) < std::pair(b.place.line, b.place.column);
            });
    }

private:
    void ReadOne(const std::string& name, Place place, const toml::node& node) {
        ParameterChoice choice{name, place, {}, {}};
        const toml::table* table = node.as_table();
        if (table == nullptr)
            return Add(std::move(choice), name, &node);
        TableReader reader(*table, _owner.Owner() + "parameter " + name + ": ", _owner.TheReport());
        if (const auto offset = reader.Number("offset", 0, 243))
            choice.offset = offset.value;
        const toml::node* value = reader.Take("value");
        if (value == nullptr)
            reader.Error(PlaceOf(node), "value is missing");
        reader.RefuseOthers();
        Add(std::move(choice), name, value);
    }

    void Add(ParameterChoice choice, const std::string& name, const toml::node* value) {
        if (value == nullptr)
            return;
        if (const auto* number = value->as_integer())
            choice.value = number->get();
        else if (const auto* text = value->as_string())
            choice.value = text->get();
        else
            return _owner.Unexpected(*value, name, "a number, a text or { value = …, offset = … }");
        _choices.push_back(std::move(choice));
    }

    TableReader& _owner;
    std::vector<ParameterChoice>& _choices;
};

class SlaveReader {
public:
    SlaveReader(const toml::table& table, std::size_t number, Report& report)
        : _table(table, "slave " + Called(table, number) + ": ", report), _report(report) {
        _slave.place = PlaceOf(table);
    }

    SlaveDescription Read() {
        ReadIdentity();
        ReadModules();
        ParameterReader(_table, _slave.parameters).Read();
        ReadBehaviour();
        ReadPlace("to-bus-at", _slave.toBusAt, _slave.toBusRun);
        ReadPlace("from-bus-at", _slave.fromBusAt, _slave.fromBusRun);
        _slave.fields = _table.Fields(SlaveKeys());
        RefuseBoth();
        ReadSignals();
        _table.RefuseOthers();
        return std::move(_slave);
    }

private:
    static std::string Called(const toml::table& table, std::size_t number) {
        const auto* name = table.get_as<std::string>("name");
        return name == nullptr ? std::to_string(number) : name->get().substr(0, 60);
    }

    void ReadIdentity() {
        _slave.address = _table.Number("address", 0, _report.unchecked ? 255 : 125);
        if (_table.Take("address") == nullptr)
            _table.Error(_slave.place, "address is missing, a number from 0 to 125");
        const Given<std::string> name = _table.Text("name");
        if (name && !IsName(name.value))
            _table.Error(name.place,
                         "name is \"" + name.value +
                             "\", expected a letter, then letters, digits, hyphens and underscores");
        _slave.name = name ? name.value : "slave-" + std::to_string(_slave.address.value);
        _slave.gsd = _table.Text("gsd");
    }

    void ReadModules() {
        constexpr auto* expected = "a list of modules, such as [\"4 words in/out\"]";
        if (const toml::node* node = _table.Take("modules"))
            _slave.modulesPlace = PlaceOf(*node);
        _table.ForEach("modules", expected, [this](const toml::node& node) {
            ModuleChoice module;
            module.place = PlaceOf(node);
            if (const auto* name = node.as_string()) {
                module.name = name->get();
            } else if (const toml::table* table = node.as_table()) {
                TableReader reader(*table, _table.Owner() + "module: ", _report);
                module.name = reader.Text("name").value;
                if (const auto reference = reader.Number("reference", 0, ANY))
                    module.reference = reference.value;
                if (module.name.empty() && !module.reference)
                    reader.Error(module.place, "name is missing, or a reference");
                ParameterReader(reader, module.parameters).Read();
                reader.RefuseOthers();
            } else {
                return _table.Unexpected(node, "a module", "its name, or { name = …, parameters = … }");
            }
            _slave.modules.push_back(std::move(module));
        });
    }

    void ReadBehaviour() {
        _slave.watchdog = _table.Watchdog("watchdog");
        if (const auto base = _table.OneOf("watchdog-base", {"10 ms", "1 ms"}))
            _slave.watchdogBase1ms = {base.value == 1, base.place};
        _slave.sync = _table.Flag("sync");
        _slave.freeze = _table.Flag("freeze");
        _slave.active = _table.Flag("active");
        _slave.newParameters = _table.Flag("new-parameters");
        _slave.failSafe = _table.Flag("fail-safe");
        _slave.publisher = _table.Flag("publisher");
        _slave.dpv1 = _table.Flag("dpv1");
        _slave.dpv1DataTypes = _table.Flag("dpv1-data-types");
        _slave.extraAlarmSap = _table.Flag("extra-alarm-sap");
        ReadAlarms();
        ReadGroups();
    }

    void ReadAlarms() {
        const toml::node* node = _table.Take("alarms");
        if (node == nullptr)
            return;
        _slave.alarms.place = PlaceOf(*node);
        const std::vector<std::string> names = AlarmNames();
        _table.ForEach(
            "alarms", "a list of alarms, such as [\"diagnostic\"]", [&](const toml::node& element) {
                const auto* text = element.as_string();
                if (text != nullptr && std::find(names.begin(), names.end(), text->get()) != names.end())
                    return _slave.alarms.value.push_back(text->get());
                _table.Unexpected(element, "an alarm",
                                  "diagnostic, process, pull-plug, status, update or manufacturer" +
                                      (text == nullptr ? "" : DidYouMean(text->get(), names)));
            });
    }

    void ReadGroups() {
        const toml::node* node = _table.Take("groups");
        if (node == nullptr)
            return;
        _slave.groups.place = PlaceOf(*node);
        _table.ForEach("groups", "a list of groups, such as [1, 8]", [&](const toml::node& element) {
            const auto* number = element.as_integer();
            if (number == nullptr || number->get() < 1 || number->get() > 8)
                return _table.Unexpected(element, "a group", "a number from 1 to 8");
            _slave.groups.value |= 1U << (number->get() - 1);
        });
    }

    void ReadPlace(std::string_view name, Given<Places>& places, bool& run) {
        const toml::node* node = _table.Take(name);
        if (node == nullptr)
            return;
        const std::uint32_t last = _report.unchecked ? 0xFFFF : LAST_PLACE;
        const auto take = [&](const toml::node& element) {
            const auto* number = element.as_integer();
            if (number == nullptr || number->get() < 0 || number->get() > last)
                return _table.Unexpected(element, name,
                                         "an offset in bytes from 0 to " + std::to_string(last) +
                                             ", or a list with one for each byte");
            places.value.push_back(static_cast<std::uint16_t>(number->get()));
        };
        places.place = PlaceOf(*node);
        run = !node->is_array();
        if (run)
            take(*node);
        else
            for (const toml::node& element : *node->as_array())
                take(element);
        if (run && places.value.empty())
            places = {};
        if (places.value.size() > 244)
            _table.Error(places.place, std::string(name) + " has " + std::to_string(places.value.size()) +
                                           " places, expected at most 244");
    }

    /// A key that sets a whole byte, and one that sets a part of it.
    void RefuseBoth() {
        const auto refuse = [this](std::string_view whole, std::string_view field, bool part, Place place,
                                   std::string_view name) {
            if (part && _slave.fields.contains(field))
                _table.Error(place, std::string(name) + " and " + std::string(whole) +
                                        " set the same, expected one of them");
        };
        const auto flag = [&](const Given<bool>& part, std::string_view name) {
            refuse("slave-flags", "slaveFlags", part.place.line > 0, part.place, name);
        };
        flag(_slave.active, "active");
        flag(_slave.newParameters, "new-parameters");
        flag(_slave.publisher, "publisher");
        flag(_slave.dpv1, "dpv1");
        flag(_slave.dpv1DataTypes, "dpv1-data-types");
        flag(_slave.extraAlarmSap, "extra-alarm-sap");
        flag(_slave.failSafe, "fail-safe");
        refuse("station-status", "stationStatus", bool(_slave.sync), _slave.sync.place, "sync");
        refuse("station-status", "stationStatus", bool(_slave.freeze), _slave.freeze.place, "freeze");
    }

    void ReadSignals() {
        const toml::node* node = _table.Take("signals");
        if (node == nullptr)
            return;
        const toml::table* table = node->as_table();
        if (table == nullptr)
            return _table.Unexpected(*node, "signals",
                                     "a table such as { speed = { from-bus = 0, type = \"int16\" } }");
        for (const auto& [key, value] : *table)
            if (const toml::table* signal = value.as_table())
                ReadSignal(std::string(key.str()), PlaceOf(key.source()), *signal);
            else
                _table.Unexpected(value, key.str(), "a table such as { from-bus = 0, type = \"int16\" }");
        std::sort(_slave.signals.begin(), _slave.signals.end(), [](const Signal& a, const Signal& b) {
            return std::pair(a.place.line, a.place.column) < std::pair(b.place.line, b.place.column);
        });
    }

    void ReadSignal(const std::string& name, Place place, const toml::table& table) {
        TableReader reader(table, _table.Owner() + "signal " + name.substr(0, 60) + ": ", _report);
        Signal signal;
        signal.name = name;
        signal.place = place;
        if (!IsName(name))
            reader.Error(place, "its name should be a letter, then letters, digits, hyphens and underscores");
        const bool to = table.contains("to-bus");
        const auto offset = reader.Number("to-bus", 0, 243);
        const auto other = reader.Number("from-bus", 0, 243);
        signal.toBus = to;
        signal.offset = to ? offset.value : other.value;
        if (to == table.contains("from-bus"))
            reader.Error(place,
                         "expected to-bus or from-bus, the offset of its first byte in the slave's data");
        ReadType(reader, signal);
        reader.RefuseOthers();
        _slave.signals.push_back(std::move(signal));
    }

    void ReadType(TableReader& reader, Signal& signal) {
        const auto type = reader.OneOf("type", TypeNames());
        if (reader.Take("type") == nullptr)
            reader.Error(signal.place, "type is missing, such as \"int16\"");
        const SignalTypeRow& row = SignalTypes()[type.value];
        signal.type = row.type;
        const auto bit = reader.Number("bit", 0, 7);
        const auto length = reader.Number("length", 1, 244);
        const auto order = reader.OneOf("order", {"big", "little"});
        const auto scale = reader.Real("scale");
        const auto zero = reader.Real("zero");
        signal.bit = bit.value;
        signal.length = row.length == 0 ? length.value : row.length;
        signal.littleEndian = order.value == 1;
        if (scale || zero)
            signal.scale = scale.ValueOr(1);
        signal.zero = zero.value;
        signal.unit = reader.Text("unit").value;
        if (!type)
            return;
        const bool number = row.kind != SignalKind::BOOL && row.kind != SignalKind::BYTES;
        if (bit && row.type != SignalType::BOOL)
            reader.Error(bit.place, "bit is for the type bool");
        if (length && row.type != SignalType::BYTES)
            reader.Error(length.place, "length is for the type bytes");
        if (!length && row.type == SignalType::BYTES)
            reader.Error(signal.place, "length is missing, a number from 1 to 244 bytes");
        for (const Place place : {order.place, scale.place, zero.place})
            if (place.line > 0 && !number)
                reader.Error(place, "order, scale and zero are for numbers");
        if (scale && !(std::abs(scale.value) > 0 && std::abs(scale.value) < 1e30))
            reader.Error(scale.place, "scale must be neither 0 nor infinite");
        if (zero && !(std::abs(zero.value) < 1e30))
            reader.Error(zero.place, "zero must not be infinite");
    }

    TableReader _table;
    Report& _report;
    SlaveDescription _slave;
};

/// What every part of the text says.
void ReadTables(const toml::table& text, Description& description, Report& report) {
    TableReader top(text, "", report);
    const auto unchecked = top.Flag("unchecked");
    report.unchecked = description.unchecked = unchecked.value;
    if (const toml::node* bus = top.Take("bus"); bus == nullptr || !bus->is_table()) {
        report.Error({1, 1}, "the table [bus] is missing, with rate and master");
    } else {
        description.busPlace = PlaceOf(*bus);
        TableReader table(*bus->as_table(), "bus: ", report);
        description.rate = ReadRate(table);
        if (table.Take("rate") == nullptr)
            table.Error(description.busPlace, "rate is missing, such as \"1.5M\"");
        description.watchdog = table.Watchdog("watchdog");
        description.fields = table.Fields(BusKeys());
        if (table.Take("master") == nullptr)
            table.Error(description.busPlace, "master is missing, the master's address from 0 to 125");
        table.RefuseOthers();
    }
    constexpr std::size_t most = 256; // addresses, also without checks
    std::size_t number = 0;
    top.ForEach("slave", "tables [[slave]]", [&](const toml::node& node) {
        if (++number == most + 1)
            report.Error(PlaceOf(node), "more than 256 slaves");
        if (number > most)
            return;
        if (const toml::table* table = node.as_table())
            description.slaves.push_back(SlaveReader(*table, number, report).Read());
        else
            top.Unexpected(node, "slave", "tables [[slave]]");
    });
    top.RefuseOthers();
}

/// Where a key of the text has more parts than any key needs, so many that nested tables would exhaust the
/// stack; or {0, 0}.
Place DeepKey(std::string_view text) {
    constexpr unsigned int most = 32;
    Place place{1, 1};
    unsigned int dots = 0;
    for (const char character : text) {
        if (character == '.' && ++dots > most)
            return place;
        if (character == '=' || character == ',' || character == '{' || character == '[' || character == '\n')
            dots = 0;
        place = character == '\n' ? Place{place.line + 1, 1} : Place{place.line, place.column + 1};
    }
    return {};
}

} // namespace

bool IsName(std::string_view name) {
    const auto letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    const auto inner = [&](char c) { return letter(c) || (c >= '0' && c <= '9') || c == '-' || c == '_'; };
    return !name.empty() && letter(name.front()) && std::all_of(name.begin(), name.end(), inner);
}

Description ReadText(std::string_view text, const std::string& file, Findings& findings) {
    Description description;
    description.file = file;
    Report report(file, findings);
    if (text.size() > MAX_TEXT_SIZE) {
        report.Error({}, "has " + std::to_string(text.size()) + " bytes, expected at most 8 MiB");
        return description;
    }
    if (const Place deep = DeepKey(text); deep.line > 0) {
        report.Error(deep, "more than 32 dots in one key or value");
        return description;
    }
    try {
        ReadTables(toml::parse(text, file), description, report);
        description.complete = true;
    } catch (const toml::parse_error& error) {
        report.Error(PlaceOf(error.source()), std::string(error.description()));
    } catch (const UnforeseenText&) {
        report.Error({}, "is no TOML; look for a table header that has too many brackets");
    }
    return description;
}

} // namespace BusDescription
