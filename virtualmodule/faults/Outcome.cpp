// SPDX-License-Identifier: MIT
#include "virtualmodule/faults/Outcome.h"

namespace VirtualModule {

namespace {

/// Whether `text` is what `pattern` says, with '*' for any text.
bool Matches(std::string_view pattern, std::string_view text) {
    const std::size_t star = pattern.find('*');
    if (star == std::string_view::npos)
        return pattern == text;
    if (!text.starts_with(pattern.substr(0, star)))
        return false;
    for (std::size_t end = star; end <= text.size(); ++end)
        if (Matches(pattern.substr(star + 1), text.substr(end)))
            return true;
    return false;
}

} // namespace

bool Outcome::Is(std::string_view exceptionType, std::string_view exceptionMessage) const {
    return IsException() && type == exceptionType && Matches(message, exceptionMessage);
}

const std::vector<const Outcome*>& AllOutcomes() {
    using namespace Outcomes;
    static const std::vector<const Outcome*> all{
        &SAME_DATA,
        &NO_ANSWER,
        &OTHER_DATA,
        &NO_INTERRUPT,
        &INTERRUPT_IN_RESET,
        &EMPTY,
        &NO_POWER_ON,
        &MORE_THAN_POWER_ON,
        &FATAL_EVENT,
        &MODULE_TYPE,
        &FIELDBUS_TYPE,
        &VENDOR_ID,
        &OLD_BOOTLOADER,
        &HANDSHAKE,
        &POWER_ON_AGAIN,
        &NOT_INITIALISED,
        &NOT_LOCKED,
        &RESERVED_CHANGE,
        &RESERVED_STATUS,
        &BOTH_LINES,
        &ONLINE_TWICE,
        &OFFLINE_TWICE,
        &MODE,
        &DOWNLOAD_TIMEOUT,
        &INIT_TIMEOUT,
        &TIMEOUT,
        &ACKNOWLEDGED_TWICE,
        &WRONG_ID,
        &WRONG_TYPE,
        &WRONG_COMMAND,
        &NOBODY_ASKED,
        &UNDEFINED,
        &TOO_LONG,
        &REFUSED,
        &READ_BACK,
        &MAPPING,
    };
    return all;
}

} // namespace VirtualModule
