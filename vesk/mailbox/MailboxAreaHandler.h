// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/hostinterface/IHostInterface.h"
#include "vesk/mailbox/Header.h"
#include "vesk/mailbox/RequestContainer.h"
#include "vesk/system/collections/Queue.h"

namespace Vesk::Mailbox {

/// The exchange of messages through the two mailbox areas: requests go out one at a time, in the order in
/// which they were queued, each after the module has taken and answered the one before it.
///
/// It works on the mailbox areas alone. Its owner reads the module's indications, calls the operations below
/// from one thread, and tells the module what Update has written. A response action runs inside
/// ResponseAvailable and may queue further requests; if it may make the owner let go of the handler, the
/// owner holds a shared reference during the call.
class MailboxAreaHandler : public System::Object {
public:
    /// Mailbox-in at DPRAM `offset`, mailbox-out right behind it. Nothing is sent before HandleBootEvent.
    /// ArgumentNullException without a host interface.
    static std::shared_ptr<MailboxAreaHandler>
    Create(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface);

    /// The module has booted, so its mailbox-in is free. What is queued or outstanding stays so.
    void HandleBootEvent() { _mailboxInFree = true; }

    /// Queues a request with the next message id (1 first, 0 after 65535). The time-out runs from the moment
    /// the request is written; `responseAction` may be null, which makes an error in the response a failure.
    /// ArgumentNullException without a request, ArgumentOutOfRangeException unless `timeoutSeconds` is above
    /// 0; nothing is queued then, but the id is spent.
    void Enqueue(std::shared_ptr<IRequest> request, std::shared_ptr<IResponseAction> responseAction,
                 int timeoutSeconds);

    /// The module has taken the request out of mailbox-in. InvalidOperationException when that is known.
    void RequestAcknowledged();

    /// The module has put a response into mailbox-out: reads it and hands it to the request's action.
    /// MailboxResponseException for one that does not belong to the outstanding request, or has an error
    /// while there is no action; ArgumentException for an undefined error or message type;
    /// ArgumentOutOfRangeException for a data size above 256. The request stays outstanding after any
    /// failure, one of its action included.
    void ResponseAvailable();

    /// Writes the next request if one is waiting, mailbox-in is free and nothing is outstanding; true when it
    /// did, and the module is to be told. MailboxTimeoutException, on every call, while the outstanding
    /// request is overdue; ArgumentOutOfRangeException with the count for a request with more than 256 bytes
    /// of data, which is then dropped with nothing written.
    bool Update();

protected:
    MailboxAreaHandler(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface);

private:
    void Send(const RequestContainer& container);
    void CheckBelongs(const Header& header) const;

    std::shared_ptr<HostInterface::IHostInterface> _hostInterface;
    std::shared_ptr<System::IArray<unsigned char>> _mailboxIn; // the message being written
    std::shared_ptr<System::Collections::Generic::Queue<std::shared_ptr<RequestContainer>>> _queue;
    std::shared_ptr<RequestContainer> _outstanding; // written, and not yet answered
    bool _mailboxInFree = false;
    unsigned short _mailboxInOffset;
    unsigned short _mailboxOutOffset;
    unsigned short _messageId = 0; // the last one given out
};

} // namespace Vesk::Mailbox
