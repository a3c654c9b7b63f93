// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/findings/Finding.h"
#include "busdescription/gsd/Device.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace BusDescription::Gsd {

/// A keyword that gives a field of a device one value.
struct Keyword {
    using Field = std::variant<Given<bool>*, Given<unsigned int>*, Given<std::string>*>;

    std::string name; // as files mostly write it
    Field (*field)(Device&, std::size_t index);
    std::size_t index; // of the rate or the alarm
    Severity wrong;    // what a wrong value is; only an error where something depends on it
    unsigned int most; // of a number; the least is 0
};

/// The keyword `name`, in upper or lower case; null where it is none of those.
const Keyword* FindKeyword(std::string_view name);

/// Whether `name` is a keyword of device description files that says nothing about what is sent to a slave.
bool IsIgnored(std::string_view name);

/// Whether `name` is one of KnownKeywords.
bool IsKnown(std::string_view name);

/// All keywords: those above, those with an index and those that begin and end blocks.
const std::vector<std::string>& KnownKeywords();

} // namespace BusDescription::Gsd
