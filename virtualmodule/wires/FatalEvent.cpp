// SPDX-License-Identifier: MIT
#include "virtualmodule/wires/FatalEvent.h"

#include "vesk/hostinterface/MasterDpRam.h"

namespace VirtualModule {

void FatalEvent::Write(DpRam& dpRam) const {
    using namespace Vesk::HostInterface::MasterDpRam::FatalEvent;
    Bytes info = additionalInfo;
    info.resize(ADDITIONAL_INFO_SIZE);
    Bytes file(sourceFile.begin(), sourceFile.end());
    file.resize(SOURCE_FILE_SIZE);

    dpRam.Write16(OFFSET + ERROR_CODE, errorCode);
    dpRam.Write16(OFFSET + ERROR_CAUSE, errorCause);
    dpRam.Write16(OFFSET + TASK_ID, taskId);
    dpRam.Write32(OFFSET + TIME_STAMP_HIGH, static_cast<std::uint32_t>(timeStamp >> 32));
    dpRam.Write32(OFFSET + TIME_STAMP_LOW, static_cast<std::uint32_t>(timeStamp));
    dpRam.Write(OFFSET + ADDITIONAL_INFO, info);
    dpRam.Write16(OFFSET + SOURCE_LINE, sourceLine);
    dpRam.Write(OFFSET + SOURCE_FILE, file);
}

} // namespace VirtualModule
