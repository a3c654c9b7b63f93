// SPDX-License-Identifier: MIT
#include "dbus/Answers.h"

#include "dbus/Text.h"

#include "vesk/modules/dpvm/DPVMMessages.h"

namespace Vesk::DBus {

using Outcome = Question::Outcome;

sdbus::Error Errors::Of(const Question& question) {
    switch (question.outcome) {
    case Outcome::REFUSED:
        return {REFUSED, std::to_string(question.errorCode) + ": " + BusText(question.why)};
    case Outcome::NOT_READY:
        return {NOT_READY, BusText(question.why)};
    case Outcome::INVALID:
        return {INVALID, BusText(question.why)};
    case Outcome::TIMED_OUT:
        return {TIMED_OUT, BusText(question.why)};
    case Outcome::ANSWERED:
    case Outcome::FAILED:
        break;
    }
    return {FAILED, BusText(question.why)};
}

sdbus::Error Errors::Busy() {
    return sdbus::Error(BUSY, "too many requests wait already");
}

std::string CallerOf(const sdbus::IObject& object) {
    return object.getCurrentlyProcessedMessage()->getSender();
}

std::unique_ptr<Question> Messages(std::vector<std::shared_ptr<Mailbox::IRequest>> requests,
                                   std::size_t deciding) {
    auto question = std::make_unique<Question>();
    question->requests = std::move(requests);
    question->deciding = deciding;
    return question;
}

std::unique_ptr<Question> ByClass2(std::uint8_t address, std::shared_ptr<Mailbox::IRequest> request) {
    using Modules::DPVM::DPVMMessages;
    const unsigned short reference = ReferenceOf(address);
    return Messages({DPVMMessages::Class2InitiateNormal(address, reference), std::move(request),
                     DPVMMessages::Class2Abort(reference, 0, 0)},
                    1);
}

} // namespace Vesk::DBus
