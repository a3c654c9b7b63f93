// SPDX-License-Identifier: MIT
#include "tools/vesk/explain/Advice.h"

#include "tools/vesk/explain/Explanations.h"
#include "tools/vesk/session/Session.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Text.h"
#include "vesk/mailbox/ErrorCode.h"
#include "vesk/modules/dpvm/Vt22FatalEventException.h"

namespace VeskTool {

namespace {

/// The library exception behind what was thrown, or null.
std::shared_ptr<System::Exception> LibraryException(const std::exception& exception) {
    const auto* const thrown = dynamic_cast<const System::Thrown*>(&exception);
    return thrown ? std::shared_ptr<System::Exception>(*thrown) : nullptr;
}

std::string MessageOf(const System::Exception& exception) {
    return exception.Message().IsNull() ? "" : exception.Message().Value();
}

Advice AdviceFrom(const Explanation& explanation) {
    return {explanation.meaning,
            explanation.check + (explanation.next.empty() ? "" : " " + explanation.next)};
}

Advice AdviceForRefusal(unsigned char code) {
    return AdviceFrom(Explain(Vesk::Mailbox::ErrorCode::GetById(code)->Name.Value()).front());
}

std::string TextOf(Vesk::Modules::DPVM::IVt22FatalEventInfo& info) {
    return " It says: error code " + Hex(info.ErrorCode()) + ", cause " + Hex(info.ErrorCause()) + ", task " +
           Hex(info.TaskId()) + ", " + Printable(info.SourceFile().Value().c_str()) + " line " +
           std::to_string(info.SourceLine()) + ".";
}

} // namespace

std::string TypeOf(const std::exception& exception) {
    if (const auto cause = LibraryException(exception))
        return cause->TypeName().Value();
    if (dynamic_cast<const Refusal*>(&exception) != nullptr)
        return "Refusal";
    const auto* const failure = dynamic_cast<const Failure*>(&exception);
    return failure ? failure->Type() : "Failure";
}

Advice AdviceFor(const std::exception& exception) {
    if (const auto* const refusal = dynamic_cast<const Refusal*>(&exception))
        return AdviceForRefusal(refusal->Code());
    if (const auto* const failure = dynamic_cast<const Failure*>(&exception))
        return {"", failure->Hint()};
    const auto cause = LibraryException(exception);
    if (!cause)
        return {};
    const auto* const known = Failures::FindFailure(cause->TypeName().Value(), MessageOf(*cause));
    if (!known)
        return {};
    Advice advice = AdviceFrom(ExplanationOf(*known));
    if (const auto fatal = std::dynamic_pointer_cast<Vesk::Modules::DPVM::Vt22FatalEventException>(cause))
        advice.cause += TextOf(*fatal->Info());
    return advice;
}

nlohmann::ordered_json ErrorToJson(const std::string& type, const std::string& message,
                                   const std::string& hint) {
    return {{"error", {{"type", type}, {"message", message}, {"hint", hint}}}};
}

nlohmann::ordered_json ErrorToJson(const std::exception& exception) {
    const auto cause = LibraryException(exception);
    std::string message = cause && !cause->Message().IsNull() ? MessageOf(*cause) : exception.what();
    while (!message.empty() && message.back() == '\n')
        message.pop_back();
    return ErrorToJson(TypeOf(exception), message, AdviceFor(exception).next);
}

} // namespace VeskTool
