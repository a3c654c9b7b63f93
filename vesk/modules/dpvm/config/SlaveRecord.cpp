// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/config/SlaveRecord.h"

#include "vesk/modules/dpvm/config/Block.h"
#include "vesk/modules/dpvm/config/SlaveBlocks.h"

namespace Vesk::Modules::DPVM::Config {

static constexpr auto LENGTH = BlockLength::Between(44, 1740);

template <class Block, class Self>
void SlaveRecord::Layout(Block& block, Self& self) {
    block.Field("slaveFlags", self._slaveFlags);
    block.Field("slaveType", self._slaveType);
    block.Field("maxDiagnosticDataLength", self._maxDiagnosticDataLength);
    block.Reserved(1);
    block.Field("maxChannelDataLength", self._maxChannelDataLength);
    block.Field("diagUpdDelay", self._diagUpdDelay);
    block.Field("alarmMode", self._alarmMode);
    block.Field("additionalSlaveFlags", self._additionalSlaveFlags);
    block.Field("mSAC1Timeout", self._mSAC1Timeout);
    block.Reserved(4);
    block.template Nested<SlaveParameterData>("Parameter data", self._parameterData);
    block.Pad();
    block.template Nested<SlaveConfigurationData>("Configuration data", self._configurationData);
    block.Pad();
    // The other blocks are never odd.
    block.template Nested<SlaveAddressTable>("Address table", self._addressTable);
    block.template Nested<SlaveUserData>("User data", self._userData);
    block.template Nested<SlaveExtendedUserParameterData>("Extended user data",
                                                          self._extendedUserParameterData);
}

std::shared_ptr<ISlaveRecord> SlaveRecord::FromStream(const std::shared_ptr<System::IO::Stream>& stream) {
    return System::MakeShared<SlaveRecord>(stream);
}

SlaveRecord::SlaveRecord(const std::shared_ptr<System::IO::Stream>& stream) {
    BlockReader block(stream, LENGTH);
    Layout(block, *this);
    block.Finish();
}

void SlaveRecord::ToStream(const std::shared_ptr<System::IO::Stream>& stream) const {
    BlockWriter block(stream, LENGTH);
    Layout(block, *this);
    block.Finish();
}

System::String SlaveRecord::ToString() const {
    BlockText block;
    Layout(block, *this);
    return block.ToString();
}

} // namespace Vesk::Modules::DPVM::Config
