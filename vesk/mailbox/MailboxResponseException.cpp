// SPDX-License-Identifier: MIT
#include "vesk/mailbox/MailboxResponseException.h"

#include "vesk/system/text/StringBuilder.h"

namespace Vesk::Mailbox {

using System::Text::StringBuilder;

static StringBuilder TextOf(const std::shared_ptr<IResponse>& response) {
    StringBuilder text;
    text.AppendLine("Received erroneous mailbox response:").AppendLine(response->ToString());
    return text;
}

std::shared_ptr<MailboxResponseException> MailboxResponseException::Create(System::String message) {
    return System::MakeShared<MailboxResponseException>(std::move(message));
}

std::shared_ptr<MailboxResponseException>
MailboxResponseException::Create(const std::shared_ptr<IResponse>& response) {
    return Create(TextOf(response).ToString());
}

std::shared_ptr<MailboxResponseException>
MailboxResponseException::Create(const std::shared_ptr<IResponse>& response,
                                 const std::shared_ptr<IRequest>& request) {
    StringBuilder text = TextOf(response);
    return Create(text.AppendLine("Mailbox request:").AppendLine(request->ToString()).ToString());
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
