// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/config/MasterUserData.h"

#include "vesk/modules/dpvm/config/Block.h"

namespace Vesk::Modules::DPVM::Config {

static constexpr auto MASTER_USER_DATA_LENGTH = BlockLength::Exactly(64);

std::shared_ptr<IMasterUserData>
MasterUserData::FromStream(const std::shared_ptr<System::IO::Stream>& stream) {
    return System::MakeShared<MasterUserData>(stream);
}

MasterUserData::MasterUserData(const std::shared_ptr<System::IO::Stream>& stream) {
    BlockReader block(stream, MASTER_USER_DATA_LENGTH);
    Layout(block, *this);
    block.Finish();
}

void MasterUserData::ToStream(const std::shared_ptr<System::IO::Stream>& stream) const {
    BlockWriter block(stream, MASTER_USER_DATA_LENGTH);
    Layout(block, *this);
    block.Finish();
}

System::String MasterUserData::ToString() const {
    BlockText block;
    Layout(block, *this);
    return block.ToString();
}

} // namespace Vesk::Modules::DPVM::Config
