// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace Vesk::DBus {

/// The text up to its first zero byte, as D-Bus takes it: bytes above 0x7f of what is no UTF-8 become \xNN.
std::string BusText(const std::string& text);

} // namespace Vesk::DBus
