// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/IVt22FatalEventInfo.h"

namespace Vesk::Modules::DPVM {

/// The master module has reported a fatal event; Info says what it left behind.
class Vt22FatalEventException : public VeskException {
public:
    static std::shared_ptr<Vt22FatalEventException> Create(std::shared_ptr<IVt22FatalEventInfo> info);

    std::shared_ptr<IVt22FatalEventInfo> Info() const { return _info; }

    /// The type name, a line break, the text of Info and a line break.
    System::String ToString() const override;
    System::String TypeName() const override;

protected:
    explicit Vt22FatalEventException(std::shared_ptr<IVt22FatalEventInfo> info);

private:
    std::shared_ptr<IVt22FatalEventInfo> _info;
};

} // namespace Vesk::Modules::DPVM
