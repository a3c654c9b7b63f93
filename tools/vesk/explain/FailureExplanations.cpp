// SPDX-License-Identifier: MIT
#include "tools/vesk/explain/Explanations.h"

#include <array>

namespace VeskTool {

namespace {

struct Row {
    const char* name;
    const char* meaning;
    const char* check;
};

constexpr auto* LINES = "The three control lines and the module's supply.";
constexpr auto* DAMAGED = "Whether the file is complete; export it again from the configuration tool.";
constexpr auto* MODULE_BROKE =
    "Whether another program drives the same module; the dump (vesk dump); the module's "
    "firmware version (vesk identify).";
constexpr auto* CALLER = "The application's call: the message names the argument and its value.";
constexpr auto* MAPPING =
    "The offsets and lengths that the application maps against the address tables of the "
    "database (vesk config show).";

constexpr std::array EXCEPTIONS{
    Row{"Vesk.VeskException", "The family of the library's own failures.", "The message."},
    Row{"Vesk.ConfigException",
        "A configuration does not hold: a record, a database file, or a mapping of process data.",
        "The database file with vesk config show, and the lengths that the application maps."},
    Row{"Vesk.StartupException", "The module did not come up.", LINES},
    Row{"Vesk.ModuleStateException",
        "An operation at a time that does not allow it, or a module that reports what cannot be.",
        "The message; where the module stands with vesk status."},
    Row{"Vesk.ModuleIdentityException", "The module is not the one that was expected.",
        "Which module is fitted (vesk identify), and that the DPRAM's offset is right."},
    Row{"Vesk.Mailbox.MailboxResponseException",
        "The module answered with an error, or with something that was not asked for.",
        "The error in the response (vesk explain with its name) and the request's parameters."},
    Row{"Vesk.Mailbox.MailboxTimeoutException", "The module did not answer a request in time.",
        "Whether Update is called often enough, and whether the module still raises interrupts."},
    Row{"Vesk.Modules.DPVM.Vt22FatalEventException",
        "The module stopped and left the reason in the fatal-event block.",
        "The event's code, cause and source line, which its maker wants to know; a new module object resets "
        "it."},
    Row{"System.Exception", "The family of all failures.", "The message."},
    Row{"System.ArgumentException", "An argument that is not accepted; the message is the value.", CALLER},
    Row{"System.ArgumentNullException", "Null where an object is needed.", CALLER},
    Row{"System.ArgumentOutOfRangeException", "A number outside its range.", CALLER},
    Row{"System.FormatException", "A text or file that does not have the expected form.",
        "Whether it is the right kind of file, and complete."},
    Row{"System.InvalidOperationException", "An operation that the object's state does not allow.",
        "The order of the application's calls; without a message, an acknowledgement that came twice."},
    Row{"System.NullReferenceException", "Something is used before it was set.",
        "Whether Update was called until the module is powered on."},
    Row{"System.Collections.Generic.KeyNotFoundException", "There is no slave with that station address.",
        "The addresses of the configuration (vesk config show)."},
    Row{"System.IO.IOException", "A file that cannot be opened, mapped, read or written.",
        "The path, the permissions and the length that the message names."},
    Row{"System.IO.FileNotFoundException", "A file that does not exist.", "The path."},
    Row{"System.IO.EndOfStreamException", "A file or message that ends too early.", DAMAGED},
};

constexpr std::array STARTUP{
    Row{"IRQ not cleared at power off",
        "The interrupt line is still asserted although the module is held in reset.",
        "The polarity and wiring of the interrupt line, and that the reset line reaches the module."},
    Row{"Timeout waiting for initial IRQ",
        "The module did not raise its interrupt in time after reset: 2 s as the master, 1 s in its "
        "bootloader.",
        "The module's supply, the reset line, the interrupt line, and that its firmware is complete."},
    Row{"Empty indication at bootup!", "The module raised its interrupt but its register says nothing.",
        "That the DPRAM's offset is right and that nobody else acknowledges the interrupt."},
    Row{"Missing PowerOn indication at bootup!", "The first interrupt did not report the power-on.",
        "That the reset line reaches the module and the DPRAM's offset is right."},
    Row{"Unexpected indication at bootup!", "The power-on came together with something else.", MODULE_BROKE},
    Row{"Unexpected poweron indication from module!", "The module restarted by itself while it was in use.",
        "Its supply (brown-outs) and its watchdog; a new module object brings it up again."},
    Row{"Fatal event reported by VT22 module",
        "The module stopped and left the reason in the fatal-event block.",
        "The event's code, cause and source line, which its maker wants to know; a new module object resets "
        "it."},
    Row{"Unexpected module type!", "The module is of another type, or not in the expected life.",
        "The fitted module; the bootloader-enable line (the bootloader says 101, the master 201); the "
        "DPRAM's "
        "offset."},
    Row{"Unexpected fieldbus type!", "The module is for another fieldbus.",
        "The fitted module and the DPRAM's offset."},
    Row{"Unexpected vendor id!", "The module is another vendor's.",
        "The fitted module and the DPRAM's offset."},
    Row{"Unsupported major bootloader version: #",
        "The bootloader is too old for a download over the mailbox.",
        "The bootloader's version; such a module goes back to its maker."},
    Row{"Non-zero handshake on bootup: #", "The bootloader started with its register not at zero.",
        "The reset and bootloader-enable lines."},
    Row{"Velmo module no longer initialized!", "The bootloader took its init bit back: it restarted.", LINES},
    Row{"Timeout waiting for DOWNLOAD_COMPLETE", "The database was not compared and written within 10 s.",
        "That Update is called at least every few milliseconds; the size of the database."},
    Row{"Timeout waiting for INITIALIZED", "The initialisation did not end within 10 s.",
        "That Update is called often enough, and the answers with --trace mailbox."},
    Row{"Config checksum readback failed",
        "After the download the module still names another checksum than the database's.",
        "The module's flash: download again; if it stays so, the module is defective."},
    Row{"Unknown state: #", "The module object's memory is damaged.",
        "The application with a memory checker; report it."},
    Row{"_hostInterface->Size() (#) must be equal to sizeof(DpRam) (#)",
        "The DPRAM does not have 8192 bytes.", "The file or device that is opened as the DPRAM."},
};

constexpr std::array USE{
    Row{"Module not booted or configured!", "BeginInitialization came before the module has booted.",
        "Call Update until Booted(), or Configured() with a configuration, is true."},
    Row{"Module already initialized", "BeginInitialization came twice.",
        "The order of the application's calls."},
    Row{"Module not configured", "The database information is asked for before the database matches.",
        "Call Update until Configured() is true; a module object without configuration never has it."},
    Row{"Reserved bits set in indication register",
        "A register has bits that mean nothing: the module is not in step, or the DPRAM is not where it "
        "should be.",
        MODULE_BROKE},
    Row{"Reserved bits set in module status register", "The module status has bits that mean nothing.",
        MODULE_BROKE},
    Row{"Simultaneous offline and online indication", "The module reports both at once.", MODULE_BROKE},
    Row{"Double offline indication received", "The module reported offline twice in a row.", MODULE_BROKE},
    Row{"Double online indication received", "The module reported online twice in a row.", MODULE_BROKE},
    Row{"Invalid operation mode: #", "The module reports a mode that is none of STOP, CLEAR and OPERATE.",
        MODULE_BROKE},
    Row{"Application handshake not locked", "The host spoke although the module had not asked.",
        "A fault in the order of calls; report it."},
    Row{"More input data mapped than available in config [ # < # ]",
        "The application maps more input bytes than all slaves of the database have together.", MAPPING},
    Row{"More output data mapped than available in config [ # < # ]",
        "The application maps more output bytes than all slaves of the database have together.", MAPPING},
    Row{"Input data mapped outside of available area [ # < # ]",
        "An input mapping ends behind the last input byte of the database.", MAPPING},
    Row{"Output data mapped outside of available area [ # < # ]",
        "An output mapping ends behind the last output byte of the database.", MAPPING},
    Row{"Segment mapped outside area", "A mapping ends behind the process data area of 3500 bytes.", MAPPING},
    Row{"Start of segment within existing segment", "Two mappings share bytes.", MAPPING},
    Row{"End of segment within existing segment", "Two mappings share bytes.", MAPPING},
    Row{"Segment wraps around existing segment", "Two mappings share bytes.", MAPPING},
    Row{"No download in progress", "EndDownload came before a download was begun.",
        "The order of the application's calls."},
};

constexpr std::array MAILBOX{
    Row{"Received erroneous mailbox response:", "The module answered a request with an error.",
        "The error that the text shows (vesk explain with its name) and the request's parameters."},
    Row{"Received response without an outstanding request:", "The module answered what nobody had asked.",
        MODULE_BROKE},
    Row{"MessageId of response header does not match outstanding request:",
        "The module answered another request than the last one.", MODULE_BROKE},
    Row{"MessageType of response header does not match outstanding request:",
        "The answer is of another type than the request.", MODULE_BROKE},
    Row{"Command of response header does not match outstanding request:",
        "The answer is for another command than the request's.", MODULE_BROKE},
    Row{"Timeout after # seconds.", "The module did not answer the request that the text shows in time.",
        "Whether Update is called often enough; whether a slave that is addressed answers (vesk livelist)."},
    Row{"offset (#) + count (#) must not be greater than the length of array (#)",
        "A message or a range is longer than what holds it.", MODULE_BROKE},
};

constexpr std::array FILES{
    Row{"Invalid fragmentNumber (#)", "A slave record's fragment has the number 0.", DAMAGED},
    Row{"command (#) != MASTER_RECORD_DOWNLOAD (18)",
        "The database file does not begin with the master record.", DAMAGED},
    Row{"command (#) != SLAVE_RECORD_DOWNLOAD (20)", "A message of the database file is no slave record.",
        DAMAGED},
    Row{"fragmentNumber (#) != next fragment (#)", "A fragment of a slave record is missing or twice there.",
        DAMAGED},
    Row{"fragment node address (#) != current node address (#)",
        "A slave record's fragments have different station addresses.", DAMAGED},
    Row{"calculated CRC (#) != expected CRC (#)", "The records do not have the checksum of the first line.",
        "Whether the file was edited or damaged; export it again from the configuration tool."},
    Row{"data size (#) > 256", "A message of the database file has more data than a message can.", DAMAGED},
    Row{"block length (#) != expected (#)", "A record does not have its only possible length.", DAMAGED},
    Row{"block length (#) not in range [# : #]", "A record says a length that it cannot have.", DAMAGED},
    Row{"read length (#) != block length (#)", "A record is longer or shorter than it says.", DAMAGED},
    Row{"written length (#) != expected (#)", "A record that was put together came out too long.",
        "The text fields: the name of the Class 2 master has up to 32 characters."},
    Row{"written length (#) not in range [# : #]", "A record that was put together has an impossible length.",
        "The lengths of its arrays."},
    Row{"input table length (#) not in range [# : #]", "A slave has more than 244 input bytes.", DAMAGED},
    Row{"output table length (#) not in range [# : #]", "A slave has more than 244 output bytes.", DAMAGED},
    Row{"Key already exists", "Two slaves of a configuration have the same station address.",
        "The station addresses in the configuration tool."},
    Row{"Seek to #, before the start of the stream",
        "A stream of the application was moved before its start.", CALLER},
    Row{"Write up to # in a stream of #",
        "The application writes behind the end of a stream of fixed length.", CALLER},
    Row{"Queue empty", "The application takes from an empty queue.", CALLER},
    Row{"Stream ends", "The file or message ends too early.", DAMAGED},
    Row{"Stream holds # of # program bytes", "The firmware file is shorter than it says.", DAMAGED},
    Row{"UNKNOWN: #", "The firmware file's type is none of bootloader, application and configuration.",
        "Whether it is a firmware file (vesk firmware show)."},
    Row{"Unknown data in reserved[#]: #", "The firmware file's header has bytes where there should be none.",
        "Whether it is a firmware file of a newer kind."},
    Row{"BOOTLOADER_FIRMWARE", "The file is a bootloader, and an application was expected.",
        "The file, or vesk flash --bootloader."},
    Row{"APPLICATION_FIRMWARE", "The file is an application, and a bootloader was expected.",
        "The file, or vesk flash without --bootloader."},
    Row{"CONFIGURATION_FIRMWARE", "The file is a configuration image, which cannot be downloaded.",
        "The file."},
};

template <std::size_t Count>
void Append(std::vector<Explanation>& to, const char* kind, const std::array<Row, Count>& rows) {
    for (const Row& row : rows)
        to.push_back({kind, row.name, {}, row.meaning, row.check});
}

} // namespace

std::vector<Explanation> FailureExplanations() {
    std::vector<Explanation> all;
    for (const Row& row : EXCEPTIONS) {
        const std::string name = row.name;
        all.push_back({"exception", name, {name.substr(name.rfind('.') + 1)}, row.meaning, row.check});
    }
    Append(all, "message", STARTUP);
    Append(all, "message", USE);
    Append(all, "message", MAILBOX);
    Append(all, "message", FILES);
    return all;
}

} // namespace VeskTool
