// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/Commands.h"
#include "vesk/mailbox/IRequest.h"

namespace Vesk::Mailbox {

/// Makes requests: `RequestBuilder::Create()->Type(…)->Name(…)->Command(…)->Build()`. Building leaves the
/// builder as it is, so that similar requests can follow.
class RequestBuilder : public System::Object, public std::enable_shared_from_this<RequestBuilder> {
public:
    /// Command 0, frame 1 of 1, offset 0, extended words 0, no data; neither type nor name.
    static std::shared_ptr<RequestBuilder> Create();
    /// The same with the type, the number and the name of `command`.
    static std::shared_ptr<RequestBuilder> Create(const MailboxCommand& command);

    std::shared_ptr<RequestBuilder> Type(std::shared_ptr<MessageType> type);
    /// The command's name for logs.
    std::shared_ptr<RequestBuilder> Name(System::String name);
    std::shared_ptr<RequestBuilder> Command(unsigned short command);
    std::shared_ptr<RequestBuilder> TotalFrameCount(unsigned short totalFrameCount);
    std::shared_ptr<RequestBuilder> FrameNumber(unsigned short frameNumber);
    std::shared_ptr<RequestBuilder> Offset(unsigned int offset);
    /// Sets extended word `index`. ArgumentOutOfRangeException outside 0 .. 7.
    std::shared_ptr<RequestBuilder> Extended(unsigned short value, int index);
    /// Null for no data.
    std::shared_ptr<RequestBuilder> Data(std::shared_ptr<System::IArray<unsigned char>> data);

    /// A request with copies of the arrays. ArgumentNullException naming "_type" or "_name" when it was not
    /// set; ArgumentOutOfRangeException with the array's text for more than 256 bytes of data.
    std::shared_ptr<IRequest> Build();

protected:
    RequestBuilder() = default;

private:
    std::shared_ptr<MessageType> _type;
    unsigned short _command = 0;
    unsigned short _totalFrameCount = 1;
    unsigned short _frameNumber = 1;
    unsigned int _offset = 0;
    std::shared_ptr<System::IArray<unsigned short>> _extended; // null while all words are 0
    std::shared_ptr<System::IArray<unsigned char>> _data;
    System::String _name;
};

} // namespace Vesk::Mailbox
