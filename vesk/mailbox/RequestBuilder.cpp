// SPDX-License-Identifier: MIT
#include "vesk/mailbox/RequestBuilder.h"

#include "vesk/hostinterface/MailboxDpRam.h"
#include "vesk/mailbox/Request.h"

namespace Vesk::Mailbox {

using HostInterface::MailboxDpRam::EXTENDED_WORDS;
using HostInterface::MailboxDpRam::MAX_DATA_SIZE;
using System::Array;
using System::IArray;

std::shared_ptr<RequestBuilder> RequestBuilder::Create() {
    return System::MakeShared<RequestBuilder>();
}

std::shared_ptr<RequestBuilder> RequestBuilder::Create(const MailboxCommand& command) {
    return Create()->Type(command.type)->Name(command.name)->Command(command.number);
}

std::shared_ptr<RequestBuilder> RequestBuilder::Type(std::shared_ptr<MessageType> type) {
    _type = std::move(type);
    return shared_from_this();
}

std::shared_ptr<RequestBuilder> RequestBuilder::Name(System::String name) {
    _name = std::move(name);
    return shared_from_this();
}

std::shared_ptr<RequestBuilder> RequestBuilder::Command(unsigned short command) {
    _command = command;
    return shared_from_this();
}

std::shared_ptr<RequestBuilder> RequestBuilder::TotalFrameCount(unsigned short totalFrameCount) {
    _totalFrameCount = totalFrameCount;
    return shared_from_this();
}

std::shared_ptr<RequestBuilder> RequestBuilder::FrameNumber(unsigned short frameNumber) {
    _frameNumber = frameNumber;
    return shared_from_this();
}

std::shared_ptr<RequestBuilder> RequestBuilder::Offset(unsigned int offset) {
    _offset = offset;
    return shared_from_this();
}

std::shared_ptr<RequestBuilder> RequestBuilder::Extended(unsigned short value, int index) {
    if (!_extended)
        _extended = Array<unsigned short>::Create(EXTENDED_WORDS);
    _extended->Set(index, value);
    return shared_from_this();
}

std::shared_ptr<RequestBuilder> RequestBuilder::Data(std::shared_ptr<IArray<unsigned char>> data) {
    _data = std::move(data);
    return shared_from_this();
}

template <class T>
static std::shared_ptr<IArray<T>> CopyOf(const std::shared_ptr<IArray<T>>& array) {
    return Array<T>::Create(std::vector<T>(array->Data(), array->Data() + array->Count()));
}

std::shared_ptr<IRequest> RequestBuilder::Build() {
    // Without elements there is nothing to change, so all requests without data share one array, for ever.
    static const auto& NO_DATA = *new std::shared_ptr<IArray<unsigned char>>(Array<unsigned char>::Create(0));

    if (!_type)
        System::_throw_argument_null_exception("_type");
    if (_data && _data->Count() > MAX_DATA_SIZE)
        System::_env_throw(System::ArgumentOutOfRangeException::Create(_data->ToString()));
    if (_name.IsNull())
        System::_throw_argument_null_exception("_name");
    return System::MakeShared<Request>(_type, _command, _totalFrameCount, _frameNumber, _offset,
                                       _extended ? CopyOf(_extended)
                                                 : Array<unsigned short>::Create(EXTENDED_WORDS),
                                       _data ? CopyOf(_data) : NO_DATA, _name);
}

} // namespace Vesk::Mailbox
