// SPDX-License-Identifier: MIT
#include "vesk/hostinterface/BitLabels.h"

namespace Vesk::HostInterface {

System::String BitLabels(const char* prefix, unsigned int value, std::span<const char* const> labels) {
    std::string text = prefix;
    for (const char* label : labels) {
        if (value & 1)
            text += std::string(" ") + label;
        value >>= 1;
    }
    return text;
}

} // namespace Vesk::HostInterface
