// SPDX-License-Identifier: MIT
#include "vesk/mailbox/MailboxResponseException.h"

#include "vesk/core/TextOf.h"

namespace Vesk::Mailbox {

std::shared_ptr<MailboxResponseException> MailboxResponseException::Create(System::String message) {
    return System::MakeShared<MailboxResponseException>(std::move(message));
}

std::shared_ptr<MailboxResponseException>
MailboxResponseException::Create(const std::shared_ptr<IResponse>& response) {
    if (!response)
        System::_throw_argument_null_exception("response");
    return Create(TextOf("Received erroneous mailbox response:\n", response->ToString(), "\n"));
}

std::shared_ptr<MailboxResponseException>
MailboxResponseException::Create(const std::shared_ptr<IResponse>& response,
                                 const std::shared_ptr<IRequest>& request) {
    if (!request)
        System::_throw_argument_null_exception("request");
    return Create(TextOf(Create(response)->Message(), "Mailbox request:\n", request->ToString(), "\n"));
}

void MailboxResponseException::ThrowIfError(const std::shared_ptr<IResponse>& response) {
    if (!response)
        System::_throw_argument_null_exception("response");
    if (response->Error() != ErrorCode::NO_ERROR)
        System::_env_throw(Create(response));
}

System::String MailboxResponseException::TypeName() const {
    return "Vesk.Mailbox.MailboxResponseException";
}

} // namespace Vesk::Mailbox
