// SPDX-License-Identifier: MIT
#include "tools/vesk/explain/Advice.h"

#include "failures/Outcome.h"
#include "tools/vesk/explain/Explanations.h"
#include "tools/vesk/session/Session.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Elements.h"
#include "tools/vesk/text/Text.h"
#include "vesk/mailbox/ErrorCode.h"
#include "vesk/modules/dpvm/Vt22FatalEventException.h"
#include "vesk/system/TimeSpan.h"

#include <string_view>
#include <system_error>

namespace VeskTool {

using Vesk::Modules::DPVM::Vt22FatalEventException;

namespace {

/// The library exception behind what was thrown, or null.
std::shared_ptr<System::Exception> LibraryException(const std::exception& exception) {
    const auto* const thrown = dynamic_cast<const System::Thrown*>(&exception);
    return thrown ? std::shared_ptr<System::Exception>(*thrown) : nullptr;
}

Advice AdviceFrom(const Explanation& explanation) {
    return {explanation.meaning,
            explanation.check + (explanation.next.empty() ? "" : " " + explanation.next)};
}

} // namespace

std::string TypeOf(const std::exception& exception) {
    if (const auto cause = LibraryException(exception))
        return cause->TypeName().Value();
    const auto* const failure = dynamic_cast<const Failure*>(&exception);
    return failure ? failure->Type() : "Failure";
}

std::string RawMessageOf(const std::exception& exception) {
    if (const auto cause = LibraryException(exception))
        return cause->Message().IsNull() ? "" : cause->Message().Value();
    const bool ofTheSystem = dynamic_cast<const std::system_error*>(&exception) != nullptr;
    if (ofTheSystem && !std::string_view(exception.what()).starts_with("standard output: "))
        return std::string("cannot be used: ") + exception.what(); // which names it
    const auto* const failure = dynamic_cast<const Failure*>(&exception);
    return failure ? failure->Message() : exception.what();
}

std::string MessageOf(const std::exception& exception) {
    if (dynamic_cast<const Failure*>(&exception))
        return OneLine(exception);
    const std::string message = OneLine(RawMessageOf(exception));
    return message.empty() ? AdviceFor(exception).cause : message;
}

std::string Told(const std::exception& exception) {
    return (LibraryException(exception) ? TypeOf(exception) + ": " : "") + MessageOf(exception);
}

Advice AdviceFor(const std::exception& exception) {
    if (const auto* const known = Failures::FindFailure(TypeOf(exception), RawMessageOf(exception)))
        return AdviceFrom(ExplanationOf(*known));
    const auto* const refusal = dynamic_cast<const Refusal*>(&exception);
    if (!refusal)
        return {};
    return AdviceFrom(Explain(Vesk::Mailbox::ErrorCode::GetById(refusal->Code())->Name.Value()).front());
}

nlohmann::ordered_json FatalEventOf(const std::exception& exception) {
    const auto fatal = std::dynamic_pointer_cast<Vt22FatalEventException>(LibraryException(exception));
    if (!fatal)
        return {};
    auto& info = *fatal->Info();
    const std::string file = info.SourceFile().Value();
    return {{"errorCode", info.ErrorCode()},
            {"errorCause", info.ErrorCause()},
            {"taskId", info.TaskId()},
            {"timeStamp", info.TimeStamp()->Nanoseconds() / 1'000'000},
            {"additionalInfo", HexDigits(Elements(*info.AdditionalInfo()))},
            {"sourceLine", info.SourceLine()},
            {"sourceFile", Printable(file.c_str())}};
}

std::string FatalEventText(const nlohmann::ordered_json& event) {
    const auto hex = [&event](const char* key) { return Hex(event[key].get<unsigned int>()); };
    return "error code " + hex("errorCode") + ", cause " + hex("errorCause") + ", task " + hex("taskId") +
           ", after " + event["timeStamp"].dump() + " ms, " + event["sourceFile"].get<std::string>() +
           " line " + event["sourceLine"].dump();
}

nlohmann::ordered_json ErrorToJson(const std::string& type, const std::string& message,
                                   const std::string& hint) {
    return {{"error", {{"type", type}, {"message", message}, {"hint", hint}}}};
}

nlohmann::ordered_json ErrorToJson(const std::exception& exception) {
    std::string message =
        dynamic_cast<const Failure*>(&exception) ? exception.what() : RawMessageOf(exception);
    while (!message.empty() && message.back() == '\n')
        message.pop_back();
    auto json = ErrorToJson(TypeOf(exception), message.empty() ? MessageOf(exception) : message,
                            AdviceFor(exception).next);
    if (const auto event = FatalEventOf(exception); !event.is_null())
        json["error"]["fatalEvent"] = event;
    return json;
}

} // namespace VeskTool
