// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/description/Description.h"
#include "busdescription/description/Keys.h"

#include <toml++/toml.h>

#include <functional>

namespace BusDescription {

/// Takes down what is wrong with a text.
class Report {
public:
    Report(std::string file, Findings& findings) : _file(std::move(file)), _findings(findings) {}

    void Error(Place place, const std::string& text);

    /// Does nothing where the text asks for no checks.
    void Implausible(Place place, const std::string& text) {
        if (!unchecked)
            Error(place, text);
    }

    bool unchecked = false;

private:
    std::string _file;
    Findings& _findings;
};

Place PlaceOf(const toml::source_region& source);
Place PlaceOf(const toml::node& node);

/// Takes the values of one table out of a text. A value that is not as expected is an error; it counts as
/// not given, or, where its absence would be an error too, as any other.
class TableReader {
public:
    /// `owner`: whose table it is, the beginning of every message ("slave drive: ").
    TableReader(const toml::table& table, std::string owner, Report& report)
        : _table(table), _owner(std::move(owner)), _report(report) {}

    /// The value of a key, null where the table has none.
    const toml::node* Take(std::string_view name);

    Given<std::string> Text(std::string_view name);
    Given<bool> Flag(std::string_view name);
    /// From `least` to `most`.
    Given<std::uint32_t> Number(std::string_view name, std::uint32_t least, std::uint32_t most);
    Given<double> Real(std::string_view name);
    Given<WatchdogSetting> Watchdog(std::string_view name);
    /// Which of `names` the text is.
    Given<std::size_t> OneOf(std::string_view name, const std::vector<std::string>& names);
    /// The fields that have a key of their own.
    GivenFields Fields(std::span<const Key> keys);

    /// Calls `visit` for each element of an array.
    void ForEach(std::string_view name, const char* expected,
                 const std::function<void(const toml::node&)>& visit);

    /// Every key that nobody has asked for is an error.
    void RefuseOthers();

    void Error(Place place, const std::string& text) { _report.Error(place, _owner + text); }

    /// An error: what `node` is, and what was expected instead.
    void Unexpected(const toml::node& node, std::string_view name, const std::string& expected);

    const std::string& Owner() const { return _owner; }

    Report& TheReport() { return _report; }

private:
    /// Of a value that is wrong: the least that would not be.
    FieldValue ValueOf(const Key& key, const toml::node& node);

    const toml::table& _table;
    std::string _owner;
    Report& _report;
    std::vector<std::string> _known;
};

} // namespace BusDescription
