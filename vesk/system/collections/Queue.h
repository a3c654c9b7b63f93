// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Exception.h"
#include "vesk/system/MakeShared.h"

#include <deque>
#include <memory>

namespace System::Collections::Generic {

/// First in, first out.
template <class T>
class Queue : public Object {
public:
    static std::shared_ptr<Queue> Create() { return MakeShared<Queue>(); }

    int Count() const { return static_cast<int>(_elements.size()); }

    bool IsEmpty() const { return _elements.empty(); }

    void Enqueue(T element) { _elements.push_back(std::move(element)); }

    /// Takes the oldest element off the queue; InvalidOperationException when there is none.
    T Dequeue() {
        if (_elements.empty())
            _env_throw(InvalidOperationException::Create("Queue empty"));
        T element = std::move(_elements.front());
        _elements.pop_front();
        return element;
    }

protected:
    Queue() = default;

private:
    std::deque<T> _elements;
};

} // namespace System::Collections::Generic
