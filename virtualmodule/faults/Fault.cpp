// SPDX-License-Identifier: MIT
#include "virtualmodule/faults/Faults.h"

#include <algorithm>
#include <charconv>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <utility>

namespace VirtualModule {

namespace {

using Kinds = std::vector<const FaultKind*>;

// A name that is this many keystrokes off is taken for a slip.
constexpr std::size_t SLIP = 2;

std::optional<unsigned> ParseNumber(std::string_view text) {
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    text.remove_prefix(hexadecimal ? 2 : 0);
    unsigned number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, hexadecimal ? 16 : 10);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

/// The keystrokes between two names.
std::size_t Distance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char c : from) {
        std::size_t diagonal = row[0]++;
        for (std::size_t i = 0; i < to.size(); ++i) {
            const std::size_t replaced = diagonal + (c == to[i] ? 0 : 1);
            diagonal = row[i + 1];
            row[i + 1] = std::min({replaced, row[i] + 1, row[i + 1] + 1});
        }
    }
    return row.back();
}

/// One text form under examination, for messages that quote it.
class Parser {
public:
    explicit Parser(std::string_view text) : _text(text), _rest(text) {}

    Fault Parse() {
        // From the end, because VALUE and a name may have an 'x' in them.
        const auto value = Cut('=');
        const auto count = CutCount();
        const auto step = Cut('@');
        const Kinds kinds = Rows();
        Fault fault = kinds.front()->Usual();
        fault.step = step ? Positive("STEP", *step) : fault.step;
        fault.count = count ? Positive("COUNT", *count) : fault.count;
        fault.value = value ? Value(kinds, *value) : fault.value;
        return fault;
    }

private:
    [[noreturn]] void Fail(const std::string& what) const {
        throw std::invalid_argument("fault \"" + std::string(_text) + "\": " + what);
    }

    std::optional<std::string_view> Cut(char mark) {
        const std::size_t at = _rest.find(mark);
        if (at == std::string_view::npos)
            return std::nullopt;
        const std::string_view behind = _rest.substr(at + 1);
        _rest = _rest.substr(0, at);
        return behind;
    }

    /// The digits at the end, if an 'x' stands before them.
    std::optional<std::string_view> CutCount() {
        const std::size_t mark = _rest.find_last_not_of("0123456789");
        if (mark == std::string_view::npos || _rest[mark] != 'x' || mark + 1 == _rest.size())
            return std::nullopt;
        const std::string_view digits = _rest.substr(mark + 1);
        _rest = _rest.substr(0, mark);
        return digits;
    }

    Kinds Rows() const {
        Kinds rows;
        for (const FaultKind& kind : Faults())
            if (kind.name == _rest)
                rows.push_back(&kind);
        if (rows.empty())
            FailUnknown();
        return rows;
    }

    [[noreturn]] void FailUnknown() const {
        std::string near;
        std::string all;
        std::string_view last;
        for (const FaultKind& kind : Faults()) {
            if (std::exchange(last, kind.name) == kind.name)
                continue;
            const std::string name = " " + std::string(kind.name);
            all += name;
            const bool close = Distance(_rest, kind.name) <= SLIP ||
                               (!_rest.empty() && kind.name.find(_rest) != std::string_view::npos);
            near += close ? name : "";
        }
        Fail("there is no \"" + std::string(_rest) + "\"" +
             (near.empty() ? ", the faults are" + all : ", but there is" + near));
    }

    unsigned Number(const char* what, std::string_view text) const {
        const auto number = ParseNumber(text);
        if (!number)
            Fail(std::string(what) + " must be a number, not \"" + std::string(text) + "\"");
        return *number;
    }

    unsigned Positive(const char* what, std::string_view text) const {
        const unsigned number = Number(what, text);
        if (number == 0)
            Fail(std::string(what) + " counts from 1");
        return number;
    }

    unsigned Value(const Kinds& kinds, std::string_view text) const {
        if (kinds.front()->values.name.empty())
            Fail("it takes no VALUE");
        const unsigned value = Number("VALUE", text);
        std::string ranges;
        for (const FaultKind* kind : kinds) {
            if (kind->Takes(value))
                return value;
            ranges += (ranges.empty() ? "" : ", ") + std::to_string(kind->values.least) + " to " +
                      std::to_string(kind->values.most);
        }
        Fail("VALUE " + std::to_string(value) + " is out of range: " + ranges);
    }

    std::string_view _text;
    std::string_view _rest;
};

} // namespace

Fault Fault::Parse(std::string_view text) {
    return Parser(text).Parse();
}

Fault Fault::ParseWithoutStep(std::string_view text) {
    const Fault fault = Parse(text);
    if (text.substr(0, text.find('=')) != KindOf(fault.id).name)
        throw std::invalid_argument("fault \"" + std::string(text) +
                                    "\": NAME or NAME=VALUE was expected, without STEP and COUNT");
    return fault;
}

std::string Fault::Text() const {
    const FaultKind& kind = KindOf(id);
    return std::string(kind.name) + "@" + std::to_string(step) +
           (count != 0 ? "x" + std::to_string(count) : "") +
           (kind.values.name.empty() ? "" : "=" + std::to_string(value));
}

} // namespace VirtualModule
