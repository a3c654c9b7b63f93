// SPDX-License-Identifier: MIT
#include "vesk/core/Version.h"

namespace Vesk {

const char* Version() {
    return VESK_VERSION;
}

} // namespace Vesk
