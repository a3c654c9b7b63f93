// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/config/MasterRecord.h"

#include "vesk/modules/dpvm/config/Block.h"

namespace Vesk::Modules::DPVM::Config {

static constexpr auto RECORD_LENGTH = BlockLength::Exactly(96);

std::shared_ptr<IMasterRecord> MasterRecord::FromStream(const std::shared_ptr<System::IO::Stream>& stream) {
    return System::MakeShared<MasterRecord>(stream);
}

MasterRecord::MasterRecord(const std::shared_ptr<System::IO::Stream>& stream) {
    BlockReader block(stream, RECORD_LENGTH);
    Layout(block, *this);
    block.Finish();
}

void MasterRecord::ToStream(const std::shared_ptr<System::IO::Stream>& stream) const {
    BlockWriter block(stream, RECORD_LENGTH);
    Layout(block, *this);
    block.Finish();
}

System::String MasterRecord::ToString() const {
    BlockText block;
    Layout(block, *this);
    return block.ToString();
}

} // namespace Vesk::Modules::DPVM::Config
