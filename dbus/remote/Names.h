// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/OperationMode_e.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

/// What the interfaces and objects are called, as the files org.libvesk.*.xml define them.
namespace Vesk::DBus {

inline constexpr std::string_view NAME_PREFIX = "org.libvesk.Master."; ///< and the name of the first plant
inline constexpr const char* FIRST_PATH = "/org/libvesk/Master";       ///< of that plant's object
inline constexpr const char* ROOT_PATH = "/org/libvesk";               ///< where the ObjectManager is
inline constexpr const char* MASTER_INTERFACE = "org.libvesk.Master1";
inline constexpr const char* CONTROL_INTERFACE = "org.libvesk.Control1";
inline constexpr const char* FAILED = "org.libvesk.Error.Failed";
inline constexpr const char* REFUSED = "org.libvesk.Error.Refused";

inline constexpr std::array OPERATION_MODES{
    std::pair{"OFFLINE", Modules::DPVM::OperationMode_e::OFFLINE},
    std::pair{"STOP", Modules::DPVM::OperationMode_e::STOP},
    std::pair{"CLEAR", Modules::DPVM::OperationMode_e::CLEAR},
    std::pair{"OPERATE", Modules::DPVM::OperationMode_e::OPERATE},
};

/// The mode of that name; nothing where there is none.
inline std::optional<Modules::DPVM::OperationMode_e> ModeOf(std::string_view name) {
    for (const auto& [text, mode] : OPERATION_MODES)
        if (name == text)
            return mode;
    return std::nullopt;
}

/// The name of a mode; empty for what is none.
inline std::string NameOf(Modules::DPVM::OperationMode_e mode) {
    for (const auto& [text, known] : OPERATION_MODES)
        if (known == mode)
            return text;
    return "";
}

} // namespace Vesk::DBus
