// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Array.h"
#include "vesk/system/collections/List.h"

#include <vector>

namespace VeskTool {

/// What an array or a collection of the library holds, as standard algorithms take it.
template <class T>
std::vector<T> Elements(System::IArray<T>& array) {
    return {array.Data(), array.Data() + array.Count()};
}

template <class T>
std::vector<T> Elements(const System::Collections::Generic::ReadOnlyCollection<T>& collection) {
    std::vector<T> elements;
    elements.reserve(static_cast<std::size_t>(collection.Count()));
    for (int i = 0; i < collection.Count(); ++i)
        elements.push_back(collection.Get(i));
    return elements;
}

} // namespace VeskTool
