// SPDX-License-Identifier: MIT
#include "vesk/mailbox/Header.h"

#include "vesk/hostinterface/MailboxDpRam.h"
#include "vesk/mailbox/MessageText.h"
#include "vesk/system/io/IOException.h"

namespace Vesk::Mailbox {

using HostInterface::MailboxDpRam::EXTENDED_WORDS;
using HostInterface::MailboxDpRam::HEADER_SIZE;
using System::Array;
using System::IArray;
using System::String;

// The message information word: the type, the error as a flag and a nibble, and whether it is a request.
static constexpr unsigned int TYPE_MASK = 0x00FF;
static constexpr unsigned int ERROR_NIBBLE = 0x000F;
static constexpr int ERROR_NIBBLE_SHIFT = 8;
static constexpr unsigned int REQUEST_FLAG = 0x4000;
static constexpr unsigned int ERROR_FLAG = 0x8000;
static constexpr unsigned char ERROR_ID_FLAG = 0x80;

namespace {

/// Takes the fields out of a header, one after the other.
class FieldReader {
public:
    FieldReader(const unsigned char* bytes, bool bigEndian) : _next(bytes), _bigEndian(bigEndian) {}

    unsigned short UInt16() { return static_cast<unsigned short>(Take(2)); }

    unsigned int UInt32() { return Take(4); }

private:
    unsigned int Take(int width) {
        unsigned int value = 0;
        for (int i = 0; i < width; ++i)
            value = value << 8 | _next[_bigEndian ? i : width - 1 - i];
        _next += width;
        return value;
    }

    const unsigned char* _next;
    bool _bigEndian;
};

/// Puts the fields into a header, one after the other.
class FieldWriter {
public:
    explicit FieldWriter(unsigned char* bytes) : _next(bytes) {}

    void UInt16(unsigned int value) { Put(value, 2); }

    void UInt32(unsigned int value) { Put(value, 4); }

private:
    void Put(unsigned int value, int width) {
        for (int i = width - 1; i >= 0; --i)
            *_next++ = static_cast<unsigned char>(value >> 8 * i);
    }

    unsigned char* _next;
};

} // namespace

static unsigned char ErrorId(unsigned int information) {
    const unsigned int nibble = information >> ERROR_NIBBLE_SHIFT & ERROR_NIBBLE;
    return static_cast<unsigned char>(nibble | (information & ERROR_FLAG ? ERROR_ID_FLAG : 0));
}

static unsigned int Information(const Header& header) {
    const unsigned int error = header.Error->Id;
    return header.MessageType->Id | (error & ERROR_NIBBLE) << ERROR_NIBBLE_SHIFT |
           (header.IsRequest ? REQUEST_FLAG : 0) | (error & ERROR_ID_FLAG ? ERROR_FLAG : 0);
}

/// The header's first byte, once it is sure that all of them are there.
template <class Failure>
static unsigned char* Locate(const std::shared_ptr<IArray<unsigned char>>& array, int offset) {
    if (!array)
        System::_throw_argument_null_exception("array");
    if (offset < 0 || offset > array->Count() - HEADER_SIZE)
        System::_env_throw(Failure::Create("No mailbox header at byte " + std::to_string(offset) + " of " +
                                           std::to_string(array->Count())));
    return array->Data() + offset;
}

std::shared_ptr<Header> Header::Create(unsigned short messageId, std::shared_ptr<Mailbox::MessageType> type,
                                       std::shared_ptr<ErrorCode> error, bool isRequest,
                                       unsigned short command, unsigned short dataSize,
                                       unsigned short totalFrameCount, unsigned short frameNumber,
                                       unsigned int offset,
                                       std::shared_ptr<IArray<unsigned short>> extended) {
    if (!type)
        System::_throw_argument_null_exception("type");
    if (!error)
        System::_throw_argument_null_exception("error");
    if (!extended)
        System::_throw_argument_null_exception("extended");
    if (extended->Count() != EXTENDED_WORDS)
        System::_env_throw(System::ArgumentOutOfRangeException::Create(std::to_string(extended->Count())));
    return System::MakeShared<Header>(messageId, std::move(type), std::move(error), isRequest, command,
                                      dataSize, totalFrameCount, frameNumber, offset, std::move(extended));
}

Header::Header(unsigned short messageId, std::shared_ptr<Mailbox::MessageType> type,
               std::shared_ptr<ErrorCode> error, bool isRequest, unsigned short command,
               unsigned short dataSize, unsigned short totalFrameCount, unsigned short frameNumber,
               unsigned int offset, std::shared_ptr<IArray<unsigned short>> extended)
    : MessageId(messageId),
      MessageType(std::move(type)),
      Error(std::move(error)),
      IsRequest(isRequest),
      Command(command),
      DataSize(dataSize),
      TotalFrameCount(totalFrameCount),
      FrameNumber(frameNumber),
      Offset(offset),
      Extended(std::move(extended)) {}

std::shared_ptr<Header> Header::FromArray(const std::shared_ptr<IArray<unsigned char>>& array, int offset,
                                          bool bigEndian) {
    FieldReader fields(Locate<System::IO::EndOfStreamException>(array, offset), bigEndian);
    const unsigned short messageId = fields.UInt16();
    const unsigned short information = fields.UInt16();
    const unsigned short command = fields.UInt16();
    const unsigned short dataSize = fields.UInt16();
    const unsigned short totalFrameCount = fields.UInt16();
    const unsigned short frameNumber = fields.UInt16();
    const unsigned int dataOffset = fields.UInt32();
    const auto extended = Array<unsigned short>::Create(EXTENDED_WORDS);
    for (int i = 0; i < EXTENDED_WORDS; ++i)
        extended->Set(i, fields.UInt16());

    // The error first: it is the one that is reported when both are undefined.
    std::shared_ptr<ErrorCode> error = ErrorCode::GetById(ErrorId(information));
    auto type = Mailbox::MessageType::GetById(static_cast<unsigned char>(information & TYPE_MASK));
    return Create(messageId, std::move(type), std::move(error), information & REQUEST_FLAG, command, dataSize,
                  totalFrameCount, frameNumber, dataOffset, extended);
}

void Header::ToArray(const std::shared_ptr<IArray<unsigned char>>& array, int offset) const {
    FieldWriter fields(Locate<System::IO::IOException>(array, offset));
    fields.UInt16(MessageId);
    fields.UInt16(Information(*this));
    fields.UInt16(Command);
    fields.UInt16(DataSize);
    fields.UInt16(TotalFrameCount);
    fields.UInt16(FrameNumber);
    fields.UInt32(Offset);
    for (int i = 0; i < EXTENDED_WORDS; ++i)
        fields.UInt16(Extended->Get(i));
}

String Header::ToString() const {
    return MessageText()
        .Line(IsRequest ? "Request" : "Response")
        .Hex("ID", MessageId)
        .Line("Type", MessageType->ToString())
        .Hex("Command", Command)
        .Hex("Data size", DataSize)
        .Hex("Total frame count", TotalFrameCount)
        .Hex("Frame number", FrameNumber)
        .Hex("Offset", Offset)
        .Elements("Extended", Extended)
        .ToString();
}

} // namespace Vesk::Mailbox
