// SPDX-License-Identifier: MIT
// The grammar of device description files. What a statement is made of is in Scanner.h; here is how they
// follow each other:
//
//     file       = { other line } "#Profibus_DP" { statement }
//     statement  = keyword "=" value | part | block | diagnosis bit
//     part       = "Ext_User_Prm_Data_Const" "(" offset ")" "=" bytes
//                | "Ext_User_Prm_Data_Ref" "(" offset ")" "=" id
//     block      = "PrmText" "=" id { "Text" "(" value ")" "=" text } "EndPrmText"
//                | "ExtUserPrmData" "=" id text type [ default ] [ ranges ]
//                      { "Prm_Text_Ref" "=" id | "Changeable" "=" 0|1 | "Visible" "=" 0|1 }
//                      "EndExtUserPrmData"
//                | "Module" "=" text bytes { reference | part | "Ext_Module_Prm_Data_Len" "=" number
//                      | "Preset" "=" 0|1 } "EndModule"
//                | "SlotDefinition" { "Slot" "(" number ")" "=" text default [ ranges ] } "EndSlotDefinition"
//                | "Unit_Diag_Area" "=" first "-" last { "Value" "(" value ")" "=" text }
//                "Unit_Diag_Area_End"
//     type       = "Unsigned8" | … | "Signed32" | "Bit" "(" bit ")" | "BitArea" "(" bit "-" bit ")"
//     bytes      = number { "," number }
//     ranges     = range { "," range }          range = number [ "-" number ]
//
// Every other statement is passed over, and so is every other block whose end can be found.
#include "busdescription/gsd/Reader.h"

#include "busdescription/findings/Nearest.h"
#include "busdescription/gsd/Check.h"
#include "busdescription/gsd/FindingList.h"
#include "busdescription/gsd/Keywords.h"
#include "busdescription/gsd/Scanner.h"
#include "vesk/system/Array.h"
#include "vesk/system/Exception.h"
#include "vesk/system/io/FileStream.h"

#include <algorithm>
#include <charconv>
#include <exception>
#include <unordered_map>
#include <unordered_set>

namespace BusDescription::Gsd {

namespace {

constexpr std::int64_t MAX_ID = 0xFFFF'FFFF;
constexpr std::int64_t MAX_BIT = 65'535;        // of a diagnosis
constexpr std::int64_t MAX_OFFSET = 65'535;     // of user parameters
constexpr std::int64_t LEAST_VALUE = INT32_MIN; // of a parameter
constexpr std::int64_t MOST_VALUE = UINT32_MAX;

struct TypeName {
    std::string_view name;
    ParameterType type;
};

constexpr TypeName TYPES[] = {{"Unsigned8", ParameterType::UNSIGNED8},
                              {"Unsigned16", ParameterType::UNSIGNED16},
                              {"Unsigned32", ParameterType::UNSIGNED32},
                              {"Signed8", ParameterType::SIGNED8},
                              {"Signed16", ParameterType::SIGNED16},
                              {"Signed32", ParameterType::SIGNED32},
                              {"Bit", ParameterType::BIT},
                              {"BitArea", ParameterType::BIT_AREA}};

/// What begins or ends one of the blocks that are read, and so cannot stand within one that is passed over.
constexpr std::string_view BORDERS[] = {
    "PrmText",   "EndPrmText",     "ExtUserPrmData",    "EndExtUserPrmData", "Module",
    "EndModule", "SlotDefinition", "EndSlotDefinition", "Unit_Diag_Area",    "Unit_Diag_Area_End"};

/// Blocks that say nothing of what is sent to a slave.
constexpr std::string_view PASSED_BLOCKS[] = {"UnitDiagType", "Data_Area_Beg", "Physical_Interface",
                                              "X_Unit_Diag_Area", "Version_Firmware_Download"};

template <std::size_t count>
bool IsOneOf(const std::string_view (&names)[count], std::string_view word) {
    return std::any_of(std::begin(names), std::end(names),
                       [word](std::string_view name) { return SameWord(name, word); });
}

bool IsNumber(std::string_view word) {
    return !word.empty() && word.find_first_not_of("0123456789") == std::string_view::npos;
}

/// How the end of the block `name` may be called, in lower case.
std::vector<std::string> EndsOf(std::string_view name) {
    std::string block = LowerWord(name);
    std::vector<std::string> ends;
    for (const std::string_view suffix : {"", "_beg", "_begin", "_type"})
        if (block.size() > suffix.size() && block.ends_with(suffix)) {
            const std::string stem = block.substr(0, block.size() - suffix.size());
            ends.insert(ends.end(), {"end" + stem, "end_" + stem, stem + "_end"});
        }
    return ends;
}

/// Reads one file.
class Reading {
public:
    Reading(std::string_view content, const std::string& name) : _scanner(content), _findings(name) {}

    DeviceFile Read();

private:
    // the file
    void ReadStatement();
    bool ReadKeyword();
    void ReadValue(const Keyword& keyword);
    void ReadUserParameters();
    bool ReadPart(ParameterPart& part);
    void ReadDiagnosisBit();
    void ReadDiagnosisHelp();
    // blocks
    void ReadTexts();
    void ReadParameter();
    void ReadType(Parameter& parameter);
    void ReadModule();
    void ReadModuleStatement(Module& module);
    void ReadReference(Module& module);
    void ReadSlots();
    void ReadSlot();
    void ReadDiagnosisArea();
    // what is passed over
    void PassOther();
    void PassUnknown();
    void PassBlock(bool known);
    bool EndsLater(const std::vector<std::string>& ends);

    template <class Body>
    void Try(Body body);
    template <class Body>
    void ReadBlock(const char* begin, const char* end, Body body);
    template <class T>
    void Put(Given<T>& field, T value);

    // values
    bool Is(std::string_view word) const { return SameWord(_scanner.Keyword(), word); }

    /// The keyword of the statement, for people.
    std::string Word() const { return _scanner.Shown(_scanner.Keyword()); }

    std::int64_t Number(std::int64_t least, std::int64_t most);

    std::uint32_t Id() { return static_cast<std::uint32_t>(Number(0, MAX_ID)); }

    std::int64_t Index(std::int64_t least, std::int64_t most);
    std::int64_t AssignedNumber(std::int64_t least, std::int64_t most);
    std::string AssignedText();
    std::vector<std::uint8_t> Bytes();
    std::vector<Interval> Ranges(std::int64_t least, std::int64_t most);
    Interval Range(std::int64_t first, std::int64_t least, std::int64_t most);
    ValueTexts::Entry Entry();

    Scanner _scanner;
    FindingList _findings;
    Device _device;
    std::unordered_set<std::string> _unknown;                // keywords that were warned of
    std::unordered_map<unsigned int, std::string> _helps;    // of diagnosis bits
    std::unordered_map<std::string, unsigned int> _lastEnds; // words that end something, with their last line
    bool _endsKnown = false;
};

// ---- the file

DeviceFile Reading::Read() {
    unsigned int skipped = 0;
    const bool found = _scanner.GoBehind("#Profibus_DP", skipped);
    if (!found)
        _findings.Error(0, "no line #Profibus_DP, so this is no device description file of a DP slave");
    else if (skipped > 0)
        _findings.Warning(skipped, "what stands before #Profibus_DP is passed over");
    while (!_findings.TooManyErrors() && _scanner.Next())
        Try([this] { ReadStatement(); });
    for (DiagnosisBit& bit : _device.diagnosisBits)
        if (const auto help = _helps.find(bit.bit); help != _helps.end())
            bit.help = std::move(help->second);
    if (found)
        Check(_device, _findings);
    return {std::move(_device), _findings.Take()};
}

/// What is wrong in one statement does not stop the others.
template <class Body>
void Reading::Try(Body body) {
    try {
        body();
    } catch (const SyntaxError& error) {
        _findings.Error(error.line, error.text, error.column);
    }
}

void Reading::ReadStatement() {
    if (Is("PrmText"))
        ReadTexts();
    else if (Is("ExtUserPrmData"))
        ReadParameter();
    else if (Is("Module"))
        ReadModule();
    else if (Is("SlotDefinition"))
        ReadSlots();
    else if (Is("Unit_Diag_Area"))
        ReadDiagnosisArea();
    else if (Is("Unit_Diag_Bit"))
        ReadDiagnosisBit();
    else if (Is("Unit_Diag_Bit_Help"))
        ReadDiagnosisHelp();
    else if (Is("User_Prm_Data"))
        ReadUserParameters();
    else if (!ReadPart(_device.parameters) && !ReadKeyword())
        PassOther();
}

bool Reading::ReadKeyword() {
    const Keyword* keyword = FindKeyword(_scanner.Keyword());
    if (!keyword)
        return false;
    try {
        ReadValue(*keyword);
    } catch (const SyntaxError& error) {
        _findings.Add(keyword->wrong, error.line, error.column, error.text);
        if (keyword->wrong == Severity::ERROR) // so it is wrong, but not missing
            std::visit([this](auto* field) { field->line = _scanner.Line(); },
                       keyword->field(_device, keyword->index));
    }
    return true;
}

void Reading::ReadValue(const Keyword& keyword) {
    const Keyword::Field field = keyword.field(_device, keyword.index);
    if (const auto* const text = std::get_if<Given<std::string>*>(&field))
        Put(**text, AssignedText());
    else if (const auto* const flag = std::get_if<Given<bool>*>(&field))
        Put(**flag, AssignedNumber(0, 1) == 1);
    else
        Put(*std::get<Given<unsigned int>*>(field),
            static_cast<unsigned int>(AssignedNumber(0, keyword.most)));
}

template <class T>
void Reading::Put(Given<T>& field, T value) {
    if (field)
        _findings.Warning(_scanner.Line(),
                          Word() + " stands in line " + std::to_string(field.line) + " too; this one counts");
    field = {std::move(value), _scanner.Line()};
}

void Reading::ReadUserParameters() {
    _scanner.Expect('=');
    Put(_device.userParameters, _scanner.AtEnd() ? std::vector<std::uint8_t>() : Bytes());
}

bool Reading::ReadPart(ParameterPart& part) {
    const unsigned int line = _scanner.Line();
    if (Is("Ext_User_Prm_Data_Const")) {
        const auto offset = static_cast<std::uint32_t>(Index(0, MAX_OFFSET));
        _scanner.Expect('=');
        part.constants.push_back({offset, Bytes(), line});
    } else if (Is("Ext_User_Prm_Data_Ref")) {
        const auto offset = static_cast<std::uint32_t>(Index(0, MAX_OFFSET));
        const auto id = static_cast<std::uint32_t>(AssignedNumber(0, MAX_ID));
        part.references.push_back({offset, id, 0, line});
    } else {
        return false;
    }
    return true;
}

void Reading::ReadDiagnosisBit() {
    const auto bit = static_cast<unsigned int>(Index(0, MAX_BIT));
    _device.diagnosisBits.push_back({bit, AssignedText(), "", _scanner.Line()});
}

void Reading::ReadDiagnosisHelp() {
    const auto bit = static_cast<unsigned int>(Index(0, MAX_BIT));
    _helps[bit] = AssignedText();
}

// ---- blocks

/// Calls `body` for each statement up to the one that is `end`. Where another block begins instead, the end
/// is missing.
template <class Body>
void Reading::ReadBlock(const char* begin, const char* end, Body body) {
    const unsigned int line = _scanner.Line();
    bool ended = false;
    bool broken = false;
    while (!ended && !broken && !_findings.TooManyErrors() && _scanner.Next()) {
        ended = Is(end);
        broken = !ended && IsOneOf(BORDERS, _scanner.Keyword());
        if (!ended && !broken)
            Try(body);
    }
    if (broken)
        _scanner.Again();
    if (!ended && !_findings.TooManyErrors())
        _findings.Error(line, std::string(begin) + " has no " + end);
}

void Reading::ReadTexts() {
    ValueTexts texts{0, _scanner.Line(), {}};
    Try([&] { texts.id = static_cast<std::uint32_t>(AssignedNumber(0, MAX_ID)); });
    ReadBlock("PrmText", "EndPrmText", [&] {
        if (Is("Text"))
            texts.entries.push_back(Entry());
        else
            PassOther();
    });
    _device.texts.push_back(std::move(texts));
}

/// "(value) = text".
ValueTexts::Entry Reading::Entry() {
    const std::int64_t value = Index(LEAST_VALUE, MOST_VALUE);
    return {value, AssignedText(), _scanner.Line()};
}

void Reading::ReadParameter() {
    Parameter parameter;
    parameter.line = _scanner.Line();
    Try([&] {
        _scanner.Expect('=');
        parameter.id = Id();
        parameter.name = _scanner.Text();
        _scanner.ExpectEnd();
    });
    bool typed = false;
    ReadBlock("ExtUserPrmData", "EndExtUserPrmData", [&] {
        if (Is("Prm_Text_Ref"))
            parameter.textsId = static_cast<std::uint32_t>(AssignedNumber(0, MAX_ID));
        else if (Is("Changeable"))
            parameter.changeable = AssignedNumber(0, 1) == 1;
        else if (Is("Visible"))
            parameter.visible = AssignedNumber(0, 1) == 1;
        else if (typed || _scanner.Accept('='))
            PassOther();
        else {
            typed = true;
            ReadType(parameter);
        }
    });
    if (!typed)
        _findings.Error(parameter.line, "ExtUserPrmData has no line with a type");
    _device.parameterTypes.push_back(std::move(parameter));
}

/// "Unsigned8 3 0-10": type, default, range. In "Unsigned8 0-10" it is the default that is missing.
void Reading::ReadType(Parameter& parameter) {
    const auto* const type = std::find_if(std::begin(TYPES), std::end(TYPES),
                                          [this](const TypeName& candidate) { return Is(candidate.name); });
    if (type == std::end(TYPES))
        _scanner.Fail(Word() + " is no type: expected Unsigned8, Unsigned16, Unsigned32, Signed8, "
                               "Signed16, Signed32, Bit(n) or BitArea(a-b)");
    parameter.type = type->type;
    if (type->type == ParameterType::BIT || type->type == ParameterType::BIT_AREA) {
        _scanner.Expect('(');
        parameter.firstBit = parameter.lastBit = static_cast<unsigned int>(Number(0, 7));
        if (type->type == ParameterType::BIT_AREA) {
            _scanner.Expect('-');
            parameter.lastBit = static_cast<unsigned int>(Number(parameter.firstBit, 7));
        }
        _scanner.Expect(')');
    }
    const Interval possible = parameter.TypeRange();
    if (_scanner.AtEnd()) {
        parameter.defaultGiven = false;
    } else {
        const std::int64_t first = Number(possible.least, possible.most);
        if (_scanner.AtRangeSign() || _scanner.Accept(',')) {
            parameter.defaultGiven = false;
            parameter.range = {Range(first, possible.least, possible.most)};
            _scanner.Accept(',');
        } else {
            parameter.defaultValue = first;
        }
    }
    if (_scanner.AtNumber()) {
        const auto ranges = Ranges(possible.least, possible.most);
        parameter.range.insert(parameter.range.end(), ranges.begin(), ranges.end());
    }
    _scanner.ExpectEnd();
}

void Reading::ReadModule() {
    Module module;
    module.line = _scanner.Line();
    Try([&] {
        _scanner.Expect('=');
        module.name = _scanner.Text();
        _scanner.Accept(',');
        module.identifierBytes = Bytes();
        module.lengths = LengthsOf(module.identifierBytes);
    });
    ReadBlock("Module", "EndModule", [&] { ReadModuleStatement(module); });
    _device.modules.push_back(std::move(module));
}

void Reading::ReadModuleStatement(Module& module) {
    if (Is("Ext_Module_Prm_Data_Len")) {
        Put(module.parameters.length, static_cast<unsigned int>(AssignedNumber(0, MAX_OFFSET)));
    } else if (Is("Preset")) {
        module.preset = AssignedNumber(0, 1) == 1;
    } else if (IsNumber(_scanner.Keyword())) {
        ReadReference(module);
    } else if (SameWord(_scanner.Keyword().substr(0, 2), "F_")) {
        if (!module.safetyKeyword)
            module.safetyKeyword = {Word(), _scanner.Line()};
    } else if (!Is("Info_Text") && !ReadPart(module.parameters)) {
        PassOther();
    }
}

/// A line with nothing but a number.
void Reading::ReadReference(Module& module) {
    const std::string_view digits = _scanner.Keyword();
    std::uint32_t reference = 0;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), reference).ec != std::errc())
        _scanner.Fail(Word() + " is no reference of a module, expected a number from 0 to 4294967295");
    _scanner.ExpectEnd();
    Put(module.reference, reference);
}

void Reading::ReadSlots() {
    ReadBlock("SlotDefinition", "EndSlotDefinition", [this] {
        if (Is("Slot"))
            ReadSlot();
        else
            PassOther();
    });
}

void Reading::ReadSlot() {
    Slot slot{};
    slot.line = _scanner.Line();
    slot.number = static_cast<std::uint32_t>(Index(0, MAX_ID));
    _scanner.Expect('=');
    slot.name = _scanner.Text();
    _scanner.Accept(',');
    slot.defaultReference = Id();
    _scanner.Accept(',');
    if (!_scanner.AtEnd())
        slot.references = Ranges(0, MAX_ID);
    _scanner.ExpectEnd();
    _device.slots.push_back(std::move(slot));
}

void Reading::ReadDiagnosisArea() {
    DiagnosisArea area{};
    area.line = _scanner.Line();
    Try([&] {
        _scanner.Expect('=');
        area.firstBit = static_cast<unsigned int>(Number(0, MAX_BIT));
        _scanner.Expect('-');
        area.lastBit = static_cast<unsigned int>(Number(area.firstBit, MAX_BIT));
        _scanner.ExpectEnd();
    });
    ReadBlock("Unit_Diag_Area", "Unit_Diag_Area_End", [&] {
        if (Is("Value"))
            area.values.push_back(Entry());
        else
            PassOther();
    });
    _device.diagnosisAreas.push_back(std::move(area));
}

// ---- what is passed over

void Reading::PassOther() {
    if (_scanner.Keyword().empty())
        _scanner.Fail("a keyword expected");
    if (IsOneOf(BORDERS, _scanner.Keyword()))
        _findings.Warning(_scanner.Line(), Word() + " without a beginning");
    else if (IsOneOf(PASSED_BLOCKS, _scanner.Keyword()))
        PassBlock(true);
    else if (Is("Jokerblock_Type") && EndsLater(EndsOf(_scanner.Keyword())))
        PassBlock(false);
    else if (!IsIgnored(_scanner.Keyword()))
        PassUnknown();
}

void Reading::PassUnknown() {
    const bool elsewhere = IsKnown(_scanner.Keyword());
    const bool block = !elsewhere && EndsLater(EndsOf(_scanner.Keyword()));
    if (_findings.TooManyWarnings())
        _findings.Warning(_scanner.Line(), ""); // is only counted
    else if (_unknown.insert(LowerWord(_scanner.Keyword())).second)
        _findings.Warning(_scanner.Line(), elsewhere
                                               ? Word() + " has no meaning here and is passed over"
                                               : std::string("unknown ") + (block ? "block " : "keyword ") +
                                                     Word() + " is passed over" +
                                                     DidYouMean(_scanner.Keyword(), KnownKeywords()));
    if (block)
        PassBlock(false);
}

/// Passes over all up to the end of the block. Of a `known` one it is an error that there is none.
void Reading::PassBlock(bool known) {
    const std::string name = Word();
    const std::vector<std::string> ends = EndsOf(_scanner.Keyword());
    const unsigned int line = _scanner.Line();
    while (_scanner.Next()) {
        if (std::find(ends.begin(), ends.end(), LowerWord(_scanner.Keyword())) != ends.end())
            return;
        if (known && IsOneOf(BORDERS, _scanner.Keyword())) {
            _scanner.Again();
            break;
        }
    }
    _findings.Error(line, name + " has no end");
}

/// Whether one of the words `ends` begins a later statement. The words that may end something are looked for
/// once, from here to the end of the file.
bool Reading::EndsLater(const std::vector<std::string>& ends) {
    if (!_endsKnown) {
        _endsKnown = true;
        for (Scanner rest = _scanner; rest.Next();) {
            const std::string word = LowerWord(rest.Keyword());
            if (word.starts_with("end") || word.ends_with("_end"))
                _lastEnds[word] = rest.Line();
        }
    }
    return std::any_of(ends.begin(), ends.end(), [this](const std::string& end) {
        const auto last = _lastEnds.find(end);
        return last != _lastEnds.end() && last->second > _scanner.Line();
    });
}

// ---- values

std::int64_t Reading::Number(std::int64_t least, std::int64_t most) {
    return _scanner.Number(_scanner.Keyword(), least, most);
}

std::int64_t Reading::Index(std::int64_t least, std::int64_t most) {
    _scanner.Expect('(');
    const std::int64_t index = _scanner.Number("the number in brackets", least, most);
    _scanner.Expect(')');
    return index;
}

std::int64_t Reading::AssignedNumber(std::int64_t least, std::int64_t most) {
    _scanner.Expect('=');
    const std::int64_t number = Number(least, most);
    _scanner.ExpectEnd();
    return number;
}

std::string Reading::AssignedText() {
    _scanner.Expect('=');
    std::string text = _scanner.Text();
    _scanner.ExpectEnd();
    return text;
}

/// Commas are missing in some files, and in others there is one too many at the end.
std::vector<std::uint8_t> Reading::Bytes() {
    std::vector<std::uint8_t> bytes;
    do
        bytes.push_back(static_cast<std::uint8_t>(_scanner.Number("the byte", 0, 255)));
    while ((_scanner.Accept(',') && !_scanner.AtEnd()) || _scanner.AtNumber());
    _scanner.ExpectEnd();
    return bytes;
}

std::vector<Interval> Reading::Ranges(std::int64_t least, std::int64_t most) {
    std::vector<Interval> ranges;
    do
        ranges.push_back(Range(Number(least, most), least, most));
    while (_scanner.Accept(',') && !_scanner.AtEnd());
    return ranges;
}

Interval Reading::Range(std::int64_t first, std::int64_t least, std::int64_t most) {
    const std::int64_t last = _scanner.Accept('-') ? Number(least, most) : first;
    if (last < first)
        _scanner.Fail("a range from " + std::to_string(first) + " to " + std::to_string(last) +
                      " has no values");
    return {first, last};
}

} // namespace

static DeviceFile Unreadable(const std::string& name, const std::string& why) {
    return {{}, {{Severity::ERROR, name, 0, 0, why}}};
}

static std::string TooLarge(std::int64_t bytes) {
    return std::to_string(bytes) + " bytes are too many: a device description file has up to " +
           std::to_string(MAX_FILE_SIZE);
}

DeviceFile Read(std::string_view content, const std::string& name) {
    return content.size() > MAX_FILE_SIZE
               ? Unreadable(name, TooLarge(static_cast<std::int64_t>(content.size())))
               : Reading(content, name).Read();
}

DeviceFile ReadFile(const std::string& path) {
    try {
        const auto file =
            System::IO::FileStream::Create(path, System::IO::FileMode::OPEN, System::IO::FileAccess::READ);
        if (file->Length() > static_cast<std::int64_t>(MAX_FILE_SIZE))
            return Unreadable(path, TooLarge(file->Length()));
        const auto bytes = System::Array<unsigned char>::Create(static_cast<int>(file->Length()));
        const int count = file->Read(bytes, 0, bytes->Count());
        return Read({reinterpret_cast<const char*>(bytes->Data()), static_cast<std::size_t>(count)}, path);
    } catch (const std::shared_ptr<System::Exception>& exception) {
        const std::string why = exception->Message().Value();
        return Unreadable(path, "cannot be read: " +
                                    (why.starts_with(path + ": ") ? why.substr(path.size() + 2) : why));
    }
}

} // namespace BusDescription::Gsd
