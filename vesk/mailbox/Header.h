// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/ErrorCode.h"
#include "vesk/mailbox/MessageType.h"
#include "vesk/system/Array.h"

namespace Vesk::Mailbox {

/// The 32 bytes in front of every message: of the request in mailbox-in, of the response in mailbox-out.
class Header : public System::Object {
public:
    /// Keeps `extended` itself. ArgumentNullException naming "type", "error" or "extended";
    /// ArgumentOutOfRangeException unless `extended` has 8 words.
    static std::shared_ptr<Header>
    Create(unsigned short messageId, std::shared_ptr<Mailbox::MessageType> type,
           std::shared_ptr<ErrorCode> error, bool isRequest, unsigned short command, unsigned short dataSize,
           unsigned short totalFrameCount, unsigned short frameNumber, unsigned int offset,
           std::shared_ptr<System::IArray<unsigned short>> extended);

    /// Decodes the 32 bytes of `array` from `offset` on; the mailbox areas are big-endian, stored headers
    /// are not. The fields are not checked against each other. EndOfStreamException when there are fewer
    /// bytes, ArgumentException with the value in decimal for an undefined error or message type.
    static std::shared_ptr<Header> FromArray(const std::shared_ptr<System::IArray<unsigned char>>& array,
                                             int offset, bool bigEndian);

    /// Encodes into the 32 bytes of `array` from `offset` on, big-endian. IOException when there are fewer
    /// bytes.
    void ToArray(const std::shared_ptr<System::IArray<unsigned char>>& array, int offset) const;

    System::String ToString() const override;

    /// The module copies the request's into its response.
    const unsigned short MessageId;
    const std::shared_ptr<Mailbox::MessageType> MessageType;
    const std::shared_ptr<ErrorCode> Error;
    /// True in a request, false in a response.
    const bool IsRequest;
    const unsigned short Command;
    /// Bytes of data behind the header.
    const unsigned short DataSize;
    /// Frames of the whole transfer, and the number of this one, counted from 1.
    const unsigned short TotalFrameCount;
    const unsigned short FrameNumber;
    /// Place of this frame's data in the whole transfer, in bytes.
    const unsigned int Offset;
    /// Eight words; their meaning belongs to the command.
    const std::shared_ptr<System::IArray<unsigned short>> Extended;

protected:
    Header(unsigned short messageId, std::shared_ptr<Mailbox::MessageType> type,
           std::shared_ptr<ErrorCode> error, bool isRequest, unsigned short command, unsigned short dataSize,
           unsigned short totalFrameCount, unsigned short frameNumber, unsigned int offset,
           std::shared_ptr<System::IArray<unsigned short>> extended);
};

} // namespace Vesk::Mailbox
