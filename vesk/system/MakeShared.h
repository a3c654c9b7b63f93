// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <utility>

namespace System {

/// A T that can be made although its constructor is protected. Hidden: the type is of no use outside the
/// program or library that makes the object.
template <class T>
struct __attribute__((visibility("hidden"))) Constructible final : T {
    template <class... Arguments>
    explicit Constructible(Arguments&&... arguments) : T(std::forward<Arguments>(arguments)...) {}
};

/// What every static Create makes its object with: one allocation, for a class whose constructor is
/// protected.
template <class T, class... Arguments>
std::shared_ptr<T> MakeShared(Arguments&&... arguments) {
    return std::make_shared<Constructible<T>>(std::forward<Arguments>(arguments)...);
}

} // namespace System
