// SPDX-License-Identifier: MIT
#include "vesk/mailbox/MailboxAreaHandler.h"

#include "vesk/core/FormatArray.h"
#include "vesk/core/TextOf.h"
#include "vesk/hostinterface/MailboxDpRam.h"
#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/mailbox/Response.h"
#include "vesk/system/diagnostics/Trace.h"

#include <algorithm>

namespace Vesk::Mailbox {

using HostInterface::MailboxDpRam::AREA_SIZE;
using HostInterface::MailboxDpRam::HEADER_SIZE;
using HostInterface::MailboxDpRam::MAX_DATA_SIZE;
using System::Array;
using System::IArray;

static void TraceMessage(const char* what, const System::Object& message) {
    if (RuntimeConfig::_printMailbox)
        System::Diagnostics::Trace::TraceDebug(TextOf(what, message.ToString()));
}

std::shared_ptr<MailboxAreaHandler>
MailboxAreaHandler::Create(unsigned short offset,
                           std::shared_ptr<HostInterface::IHostInterface> hostInterface) {
    if (!hostInterface)
        System::_throw_argument_null_exception("hostInterface");
    return System::MakeShared<MailboxAreaHandler>(offset, std::move(hostInterface));
}

MailboxAreaHandler::MailboxAreaHandler(unsigned short offset,
                                       std::shared_ptr<HostInterface::IHostInterface> hostInterface)
    : _hostInterface(std::move(hostInterface)),
      _mailboxIn(Array<unsigned char>::Create(AREA_SIZE)),
      _queue(System::Collections::Generic::Queue<std::shared_ptr<RequestContainer>>::Create()),
      _mailboxInOffset(offset),
      _mailboxOutOffset(static_cast<unsigned short>(offset + AREA_SIZE)) {}

void MailboxAreaHandler::Enqueue(std::shared_ptr<IRequest> request,
                                 std::shared_ptr<IResponseAction> responseAction, int timeoutSeconds) {
    ++_messageId;
    _queue->Enqueue(
        RequestContainer::Create(_messageId, std::move(request), std::move(responseAction), timeoutSeconds));
}

bool MailboxAreaHandler::Update() {
    if (_outstanding) {
        _outstanding->PollTimer();
        return false;
    }
    if (!_mailboxInFree || _queue->IsEmpty())
        return false;
    auto next = _queue->Dequeue();
    Send(*next);
    next->StartTimer();
    _outstanding = std::move(next);
    _mailboxInFree = false;
    return true;
}

void MailboxAreaHandler::Send(const RequestContainer& container) {
    IRequest& request = *container.Request;
    TraceMessage("MailboxAreaHandler, sending mailbox:", request);

    // The application may have a class of its own for its request.
    const std::shared_ptr<IArray<unsigned char>> data = request.Data();
    if (!data)
        System::_throw_argument_null_exception("data");
    const int count = data->Count();
    if (count > MAX_DATA_SIZE)
        System::_env_throw(System::ArgumentOutOfRangeException::Create(std::to_string(count)));
    const auto header =
        Header::Create(container.MessageId, request.Type(), ErrorCode::NO_ERROR, true, request.Command(),
                       static_cast<unsigned short>(count), request.TotalFrameCount(), request.FrameNumber(),
                       request.Offset(), request.Extended());
    header->ToArray(_mailboxIn, 0);
    std::copy_n(data->Data(), count, _mailboxIn->Data() + HEADER_SIZE);
    _hostInterface->Write(_mailboxInOffset, _mailboxIn, 0, HEADER_SIZE + count);
}

void MailboxAreaHandler::RequestAcknowledged() {
    if (_mailboxInFree)
        System::_env_throw(System::InvalidOperationException::Create(nullptr));
    _mailboxInFree = true;
}

void MailboxAreaHandler::ResponseAvailable() {
    const auto message = Array<unsigned char>::Create(AREA_SIZE);
    _hostInterface->Read(_mailboxOutOffset, message, 0, AREA_SIZE);
    if (!_outstanding)
        System::_env_throw(MailboxResponseException::Create(
            TextOf("Received response without an outstanding request:\n",
                   FormatArray(message, 0, message->Count(), "0x", 2, 16), "\n")));

    const auto header = Header::FromArray(message, 0, true);
    CheckBelongs(*header);
    // The segment refuses a data size that leaves the area.
    const auto response =
        Response::Create(header->Error, header->Extended,
                         System::ArraySegment<unsigned char>::Create(message, HEADER_SIZE, header->DataSize));
    TraceMessage("MailboxAreaHandler, received mailbox:", *response);

    const std::shared_ptr<RequestContainer> answered = _outstanding; // lasts until its action has returned
    answered->InvokeResponseAction(response);
    _outstanding = nullptr;
}

void MailboxAreaHandler::CheckBelongs(const Header& header) const {
    IRequest& request = *_outstanding->Request;
    const char* mismatch = header.MessageId != _outstanding->MessageId ? "MessageId"
                           : header.MessageType != request.Type()      ? "MessageType"
                           : header.Command != request.Command()       ? "Command"
                                                                       : nullptr;
    if (mismatch)
        System::_env_throw(MailboxResponseException::Create(
            TextOf(mismatch, " of response header does not match outstanding request:\n", header.ToString(),
                   "\n", request.ToString(), "\n")));
}

} // namespace Vesk::Mailbox
