// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Array.h"

#include <memory>
#include <vector>

/// The elements of an array as numbers, for comparing and printing.
template <class ArrayType>
std::vector<int> Values(const std::shared_ptr<ArrayType>& array) {
    return {array->Data(), array->Data() + array->Count()};
}
