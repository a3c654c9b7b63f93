// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/Vt22FatalEventException.h"

#include "vesk/core/TextOf.h"

namespace Vesk::Modules::DPVM {

std::shared_ptr<Vt22FatalEventException>
Vt22FatalEventException::Create(std::shared_ptr<IVt22FatalEventInfo> info) {
    if (!info)
        System::_throw_argument_null_exception("info");
    return System::MakeShared<Vt22FatalEventException>(std::move(info));
}

Vt22FatalEventException::Vt22FatalEventException(std::shared_ptr<IVt22FatalEventInfo> info)
    : VeskException("Fatal event reported by VT22 module"), _info(std::move(info)) {}

System::String Vt22FatalEventException::ToString() const {
    return TextOf(TypeName(), "\n", _info->ToString(), "\n");
}

System::String Vt22FatalEventException::TypeName() const {
    return "Vesk.Modules.DPVM.Vt22FatalEventException";
}

} // namespace Vesk::Modules::DPVM
