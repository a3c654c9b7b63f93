// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Object.h"

namespace Vesk::Modules {

/// What every module offers: its progress from power-up, its identity and the periodic step.
class IModule : public System::Object {
public:
    /// The module has booted and its identity has been checked.
    virtual bool Booted() = 0;

    /// One step of the module's state machine and of the exchange with it. The application calls it from one
    /// thread, at its cycle rate. It never waits. An exception out of it ends the use of the object: the
    /// application starts over with a new one.
    virtual void Update() = 0;

    /// The identity that the module showed at its last boot. NullReferenceException before the first
    /// power-on.
    virtual unsigned char BootloaderMajor() = 0;
    virtual unsigned char BootloaderMinor() = 0;
    virtual unsigned short FieldbusType() = 0;
    virtual unsigned short ModuleType() = 0;
    virtual unsigned int Serial() = 0;
    virtual unsigned short VendorId() = 0;
};

} // namespace Vesk::Modules
