// SPDX-License-Identifier: MIT
#include "vesk/mailbox/Response.h"

#include "vesk/hostinterface/MailboxDpRam.h"
#include "vesk/mailbox/MessageText.h"

namespace Vesk::Mailbox {

std::shared_ptr<Response> Response::Create(std::shared_ptr<ErrorCode> error,
                                           std::shared_ptr<System::IArray<unsigned short>> extended,
                                           std::shared_ptr<System::IArray<unsigned char>> data) {
    if (!error)
        System::_throw_argument_null_exception("error");
    if (!extended)
        System::_throw_argument_null_exception("extended");
    if (!data)
        System::_throw_argument_null_exception("data");
    if (data->Count() > HostInterface::MailboxDpRam::MAX_DATA_SIZE)
        System::_env_throw(System::ArgumentOutOfRangeException::Create(std::to_string(data->Count())));
    return System::MakeShared<Response>(std::move(error), std::move(extended), std::move(data));
}

Response::Response(std::shared_ptr<ErrorCode> error, std::shared_ptr<System::IArray<unsigned short>> extended,
                   std::shared_ptr<System::IArray<unsigned char>> data)
    : _error(std::move(error)), _extended(std::move(extended)), _data(std::move(data)) {}

System::String Response::ToString() const {
    return MessageText()
        .Line("Mailbox.Response")
        .Line("Error", _error->ToString())
        .Elements("Extended", _extended)
        .Elements("Data", _data)
        .ToString();
}

} // namespace Vesk::Mailbox
