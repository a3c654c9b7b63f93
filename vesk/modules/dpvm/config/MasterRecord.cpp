// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/config/MasterRecord.h"

#include "vesk/modules/dpvm/config/Block.h"
#include "vesk/modules/dpvm/config/MasterUserData.h"

namespace Vesk::Modules::DPVM::Config {

static constexpr auto LENGTH = BlockLength::Exactly(96);

template <class Block, class Self>
void MasterRecord::Layout(Block& block, Self& self) {
    block.Field("stationAddress", self._stationAddress);
    block.Field("dataRate", self._dataRate);
    block.Field("slotTime", self._slotTime);
    block.Field("minStationDelayTime", self._minStationDelayTime);
    block.Field("maxStationDelayTime", self._maxStationDelayTime);
    block.Field("quietTime", self._quietTime);
    block.Field("setupTime", self._setupTime);
    block.Field("targetRotationTime", self._targetRotationTime);
    block.Field("gapUpdateFactor", self._gapUpdateFactor);
    block.Field("highestStationAddress", self._highestStationAddress);
    block.Field("maxRetryLimit", self._maxRetryLimit);
    block.Field("bpFlag", self._bpFlag);
    block.Field("minSlaveInterval", self._minSlaveInterval);
    block.Field("pollTimeout", self._pollTimeout);
    block.Field("dataControlTime", self._dataControlTime);
    block.Field("alarmMax", self._alarmMax);
    block.Field("maxUserGlobalControl", self._maxUserGlobalControl);
    block.Reserved(4);
    block.template Nested<MasterUserData>("User data", self._userData);
}

std::shared_ptr<IMasterRecord> MasterRecord::FromStream(const std::shared_ptr<System::IO::Stream>& stream) {
    return System::MakeShared<MasterRecord>(stream);
}

MasterRecord::MasterRecord(const std::shared_ptr<System::IO::Stream>& stream) {
    BlockReader block(stream, LENGTH);
    Layout(block, *this);
    block.Finish();
}

void MasterRecord::ToStream(const std::shared_ptr<System::IO::Stream>& stream) const {
    BlockWriter block(stream, LENGTH);
    Layout(block, *this);
    block.Finish();
}

System::String MasterRecord::ToString() const {
    BlockText block;
    Layout(block, *this);
    return block.ToString();
}

} // namespace Vesk::Modules::DPVM::Config
