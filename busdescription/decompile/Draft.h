// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/description/Keys.h"
#include "busdescription/gsd/ParameterValues.h"
#include "busdescription/records/RecordFields.h"

#include <string>
#include <string_view>
#include <vector>

namespace BusDescription {

/// The keys of one table of a description that is being written.
class DraftTable {
public:
    /// Appends `key = value`; `value` is as it stands in the text.
    void Add(std::string key, std::string value) { _lines.push_back({std::move(key), std::move(value)}); }

    /// Appends the field's own key.
    void Add(const Key& key, const FieldValue& value);
    /// Takes the key out, where it is there.
    void Remove(std::string_view key);

    /// Appends a comment above the keys.
    void Comment(const std::string& text) { _comments.push_back(text); }

    std::string ToString() const;

private:
    struct Line {
        std::string key;
        std::string value;
    };

    std::vector<std::string> _comments;
    std::vector<Line> _lines;
};

/// The bytes in quotes, each as a character.
std::string QuotedBytes(std::string_view bytes);
/// The text, which is UTF-8, in quotes.
std::string Quoted(std::string_view text);

/// Parameters as a table; values of one name are a list.
std::string ParametersText(const std::vector<Gsd::ParameterValue>& values);
/// Modules as a list; `settings` are those of the station and of each module, or empty.
std::string ModulesText(const Gsd::Device& device, const std::vector<const Gsd::Module*>& modules,
                        const std::vector<std::vector<Gsd::ParameterValue>>& settings);

} // namespace BusDescription
