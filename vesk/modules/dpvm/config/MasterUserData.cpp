// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/config/MasterUserData.h"

#include "vesk/modules/dpvm/config/Block.h"

namespace Vesk::Modules::DPVM::Config {

static constexpr auto LENGTH = BlockLength::Exactly(64);

template <class Block, class Self>
void MasterUserData::Layout(Block& block, Self& self) {
    block.Text("class2Name", self._class2Name, 32);
    block.Field("idleTime1", self._idleTime1);
    block.Field("idleTime2", self._idleTime2);
    block.Reserved(2);
    block.Field("deltaT_TR", self._deltaT_TR);
    block.Reserved(4);
    block.Field("repeater", self._repeater);
    block.Field("groupSync", self._groupSync);
    block.Field("groupFreeze", self._groupFreeze);
    block.Field("identNr", self._identNr);
    block.Field("addressingMode", self._addressingMode);
    block.Field("storageFormat", self._storageFormat);
    block.Field("t_CT", self._t_CT);
    block.Field("maxT_SH", self._maxT_SH);
    block.Reserved(3);
}

std::shared_ptr<IMasterUserData>
MasterUserData::FromStream(const std::shared_ptr<System::IO::Stream>& stream) {
    return System::MakeShared<MasterUserData>(stream);
}

MasterUserData::MasterUserData(const std::shared_ptr<System::IO::Stream>& stream) {
    BlockReader block(stream, LENGTH);
    Layout(block, *this);
    block.Finish();
}

void MasterUserData::ToStream(const std::shared_ptr<System::IO::Stream>& stream) const {
    BlockWriter block(stream, LENGTH);
    Layout(block, *this);
    block.Finish();
}

System::String MasterUserData::ToString() const {
    BlockText block;
    Layout(block, *this);
    return block.ToString();
}

} // namespace Vesk::Modules::DPVM::Config
