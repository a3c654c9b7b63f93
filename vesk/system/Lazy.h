// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/threading/Mutex.h"

#include <memory>
#include <mutex>

namespace System {

/// A shared value that its factory builds when it is first asked for, once, whatever thread asks.
template <class T>
class Lazy {
public:
    explicit Lazy(std::shared_ptr<T> (*factory)()) : _factory(factory) {}

    std::shared_ptr<T> Value() {
        const std::lock_guard lock(_mutex);
        if (!_value)
            _value = _factory();
        return _value;
    }

private:
    std::shared_ptr<T> (*_factory)();
    Threading::Mutex _mutex;
    std::shared_ptr<T> _value;
};

} // namespace System
