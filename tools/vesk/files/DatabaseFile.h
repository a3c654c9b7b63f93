// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/config/IBusConfig.h"

#include <memory>
#include <string>

namespace VeskTool {

/// The bus configuration of a database file. Failure, which names the file and says what is wrong with it,
/// when it cannot be read.
std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> LoadDatabaseFile(const std::string& path);

} // namespace VeskTool
