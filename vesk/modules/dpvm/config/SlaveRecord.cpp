// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/config/SlaveRecord.h"

#include "vesk/modules/dpvm/config/Block.h"

namespace Vesk::Modules::DPVM::Config {

static constexpr auto LENGTH = BlockLength::Between(44, 1740);

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
