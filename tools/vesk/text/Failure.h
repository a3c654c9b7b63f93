// SPDX-License-Identifier: MIT
#pragma once

#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>

namespace VeskTool {

/// A failure that the command itself found, in words for people.
class Failure : public std::runtime_error {
public:
    /// `hint`: what to do about it, a sentence; or nothing. `type`: that of the library's exception behind
    /// it, where there is one.
    explicit Failure(const std::string& what, std::string hint = "", std::string type = "Failure")
        : std::runtime_error(what), _hint(std::move(hint)), _type(std::move(type)) {}

    const std::string& Hint() const { return _hint; }

    const std::string& Type() const { return _type; }

private:
    std::string _hint;
    std::string _type;
};

/// The exception's type and message in one line: line breaks become "; ".
std::string OneLine(const std::exception& exception);
/// The same of any text.
std::string OneLine(std::string_view text);

} // namespace VeskTool
