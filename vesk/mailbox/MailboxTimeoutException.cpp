// SPDX-License-Identifier: MIT
#include "vesk/mailbox/MailboxTimeoutException.h"

#include "vesk/system/MakeShared.h"
#include "vesk/system/text/StringBuilder.h"

namespace Vesk::Mailbox {

std::shared_ptr<MailboxTimeoutException> MailboxTimeoutException::Create(System::String message) {
    return System::MakeShared<MailboxTimeoutException>(std::move(message));
}

std::shared_ptr<MailboxTimeoutException>
MailboxTimeoutException::Create(const std::shared_ptr<IRequest>& request, int timeoutSeconds) {
    return Create(System::Text::StringBuilder()
                      .Append("Timeout after ")
                      .Append(timeoutSeconds)
                      .AppendLine(" seconds.")
                      .AppendLine("Mailbox request:")
                      .AppendLine(request->ToString())
                      .ToString());
}

System::String MailboxTimeoutException::TypeName() const {
    return "Vesk.Mailbox.MailboxTimeoutException";
}

} // namespace Vesk::Mailbox
