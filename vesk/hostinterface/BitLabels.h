// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/String.h"

#include <span>

namespace Vesk::HostInterface {

/// The text of a register: `prefix`, then for each set bit of `value`, from bit 0 on, a blank and its label.
/// Bits beyond the labels are left out.
System::String BitLabels(const char* prefix, unsigned int value, std::span<const char* const> labels);

} // namespace Vesk::HostInterface
