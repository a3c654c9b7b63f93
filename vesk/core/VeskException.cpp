// SPDX-License-Identifier: MIT
#include "vesk/core/VeskException.h"

#include "vesk/system/MakeShared.h"

namespace Vesk {

VeskException::VeskException(System::String message) : System::Exception(std::move(message)) {}

std::shared_ptr<VeskException> VeskException::Create(System::String message) {
    return System::MakeShared<VeskException>(std::move(message));
}

System::String VeskException::TypeName() const {
    return "Vesk.VeskException";
}

std::shared_ptr<ConfigException> ConfigException::Create(System::String message) {
    return System::MakeShared<ConfigException>(std::move(message));
}

System::String ConfigException::TypeName() const {
    return "Vesk.ConfigException";
}

std::shared_ptr<StartupException> StartupException::Create(System::String message) {
    return System::MakeShared<StartupException>(std::move(message));
}

System::String StartupException::TypeName() const {
    return "Vesk.StartupException";
}

std::shared_ptr<ModuleStateException> ModuleStateException::Create(System::String message) {
    return System::MakeShared<ModuleStateException>(std::move(message));
}

System::String ModuleStateException::TypeName() const {
    return "Vesk.ModuleStateException";
}

std::shared_ptr<ModuleIdentityException> ModuleIdentityException::Create(System::String message) {
    return System::MakeShared<ModuleIdentityException>(std::move(message));
}

System::String ModuleIdentityException::TypeName() const {
    return "Vesk.ModuleIdentityException";
}

} // namespace Vesk
