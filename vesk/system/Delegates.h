// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Checks.h"
#include "vesk/system/MakeShared.h"
#include "vesk/system/Object.h"

#include <functional>
#include <memory>

namespace System {

/// A callback without an argument.
template <class R>
class IFunc : public Object {
public:
    virtual R Invoke() = 0;
};

/// A callback with one argument.
template <class A, class R>
class IArgFunc : public Object {
public:
    virtual R Invoke(A argument) = 0;
};

/// A callback made of anything that can be called, a lambda for example.
template <class R>
class Func : public IFunc<R> {
public:
    /// ArgumentNullException for one that is empty.
    static std::shared_ptr<Func> Create(std::function<R()> callable) {
        if (!callable)
            _throw_argument_null_exception("callable");
        return MakeShared<Func>(std::move(callable));
    }

    R Invoke() override { return _callable(); }

protected:
    explicit Func(std::function<R()> callable) : _callable(std::move(callable)) {}

private:
    std::function<R()> _callable;
};

/// A callback with one argument, made of anything that can be called with it.
template <class A, class R>
class ArgFunc : public IArgFunc<A, R> {
public:
    /// ArgumentNullException for one that is empty.
    static std::shared_ptr<ArgFunc> Create(std::function<R(A)> callable) {
        if (!callable)
            _throw_argument_null_exception("callable");
        return MakeShared<ArgFunc>(std::move(callable));
    }

    R Invoke(A argument) override { return _callable(std::move(argument)); }

protected:
    explicit ArgFunc(std::function<R(A)> callable) : _callable(std::move(callable)) {}

private:
    std::function<R(A)> _callable;
};

/// A callback that calls an operation of an object without keeping it alive: it does nothing, and answers
/// with an empty result, once the object is gone.
template <class T, class A, class R>
class WeakMethodArgFunc : public IArgFunc<A, R> {
public:
    /// ArgumentNullException without a method.
    static std::shared_ptr<WeakMethodArgFunc> Create(std::weak_ptr<T> object, R (T::*method)(A)) {
        if (!method)
            _throw_argument_null_exception("method");
        return MakeShared<WeakMethodArgFunc>(std::move(object), method);
    }

    R Invoke(A argument) override {
        if (const std::shared_ptr<T> object = _object.lock())
            return (object.get()->*_method)(std::move(argument));
        return R();
    }

protected:
    WeakMethodArgFunc(std::weak_ptr<T> object, R (T::*method)(A))
        : _object(std::move(object)), _method(method) {}

private:
    std::weak_ptr<T> _object;
    R (T::*_method)(A);
};

} // namespace System
