// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <utility>

namespace System {

/// What every static Create makes its object with: one allocation, for a class whose constructor is
/// protected.
template <class T, class... Arguments>
std::shared_ptr<T> MakeShared(Arguments&&... arguments) {
    // Hidden: the type is of no use outside the program or library that makes the object.
    struct __attribute__((visibility("hidden"))) Constructible final : T {
        explicit Constructible(Arguments&&... values) : T(std::forward<Arguments>(values)...) {}
    };

    return std::make_shared<Constructible>(std::forward<Arguments>(arguments)...);
}

} // namespace System
