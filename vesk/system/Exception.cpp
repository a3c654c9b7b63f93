// SPDX-License-Identifier: MIT
#include "vesk/system/Exception.h"

#include "vesk/system/Checks.h"
#include "vesk/system/MakeShared.h"

namespace System {

Exception::Exception(String message, std::shared_ptr<Exception> innerException)
    : _message(std::move(message)), _innerException(std::move(innerException)) {}

Exception::~Exception() = default;

String Exception::TypeName() const {
    return "System.Exception";
}

String Exception::ToString() const {
    const String type = TypeName();
    return _message.IsNull() ? type : String(type.Value() + ": " + _message.Value());
}

Thrown::Thrown(std::shared_ptr<Exception> cause) : std::shared_ptr<Exception>(std::move(cause)) {
    const Exception& thrown = *get();
    const String type = thrown.TypeName();
    _what = thrown.Message().IsNull() ? type : String(type.Value() + ": " + thrown.Message().Value());
}

const char* Thrown::what() const noexcept {
    return _what.Value().c_str();
}

namespace {

/// An Exception that speaks for the one whose class the thrower did not know.
class ThrownAsException final : public Thrown, public Exception {
public:
    explicit ThrownAsException(const std::shared_ptr<Exception>& cause) : Thrown(cause), Exception(*cause) {}

    String ToString() const override { return Thrown::get()->ToString(); }

    String TypeName() const override { return Thrown::get()->TypeName(); }
};

} // namespace

void _env_throw(std::shared_ptr<Exception> exception) {
    if (!exception)
        _throw_argument_null_exception("exception");
    throw ThrownAsException(exception);
}

std::shared_ptr<ArgumentException> ArgumentException::Create(String message) {
    return MakeShared<ArgumentException>(std::move(message));
}

String ArgumentException::TypeName() const {
    return "System.ArgumentException";
}

std::shared_ptr<ArgumentNullException> ArgumentNullException::Create(String message) {
    return MakeShared<ArgumentNullException>(std::move(message));
}

String ArgumentNullException::TypeName() const {
    return "System.ArgumentNullException";
}

std::shared_ptr<ArgumentOutOfRangeException> ArgumentOutOfRangeException::Create(String message) {
    return MakeShared<ArgumentOutOfRangeException>(std::move(message));
}

String ArgumentOutOfRangeException::TypeName() const {
    return "System.ArgumentOutOfRangeException";
}

std::shared_ptr<FormatException> FormatException::Create(String message) {
    return MakeShared<FormatException>(std::move(message));
}

String FormatException::TypeName() const {
    return "System.FormatException";
}

std::shared_ptr<InvalidOperationException>
InvalidOperationException::Create(String message, std::shared_ptr<Exception> innerException) {
    return MakeShared<InvalidOperationException>(std::move(message), std::move(innerException));
}

String InvalidOperationException::TypeName() const {
    return "System.InvalidOperationException";
}

std::shared_ptr<NullReferenceException> NullReferenceException::Create(String message) {
    return MakeShared<NullReferenceException>(std::move(message));
}

String NullReferenceException::TypeName() const {
    return "System.NullReferenceException";
}

} // namespace System
