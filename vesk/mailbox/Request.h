// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/IRequest.h"

namespace Vesk::Mailbox {

/// A request as RequestBuilder::Build makes it; the two arrays are its own.
class Request : public IRequest {
public:
    System::String ToString() const override;

    std::shared_ptr<MessageType> Type() override { return _type; }

    unsigned short Command() override { return _command; }

    unsigned short TotalFrameCount() override { return _totalFrameCount; }

    unsigned short FrameNumber() override { return _frameNumber; }

    unsigned int Offset() override { return _offset; }

    std::shared_ptr<System::IArray<unsigned short>> Extended() override { return _extended; }

    std::shared_ptr<System::IArray<unsigned char>> Data() override { return _data; }

    System::String Name() override { return _name; }

protected:
    Request(std::shared_ptr<MessageType> type, unsigned short command, unsigned short totalFrameCount,
            unsigned short frameNumber, unsigned int offset,
            std::shared_ptr<System::IArray<unsigned short>> extended,
            std::shared_ptr<System::IArray<unsigned char>> data, System::String name);

private:
    std::shared_ptr<MessageType> _type;
    unsigned short _command;
    unsigned short _totalFrameCount;
    unsigned short _frameNumber;
    unsigned int _offset;
    std::shared_ptr<System::IArray<unsigned short>> _extended;
    std::shared_ptr<System::IArray<unsigned char>> _data;
    System::String _name;
};

} // namespace Vesk::Mailbox
