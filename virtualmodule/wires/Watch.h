// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace VirtualModule {

/// What a host must never do. Each report begins with one of these names.
namespace Violation {
inline constexpr std::string_view WITHOUT_INTERRUPT = "host register written without an interrupt";
inline constexpr std::string_view RESERVED_BIT = "reserved bit written";
inline constexpr std::string_view COMPANION_DIFFERS = "register and companion differ";
inline constexpr std::string_view NOTIFIED_WHILE_FULL = "request notified into a full mailbox";
inline constexpr std::string_view WRITTEN_WHILE_FULL = "request written into a full mailbox";
inline constexpr std::string_view MALFORMED_REQUEST = "malformed request";
inline constexpr std::string_view MAILBOX_OUT_NOT_UPDATED = "mailbox-out acknowledged that was not updated";
inline constexpr std::string_view AREA_NOT_HANDED_OVER = "area released that was not handed over";
inline constexpr std::string_view FOREIGN_WRITE = "write outside the host's areas";
inline constexpr std::string_view AREA_COMMAND = "area command in the bootloader";
inline constexpr std::string_view EVENT_NOT_REPORTED = "event acknowledged that was not reported";
} // namespace Violation

/// The module's strict eye on its host, and its log.
class Watch {
public:
    using Sink = std::function<void(const std::string&)>;

    /// Reports beyond this many are logged but not kept.
    static constexpr std::size_t MOST_VIOLATIONS = 1000;

    /// Where log lines go from now on; empty for nowhere.
    void SetLog(Sink log) { _log = std::move(log); }

    /// Logs the line that `text` makes; it is not called while nobody listens.
    template <class Text>
    void Log(const Text& text) const {
        if (_log)
            _log(text());
    }

    /// Keeps and logs the violation `name`, with what was seen.
    void Report(std::string_view name, const std::string& detail);

    /// Everything reported so far, in order.
    const std::vector<std::string>& Violations() const { return _violations; }

private:
    Sink _log;
    std::vector<std::string> _violations;
};

} // namespace VirtualModule
