// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/core/Timer.h"
#include "vesk/mailbox/IRequest.h"
#include "vesk/mailbox/IResponse.h"

namespace Vesk::Mailbox {

/// A request on its way: with its id, what gets its response, and how long the response may take.
class RequestContainer : public System::Object {
public:
    /// `responseAction` may be null. ArgumentNullException naming "request"; ArgumentOutOfRangeException
    /// unless `timeoutSeconds` is above 0.
    static std::shared_ptr<RequestContainer> Create(unsigned short messageId,
                                                    std::shared_ptr<IRequest> request,
                                                    std::shared_ptr<IResponseAction> responseAction,
                                                    int timeoutSeconds);

    /// The time-out runs from now on.
    void StartTimer() { _timer.Start(); }

    /// MailboxTimeoutException once the time has passed, again and again.
    void PollTimer() const;

    /// Hands over the response, whatever its error; what the action throws passes through. Without an action
    /// a response with an error is a MailboxResponseException.
    void InvokeResponseAction(const std::shared_ptr<IResponse>& response) const;

    const unsigned short MessageId;
    const std::shared_ptr<IRequest> Request;
    const std::shared_ptr<IResponseAction> ResponseAction;

protected:
    RequestContainer(unsigned short messageId, std::shared_ptr<IRequest> request,
                     std::shared_ptr<IResponseAction> responseAction, int timeoutSeconds);

private:
    // A part of the container, not an object of its own: a message takes few allocations.
    struct OwnTimer final : Timer {};

    OwnTimer _timer;
    int _timeoutSeconds;
};

} // namespace Vesk::Mailbox
