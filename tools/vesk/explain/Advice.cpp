// SPDX-License-Identifier: MIT
#include "tools/vesk/explain/Advice.h"

#include "tools/vesk/session/Session.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Text.h"
#include "vesk/mailbox/ErrorCode.h"
#include "vesk/modules/dpvm/Vt22FatalEventException.h"

#include <array>

namespace VeskTool {

using Vesk::Mailbox::ErrorCode;

namespace {

/// The library exception behind what was thrown, or null.
std::shared_ptr<System::Exception> LibraryException(const std::exception& exception) {
    const auto* const thrown = dynamic_cast<const System::Thrown*>(&exception);
    return thrown ? std::shared_ptr<System::Exception>(*thrown) : nullptr;
}

std::string MessageOf(const System::Exception& exception) {
    return exception.Message().IsNull() ? "" : exception.Message().Value();
}

Advice AdviceForRefusal(unsigned char code) {
    if (code == ErrorCode::ADDRESS->Id)
        return {"Nothing has that address, or nothing is there under that slot and index",
                "See who is there: vesk livelist, vesk slaves"};
    if (code == ErrorCode::RESPONSE->Id)
        return {"The slave is in the database and does not answer on the bus",
                "Check its supply, its address and the cable; then vesk livelist"};
    if (code == ErrorCode::DATA_SIZE->Id)
        return {"The module or the slave does not take that many bytes", "Try fewer bytes"};
    if (code == ErrorCode::INVALID_OTHER->Id)
        return {"The module or the slave cannot do that in the state that it is in",
                "See what is not right: vesk status"};
    return {"The module does not take this request", "Compare its firmware: vesk identify"};
}

Advice AdviceForFatalEvent(Vesk::Modules::DPVM::IVt22FatalEventInfo& info) {
    return {"The module's firmware has stopped: error code " + Hex(info.ErrorCode()) + ", cause " +
                Hex(info.ErrorCause()) + ", task " + Hex(info.TaskId()) + ", " +
                Printable(info.SourceFile().Value().c_str()) + " line " + std::to_string(info.SourceLine()),
            "Keep this for the vendor of the module; a new start resets it"};
}

struct TypeAdvice {
    const char* type;
    const char* message; // what the message begins with
    Advice advice;
};

/// The first one that fits counts.
const std::array TYPES{
    TypeAdvice{
        "Vesk.StartupException",
        "",
        {"The module gave no interrupt after its reset: it has no supply, has no valid firmware, or is "
         "not at these lines",
         "Check the supply and --dpram and --lines; a module that lost its firmware gets it back with "
         "vesk flash"}},
    TypeAdvice{
        "Vesk.ModuleStateException",
        "IRQ not cleared",
        {"The interrupt line is low while the module is held in reset", "Check the wiring of the lines"}},
    TypeAdvice{"Vesk.ModuleStateException",
               "Unexpected poweron",
               {"The module has started anew on its own", "Check its supply and the reset line"}},
    TypeAdvice{"Vesk.ModuleStateException",
               "Config checksum readback failed",
               {"The module holds another database than the one it was sent", "Download it again"}},
    TypeAdvice{"Vesk.ModuleStateException",
               "Timeout",
               {"The module has stopped answering", "Start over; if it happens again, vesk status --watch"}},
    TypeAdvice{"Vesk.ModuleStateException",
               "",
               {"The module and this program disagree about where the module stands",
                "Start over; if it happens again, --trace mailbox,handshake shows the way there"}},
    TypeAdvice{"Vesk.ModuleIdentityException",
               "",
               {"There is another device than a VT22 master in this place", "Check --dpram and --offset"}},
    TypeAdvice{"Vesk.Mailbox.MailboxTimeoutException",
               "",
               {"The module has stopped answering, or something else uses it at the same time",
                "See that nothing else drives it, then start over: vesk status"}},
    TypeAdvice{"Vesk.Mailbox.MailboxResponseException",
               "",
               {"The module has refused a step of its start-up or of a download",
                "Bring its database in line again: vesk download CONFIG.ddb"}},
    TypeAdvice{"System.IO.", "", {"", "Check the path and who may read and write it"}}};

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
    if (const auto fatal = std::dynamic_pointer_cast<Vesk::Modules::DPVM::Vt22FatalEventException>(cause))
        return AdviceForFatalEvent(*fatal->Info());
    for (const TypeAdvice& known : TYPES)
        if (cause->TypeName().Value().rfind(known.type, 0) == 0 &&
            MessageOf(*cause).rfind(known.message, 0) == 0)
            return known.advice;
    return {};
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
