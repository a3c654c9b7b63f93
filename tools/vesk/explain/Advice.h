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

/// What it says without its type, in one line. One that says nothing says what its type means.
std::string MessageOf(const std::exception& exception);
/// What it says without its type, as the table of failures has it.
std::string RawMessageOf(const std::exception& exception);

/// The whole of it for a person: the type of a library exception and the message, in one line.
std::string Told(const std::exception& exception);

/// What `vesk explain` says of the failure too.
Advice AdviceFor(const std::exception& exception);

/// The module's own words about a fatal event; null for any other failure.
nlohmann::ordered_json FatalEventOf(const std::exception& exception);

/// The same for people, in a line.
std::string FatalEventText(const nlohmann::ordered_json& event);

/// {"error": {"type", "message", "hint"}}, what --json prints for a failure; with "fatalEvent" where it is
/// one.
nlohmann::ordered_json ErrorToJson(const std::string& type, const std::string& message,
                                   const std::string& hint);
nlohmann::ordered_json ErrorToJson(const std::exception& exception);

} // namespace VeskTool
