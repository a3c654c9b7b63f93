// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Exception.h"

namespace System::Collections::Generic {

/// A key that a dictionary does not hold.
class KeyNotFoundException : public Exception {
public:
    static std::shared_ptr<KeyNotFoundException> Create(String message);
    String TypeName() const override;

protected:
    using Exception::Exception;
};

} // namespace System::Collections::Generic
