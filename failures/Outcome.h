// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

/// What can go wrong between a host and its module, told once: for the virtual module's faults, which name
/// what they lead to, and for the command line and the pages, which explain it.
namespace Failures {

/// How something that a host does may end, and what somebody in front of the machine makes of it.
struct Outcome {
    std::string_view type;    // of the exception; empty where there is none
    std::string_view message; // a pattern, see Compare
    std::string_view means;   // what has happened, a sentence
    std::string_view check;   // what to check first, a sentence; so is the next
    std::string_view next{};  // what to do then; may be empty

    bool IsException() const { return !type.empty(); }

    /// Whether it is this exception.
    bool Is(std::string_view exceptionType, std::string_view exceptionMessage) const;
};

/// How far a text is what a pattern says.
enum class Match : std::uint8_t {
    NOT,
    BEGINNING, // as far as it goes
    WHOLE,
};

/// In `pattern` '*' stands for any text and '#' for a number, decimal or hexadecimal.
Match Compare(std::string_view pattern, std::string_view text);

/// How a life with the module may end, in the order of a life; those without an exception come first.
const std::vector<const Outcome*>& AllOutcomes();

/// Everything that the library can throw: those of a life, then those of files and calls, at last for each
/// type whatever else it may say, with the message "*".
const std::vector<const Outcome*>& AllFailures();

/// What the command line says by itself, with the type "Failure", or "Refusal" where it knows more of a
/// refused request than its error code. The last one stands for whatever else it may say.
const std::vector<const Outcome*>& ToolFailures();

/// The first of AllFailures() and ToolFailures() that is this exception; null for a type that is in neither.
const Outcome* FindFailure(std::string_view type, std::string_view message);

/// Those that the virtual module's faults name.
namespace Outcomes {

inline constexpr std::string_view INVALID_OPERATION = "System.InvalidOperationException";

// without an exception
extern const Outcome SAME_DATA, NO_ANSWER, OTHER_DATA;
// coming up
extern const Outcome NO_INTERRUPT, INTERRUPT_IN_RESET, EMPTY, NO_POWER_ON, MORE_THAN_POWER_ON, FATAL_EVENT,
    MODULE_TYPE, FIELDBUS_TYPE, VENDOR_ID, OLD_BOOTLOADER, HANDSHAKE;
// running
extern const Outcome POWER_ON_AGAIN, NOT_INITIALISED, NOT_LOCKED, RESERVED_CHANGE, RESERVED_STATUS,
    BOTH_LINES, ONLINE_TWICE, OFFLINE_TWICE, MODE;
// messages
extern const Outcome DOWNLOAD_TIMEOUT, INIT_TIMEOUT, TIMEOUT, ACKNOWLEDGED_TWICE, WRONG_ID, WRONG_TYPE,
    WRONG_COMMAND, NOBODY_ASKED, UNDEFINED, TOO_LONG, REFUSED, READ_BACK;
// what is mapped
extern const Outcome MORE_INPUT, MORE_OUTPUT, INPUT_OUTSIDE, OUTPUT_OUTSIDE;

} // namespace Outcomes
} // namespace Failures
