// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/Vt22FatalEventArea.h"

#include "vesk/hostinterface/MasterDpRam.h"
#include "vesk/modules/dpvm/Vt22FatalEventInfo.h"
#include "vesk/system/text/Encoding.h"

namespace Vesk::Modules::DPVM {

namespace FatalEvent = HostInterface::MasterDpRam::FatalEvent;

std::shared_ptr<Vt22FatalEventArea>
Vt22FatalEventArea::Create(unsigned short offset,
                           std::shared_ptr<HostInterface::IHostInterface> hostInterface) {
    if (!hostInterface)
        System::_throw_argument_null_exception("hostInterface");
    return System::MakeShared<Vt22FatalEventArea>(offset, std::move(hostInterface));
}

Vt22FatalEventArea::Vt22FatalEventArea(unsigned short offset,
                                       std::shared_ptr<HostInterface::IHostInterface> hostInterface)
    : _offset(offset), _hostInterface(std::move(hostInterface)) {}

std::shared_ptr<IVt22FatalEventInfo> Vt22FatalEventArea::GetFatalEventInfo() {
    HostInterface::IHostInterface& dpRam = *_hostInterface;
    const unsigned short errorCode = dpRam.ReadUInt16(_offset + FatalEvent::ERROR_CODE);
    const unsigned short errorCause = dpRam.ReadUInt16(_offset + FatalEvent::ERROR_CAUSE);
    const unsigned short taskId = dpRam.ReadUInt16(_offset + FatalEvent::TASK_ID);
    const std::uint64_t high = dpRam.ReadUInt32(_offset + FatalEvent::TIME_STAMP_HIGH);
    const std::uint64_t low = dpRam.ReadUInt32(_offset + FatalEvent::TIME_STAMP_LOW);
    const auto additionalInfo = ReadBytes(FatalEvent::ADDITIONAL_INFO, FatalEvent::ADDITIONAL_INFO_SIZE);
    const unsigned short sourceLine = dpRam.ReadUInt16(_offset + FatalEvent::SOURCE_LINE);
    const auto sourceFile = ReadBytes(FatalEvent::SOURCE_FILE, FatalEvent::SOURCE_FILE_SIZE);

    // Unsigned, so that a stamp of any 64 bits wraps instead of overflowing.
    const std::uint64_t nanoseconds = (high << 32 | low) * 1'000'000;
    return Vt22FatalEventInfo::Create(
        errorCode, errorCause, taskId, System::TimeSpan::Create(static_cast<std::int64_t>(nanoseconds)),
        additionalInfo, sourceLine,
        System::Text::Encoding::ASCII::GetString(sourceFile, 0, sourceFile->Count()));
}

std::shared_ptr<System::IArray<unsigned char>> Vt22FatalEventArea::ReadBytes(int field, int count) {
    const auto bytes = System::Array<unsigned char>::Create(count);
    _hostInterface->Read(_offset + field, bytes, 0, count);
    return bytes;
}

} // namespace Vesk::Modules::DPVM
