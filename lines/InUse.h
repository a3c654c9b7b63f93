// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>
#include <string>

/// A module's lines, or a file, that somebody else has: a module has one host at a time. Nobody takes over by
/// force.
class InUse : public std::runtime_error {
public:
    /// "`what` is in use by `user`", which is the process of that number, or 0 where nobody knows.
    InUse(const std::string& what, const std::string& user, long process = 0)
        : std::runtime_error(what + " is in use by " + user), _user(user), _process(process) {}

    const std::string& User() const { return _user; }

    long Process() const { return _process; }

private:
    std::string _user;
    long _process;
};
