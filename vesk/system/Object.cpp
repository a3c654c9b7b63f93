// SPDX-License-Identifier: MIT
#include "vesk/system/Object.h"

#include <cstdlib>
#include <cxxabi.h>
#include <functional>
#include <typeinfo>

namespace System {

bool Object::Equals(const std::shared_ptr<Object>& other) const {
    return this == other.get();
}

int Object::GetHashCode() const {
    return static_cast<int>(std::hash<const void*>()(this));
}

String Object::ToString() const {
    const std::unique_ptr<char, void (*)(void*)> name(
        abi::__cxa_demangle(typeid(*this).name(), nullptr, nullptr, nullptr), std::free);
    return name ? name.get() : typeid(*this).name();
}

Object::~Object() = default;

} // namespace System
