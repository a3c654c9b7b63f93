// SPDX-License-Identifier: MIT
#include "busdescription/records/RecordFields.h"

#include "vesk/modules/dpvm/config/MasterRecord.h"
#include "vesk/modules/dpvm/config/SlaveRecord.h"
#include "vesk/system/MakeShared.h"

#include <stdexcept>

namespace BusDescription {

namespace Config = Vesk::Modules::DPVM::Config;
using System::IArray;

namespace {

/// Fills a record's fields from values; takes the place of the reader of a record's bytes.
class FieldSource {
public:
    explicit FieldSource(const FieldValues& values) : _values(values) {}

    template <class Number>
    void Field(const char* name, Number& number) const {
        number = static_cast<Number>(std::get<std::uint32_t>(At(name)));
    }

    void Text(const char* name, System::String& text, int width) const {
        std::string padded = std::get<std::string>(At(name));
        if (padded.size() > static_cast<std::size_t>(width))
            throw std::out_of_range(name);
        padded.resize(static_cast<std::size_t>(width));
        text = padded;
    }

    void Bytes(const char* name, std::shared_ptr<IArray<unsigned char>>& bytes) const {
        bytes = System::Array<unsigned char>::Create(std::get<BusDescription::Bytes>(At(name)));
    }

    void Words(const char* name, std::shared_ptr<IArray<unsigned short>>& words) const {
        words = System::Array<unsigned short>::Create(std::get<Places>(At(name)));
    }

    template <class Record, class Interface>
    void Nested(const char*, std::shared_ptr<Interface>& record) {
        record = System::MakeShared<Record>(*this);
    }

    void Reserved(int) const {}

    void Pad() const {}

private:
    const FieldValue& At(const char* name) const {
        const auto value = _values.find(name);
        if (value == _values.end())
            throw std::out_of_range(name);
        return value->second;
    }

    const FieldValues& _values;
};

/// Collects a record's fields; takes the place of the writer of a record's bytes.
class FieldCollector {
public:
    void Field(const char* name, std::uint32_t number) { _fields.emplace_back(name, number); }

    void Text(const char* name, const System::String& text, int) {
        std::string trimmed = text.Value();
        trimmed.erase(trimmed.find_last_not_of('\0') + 1);
        _fields.emplace_back(name, trimmed);
    }

    void Bytes(const char* name, const std::shared_ptr<IArray<unsigned char>>& bytes) {
        _fields.emplace_back(name, BusDescription::Bytes(bytes->begin(), bytes->end()));
    }

    void Words(const char* name, const std::shared_ptr<IArray<unsigned short>>& words) {
        _fields.emplace_back(name, Places(words->begin(), words->end()));
    }

    template <class Record, class Interface>
    void Nested(const char*, const std::shared_ptr<Interface>& record) {
        dynamic_cast<const Record&>(*record).ShowFields(*this);
    }

    void Reserved(int) const {}

    void Pad() const {}

    FieldList Take() { return std::move(_fields); }

private:
    FieldList _fields;
};

} // namespace

std::shared_ptr<IMasterRecord> MakeMasterRecord(const FieldValues& values) {
    FieldSource source(values);
    return System::MakeShared<Config::MasterRecord>(source);
}

std::shared_ptr<ISlaveRecord> MakeSlaveRecord(const FieldValues& values) {
    FieldSource source(values);
    return System::MakeShared<Config::SlaveRecord>(source);
}

FieldList FieldsOf(const IMasterRecord& record) {
    FieldCollector fields;
    dynamic_cast<const Config::MasterRecord&>(record).ShowFields(fields);
    return fields.Take();
}

FieldList FieldsOf(const ISlaveRecord& record) {
    FieldCollector fields;
    dynamic_cast<const Config::SlaveRecord&>(record).ShowFields(fields);
    return fields.Take();
}

} // namespace BusDescription
