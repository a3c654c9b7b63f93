// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/session/DescribedBus.h"

#include <memory>
#include <string>

namespace VeskTool {

/// What a database file holds, whether or not its records have the checksum of its first line.
struct DatabaseFile {
    std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> config;
    std::string checksum; // of the first line, eight digits

    bool Damaged() const;
    /// That it is, in words for people; `path`: where it was read from.
    std::string Damage(const std::string& path) const;
};

/// Reads the database file at `path`, or "-" for standard input; of a bus description (".toml") the database
/// that it makes. Failure, which names the file and says what
/// is wrong with it and where, for anything that is none.
DatabaseFile ReadDatabaseFile(const std::string& path);

/// The bus configuration of a database file; Failure for a damaged one too.
std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> LoadDatabaseFile(const std::string& path);

/// The same with the names of a bus description; a database has none.
std::shared_ptr<const DescribedBus> LoadDescribedBus(const std::string& path);

} // namespace VeskTool
