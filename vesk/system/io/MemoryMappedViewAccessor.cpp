// SPDX-License-Identifier: MIT
#include "vesk/system/io/MemoryMappedViewAccessor.h"

#include <algorithm>

namespace System::IO {

void MemoryMappedViewAccessor::ReadArray(int offset, const std::shared_ptr<IArray<unsigned char>>& array,
                                         int arrayOffset, int count) const {
    const int transferred = CheckBlock(offset, array.get(), arrayOffset, count);
    const volatile unsigned char* const source = _bytes + offset;
    unsigned char* const destination = array->Data() + arrayOffset;
    for (int i = 0; i < transferred; ++i)
        destination[i] = source[i];
}

void MemoryMappedViewAccessor::WriteArray(int offset, const std::shared_ptr<IArray<unsigned char>>& array,
                                          int arrayOffset, int count) {
    const int transferred = CheckBlock(offset, array.get(), arrayOffset, count);
    volatile unsigned char* const destination = _bytes + offset;
    const unsigned char* const source = array->Data() + arrayOffset;
    for (int i = 0; i < transferred; ++i)
        destination[i] = source[i];
}

int MemoryMappedViewAccessor::CheckBlock(int offset, IArray<unsigned char>* array, int arrayOffset,
                                         int count) const {
    if (!_bytes)
        _throw_null_reference_exception("view");
    if (offset < 0)
        _throw_not_less_exception(offset, 0, "offset", "zero");
    if (offset > _capacity)
        _throw_not_greater_exception(offset, _capacity, "offset", "capacity_");
    if (!array)
        _throw_argument_null_exception("array");
    if (arrayOffset < 0)
        _throw_not_less_exception(arrayOffset, 0, "arrayoffset", "zero");
    if (count < 0)
        _throw_not_less_exception(count, 0, "arraycount", "zero");
    if (static_cast<std::int64_t>(arrayOffset) + count > array->Count())
        _throw_range_exception(arrayOffset, count, array->Count(), "arrayoffset", "arraycount", "array");
    return std::min(count, _capacity - offset);
}

void MemoryMappedViewAccessor::ThrowBadAccess(int offset) const {
    if (!_bytes)
        _throw_null_reference_exception("view");
    if (offset < 0)
        _throw_not_less_exception(offset, 0, "offset", "zero");
    if (offset == _capacity)
        _throw_not_equal_exception(offset, _capacity, "offset", "capacity_");
    _throw_not_greater_exception(offset, _capacity, "offset", "capacity_");
}

} // namespace System::IO
