// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// What can happen in a fuzzed life: the first byte of each step of a Script. What follows it is read where
/// the step is carried out.
namespace Fuzz {

/// The bits of a script's first byte.
enum LifeOptions : unsigned {
    WITH_PEER = 1,          // a virtual module plays the other side; the script alone otherwise
    CONFIGURED = 2,         // the master is given a bus configuration
    WITH_CALLBACKS = 4,     // and callbacks that do nothing
    WITH_BAD_CALLBACKS = 8, // and callbacks that throw
    TRACED = 16,            // everything that can be traced is
    SMALL_INTERFACE = 32,   // the DPRAM has the wrong size
};

enum class MasterStep : std::uint8_t {
    UPDATE,        // times, time between
    RAISE,         // indication
    REPORT_BOOT,   // indication, in addition to the power-on
    ANSWER,        // error, size, five extended words, data
    REPORT_STATUS, // out-area indication, module status, change, operation mode
    POKE,          // offset, count, bytes
    MAP_INPUT,     // offset, array, offset in it, count
    MAP_OUTPUT,    // the same
    CHANGE_INPUT,  // place, value
    INITIALIZE,
    SERVICE, // which, action, arguments
    LOOK,    // at everything that can be asked for
    RESET,
    POWER_ON,
    CREATE_AREAS,
    CHANGE_STATE, // state
    CHAIN,        // which step of initialisation or download, response
    MODULE_EVENT, // which, of the virtual module; address
    COUNT
};

enum class BootloaderStep : std::uint8_t {
    UPDATE,      // times, time between
    RAISE,       // bits that change
    REPORT_BOOT, // major version
    ANSWER,      // as for the master
    POKE,        // offset, count, bytes
    DOWNLOAD,    // firmware or bootloader, file
    END_DOWNLOAD,
    LOOK,
    SEGMENTS, // array
    RESET,
    POWER_ON,
    CREATE_AREAS,
    CHANGE_STATE, // state
    CHAIN,        // response
    COUNT
};

} // namespace Fuzz
