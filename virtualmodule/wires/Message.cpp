// SPDX-License-Identifier: MIT
#include "virtualmodule/wires/Message.h"

#include <algorithm>

namespace MailboxMap = Vesk::HostInterface::MailboxDpRam;

namespace VirtualModule {

namespace {

// The information word: type, low four bits of the error, two unused bits, request flag, error flag.
constexpr unsigned REQUEST_FLAG = 0x4000;
constexpr unsigned ERROR_FLAG = 0x8000;

unsigned Information(const Message& message) {
    return message.type | (message.error & 0x0Fu) << 8 | (message.isRequest ? REQUEST_FLAG : 0) |
           (message.error & 0x80u ? ERROR_FLAG : 0);
}

} // namespace

Message Message::Decode(ByteView area) {
    Message message;
    message.id = Get16(area, 0);
    const unsigned information = Get16(area, 2);
    message.type = Low(information);
    message.error = static_cast<std::uint8_t>((information >> 8 & 0x0F) | (information & ERROR_FLAG) >> 8);
    message.isRequest = (information & REQUEST_FLAG) != 0;
    message.command = Get16(area, 4);
    message.dataSize = Get16(area, 6);
    message.totalFrameCount = Get16(area, 8);
    message.frameNumber = Get16(area, 10);
    message.offset = Get32(area, 12);
    for (std::size_t i = 0; i < message.extended.size(); ++i)
        message.extended[i] = Get16(area, 16 + 2 * i);
    const ByteView data = area.subspan(MailboxMap::HEADER_SIZE);
    const auto taken = data.first(std::min<std::size_t>(message.dataSize, data.size()));
    message.data.assign(taken.begin(), taken.end());
    return message;
}

Bytes Message::Encode() const {
    Bytes area;
    area.reserve(MailboxMap::AREA_SIZE);
    Append16(area, id);
    Append16(area, Information(*this));
    Append16(area, command);
    Append16(area, dataSize);
    Append16(area, totalFrameCount);
    Append16(area, frameNumber);
    Append32(area, offset);
    for (const std::uint16_t word : extended)
        Append16(area, word);
    Append(area, data);
    return area;
}

} // namespace VirtualModule
