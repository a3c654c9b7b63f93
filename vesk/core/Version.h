// SPDX-License-Identifier: MIT
#pragma once

namespace Vesk {

/// The version of the library, "MAJOR.MINOR.PATCH": of the one that is loaded, not of the headers.
const char* Version();

} // namespace Vesk
