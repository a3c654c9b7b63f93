// SPDX-License-Identifier: MIT
#pragma once

#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>

namespace VeskTool {

/// A failure that the command itself found, in words for people. What to do about it, the table of failures
/// says.
class Failure : public std::runtime_error {
public:
    explicit Failure(const std::string& what) : Failure(what, "Failure", what) {}

    /// One for which the table has the row of that exception type and message.
    Failure(const std::string& what, std::string type, std::string message)
        : std::runtime_error(what), _type(std::move(type)), _message(std::move(message)) {}

    const std::string& Type() const { return _type; }

    const std::string& Message() const { return _message; }

private:
    std::string _type;
    std::string _message;
};

/// The exception's type and message in one line: line breaks become "; ".
std::string OneLine(const std::exception& exception);
/// The same of any text.
std::string OneLine(std::string_view text);

} // namespace VeskTool
