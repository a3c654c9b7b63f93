// SPDX-License-Identifier: MIT
#include "vesk/system/collections/KeyNotFoundException.h"

#include "vesk/system/MakeShared.h"

namespace System::Collections::Generic {

std::shared_ptr<KeyNotFoundException> KeyNotFoundException::Create(String message) {
    return MakeShared<KeyNotFoundException>(std::move(message));
}

String KeyNotFoundException::TypeName() const {
    return "System.Collections.Generic.KeyNotFoundException";
}

} // namespace System::Collections::Generic
