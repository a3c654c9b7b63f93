// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>
#include <string>

/// A module's lines, or a file, that somebody else has: a module has one host at a time. Nobody takes over by
/// force.
class InUse : public std::runtime_error {
public:
    /// "`what` is in use by `user`".
    InUse(const std::string& what, const std::string& user)
        : std::runtime_error(what + " is in use by " + user), _user(user) {}

    const std::string& User() const { return _user; }

private:
    std::string _user;
};
