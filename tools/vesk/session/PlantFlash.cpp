// SPDX-License-Identifier: MIT
#include "tools/vesk/session/PlantFlash.h"

#include "tools/vesk/session/PlantFile.h"
#include "tools/vesk/text/Elements.h"
#include "tools/vesk/text/Text.h"
#include "vesk/modules/dpvm/config/DdbParser.h"
#include "vesk/system/Convert.h"
#include "vesk/system/io/MemoryStream.h"

namespace VeskTool {

using namespace Vesk::Modules::DPVM::Config;
using System::IO::MemoryStream;

/// The binary form of a master or slave record.
template <class Record>
static VirtualModule::Bytes BinaryForm(const Record& record) {
    const auto stream = MemoryStream::Create();
    record.ToStream(stream);
    return Elements(*stream->ToArray());
}

std::shared_ptr<IBusConfig> Plant() {
    const auto file = System::Array<unsigned char>::Create({PLANT_FILE.begin(), PLANT_FILE.end()});
    return DdbParser::FromStream(MemoryStream::Create(file));
}

VirtualModule::Flash PlantFlash() {
    const auto plant = Plant();
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
