// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Checks.h"
#include "vesk/system/MakeShared.h"
#include "vesk/system/Object.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace System::Collections::Generic {

/// A run of elements that can be counted and read by index.
template <class T>
class IList : public Object {
public:
    virtual int Count() const = 0;
    /// ArgumentOutOfRangeException outside 0 .. Count() - 1.
    virtual T Get(int index) const = 0;

    /// Goes through a list that does not change meanwhile.
    class Iterator {
    public:
        using difference_type = std::ptrdiff_t;
        using value_type = T;

        Iterator() = default;

        Iterator(const IList* list, int index) : _list(list), _index(index) {}

        T operator*() const { return _list->Get(_index); }

        Iterator& operator++() {
            ++_index;
            return *this;
        }

        Iterator operator++(int) { return {_list, _index++}; }

        bool operator==(const Iterator& other) const { return _index == other._index; }

    private:
        const IList* _list = nullptr;
        int _index = 0;
    };

    Iterator begin() const { return {this, 0}; }

    Iterator end() const { return {this, Count()}; }
};

/// A list that grows at its end.
template <class T>
class List : public IList<T> {
public:
    static std::shared_ptr<List> Create() { return MakeShared<List>(); }

    void Add(T element) { _elements.push_back(std::move(element)); }

    int Count() const override { return static_cast<int>(_elements.size()); }

    T Get(int index) const override {
        if (index < 0)
            _throw_not_less_exception(index, 0, "index", "zero");
        if (index >= Count())
            _throw_not_greater_exception(index, Count() - 1, "index", "count - 1");
        return _elements[static_cast<std::size_t>(index)];
    }

    auto begin() const { return _elements.begin(); }

    auto end() const { return _elements.end(); }

protected:
    List() = default;

private:
    std::vector<T> _elements;
};

/// A list that can only be read; it shows the list that it was made over.
template <class T>
class ReadOnlyCollection : public IList<T> {
public:
    /// ArgumentNullException without a list.
    static std::shared_ptr<ReadOnlyCollection> Create(std::shared_ptr<IList<T>> list) {
        if (!list)
            _throw_argument_null_exception("list");
        return MakeShared<ReadOnlyCollection>(std::move(list));
    }

    int Count() const override { return _list->Count(); }

    T Get(int index) const override { return _list->Get(index); }

protected:
    explicit ReadOnlyCollection(std::shared_ptr<IList<T>> list) : _list(std::move(list)) {}

private:
    std::shared_ptr<IList<T>> _list;
};

} // namespace System::Collections::Generic
