// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/IResponse.h"

namespace Vesk::Mailbox {

/// A response as the exchange reads it from mailbox-out.
class Response : public IResponse {
public:
    /// Keeps the arrays themselves. ArgumentNullException naming "error", "extended" or "data";
    /// ArgumentOutOfRangeException for more than 256 bytes of data.
    static std::shared_ptr<Response> Create(std::shared_ptr<ErrorCode> error,
                                            std::shared_ptr<System::IArray<unsigned short>> extended,
                                            std::shared_ptr<System::IArray<unsigned char>> data);

    System::String ToString() const override;

    std::shared_ptr<ErrorCode> Error() override { return _error; }

    std::shared_ptr<System::IArray<unsigned short>> Extended() override { return _extended; }

    std::shared_ptr<System::IArray<unsigned char>> Data() override { return _data; }

protected:
    Response(std::shared_ptr<ErrorCode> error, std::shared_ptr<System::IArray<unsigned short>> extended,
             std::shared_ptr<System::IArray<unsigned char>> data);

private:
    std::shared_ptr<ErrorCode> _error;
    std::shared_ptr<System::IArray<unsigned short>> _extended;
    std::shared_ptr<System::IArray<unsigned char>> _data;
};

} // namespace Vesk::Mailbox
