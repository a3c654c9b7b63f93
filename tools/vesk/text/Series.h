// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

namespace VeskTool {

/// Commands that are run one after the other in one program. While it lives, whether they print JSON is
/// decided for all of them, and each of their objects is a line of its own that says what it belongs to.
class Series {
public:
    explicit Series(bool json) : _json(json), _outer(current) { current = this; }

    ~Series() { current = _outer; }

    Series(const Series&) = delete;
    Series& operator=(const Series&) = delete;

    /// The one that lives; or null.
    static const Series* Current() { return current; }

    bool PrintsJson() const { return _json; }

    /// The members with which the objects of the next command begin.
    void Begin(const nlohmann::ordered_json& members) { _members = members; }

    const nlohmann::ordered_json& Members() const { return _members; }

private:
    static inline Series* current = nullptr;

    bool _json;
    nlohmann::ordered_json _members = nlohmann::ordered_json::object();
    Series* _outer;
};

} // namespace VeskTool
