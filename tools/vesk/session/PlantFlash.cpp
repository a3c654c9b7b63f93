// SPDX-License-Identifier: MIT
#include "tools/vesk/session/PlantFlash.h"

#include "busdescription/compile/Compile.h"
#include "tools/vesk/session/PlantFile.h"
#include "tools/vesk/text/Elements.h"
#include "tools/vesk/text/Text.h"
#include "vesk/system/io/MemoryStream.h"

namespace VeskTool {

using System::IO::MemoryStream;

/// The binary form of a master or slave record.
template <class Record>
static VirtualModule::Bytes BinaryForm(const Record& record) {
    const auto stream = MemoryStream::Create();
    record.ToStream(stream);
    return Elements(*stream->ToArray());
}

/// It has no device description files.
static std::shared_ptr<const DescribedBus> MakePlant() {
    const std::string_view text(reinterpret_cast<const char*>(PLANT_FILE.data()), PLANT_FILE.size());
    const std::string name = "examples/plant.toml";
    BusDescription::Findings findings;
    auto description = BusDescription::ReadText(text, name, findings);
    BusDescription::DeviceFiles files("");
    const auto bus = BusDescription::Compile(description, files, findings);
    return std::make_shared<DescribedBus>(DescribedBus{name, "", bus.value().config, std::move(description)});
}

std::shared_ptr<const DescribedBus> Plant() {
    static const auto plant = MakePlant();
    return plant;
}

VirtualModule::Flash PlantFlash() {
    const auto plant = Plant()->config;
    VirtualModule::Flash flash;
    VirtualModule::Database& database = flash.database;
    database.master = BinaryForm(*plant->Master());
    for (const unsigned char address : Elements(*plant->SlaveAddresses()))
        database.slaves[address] = BinaryForm(*plant->Slave(address));
    const std::string description = ChecksumText(plant->Checksum());
    database.description.assign(description.begin(), description.end());
    database.state = VirtualModule::Database::State::COMPLETE;
    return flash;
}

} // namespace VeskTool
