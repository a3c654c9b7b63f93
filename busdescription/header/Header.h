// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/compile/Compile.h"

namespace BusDescription {

/// A C++20 header for applications on the bus: a struct for each slave, with its address, where its data
/// lies, a function that maps the data, and an accessor for each signal. It includes the library and the
/// standard library alone. `space` is its namespace. The findings get an error for every name that would be
/// no C++ name, or one that is taken; the header is empty then.
std::string Header(const Description& description, const CompiledBus& bus, const std::string& space,
                   Findings& findings);

/// The name in the style of a C++ type: "flow-meter" becomes "FlowMeter".
std::string TypeName(std::string_view name);

} // namespace BusDescription
