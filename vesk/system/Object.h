// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/String.h"

#include <memory>

namespace System {

/// The root of every class. Objects are made by a static Create and held by shared references.
class Object {
public:
    /// Identity, unless a class says otherwise.
    virtual bool Equals(const std::shared_ptr<Object>& other) const;
    virtual int GetHashCode() const;
    /// The text for logs; the class's name, unless a class says otherwise.
    virtual String ToString() const;
    virtual ~Object();
};

} // namespace System
