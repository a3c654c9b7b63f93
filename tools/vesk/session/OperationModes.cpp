// SPDX-License-Identifier: MIT
#include "tools/vesk/session/OperationModes.h"

#include "tools/vesk/text/Text.h"

namespace VeskTool {

using Vesk::Modules::DPVM::OperationMode_e;

std::string ModeName(OperationMode_e mode) {
    switch (mode) {
    case OperationMode_e::OFFLINE:
        return "OFFLINE";
    case OperationMode_e::STOP:
        return "STOP";
    case OperationMode_e::CLEAR:
        return "CLEAR";
    case OperationMode_e::OPERATE:
        return "OPERATE";
    }
    return Hex(static_cast<unsigned int>(mode));
}

} // namespace VeskTool
