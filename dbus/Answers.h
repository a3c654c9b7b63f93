// SPDX-License-Identifier: MIT
#pragma once

#include "dbus/Published.h"

#include "vesk/mailbox/IRequest.h"

#include <cstdint>
#include <memory>
#include <sdbus-c++/sdbus-c++.h>
#include <string>
#include <utility>
#include <vector>

namespace Vesk::DBus {

/// The errors that a caller may get, beside those of D-Bus itself.
namespace Errors {

inline constexpr const char* REFUSED = "org.libvesk.Error.Refused";
inline constexpr const char* BUSY = "org.libvesk.Error.Busy";
inline constexpr const char* TIMED_OUT = "org.libvesk.Error.TimedOut";
inline constexpr const char* NOT_READY = "org.libvesk.Error.NotReady";
inline constexpr const char* FAILED = "org.libvesk.Error.Failed";
inline constexpr const char* HELD = "org.libvesk.Error.Held";
inline constexpr const char* INVALID = "org.freedesktop.DBus.Error.InvalidArgs";

/// That of a question which was not answered.
sdbus::Error Of(const Question& question);

sdbus::Error Busy();

} // namespace Errors

/// The unique name of whoever calls the object at this moment.
std::string CallerOf(const sdbus::IObject& object);

/// A question of requests to the module.
std::unique_ptr<Question> Messages(std::vector<std::shared_ptr<Mailbox::IRequest>> requests,
                                   std::size_t deciding = 0);

/// The communication reference of the Class 2 connection that clients have to a slave; the application's own
/// is another one.
inline unsigned short ReferenceOf(std::uint8_t address) {
    return static_cast<unsigned short>(0x100 + address + 1);
}

/// A question of a request that is made on a Class 2 connection to the slave, opened before and closed behind
/// it.
std::unique_ptr<Question> ByClass2(std::uint8_t address, std::shared_ptr<Mailbox::IRequest> request);

/// What `make` makes; what the library says of arguments that it refuses is an error to the caller.
template <class Make>
auto Checked(const Make& make) {
    try {
        return make();
    } catch (const std::shared_ptr<System::Exception>& exception) {
        throw sdbus::Error(Errors::INVALID, exception->Message().IsNull() ? exception->TypeName().Value()
                                                                          : exception->Message().Value());
    }
}

/// What answers a caller: with an error, or by `answer` with the question and the result to fill.
template <class Answer, class... Values>
Published::Reply ReplyTo(sdbus::Result<Values...>&& result, Answer answer) {
    return [result = std::make_shared<sdbus::Result<Values...>>(std::move(result)),
            answer = std::move(answer)](Question& question) {
        if (question.outcome == Question::Outcome::ANSWERED)
            answer(question, *result);
        else
            result->returnError(Errors::Of(question));
    };
}

} // namespace Vesk::DBus
