// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/core/VeskException.h"
#include "vesk/mailbox/IRequest.h"
#include "vesk/mailbox/IResponse.h"

namespace Vesk::Mailbox {

/// A response that was not asked for, or that reports an error where none is accepted.
class MailboxResponseException : public VeskException {
public:
    static std::shared_ptr<MailboxResponseException> Create(System::String message);
    /// The module answered with an error; the text shows the response, and the request if it is asked for.
    /// ArgumentNullException naming the one that is null.
    static std::shared_ptr<MailboxResponseException> Create(const std::shared_ptr<IResponse>& response);
    static std::shared_ptr<MailboxResponseException> Create(const std::shared_ptr<IResponse>& response,
                                                            const std::shared_ptr<IRequest>& request);

    /// Throws Create(response) for a response that reports an error; ArgumentNullException without one.
    static void ThrowIfError(const std::shared_ptr<IResponse>& response);

    System::String TypeName() const override;

protected:
    using VeskException::VeskException;
};

} // namespace Vesk::Mailbox
