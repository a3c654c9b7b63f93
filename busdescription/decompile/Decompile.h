// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/compile/Compile.h"

namespace BusDescription {

/// A description from which Compile makes exactly the records of `config`. `source` is named in its first
/// line. Of the device description files `gsds`, which `files` can read, those are used whose ident number
/// and modules fit; what they do not bring about stays in raw form.
std::string Decompile(Vesk::Modules::DPVM::Config::IBusConfig& config, const std::string& source,
                      DeviceFiles& files, const std::vector<std::string>& gsds);

} // namespace BusDescription
