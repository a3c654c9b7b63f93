// SPDX-License-Identifier: MIT
#include "virtualmodule/commands/DownloadCommands.h"

namespace VirtualModule {

namespace {

constexpr std::uint16_t MAX_FRAME = Vesk::HostInterface::MailboxDpRam::MAX_DATA_SIZE;
constexpr std::uint16_t FW_INIT_SIZE = 8;
// The CRC information: the CRC low byte first, then the first and last address of a range. The CRC is over
// what was sent, so the range says nothing that the module could check.
constexpr std::uint16_t CRC_INFO_SIZE = 10;
constexpr std::uint16_t FW_LAST_SIZE = CRC_INFO_SIZE + 28;

} // namespace

const std::array<Command<DownloadCommands>, 3> DownloadCommands::PRODUCTION_COMMANDS{{
    {1, "Enable", 0, 0, &DownloadCommands::Enable},
    {2, "FlashWriteEnable", 0, 0, &DownloadCommands::FlashWriteEnable},
    {3, "FlashErase", 0, 0, &DownloadCommands::FlashErase},
}};

const std::array<Command<DownloadCommands>, 6> DownloadCommands::BOOTLOADER_COMMANDS{{
    {1, "FwDownloadInit", FW_INIT_SIZE, FW_INIT_SIZE, &DownloadCommands::FwDownloadInit},
    {2, "FwDownloadData", 1, MAX_FRAME, &DownloadCommands::FwDownloadData, true},
    {3, "FwDownloadLast", FW_LAST_SIZE, FW_LAST_SIZE, &DownloadCommands::FwDownloadLast},
    {4, "BlDownloadInit", 0, 0, &DownloadCommands::BlDownloadInit},
    {5, "BlDownloadData", 1, MAX_FRAME, &DownloadCommands::BlDownloadData, true},
    {6, "BlDownloadLast", CRC_INFO_SIZE, CRC_INFO_SIZE, &DownloadCommands::BlDownloadLast},
}};

DownloadCommands::DownloadCommands(Flash& flash, Watch& watch, std::int64_t eraseTime, std::int64_t burnTime)
    : _flash(flash), _watch(watch), _eraseTime(eraseTime), _burnTime(burnTime) {}

Answer DownloadCommands::Handle(const Message& request) {
    std::optional<Answer> answer;
    if (request.type == static_cast<std::uint8_t>(MessageType::PRODUCTION))
        answer = Dispatch(*this, PRODUCTION_COMMANDS, request, _watch);
    else if (request.type == static_cast<std::uint8_t>(MessageType::BOOTLOADER))
        answer = Dispatch(*this, BOOTLOADER_COMMANDS, request, _watch);
    else
        return ErrorCode::MESSAGE_TYPE;
    return answer.value_or(ErrorCode::COMMAND);
}

Answer DownloadCommands::Enable(const Message& request) {
    _step = Step::ENABLED;
    return Answer(request);
}

Answer DownloadCommands::FlashWriteEnable(const Message& request) {
    if (_step != Step::ENABLED)
        return ErrorCode::COMMAND;
    _step = Step::WRITABLE;
    return Answer(request);
}

Answer DownloadCommands::FlashErase(const Message& request) {
    if (_step != Step::WRITABLE)
        return ErrorCode::COMMAND;
    _step = Step::ERASED;
    // The version stays known, for an image that does not carry one.
    _flash.application.valid = false;
    _flash.application.image.clear();
    ++_flash.writes;
    Answer answer(request);
    answer.delay = _eraseTime;
    return answer;
}

Answer DownloadCommands::FwDownloadInit(const Message& request) {
    return _step == Step::ERASED ? Begin(request, Step::RECEIVING_APPLICATION) : Answer(ErrorCode::COMMAND);
}

Answer DownloadCommands::BlDownloadInit(const Message& request) {
    return Begin(request, Step::RECEIVING_BOOTLOADER);
}

Answer DownloadCommands::Begin(const Message& request, Step step) {
    _step = step;
    _image.clear();
    _frames = _frame = 0;
    return Answer(request);
}

Answer DownloadCommands::FwDownloadData(const Message& request) {
    if (_step != Step::RECEIVING_APPLICATION)
        return ErrorCode::COMMAND;
    if (_frame == 0)
        _base = request.offset; // an application says itself where it is burnt
    return Receive(request, Flash::APPLICATION_SIZE);
}

Answer DownloadCommands::BlDownloadData(const Message& request) {
    if (_step != Step::RECEIVING_BOOTLOADER)
        return ErrorCode::COMMAND;
    _base = 0;
    return Receive(request, Flash::BOOTLOADER_SIZE);
}

Answer DownloadCommands::Receive(const Message& request, std::size_t room) {
    const ErrorCode error = CheckFrame(request, room);
    if (error != ErrorCode::NO_ERROR)
        return error;
    _frames = request.totalFrameCount;
    _frame = request.frameNumber;
    Append(_image, request.data);
    return Answer(request);
}

ErrorCode DownloadCommands::CheckFrame(const Message& request, std::size_t room) const {
    if (request.totalFrameCount == 0 || (_frame != 0 && request.totalFrameCount != _frames))
        return ErrorCode::TOTAL_FRAME_COUNT;
    if (request.frameNumber != _frame + 1 || request.frameNumber > request.totalFrameCount)
        return ErrorCode::FRAME_NUMBER;
    const bool fits = _image.size() + request.data.size() <= room;
    return fits && request.offset == std::uint64_t{_base} + _image.size() ? ErrorCode::NO_ERROR
                                                                          : ErrorCode::OFFSET;
}

Answer DownloadCommands::FwDownloadLast(const Message& request) {
    return _step == Step::RECEIVING_APPLICATION ? Finish(request, _flash.application)
                                                : Answer(ErrorCode::COMMAND);
}

Answer DownloadCommands::BlDownloadLast(const Message& request) {
    return _step == Step::RECEIVING_BOOTLOADER ? Finish(request, _flash.bootloader)
                                               : Answer(ErrorCode::COMMAND);
}

Answer DownloadCommands::Finish(const Message& request, FlashRegion& region) {
    if (_frame == 0 || _frame != _frames)
        return ErrorCode::FRAME_NUMBER;
    _step = Step::LOCKED;
    if (Word(request.data[1], request.data[0]) != Crc16(_image) || !SealHolds(_image))
        return ErrorCode::FLASH_CONFIG_ERROR;
    _step = Step::BURNING;
    Answer answer(request);
    answer.delay = _burnTime;
    answer.finish = [this, &region] {
        region.version = VersionOf(_image, region.version.major);
        region.image = std::move(_image);
        region.valid = true;
        ++_flash.writes;
        _step = Step::LOCKED;
    };
    return answer;
}

} // namespace VirtualModule
