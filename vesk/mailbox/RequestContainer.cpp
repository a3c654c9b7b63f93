// SPDX-License-Identifier: MIT
#include "vesk/mailbox/RequestContainer.h"

#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/mailbox/MailboxTimeoutException.h"

namespace Vesk::Mailbox {

static constexpr std::int64_t NANOSECONDS_PER_SECOND = 1'000'000'000;

std::shared_ptr<RequestContainer> RequestContainer::Create(unsigned short messageId,
                                                           std::shared_ptr<IRequest> request,
                                                           std::shared_ptr<IResponseAction> responseAction,
                                                           int timeoutSeconds) {
    if (!request)
        System::_throw_argument_null_exception("request");
    if (timeoutSeconds < 0)
        System::_throw_not_less_exception(timeoutSeconds, 0, "timeoutSeconds", "zero");
    if (timeoutSeconds == 0)
        System::_throw_not_equal_exception(timeoutSeconds, 0, "timeoutSeconds", "zero");
    return System::MakeShared<RequestContainer>(messageId, std::move(request), std::move(responseAction),
                                                timeoutSeconds);
}

RequestContainer::RequestContainer(unsigned short messageId, std::shared_ptr<IRequest> request,
                                   std::shared_ptr<IResponseAction> responseAction, int timeoutSeconds)
    : MessageId(messageId),
      Request(std::move(request)),
      ResponseAction(std::move(responseAction)),
      _timeoutSeconds(timeoutSeconds) {
    _timer._nanoseconds = timeoutSeconds * NANOSECONDS_PER_SECOND;
}

void RequestContainer::PollTimer() const {
    if (_timer.Expired())
        System::_env_throw(MailboxTimeoutException::Create(Request, _timeoutSeconds));
}

void RequestContainer::InvokeResponseAction(const std::shared_ptr<IResponse>& response) const {
    if (ResponseAction)
        ResponseAction->Invoke(response);
    else if (response->Error() != ErrorCode::NO_ERROR)
        System::_env_throw(MailboxResponseException::Create(response, Request));
}

} // namespace Vesk::Mailbox
