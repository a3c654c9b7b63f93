// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/MessageType.h"
#include "vesk/system/Array.h"

namespace Vesk::Mailbox {

/// What a caller wants the module to do. It never changes and carries no message id: the exchange gives it
/// one when it is queued.
class IRequest : public System::Object {
public:
    virtual std::shared_ptr<MessageType> Type() = 0;
    virtual unsigned short Command() = 0;
    virtual unsigned short TotalFrameCount() = 0;
    virtual unsigned short FrameNumber() = 0;
    virtual unsigned int Offset() = 0;
    /// Eight words; their meaning belongs to the command.
    virtual std::shared_ptr<System::IArray<unsigned short>> Extended() = 0;
    /// At most 256 bytes.
    virtual std::shared_ptr<System::IArray<unsigned char>> Data() = 0;
    /// The command's name for logs.
    virtual System::String Name() = 0;
};

} // namespace Vesk::Mailbox
