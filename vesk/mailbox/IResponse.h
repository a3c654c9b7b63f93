// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/ErrorCode.h"
#include "vesk/system/Array.h"
#include "vesk/system/Delegates.h"

namespace Vesk::Mailbox {

/// What the module answered to a request.
class IResponse : public System::Object {
public:
    /// ErrorCode::NO_ERROR, or why the module did not do what it was asked to.
    virtual std::shared_ptr<ErrorCode> Error() = 0;
    /// Eight words; their meaning belongs to the command.
    virtual std::shared_ptr<System::IArray<unsigned short>> Extended() = 0;
    /// At most 256 bytes.
    virtual std::shared_ptr<System::IArray<unsigned char>> Data() = 0;
};

/// What gets the response to a request. It decides alone what an error in it means.
using IResponseAction = System::IArgFunc<std::shared_ptr<IResponse>, void>;

} // namespace Vesk::Mailbox
