// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/IModule.h"
#include "vesk/system/Array.h"

#include <memory>

namespace Vesk::Modules::Slave {

/// A module that exchanges cyclic process data. "Input" and "output" are the module's: input goes to the bus,
/// output comes from it.
class ISlaveModule : public IModule {
public:
    /// Starts the initialisation; Initialized() turns true in a later Update. Mappings are
    /// made before it, for it checks them against the database. ModuleStateException before the boot and when
    /// it was started already.
    virtual void BeginInitialization() = 0;
    /// The module is initialised: process data and commands are in normal use.
    virtual bool Initialized() = 0;

    /// The firmware's version at the last boot. NullReferenceException before the first power-on.
    virtual unsigned char SoftwareMajor() = 0;
    virtual unsigned char SoftwareMinor() = 0;
    virtual unsigned char SoftwareBuild() = 0;

    /// Sends `count` bytes of `src` from `srcOffset` on to `offset` of the input area whenever one of them
    /// has changed. A mapping lasts until the next power-on. One that is made after BeginInitialization takes
    /// part in the exchange from the next hand-over on, but is not checked against the database any more:
    /// bytes that the database does not use lead nowhere. ConfigException for one that leaves the area or
    /// meets another, ArgumentNullException without an array, NullReferenceException before the first
    /// power-on.
    virtual void MapInputData(unsigned short offset, std::shared_ptr<System::IArray<unsigned char>> src,
                              int srcOffset, int count) = 0;
    /// Copies `count` bytes from `offset` of the output area into `dst` from `dstOffset` on whenever the
    /// module has new ones. Otherwise like MapInputData.
    virtual void MapOutputData(unsigned short offset, std::shared_ptr<System::IArray<unsigned char>> dst,
                               int dstOffset, int count) = 0;
};

} // namespace Vesk::Modules::Slave
