// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Object.h"

#include <concepts>
#include <exception>
#include <memory>
#include <type_traits>

namespace System {

/// The root of every exception: a message, which may be null, and the exception that led to it, if any.
/// Thrown with _env_throw and caught as `const std::shared_ptr<System::Exception>&`, as `const
/// std::exception&` or, as any class of C++, as `const System::FormatException&`.
class Exception : public Object {
public:
    String Message() const { return _message; }

    std::shared_ptr<Exception> InnerException() const { return _innerException; }

    /// The type name, ": " and the message; the type name alone without a message.
    String ToString() const override;
    ~Exception() override;
    /// The dotted name of the class, such as "System.FormatException".
    virtual String TypeName() const;

protected:
    explicit Exception(String message, std::shared_ptr<Exception> innerException = nullptr);

private:
    String _message;
    std::shared_ptr<Exception> _innerException;
};

/// What every throw has in common: the shared exception, and a std::exception whose what() is the exception's
/// text.
class Thrown : public std::shared_ptr<Exception>, public std::exception {
public:
    explicit Thrown(std::shared_ptr<Exception> cause);
    const char* what() const noexcept override;

private:
    String _what;
};

/// What is thrown for an exception of class T, so that it is a T, too: a copy of the exception.
template <class T>
class __attribute__((visibility("hidden"))) ThrownAs final : public Thrown, public T {
public:
    explicit ThrownAs(const std::shared_ptr<T>& cause) : Thrown(cause), T(*cause) {}
};

/// Throws `exception` as Thrown. ArgumentNullException without an exception.
[[noreturn]] void _env_throw(std::shared_ptr<Exception> exception);

/// Throws `exception` as Thrown and as T, where T can be copied and is no std::exception by itself.
template <std::derived_from<Exception> T>
[[noreturn]] void _env_throw(std::shared_ptr<T> exception) {
    if constexpr (std::copy_constructible<T> && !std::is_final_v<T> && !std::derived_from<T, std::exception>)
        if (exception)
            throw ThrownAs<T>(exception);
    _env_throw(std::shared_ptr<Exception>(std::move(exception)));
}

/// An argument that an operation does not accept.
class ArgumentException : public Exception {
public:
    static std::shared_ptr<ArgumentException> Create(String message);
    String TypeName() const override;

protected:
    using Exception::Exception;
};

/// A null argument where an object is needed.
class ArgumentNullException : public ArgumentException {
public:
    static std::shared_ptr<ArgumentNullException> Create(String message);
    String TypeName() const override;

protected:
    using ArgumentException::ArgumentException;
};

/// An argument outside its range.
class ArgumentOutOfRangeException : public ArgumentException {
public:
    static std::shared_ptr<ArgumentOutOfRangeException> Create(String message);
    String TypeName() const override;

protected:
    using ArgumentException::ArgumentException;
};

/// A text or file whose form is not the expected one.
class FormatException : public Exception {
public:
    static std::shared_ptr<FormatException> Create(String message);
    String TypeName() const override;

protected:
    using Exception::Exception;
};

/// An operation that the object's state does not allow. The message may be null.
class InvalidOperationException : public Exception {
public:
    static std::shared_ptr<InvalidOperationException>
    Create(String message, std::shared_ptr<Exception> innerException = nullptr);
    String TypeName() const override;

protected:
    using Exception::Exception;
};

/// A reference that is used before it was set.
class NullReferenceException : public Exception {
public:
    static std::shared_ptr<NullReferenceException> Create(String message);
    String TypeName() const override;

protected:
    using Exception::Exception;
};

} // namespace System
