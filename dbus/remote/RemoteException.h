// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Exception.h"

namespace Vesk::DBus {

/// An exception of a plant's program, by its type's name and its message; both are the plant's own.
class RemoteException : public System::Exception {
public:
    /// An empty message is none.
    static std::shared_ptr<RemoteException> Create(System::String typeName, const std::string& message);

    System::String TypeName() const override { return _typeName; }

protected:
    RemoteException(System::String typeName, System::String message)
        : Exception(std::move(message)), _typeName(std::move(typeName)) {}

private:
    System::String _typeName;
};

} // namespace Vesk::DBus
