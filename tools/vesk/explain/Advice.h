// SPDX-License-Identifier: MIT
#pragma once

#include <exception>
#include <nlohmann/json.hpp>
#include <string>

namespace VeskTool {

/// What lies behind a failure, for people, in sentences. Either may be empty.
struct Advice {
    std::string cause;
    std::string next; // what to check, and what to do then
};

/// The dotted name of a library exception; "Failure" or "Refusal" for the commands' own.
std::string TypeOf(const std::exception& exception);

/// The advice that the exception itself carries; otherwise what `vesk explain` says of the failure.
Advice AdviceFor(const std::exception& exception);

/// {"error": {"type", "message", "hint"}}, what --json prints for a failure.
nlohmann::ordered_json ErrorToJson(const std::string& type, const std::string& message,
                                   const std::string& hint);
nlohmann::ordered_json ErrorToJson(const std::exception& exception);

} // namespace VeskTool
