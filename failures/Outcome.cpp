// SPDX-License-Identifier: MIT
#include "failures/Outcome.h"
#include "failures/Steps.h"

#include <algorithm>
#include <array>

namespace Failures {

namespace {

constexpr std::string_view STARTUP = "Vesk.StartupException";
constexpr std::string_view STATE = "Vesk.ModuleStateException";
constexpr std::string_view IDENTITY = "Vesk.ModuleIdentityException";
constexpr std::string_view CONFIG = "Vesk.ConfigException";
constexpr std::string_view RESPONSE = "Vesk.Mailbox.MailboxResponseException";
constexpr std::string_view MAILBOX_TIMEOUT = "Vesk.Mailbox.MailboxTimeoutException";
constexpr std::string_view FATAL = "Vesk.Modules.DPVM.Vt22FatalEventException";
constexpr std::string_view ARGUMENT = "System.ArgumentException";
constexpr std::string_view OUT_OF_RANGE = "System.ArgumentOutOfRangeException";
constexpr std::string_view FORMAT = "System.FormatException";
constexpr std::string_view IO = "System.IO.IOException";
constexpr std::string_view END_OF_STREAM = "System.IO.EndOfStreamException";
using Outcomes::INVALID_OPERATION;

// What to check.
constexpr std::string_view FITTED =
    "Check which module is fitted, and that the path and the offset of the DPRAM are right.";
constexpr std::string_view INTERRUPT_LINE = "Check the interrupt line: its polarity, pull-up and wiring, and "
                                            "that reading the module's register releases it.";
constexpr std::string_view DPRAM_LINES =
    "Check the address and data lines of the DPRAM, and that no other program uses the module.";
constexpr std::string_view REPORTS = "Check the data lines of the DPRAM, that no other program uses the "
                                     "module, and the module's firmware version: vesk identify.";
constexpr std::string_view UPDATES =
    "Check that Update is called often enough, every few milliseconds; then the interrupt line.";
constexpr std::string_view MAPPING = "Check the offsets and lengths that the application maps against the "
                                     "address tables of the database: vesk config show.";
constexpr std::string_view COMPLETE = "Check that the file is complete, and of the right kind.";
constexpr std::string_view CALL =
    "Check the application's call: the message names the argument and its value.";
constexpr std::string_view POWERED = "Call Update until Booted() is true before that.";
constexpr std::string_view ORDER = "Check the order of the application's calls.";
constexpr std::string_view PATH = "Check the path, and who may read and write it.";

// What to do next.
constexpr std::string_view AGAIN =
    "Start again, which resets the module; if it comes back, look at the dump: vesk dump.";
constexpr std::string_view TRACE =
    "Start again; if it comes back, --trace mailbox,handshake shows the way there.";
constexpr std::string_view SHOW_FIRMWARE = "See what it says: vesk firmware show.";

} // namespace

// ---- how a life may end

namespace Outcomes {

constinit const Outcome SAME_DATA{"", "", "Nothing the host would notice: same data as ever.", "Nothing.",
                                  ""};
constinit const Outcome NO_ANSWER{
    "", "", "The library waits for the module, and the application in vain for its data or for an answer.",
    "Check the time in the application, with a clock of its own.", "Power the module off and on."};
constinit const Outcome OTHER_DATA{
    "", "", "The application is told something wrong: nothing guards these bytes.", DPRAM_LINES, ""};

constinit const Outcome NO_INTERRUPT{
    STARTUP, "Timeout waiting for initial IRQ",
    "The module was let out of reset and did not report: it has no supply, has no valid firmware, or is not "
    "at these lines.",
    "Check the supply, the reset and interrupt lines, and that the DPRAM and the lines are this module's.",
    "A module whose firmware download was cut off gets its firmware back with vesk flash."};
constinit const Outcome INTERRUPT_IN_RESET{
    STATE, "IRQ not cleared at power off",
    "The interrupt line stays asserted although the module is held in reset.",
    "Check the polarity and the wiring of the interrupt line, which may be shorted, and that the reset line "
    "reaches the module.",
    ""};
constinit const Outcome EMPTY{
    STATE, "Empty indication at bootup!", "The module's first interrupt came with nothing in its register.",
    "Check that the path and the offset of the DPRAM are right, that its data lines reach the host, and that "
    "nobody else answers the interrupt.",
    AGAIN};
constinit const Outcome NO_POWER_ON{
    STATE, "Missing PowerOn indication at bootup!\nActual:   *\n",
    "The module's first indication is not its power-on.",
    "Check that the reset line reaches the module, that the path and the offset of the DPRAM are right, and "
    "its data lines.",
    AGAIN};
constinit const Outcome MORE_THAN_POWER_ON{
    STATE, "Unexpected indication at bootup!\nActual:   *\n", "The power-on indication comes with others.",
    "Check the data lines of the DPRAM, that the reset pulse reaches the module, and that no other program "
    "uses it.",
    AGAIN};
constinit const Outcome FATAL_EVENT{
    FATAL, "Fatal event reported by VT22 module",
    "The module's firmware has stopped itself and left the reason.",
    "Keep this for the vendor of the module: the event's code, cause and source line; if all of it is ff, "
    "check the data lines of the DPRAM.",
    "Start again, which resets the module."};
constinit const Outcome MODULE_TYPE{
    IDENTITY, "Unexpected module type!\nExpected: #, Read: #",
    "The module is of another type, or runs the other of its two programs.", FITTED,
    "If 101 was read for 201, or the other way round, check the bootloader-enable line: 101 is the "
    "bootloader, 201 the master."};
constinit const Outcome FIELDBUS_TYPE{IDENTITY, "Unexpected fieldbus type!\nExpected: #, Read: #",
                                      "The module is for another fieldbus.", FITTED, ""};
constinit const Outcome VENDOR_ID{IDENTITY, "Unexpected vendor id!\nExpected: #, Read: #",
                                  "The module is of another vendor.", FITTED, ""};
constinit const Outcome OLD_BOOTLOADER{
    IDENTITY, "Unsupported major bootloader version: #, expected: 2",
    "The bootloader is too old for this library.", "Check its version: vesk identify.",
    "Bring a newer bootloader into the module, with the software that the old one was made for."};
constinit const Outcome HANDSHAKE{
    INVALID_OPERATION, "Non-zero handshake on bootup: #",
    "The bootloader's register is not empty at its first interrupt.",
    "Check that the reset pulse reaches the module, the bootloader-enable line, and the data lines of the "
    "DPRAM.",
    AGAIN};

constinit const Outcome POWER_ON_AGAIN{
    STATE, "Unexpected poweron indication from module!\n*\n", "The module has booted without being asked to.",
    "Check the module's supply, its plug and the reset line; then the interrupt line for bouncing.",
    "Start again, which brings it up again."};
constinit const Outcome NOT_INITIALISED{
    INVALID_OPERATION, "Velmo module no longer initialized!",
    "The bootloader takes back that it is initialised.",
    "Check the module's supply and the reset line; then the address and data lines of the DPRAM.", AGAIN};
constinit const Outcome NOT_LOCKED{INVALID_OPERATION, "Application handshake not locked",
                                   "An interrupt came before the one before it was answered.", INTERRUPT_LINE,
                                   AGAIN};
constinit const Outcome RESERVED_CHANGE{STATE, "Reserved bits set in indication register\n*\n",
                                        "The module reports a change of something that does not exist.",
                                        REPORTS, AGAIN};
constinit const Outcome RESERVED_STATUS{STATE, "Reserved bits set in module status register\n*\n",
                                        "The module reports a state that does not exist.", REPORTS, AGAIN};
constinit const Outcome BOTH_LINES{STATE, "Simultaneous offline and online indication",
                                   "The module says that it went onto the bus and off it at once.", REPORTS,
                                   AGAIN};
constinit const Outcome ONLINE_TWICE{STATE, "Double online indication received",
                                     "The module goes online and is online already.", REPORTS, AGAIN};
constinit const Outcome OFFLINE_TWICE{STATE, "Double offline indication received",
                                      "The module goes offline and is offline already.", REPORTS, AGAIN};
constinit const Outcome MODE{STATE, "Invalid operation mode: #",
                             "The module reports an operation mode that does not exist.", REPORTS, AGAIN};

constinit const Outcome DOWNLOAD_TIMEOUT{STATE, "Timeout waiting for DOWNLOAD_COMPLETE",
                                         "The configuration is not in the module after 10 s.", UPDATES,
                                         TRACE};
constinit const Outcome INIT_TIMEOUT{STATE, "Timeout waiting for INITIALIZED",
                                     "The initialisation has not ended after 10 s.", UPDATES, TRACE};
constinit const Outcome TIMEOUT{
    MAILBOX_TIMEOUT, "Timeout after # seconds.\nMailbox request:\n*",
    "The module has stopped answering: the request that the message shows was not answered in time.",
    "Check the module's supply, the interrupt line, that writes reach the DPRAM, and that nothing else "
    "drives the module.",
    "Start again; if it comes back, vesk status --watch shows when."};
constinit const Outcome ACKNOWLEDGED_TWICE{
    INVALID_OPERATION, "", "The module has taken a request that it was not given.", INTERRUPT_LINE, AGAIN};
constinit const Outcome WRONG_ID{RESPONSE,
                                 "MessageId of response header does not match outstanding request:\n*",
                                 "The answer is to another request than the last one.", DPRAM_LINES, AGAIN};
constinit const Outcome WRONG_TYPE{
    RESPONSE, "MessageType of response header does not match outstanding request:\n*",
    "The answer is of another message type than the request.", DPRAM_LINES, AGAIN};
constinit const Outcome WRONG_COMMAND{
    RESPONSE, "Command of response header does not match outstanding request:\n*",
    "The answer is for another command than the request's.", DPRAM_LINES, AGAIN};
constinit const Outcome NOBODY_ASKED{RESPONSE, "Received response without an outstanding request:\n*",
                                     "The module has answered what nobody had asked.", DPRAM_LINES, AGAIN};
constinit const Outcome UNDEFINED{
    ARGUMENT, "#",
    "An answer has a message type or an error code that does not exist: the number is the message.",
    DPRAM_LINES, AGAIN};
constinit const Outcome TOO_LONG{OUT_OF_RANGE,
                                 "offset (32) + count (#) must not be greater than the length of array (288)",
                                 "An answer says that it is longer than its place.", DPRAM_LINES, AGAIN};
constinit const Outcome REFUSED{
    RESPONSE, "Received erroneous mailbox response:\n*",
    "The module has refused a request; the error in the message says why.",
    "Check what the request asks for, and that the module is in a state for it: vesk status.",
    "vesk explain says what the error's name means."};
constinit const Outcome READ_BACK{
    STATE, "Config checksum readback failed",
    "The module does not read back the checksum of the database that was written into it.",
    "Check whether it comes back after another start.", "If it does, the module's flash is worn out."};

constinit const Outcome MORE_INPUT{
    CONFIG, "More input data mapped than available in config [ # < # ]",
    "More input bytes are mapped than all slaves of the database have together.", MAPPING, ""};
constinit const Outcome MORE_OUTPUT{
    CONFIG, "More output data mapped than available in config [ # < # ]",
    "More output bytes are mapped than all slaves of the database have together.", MAPPING, ""};
constinit const Outcome INPUT_OUTSIDE{CONFIG, "Input data mapped outside of available area [ # < # ]",
                                      "An input mapping ends behind the last input byte of the database.",
                                      MAPPING, ""};
constinit const Outcome OUTPUT_OUTSIDE{CONFIG, "Output data mapped outside of available area [ # < # ]",
                                       "An output mapping ends behind the last output byte of the database.",
                                       MAPPING, ""};

} // namespace Outcomes

const std::vector<const Outcome*>& AllOutcomes() {
    using namespace Outcomes;
    static const std::vector<const Outcome*> all{&SAME_DATA,
                                                 &NO_ANSWER,
                                                 &OTHER_DATA,
                                                 &NO_INTERRUPT,
                                                 &INTERRUPT_IN_RESET,
                                                 &EMPTY,
                                                 &NO_POWER_ON,
                                                 &MORE_THAN_POWER_ON,
                                                 &FATAL_EVENT,
                                                 &MODULE_TYPE,
                                                 &FIELDBUS_TYPE,
                                                 &VENDOR_ID,
                                                 &OLD_BOOTLOADER,
                                                 &HANDSHAKE,
                                                 &POWER_ON_AGAIN,
                                                 &NOT_INITIALISED,
                                                 &NOT_LOCKED,
                                                 &RESERVED_CHANGE,
                                                 &RESERVED_STATUS,
                                                 &BOTH_LINES,
                                                 &ONLINE_TWICE,
                                                 &OFFLINE_TWICE,
                                                 &MODE,
                                                 &DOWNLOAD_TIMEOUT,
                                                 &INIT_TIMEOUT,
                                                 &TIMEOUT,
                                                 &ACKNOWLEDGED_TWICE,
                                                 &WRONG_ID,
                                                 &WRONG_TYPE,
                                                 &WRONG_COMMAND,
                                                 &NOBODY_ASKED,
                                                 &UNDEFINED,
                                                 &TOO_LONG,
                                                 &REFUSED,
                                                 &READ_BACK,
                                                 &MORE_INPUT,
                                                 &MORE_OUTPUT,
                                                 &INPUT_OUTSIDE,
                                                 &OUTPUT_OUTSIDE};
    return all;
}

// ---- what else the library throws

static constexpr std::array OTHERS{
    // the application's calls
    Outcome{STATE, "Module not booted or configured!",
            "BeginInitialization came before the module was ready.",
            "Call Update until Booted(), or with a configuration Configured(), is true.", ""},
    Outcome{STATE, "Module already initialized", "BeginInitialization came twice.", ORDER, ""},
    Outcome{STATE, "Module not configured", "The database information is asked for before it is known.",
            "Call Update until Configured() is true; a module object without a configuration never has it.",
            ""},
    Outcome{STATE, "Unknown state: #", "The module object's memory is damaged.",
            "Check the application with a memory checker.", "If it finds nothing, report it."},
    Outcome{OUT_OF_RANGE, "_hostInterface->Size() (#) must be equal to sizeof(DpRam) (#)",
            "The DPRAM does not have 8192 bytes.", "Check the file or device that is opened as the DPRAM.",
            ""},
    Outcome{CONFIG, "Segment mapped outside area\n*",
            "A mapping ends behind the process data area of 3500 bytes.", MAPPING, ""},
    Outcome{CONFIG, "Start of segment within existing segment\n*", "Two mappings share bytes.", MAPPING, ""},
    Outcome{CONFIG, "End of segment within existing segment\n*", "Two mappings share bytes.", MAPPING, ""},
    Outcome{CONFIG, "Segment wraps around existing segment\n*", "Two mappings share bytes.", MAPPING, ""},
    Outcome{INVALID_OPERATION, "No download in progress", "EndDownload came before a download was begun.",
            ORDER, ""},
    Outcome{INVALID_OPERATION, "Queue empty", "Something is taken from an empty queue.", ORDER, ""},
    Outcome{INVALID_OPERATION, "*: opened for reading", "A file that was opened for reading is written to.",
            ORDER, ""},
    Outcome{IO, "Seek to #, before the start of the stream", "A stream is moved before its start.", CALL, ""},
    Outcome{IO, "Write up to # in a stream of # bytes",
            "Something is written behind the end of a stream of fixed length.", CALL, ""},
    Outcome{ARGUMENT, "BOOTLOADER_FIRMWARE", "The file is a bootloader, where an application was expected.",
            COMPLETE, "vesk flash --bootloader replaces the bootloader."},
    Outcome{ARGUMENT, "APPLICATION_FIRMWARE", "The file is an application, where a bootloader was expected.",
            COMPLETE, "vesk flash without --bootloader replaces the application."},
    Outcome{ARGUMENT, "CONFIGURATION_FIRMWARE",
            "The file is a configuration image, which cannot be downloaded.", COMPLETE, SHOW_FIRMWARE},
    // database files
    Outcome{CONFIG, "calculated CRC (#) != expected CRC (#)",
            "The records do not have the checksum of the first line.",
            "Check whether the file was edited or damaged.", EXPORT},
    Outcome{CONFIG, "command (#) != MASTER_RECORD_DOWNLOAD (18)",
            "The database file does not begin with the master record.", COMPLETE, EXPORT},
    Outcome{CONFIG, "command (#) != SLAVE_RECORD_DOWNLOAD (20)",
            "A message of the database file is no slave record.", COMPLETE, EXPORT},
    Outcome{CONFIG, "Invalid fragmentNumber (#)", "A fragment of a slave record has the number 0.", COMPLETE,
            EXPORT},
    Outcome{CONFIG, "fragmentNumber (#) != next fragment (#)",
            "A fragment of a slave record is missing or twice there.", COMPLETE, EXPORT},
    Outcome{CONFIG, "fragment node address (#) != current node address (#)",
            "The fragments of a slave record have different station addresses.", COMPLETE, EXPORT},
    Outcome{CONFIG, "data size (#) > 256", "A message of the database file has more data than a message can.",
            COMPLETE, EXPORT},
    Outcome{CONFIG, "block length (#) != expected (#)", "A record does not have its only possible length.",
            COMPLETE, EXPORT},
    Outcome{CONFIG, "block length (#) not in range [# : #]", "A record says a length that it cannot have.",
            COMPLETE, EXPORT},
    Outcome{CONFIG, "read length (#) != block length (#)", "A record is longer or shorter than it says.",
            COMPLETE, EXPORT},
    Outcome{CONFIG, "written length (#) != expected (#)", "A record that was put together came out too long.",
            "Check the text fields: the name of the Class 2 master has up to 32 characters.", ""},
    Outcome{CONFIG, "written length (#) not in range [# : #]",
            "A record that was put together has an impossible length.", "Check the lengths of its arrays.",
            ""},
    Outcome{CONFIG, "input table length (#) not in range [# : #]", "A slave has more than 244 input bytes.",
            COMPLETE, EXPORT},
    Outcome{CONFIG, "output table length (#) not in range [# : #]", "A slave has more than 244 output bytes.",
            COMPLETE, EXPORT},
    Outcome{ARGUMENT, "Key already exists", "Two slaves of a configuration have the same station address.",
            "Check the station addresses in the configuration tool.", EXPORT},
    // files of every kind
    Outcome{END_OF_STREAM, "Stream ends after the checksum", "The database file ends after its first line.",
            COMPLETE, EXPORT},
    Outcome{END_OF_STREAM, "Stream ends at byte #", "The file or message ends too early.", COMPLETE, ""},
    Outcome{END_OF_STREAM, "Stream holds # of # program bytes", "The firmware file is shorter than it says.",
            COMPLETE, FETCH},
    Outcome{END_OF_STREAM, "Stream ends after # of # program bytes",
            "The firmware file became shorter while it was read.", COMPLETE, FETCH},
    Outcome{OUT_OF_RANGE, "size (#) must not be less than zero (0)",
            "A length is below zero; that of a firmware file's program is then 2 GiB or more.", COMPLETE, ""},
    Outcome{FORMAT, "#",
            "The file does not begin as it should: the number, in hexadecimal, stands where the number of a "
            "firmware file or a line end of a database file should.",
            COMPLETE, ""},
    Outcome{FORMAT, "\"*\" is not a number in base #", "A text that should be a number is none.", COMPLETE,
            ""},
    Outcome{FORMAT, "UNKNOWN: #",
            "The firmware file's type is none of bootloader, application and configuration.", COMPLETE, ""},
    Outcome{FORMAT, "Unknown data in reserved[#]: #\n",
            "The header of the firmware file has bytes where there should be none.",
            "Check whether it is a firmware file of a newer kind.", ""},
    Outcome{IO, "*: is a directory", "A folder is given for a file.", PATH, ""},
    Outcome{IO, "*: not a regular file", "A device or the like is given for a file.", PATH, ""},
    Outcome{IO, "*: # bytes long, the mapping needs #", "The file or device is too short for the DPRAM.",
            "Check the path, and the offset at which the DPRAM begins.", ""},
    // whatever else an exception says
    Outcome{STARTUP, "*", "The module did not come up.",
            "Check the supply, the reset and interrupt lines, and the DPRAM.", ""},
    Outcome{STATE, "*",
            "An operation at a time that does not allow it, or a module that reports what cannot be.",
            "Check the message, and where the module stands: vesk status.", TRACE},
    Outcome{IDENTITY, "*", "The module is not the one that was expected.", FITTED, ""},
    Outcome{CONFIG, "*",
            "A configuration does not hold: a record, a database file, or a mapping of process data.",
            "Check the database file, and the lengths that the application maps: vesk config show.", ""},
    Outcome{RESPONSE, "*", "The module answered with an error, or with something that was not asked for.",
            DPRAM_LINES, AGAIN},
    Outcome{MAILBOX_TIMEOUT, "*", "The module did not answer a request in time.", UPDATES, TRACE},
    Outcome{FATAL, "*", "The module has stopped itself and left the reason in the fatal-event block.",
            "Keep the event for the vendor of the module.", "Start again, which resets the module."},
    Outcome{"Vesk.VeskException", "*", "The family of the library's own failures.", "Check the message.", ""},
    Outcome{"System.Exception", "*", "The family of all failures.", "Check the message.", ""},
    Outcome{ARGUMENT, "*", "An argument that is not accepted; the message is the value.", CALL, ""},
    Outcome{"System.ArgumentNullException", "* must not be null",
            "An argument is null where an object is needed; the message names it.", CALL, ""},
    Outcome{"System.ArgumentNullException", "*", "Null where an object is needed.", CALL, ""},
    Outcome{OUT_OF_RANGE, "*", "A number outside its range.", CALL, ""},
    Outcome{FORMAT, "*", "A text or file that does not have the expected form.", COMPLETE, ""},
    Outcome{INVALID_OPERATION, "*", "An operation that the object's state does not allow.", ORDER, ""},
    Outcome{"System.NullReferenceException", "_mailbox is null",
            "A service was asked for before the module was powered on.", POWERED, ""},
    Outcome{"System.NullReferenceException", "_inArea is null", "A mapping came before the power-on.",
            POWERED, "A mapping lasts until the next power-on: map when Configured() is true."},
    Outcome{"System.NullReferenceException", "* is null",
            "An operation came before the module was powered on, or before what it needs was there.", POWERED,
            ""},
    Outcome{"System.NullReferenceException", "*", "Something is used before it was set.",
            "Check that Update was called until the module is powered on.", ""},
    Outcome{"System.Collections.Generic.KeyNotFoundException", "*",
            "There is no slave with that station address.",
            "Check the addresses of the configuration: vesk config show.", ""},
    Outcome{IO, "*", "A file cannot be opened, mapped, read or written.", PATH, ""},
    Outcome{"System.IO.FileNotFoundException", "*", "A file does not exist.", PATH, ""},
    Outcome{END_OF_STREAM, "*", "A file or message ends too early.", COMPLETE, ""},
};

const std::vector<const Outcome*>& AllFailures() {
    static const std::vector<const Outcome*> all = [] {
        std::vector<const Outcome*> made;
        for (const Outcome* outcome : AllOutcomes())
            if (outcome->IsException())
                made.push_back(outcome);
        for (const Outcome& outcome : OTHERS)
            made.push_back(&outcome);
        return made;
    }();
    return all;
}

const Outcome* FindFailure(std::string_view type, std::string_view message) {
    for (const auto* const failures : {&AllFailures(), &ToolFailures()})
        for (const Outcome* const one : *failures)
            if (one->Is(type, message))
                return one;
    return nullptr;
}

bool Outcome::Is(std::string_view exceptionType, std::string_view exceptionMessage) const {
    return IsException() && type == exceptionType && Compare(message, exceptionMessage) == Match::WHOLE;
}

Match Compare(std::string_view pattern, std::string_view text) {
    if (pattern.empty())
        return text.empty() ? Match::WHOLE : Match::NOT;
    const std::string_view behind = pattern.substr(1);
    if (pattern.front() == '*') {
        auto best = Match::NOT;
        for (std::size_t end = 0; end <= text.size() && best != Match::WHOLE; ++end)
            best = std::max(best, Compare(behind, text.substr(end)));
        return best;
    }
    if (text.empty())
        return Match::BEGINNING;
    if (pattern.front() == '#') {
        const std::size_t end = text.find_first_not_of("-0123456789abcdefABCDEFx");
        return end == 0 ? Match::NOT : Compare(behind, text.substr(std::min(end, text.size())));
    }
    return pattern.front() == text.front() ? Compare(behind, text.substr(1)) : Match::NOT;
}

} // namespace Failures
