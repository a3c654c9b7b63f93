// SPDX-License-Identifier: MIT
#include "busdescription/header/Header.h"

#include "busdescription/description/SignalValue.h"
#include "busdescription/description/Units.h"

#include <algorithm>
#include <cstdio>
#include <set>

namespace BusDescription {

namespace {

/// What every header begins with, below its own namespace.
constexpr const char* ACCESS = R"(
/// How signals are read and written; numbers have a byte order of their own.
namespace Access {

template <class Unsigned, std::size_t Size>
constexpr Unsigned Get(std::span<const unsigned char, Size> data, std::size_t offset, bool littleEndian) {
    Unsigned value = 0;
    for (std::size_t i = 0; i < sizeof(Unsigned); ++i) {
        const std::size_t place = littleEndian ? sizeof(Unsigned) - 1 - i : i;
        value = static_cast<Unsigned>(static_cast<std::uint64_t>(value) << 8 | data[offset + place]);
    }
    return value;
}

template <class Unsigned, std::size_t Size>
constexpr void Set(std::span<unsigned char, Size> data, std::size_t offset, bool littleEndian, Unsigned value) {
    for (std::size_t i = 0; i < sizeof(Unsigned); ++i) {
        const std::size_t place = littleEndian ? i : sizeof(Unsigned) - 1 - i;
        data[offset + place] = static_cast<unsigned char>(static_cast<std::uint64_t>(value) >> 8 * i & 0xFF);
    }
}

/// The nearest number to `value` that the type has; 0 for what is no number.
template <class Number>
constexpr Number Nearest(double value) {
    if (value <= static_cast<double>(std::numeric_limits<Number>::min()))
        return std::numeric_limits<Number>::min();
    if (value >= static_cast<double>(std::numeric_limits<Number>::max()))
        return std::numeric_limits<Number>::max();
    if (value < 0)
        return static_cast<Number>(value - 0.5);
    return value >= 0 ? static_cast<Number>(value + 0.5) : Number{0};
}

} // namespace Access
)";

/// The unsigned integer of that many bytes.
std::string BitsType(unsigned int length) {
    return "std::uint" + std::to_string(8 * length) + "_t";
}

std::string NumberType(const SignalTypeRow& row) {
    if (row.kind == SignalKind::REAL)
        return row.length == 4 ? "float" : "double";
    return row.kind == SignalKind::SIGNED ? "std::int" + std::to_string(8 * row.length) + "_t"
                                          : BitsType(row.length);
}

/// So many digits that the same number is read back.
std::string RealText(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", value);
    const std::string digits = text;
    return digits.find_first_of(".e") == std::string::npos ? digits + ".0" : digits;
}

/// The text as a part of a comment, which it cannot end or continue.
std::string CommentText(const std::string& text) {
    std::string shown;
    for (const char character : text)
        shown += static_cast<unsigned char>(character) < ' ' || character == '\\' ? ' ' : character;
    return shown;
}

/// One slave's struct.
class SlaveWriter {
public:
    SlaveWriter(const SlaveDescription& slave, const CompiledSlave& compiled)
        : _slave(slave),
          _toBus(std::get<Places>(compiled.record.At("inputOffsetTable"))),
          _fromBus(std::get<Places>(compiled.record.At("outputOffsetTable"))),
          _address(compiled.address) {}

    std::string Write() {
        _text += "\nstruct " + TypeName(_slave.name) + " {\n";
        _text += "    static constexpr unsigned char ADDRESS = " + std::to_string(_address) + ";\n";
        Constants("TO_BUS", _toBus, "to the bus");
        Constants("FROM_BUS", _fromBus, "from the bus");
        _text += "\n    using ToBus = std::span<unsigned char, TO_BUS_LENGTH>;\n"
                 "    using FromBus = std::span<const unsigned char, FROM_BUS_LENGTH>;\n\n"
                 "    /// Its data, once it is mapped: what goes to the bus, and what has come from there.\n"
                 "    std::shared_ptr<System::Array<unsigned char>> toBus =\n"
                 "        System::Array<unsigned char>::Create(TO_BUS_LENGTH);\n"
                 "    std::shared_ptr<System::Array<unsigned char>> fromBus =\n"
                 "        System::Array<unsigned char>::Create(FROM_BUS_LENGTH);\n\n"
                 "    ToBus ToBusData() const { return ToBus(toBus->Data(), TO_BUS_LENGTH); }\n\n"
                 "    FromBus FromBusData() const { return FromBus(fromBus->Data(), FROM_BUS_LENGTH); }\n";
        Map();
        for (const Signal& signal : _slave.signals)
            Accessors(signal);
        return _text + "};\n";
    }

private:
    void Constants(const std::string& name, const Places& places, const char* direction) {
        _text += "\n    /// Bytes " + std::string(direction) +
                 (places.empty() ? "" : ", and where the first one lies in the area") + ".\n";
        _text += "    static constexpr int " + name + "_LENGTH = " + std::to_string(places.size()) + ";\n";
        if (!places.empty())
            _text += "    static constexpr int " + name + "_OFFSET = " + std::to_string(places[0]) + ";\n";
    }

    void Map() {
        _text += "\n    /// Maps its data; once, before the initialisation.\n"
                 "    template <class Module>\n    void Map([[maybe_unused]] Module& module) const {\n";
        MapRuns("module.MapInputData", "toBus", _toBus);
        MapRuns("module.MapOutputData", "fromBus", _fromBus);
        _text += "    }\n";
    }

    /// A mapping for each run of places.
    void MapRuns(const std::string& call, const std::string& array, const Places& places) {
        for (std::size_t start = 0, end = 0; start < places.size(); start = end) {
            for (end = start + 1; end < places.size() && places[end] == places[end - 1] + 1; ++end) {
            }
            _text += "        " + call + "(" + std::to_string(places[start]) + ", " + array + ", " +
                     std::to_string(start) + ", " + std::to_string(end - start) + ");\n";
        }
    }

    /// A function that works upon any data of the slave, and one upon its own.
    void Getter(const Signal& signal, const std::string& type, const std::string& body) {
        const std::string name = TypeName(signal.name);
        const std::string data = signal.toBus ? "ToBus" : "FromBus";
        _text += "    static constexpr " + type + " " + name + "(" + data + " data) {\n        return " +
                 body + ";\n    }\n\n";
        _text += "    " + type + " " + name + "() const { return " + name + "(" + data + "Data()); }\n";
    }

    void Setter(const Signal& signal, const std::string& type, const std::string& body) {
        if (!signal.toBus)
            return;
        const std::string name = "Set" + TypeName(signal.name);
        _text += "\n    static constexpr void " + name + "(ToBus data, " + type + " value) {\n        " +
                 body + "\n    }\n\n";
        _text += "    void " + name + "(" + type + " value) const { " + name + "(ToBusData(), value); }\n";
    }

    void Accessors(const Signal& signal) {
        _text += "\n    // " + signal.name + ": " + std::string(RowOf(signal.type).name) +
                 (signal.toBus ? " to the bus" : " from the bus") +
                 (signal.unit.empty() ? "" : ", " + CommentText(signal.unit)) + "\n";
        const std::string offset = std::to_string(signal.offset);
        if (signal.type == SignalType::BOOL) {
            const std::string mask = HexText(1U << signal.bit, 2);
            Getter(signal, "bool", "(data[" + offset + "] & " + mask + ") != 0");
            Setter(signal, "bool",
                   "data[" + offset + "] = static_cast<unsigned char>((data[" + offset + "] & ~" + mask +
                       ") | (value ? " + mask + " : 0));");
        } else if (signal.type == SignalType::BYTES) {
            Getter(signal, "auto", "data.subspan<" + offset + ", " + std::to_string(signal.length) + ">()");
        } else {
            NumberAccessors(signal, offset);
        }
    }

    void NumberAccessors(const Signal& signal, const std::string& offset) {
        const SignalTypeRow& row = RowOf(signal.type);
        const std::string type = NumberType(row);
        const std::string bits = BitsType(row.length);
        const std::string order = signal.littleEndian ? "true" : "false";
        const std::string data =
            signal.toBus ? "std::span<const unsigned char, TO_BUS_LENGTH>(data)" : "data";
        const std::string number = "std::bit_cast<" + type + ">(Access::Get<" + bits + ">(" + data + ", " +
                                   offset + ", " + order + "))";
        const std::string set = "Access::Set<" + std::string(bits) + ">(data, " + offset + ", " + order +
                                ", std::bit_cast<" + bits + ">(";
        if (!signal.scale) {
            Getter(signal, type, number);
            Setter(signal, type, set + "value));");
            return;
        }
        const std::string scale = RealText(*signal.scale);
        const std::string zero = RealText(signal.zero);
        const bool real = row.kind == SignalKind::REAL;
        const std::string raw = "(value - (" + zero + ")) / (" + scale + ")";
        Getter(signal, "double", "static_cast<double>(" + number + ") * (" + scale + ") + (" + zero + ")");
        Setter(signal, "double",
               set +
                   (real ? "static_cast<" + type + ">(" + raw + ")"
                         : "Access::Nearest<" + type + ">(" + raw + ")") +
                   "));");
    }

    const SlaveDescription& _slave;
    const Places& _toBus;
    const Places& _fromBus;
    unsigned char _address;
    std::string _text;
};

/// Refuses names that C++ or the header itself has already.
class NameCheck {
public:
    NameCheck(const Description& description, Findings& findings)
        : _description(description), _findings(findings) {}

    bool Passes() {
        std::set<std::string> slaves{"Access", "System", "CHECKSUM"};
        for (const SlaveDescription& slave : _description.slaves) {
            Take(slaves, TypeName(slave.name), slave.place, "slave " + slave.name);
            std::set<std::string> members{TypeName(slave.name), "Map",        "ToBus", "FromBus",
                                          "ToBusData",          "FromBusData"};
            for (const Signal& signal : slave.signals) {
                const std::string who = "slave " + slave.name + ": signal " + signal.name;
                Take(members, TypeName(signal.name), signal.place, who);
                if (signal.toBus && signal.type != SignalType::BYTES)
                    Take(members, "Set" + TypeName(signal.name), signal.place, who);
            }
        }
        return _passes;
    }

private:
    void Take(std::set<std::string>& taken, const std::string& name, Place place, const std::string& who) {
        if (taken.insert(name).second)
            return;
        _passes = false;
        _findings.push_back({Severity::ERROR, _description.file, place.line, place.column,
                             who + ": would be " + name +
                                 " in the header, which is something else there, expected "
                                 "another name"});
    }

    const Description& _description;
    Findings& _findings;
    bool _passes = true;
};

} // namespace

std::string TypeName(std::string_view name) {
    std::string type;
    bool begins = true;
    for (const char character : name) {
        if (character == '-' || character == '_') {
            begins = true;
            continue;
        }
        const bool small = character >= 'a' && character <= 'z';
        type += begins && small ? static_cast<char>(character - 'a' + 'A') : character;
        begins = false;
    }
    return type;
}

std::string Header(const Description& description, const CompiledBus& bus, const std::string& space,
                   Findings& findings) {
    if (!NameCheck(description, findings).Passes())
        return "";
    std::string text =
        "// Made by vesk config header; the next one replaces it.\n#pragma once\n\n"
        "#include <vesk/system/Array.h>\n\n"
        "#include <bit>\n#include <cstddef>\n#include <cstdint>\n#include <limits>\n#include <memory>\n"
        "#include <span>\n\n"
        "/// The slaves of a bus, and the signals in their data. What a slave's functions get as data are "
        "its bytes of\n"
        "/// one direction; without data they work upon the arrays that Map has mapped.\nnamespace " +
        space +
        " {\n\n"
        "/// Of the database that belongs to it.\ninline constexpr unsigned int CHECKSUM = " +
        HexText(bus.config->Checksum(), 8) + ";\n" + ACCESS;
    for (std::size_t i = 0; i < bus.slaves.size(); ++i)
        text += SlaveWriter(description.slaves[i], bus.slaves[i]).Write();
    return text + "\n} // namespace " + space + "\n";
}

} // namespace BusDescription
