// SPDX-License-Identifier: MIT
#include "vesk/mailbox/Request.h"

#include "vesk/mailbox/MessageText.h"

namespace Vesk::Mailbox {

Request::Request(std::shared_ptr<MessageType> type, unsigned short command, unsigned short totalFrameCount,
                 unsigned short frameNumber, unsigned int offset,
                 std::shared_ptr<System::IArray<unsigned short>> extended,
                 std::shared_ptr<System::IArray<unsigned char>> data, System::String name)
    : _type(std::move(type)),
      _command(command),
      _totalFrameCount(totalFrameCount),
      _frameNumber(frameNumber),
      _offset(offset),
      _extended(std::move(extended)),
      _data(std::move(data)),
      _name(std::move(name)) {}

System::String Request::ToString() const {
    return MessageText()
        .Line("Mailbox.Request", _name)
        .Line("Type", _type->ToString())
        .Hex("Command", _command)
        .Hex("Total frame count", _totalFrameCount)
        .Hex("Frame number", _frameNumber)
        .Hex("Offset", _offset)
        .Elements("Extended", _extended)
        .Elements("Data", _data)
        .ToString();
}

} // namespace Vesk::Mailbox
