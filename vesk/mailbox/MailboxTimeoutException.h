// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/core/VeskException.h"
#include "vesk/mailbox/IRequest.h"

namespace Vesk::Mailbox {

/// A request that the module did not answer in time.
class MailboxTimeoutException : public VeskException {
public:
    static std::shared_ptr<MailboxTimeoutException> Create(System::String message);
    /// The text shows the time-out and the request. ArgumentNullException without a request.
    static std::shared_ptr<MailboxTimeoutException> Create(const std::shared_ptr<IRequest>& request,
                                                           int timeoutSeconds);
    System::String TypeName() const override;

protected:
    using VeskException::VeskException;
};

} // namespace Vesk::Mailbox
