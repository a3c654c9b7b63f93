// SPDX-License-Identifier: MIT
#include "vesk/mailbox/MailboxTimeoutException.h"

#include "vesk/core/TextOf.h"
#include "vesk/system/Checks.h"
#include "vesk/system/MakeShared.h"

namespace Vesk::Mailbox {

std::shared_ptr<MailboxTimeoutException> MailboxTimeoutException::Create(System::String message) {
    return System::MakeShared<MailboxTimeoutException>(std::move(message));
}

std::shared_ptr<MailboxTimeoutException>
MailboxTimeoutException::Create(const std::shared_ptr<IRequest>& request, int timeoutSeconds) {
    if (!request)
        System::_throw_argument_null_exception("request");
    return Create(
        TextOf("Timeout after ", timeoutSeconds, " seconds.\nMailbox request:\n", request->ToString(), "\n"));
}

System::String MailboxTimeoutException::TypeName() const {
    return "Vesk.Mailbox.MailboxTimeoutException";
}

} // namespace Vesk::Mailbox
