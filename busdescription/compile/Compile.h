// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/compile/DeviceFiles.h"
#include "busdescription/description/Description.h"
#include "vesk/modules/dpvm/config/IBusConfig.h"

#include <optional>

namespace BusDescription {

/// Where a value comes from that nobody has given.
inline const std::string DEFAULT = "default";

/// The fields of a record, each with where its value comes from: "plant.toml:12:8", "drive.gsd:31",
/// "default", or how it was computed.
class RecordPlan {
public:
    /// Sets the field unless it is set already.
    void Propose(std::string_view field, FieldValue value, const std::string& origin) {
        _origins.try_emplace(std::string(field), origin);
        _values.try_emplace(std::string(field), std::move(value));
    }

    bool Has(std::string_view field) const { return _values.contains(field); }

    /// std::out_of_range where it is not set.
    const FieldValue& At(std::string_view field) const { return _values.at(std::string(field)); }

    std::uint32_t Number(std::string_view field) const { return std::get<std::uint32_t>(At(field)); }

    const std::string& OriginOf(std::string_view field) const { return _origins.at(std::string(field)); }

    const FieldValues& Values() const { return _values; }

private:
    FieldValues _values;
    std::map<std::string, std::string, std::less<>> _origins;
};

struct CompiledSlave {
    std::string name;
    unsigned char address;
    RecordPlan record;
};

/// A description with everything computed.
struct CompiledBus {
    RecordPlan master;
    std::vector<CompiledSlave> slaves;
    std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> config;
};

/// Bytes of each process data area.
inline constexpr std::size_t AREA_LENGTH = 3500;

/// Computes the records of a description. What is wrong or unusual is added to the findings; nothing comes
/// out where there is an error among them, those of reading the description included. The same description
/// and device files have always the same records.
std::optional<CompiledBus> Compile(const Description& description, DeviceFiles& files, Findings& findings);

} // namespace BusDescription
