// SPDX-License-Identifier: MIT
#include "vesk/system/Object.h"

#include <cstdlib>
#include <cxxabi.h>
#include <functional>
#include <string_view>
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
    std::string text = name ? name.get() : typeid(*this).name();
    // What MakeShared has made is a Constructible<T>; the class that is meant is T.
    constexpr std::string_view MADE = "System::Constructible<";
    if (text.starts_with(MADE)) {
        text = text.substr(MADE.size(), text.rfind('>') - MADE.size());
        text.erase(text.find_last_not_of(' ') + 1);
    }
    return text;
}

Object::~Object() = default;

} // namespace System
