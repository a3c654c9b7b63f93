// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>
#include <vector>

namespace VirtualModule {

/// How a host's life with the module may end. What the library throws is given by type and message, in which
/// '*' stands for any text.
struct Outcome {
    std::string_view type; // of the exception; empty where there is none
    std::string_view message;
    std::string_view means; // what has happened
    std::string_view check; // what somebody in front of the machine looks at first

    bool IsException() const { return !type.empty(); }

    /// Whether it is this exception.
    bool Is(std::string_view exceptionType, std::string_view exceptionMessage) const;
};

/// All of them, in the order of a module's life; those that are no exception come first.
const std::vector<const Outcome*>& AllOutcomes();

namespace Outcomes {

inline constexpr std::string_view STATE = "Vesk.ModuleStateException";
inline constexpr std::string_view IDENTITY = "Vesk.ModuleIdentityException";
inline constexpr std::string_view RESPONSE = "Vesk.Mailbox.MailboxResponseException";
inline constexpr std::string_view INVALID_OPERATION = "System.InvalidOperationException";

inline constexpr std::string_view CHECK_PLUG = "Which module is plugged in, and which firmware it has.";
inline constexpr std::string_view CHECK_INTERRUPT =
    "The interrupt line: its pull-up and wiring, and whether reading the module's register releases it.";
inline constexpr std::string_view CHECK_DPRAM =
    "The address and data lines of the DPRAM, and whether two programs use the module at a time.";
inline constexpr std::string_view CHECK_STATUS =
    "The firmware version of the module; then the data lines of the DPRAM.";

// ---- without an exception
inline constexpr Outcome SAME_DATA{"", "", "Nothing the host would notice: same data as ever.", "Nothing."};
inline constexpr Outcome NO_ANSWER{
    "", "", "The library waits for the module, and the application in vain for its data or for an answer.",
    "Let the application watch its own time; then power the module off and on."};
inline constexpr Outcome OTHER_DATA{
    "", "", "The application is told something wrong: nothing guards these bytes.", CHECK_DPRAM};

// ---- coming up
inline constexpr Outcome NO_INTERRUPT{
    "Vesk.StartupException", "Timeout waiting for initial IRQ",
    "The module was let out of reset and did not report.",
    "Its supply, the reset and interrupt lines, and whether a firmware download was cut off."};
inline constexpr Outcome INTERRUPT_IN_RESET{
    STATE, "IRQ not cleared at power off",
    "The interrupt stays asserted although the module is held in reset.",
    "The reset line, and whether the interrupt line is shorted."};
inline constexpr Outcome EMPTY{
    STATE, "Empty indication at bootup!", "The module's first interrupt came with nothing in its register.",
    "Whether the DPRAM is mapped at the right address and its data lines reach the host."};
inline constexpr Outcome NO_POWER_ON{STATE, "Missing PowerOn indication at bootup!\nActual:   *\n",
                                     "The module's first indication is not its power-on.",
                                     "The mapping and the data lines of the DPRAM."};
inline constexpr Outcome MORE_THAN_POWER_ON{
    STATE, "Unexpected indication at bootup!\nActual:   *\n", "The power-on indication comes with others.",
    "The data lines of the DPRAM, and whether the reset pulse reaches the module."};
inline constexpr Outcome FATAL_EVENT{
    "Vesk.Modules.DPVM.Vt22FatalEventException", "Fatal event reported by VT22 module",
    "The module has stopped itself and says why.",
    "The event's code and source line, for its maker; if all is ff, the data lines of the DPRAM."};
inline constexpr Outcome MODULE_TYPE{IDENTITY, "Unexpected module type!\nExpected: *, Read: *",
                                     "A module of another kind.", CHECK_PLUG};
inline constexpr Outcome FIELDBUS_TYPE{IDENTITY, "Unexpected fieldbus type!\nExpected: *, Read: *",
                                       "A module for another bus.", CHECK_PLUG};
inline constexpr Outcome VENDOR_ID{IDENTITY, "Unexpected vendor id!\nExpected: *, Read: *",
                                   "A module of another vendor.", CHECK_PLUG};
inline constexpr Outcome OLD_BOOTLOADER{
    IDENTITY, "Unsupported major bootloader version: *, expected: 2",
    "The bootloader is too old for this library.",
    "Bring a newer bootloader into the module, with the library that it was made for."};
inline constexpr Outcome HANDSHAKE{
    INVALID_OPERATION, "Non-zero handshake on bootup: *",
    "The bootloader's register is not empty at its first interrupt.",
    "Whether the reset pulse reaches the module, and the data lines of the DPRAM."};

// ---- running
inline constexpr Outcome POWER_ON_AGAIN{
    STATE, "Unexpected poweron indication from module!\n*\n", "The module has booted without being asked to.",
    "The module's supply and its plug; then the interrupt line for bouncing."};
inline constexpr Outcome NOT_INITIALISED{INVALID_OPERATION, "Velmo module no longer initialized!",
                                         "The bootloader takes back that it is initialised.", CHECK_DPRAM};
inline constexpr Outcome NOT_LOCKED{INVALID_OPERATION, "Application handshake not locked",
                                    "An interrupt came before the one before it was answered.",
                                    CHECK_INTERRUPT};
inline constexpr Outcome RESERVED_CHANGE{STATE, "Reserved bits set in indication register\n*\n",
                                         "The module reports a change of something that does not exist.",
                                         CHECK_STATUS};
inline constexpr Outcome RESERVED_STATUS{STATE, "Reserved bits set in module status register\n*\n",
                                         "The module reports a state that does not exist.", CHECK_STATUS};
inline constexpr Outcome BOTH_LINES{STATE, "Simultaneous offline and online indication",
                                    "The module is on the bus and off it at once.", CHECK_STATUS};
inline constexpr Outcome ONLINE_TWICE{STATE, "Double online indication received",
                                      "The module goes online and is online already.", CHECK_STATUS};
inline constexpr Outcome OFFLINE_TWICE{STATE, "Double offline indication received",
                                       "The module goes offline and is offline already.", CHECK_STATUS};
inline constexpr Outcome MODE{STATE, "Invalid operation mode: *",
                              "The module works in a mode that does not exist.", CHECK_STATUS};

// ---- messages
inline constexpr Outcome DOWNLOAD_TIMEOUT{STATE, "Timeout waiting for DOWNLOAD_COMPLETE",
                                          "The configuration is not in the module after ten seconds.",
                                          "Whether Update is called often enough; then the interrupt line."};
inline constexpr Outcome INIT_TIMEOUT{STATE, "Timeout waiting for INITIALIZED",
                                      "The module is not initialised after ten seconds.",
                                      "Whether Update is called often enough; then the interrupt line."};
inline constexpr Outcome TIMEOUT{
    "Vesk.Mailbox.MailboxTimeoutException", "Timeout after * seconds.\nMailbox request:\n*",
    "The module has not answered the request that the message shows.",
    "Whether the module still has power, its interrupt line, and whether writes reach the DPRAM."};
inline constexpr Outcome ACKNOWLEDGED_TWICE{
    INVALID_OPERATION, "", "The module has taken a request that it was not given.", CHECK_INTERRUPT};
inline constexpr Outcome WRONG_ID{RESPONSE,
                                  "MessageId of response header does not match outstanding request:\n*",
                                  "An answer to another request.", CHECK_DPRAM};
inline constexpr Outcome WRONG_TYPE{RESPONSE,
                                    "MessageType of response header does not match outstanding request:\n*",
                                    "An answer of another message type.", CHECK_DPRAM};
inline constexpr Outcome WRONG_COMMAND{RESPONSE,
                                       "Command of response header does not match outstanding request:\n*",
                                       "An answer to another command.", CHECK_DPRAM};
inline constexpr Outcome NOBODY_ASKED{RESPONSE, "Received response without an outstanding request:\n*",
                                      "An answer and no request.", CHECK_DPRAM};
inline constexpr Outcome UNDEFINED{
    "System.ArgumentException", "*",
    "An answer with a message type or an error code that does not exist: the number is the message.",
    CHECK_DPRAM};
inline constexpr Outcome TOO_LONG{
    "System.ArgumentOutOfRangeException",
    "offset (32) + count (*) must not be greater than the length of array (288)",
    "An answer that is longer than its place.", CHECK_DPRAM};
inline constexpr Outcome REFUSED{RESPONSE, "Received erroneous mailbox response:\n*",
                                 "The module refuses a request; the error in the message says why.",
                                 "What the request asks for, and whether the module is in a state for it."};
inline constexpr Outcome READ_BACK{STATE, "Config checksum readback failed",
                                   "The module does not read back what was written into it.",
                                   "Start once more; if that fails too, the module's flash is worn out."};
inline constexpr Outcome MAPPING{"Vesk.ConfigException", "*put data mapped *",
                                 "More data is mapped than the module's database has.",
                                 "Whether the application maps what its configuration says."};

} // namespace Outcomes
} // namespace VirtualModule
