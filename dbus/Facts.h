// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/DatabaseInfo.h"
#include "vesk/modules/dpvm/IVt22FatalEventInfo.h"
#include "vesk/modules/dpvm/Vt22Module.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>

namespace Vesk::DBus {

/// An exception out of an Update.
struct UpdateFailure {
    std::int64_t time = 0; // nanoseconds since the start of 1970
    std::string type;
    std::string message;
    std::string dump;                                               // the path, or empty
    std::shared_ptr<Modules::DPVM::IVt22FatalEventInfo> fatalEvent; // or null
};

/// One bit for each station.
using StationList = std::array<unsigned char, 16>;

inline bool Has(const StationList& list, unsigned int address) {
    return address / 8 < list.size() && (list[address / 8] >> address % 8 & 1) != 0;
}

/// What a module shows of itself beside its process data: what changes seldom. It never changes; the cycle
/// makes a new one.
struct Facts {
    struct Identity {
        unsigned short vendorId = 0;
        unsigned short fieldbusType = 0;
        unsigned short moduleType = 0;
        unsigned int serial = 0;
        std::array<unsigned char, 3> software{};
        std::array<unsigned char, 2> bootloader{};

        bool operator==(const Identity&) const = default;
    };

    Modules::DPVM::Vt22Module::ModuleState_e state{};
    Identity identity;
    std::shared_ptr<Modules::DPVM::DatabaseInfo> database; // null until it was read
    bool online = false;
    Modules::DPVM::OperationMode_e mode{}; // OFFLINE until it is reported
    StationList configured{};
    StationList exchanging{};
    StationList diagnostic{};
    StationList connected{};
    std::shared_ptr<const UpdateFailure> failure; // null where the last Update was none

    bool operator==(const Facts&) const = default;
};

} // namespace Vesk::DBus
