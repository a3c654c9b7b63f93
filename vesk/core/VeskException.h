// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Exception.h"

namespace Vesk {

/// The root of the library's own exceptions; the library does not throw it itself.
class VeskException : public System::Exception {
public:
    static std::shared_ptr<VeskException> Create(System::String message);
    System::String TypeName() const override;

protected:
    explicit VeskException(System::String message);
};

/// A mapping, a record, a database file or an initialisation that the configuration does not allow.
class ConfigException : public VeskException {
public:
    static std::shared_ptr<ConfigException> Create(System::String message);
    System::String TypeName() const override;

protected:
    using VeskException::VeskException;
};

/// A module that does not come up.
class StartupException : public VeskException {
public:
    static std::shared_ptr<StartupException> Create(System::String message);
    System::String TypeName() const override;

protected:
    using VeskException::VeskException;
};

/// An operation that the module's state does not allow, or a module that reports an impossible state.
class ModuleStateException : public VeskException {
public:
    static std::shared_ptr<ModuleStateException> Create(System::String message);
    System::String TypeName() const override;

protected:
    using VeskException::VeskException;
};

/// A module that is not the expected one.
class ModuleIdentityException : public VeskException {
public:
    static std::shared_ptr<ModuleIdentityException> Create(System::String message);
    System::String TypeName() const override;

protected:
    using VeskException::VeskException;
};

} // namespace Vesk
