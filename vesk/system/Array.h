// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Checks.h"
#include "vesk/system/MakeShared.h"
#include "vesk/system/Object.h"

#include <initializer_list>
#include <memory>
#include <vector>

namespace System {

/// A shared, bounds-checked, contiguous run of elements.
template <class T>
class IArray : public Object {
public:
    /// Number of elements.
    virtual int Count() const = 0;
    /// The first of Count() elements; what makes bulk work fast.
    virtual T* Data() = 0;

    /// For a range-for or a std::span; good for as long as the array is.
    T* begin() { return Data(); }

    T* end() { return Data() + Count(); }

    /// The element at `index`; ArgumentOutOfRangeException outside 0 .. Count() - 1.
    T Get(int index) {
        CheckIndex(index);
        return Data()[index];
    }

    /// Replaces the element at `index`; ArgumentOutOfRangeException outside 0 .. Count() - 1.
    void Set(int index, T value) {
        CheckIndex(index);
        Data()[index] = value;
    }

    /// The element type and the count, for example "Byte[257]".
    String ToString() const override;

private:
    void CheckIndex(int index) const {
        if (index < 0)
            _throw_not_less_exception(index, 0, "index", "zero");
        if (index >= Count())
            _throw_not_greater_exception(index, Count() - 1, "index", "count - 1");
    }
};

/// An array that owns its elements.
template <class T>
class Array : public IArray<T> {
public:
    /// `count` elements, all zero. ArgumentOutOfRangeException for a negative count.
    static std::shared_ptr<Array> Create(int count) {
        if (count < 0)
            _throw_not_less_exception(count, 0, "size", "zero");
        return MakeShared<Array>(std::vector<T>(static_cast<std::size_t>(count)));
    }

    static std::shared_ptr<Array> Create(std::initializer_list<T> elements) {
        return MakeShared<Array>(std::vector<T>(elements));
    }

    static std::shared_ptr<Array> Create(std::vector<T> elements) {
        return MakeShared<Array>(std::move(elements));
    }

    int Count() const override { return static_cast<int>(_elements.size()); }

    T* Data() override { return _elements.data(); }

protected:
    explicit Array(std::vector<T> elements) : _elements(std::move(elements)) {}

private:
    std::vector<T> _elements;
};

/// Throws unless `array` has `count` elements from `offset` on: ArgumentNullException without an array,
/// ArgumentOutOfRangeException for a range that leaves it.
template <class T>
void CheckRange(const IArray<T>* array, int offset, int count) {
    if (!array)
        _throw_argument_null_exception("array");
    if (offset < 0)
        _throw_not_less_exception(offset, 0, "offset", "zero");
    if (count < 0)
        _throw_not_less_exception(count, 0, "count", "zero");
    if (static_cast<std::int64_t>(offset) + count > array->Count())
        _throw_range_exception(offset, count, array->Count(), "offset", "count", "array");
}

/// A view of `count` elements of another array from `offset` on. It keeps that array alive.
template <class T>
class ArraySegment : public IArray<T> {
public:
    /// ArgumentNullException without an array, ArgumentOutOfRangeException for a view that leaves it.
    static std::shared_ptr<ArraySegment> Create(std::shared_ptr<IArray<T>> array, int offset, int count) {
        CheckRange(array.get(), offset, count);
        return MakeShared<ArraySegment>(std::move(array), offset, count);
    }

    int Count() const override { return _count; }

    T* Data() override { return _array->Data() + _offset; }

protected:
    ArraySegment(std::shared_ptr<IArray<T>> array, int offset, int count)
        : _array(std::move(array)), _offset(offset), _count(count) {}

private:
    std::shared_ptr<IArray<T>> _array;
    int _offset;
    int _count;
};

/// The name of an element type in an array's text.
template <class T>
const char* ElementTypeName() = delete;

template <>
inline const char* ElementTypeName<unsigned char>() {
    return "Byte";
}

template <>
inline const char* ElementTypeName<unsigned short>() {
    return "UInt16";
}

template <class T>
String IArray<T>::ToString() const {
    return std::string(ElementTypeName<T>()) + "[" + std::to_string(Count()) + "]";
}

} // namespace System
