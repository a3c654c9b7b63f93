// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/CLI.hpp>

#include <exception>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace VeskTool {

class Interrupted;

/// Tells what goes wrong with a command: people on standard error, and on standard output as JSON.
class Telling {
public:
    /// `json`: whether as JSON too. `place` stands before what people read: "line 3: ".
    explicit Telling(bool json, std::string place = "") : _json(json), _place(std::move(place)) {}

    /// What is wrong with the arguments of `program`, or the help or the version that they ask for; the exit
    /// status. The program itself is named only where it has a name.
    int Usage(const CLI::ParseError& error, const CLI::App& program) const;

    /// Does `work`, which returns an exit status, and tells why it ends with an exception; the exit status,
    /// `failed` for a failure. A CLI::ParseError passes through, and so does anything when nothing can be
    /// written to standard output any more.
    int Do(const std::function<int()>& work, const int& failed) const;

    /// Tells people alone, and without advice.
    void Shortly(const std::exception& exception) const;

private:
    void Failure(const std::exception& exception) const;
    void Say(const std::string& what, const std::vector<std::string>& lines) const;
    void Print(const nlohmann::ordered_json& error) const;

    bool _json;
    std::string _place;
};

} // namespace VeskTool
