// SPDX-License-Identifier: MIT
// What the command line says by itself, in the order in which a user meets it; the more particular first.
#include "failures/Outcome.h"
#include "failures/Steps.h"

#include <array>

namespace Failures {

namespace {

constexpr std::string_view OWN = "Failure";

// What to check, and what to do then.
constexpr std::string_view RIGHT_FILE = "Check that it is the file that was meant, and that it is complete.";
constexpr std::string_view SLAVES = "See who is there and who is configured: vesk slaves.";
constexpr std::string_view DIAG = "Check its supply, its address and the cable; vesk diag ADDRESS says more.";
constexpr std::string_view BUS = "Check the bus connector, its termination and the slaves: vesk status.";
constexpr std::string_view DPRAM = "Check the address and data lines of the DPRAM, and that no other program "
                                   "uses the module.";
constexpr std::string_view BUILD = "Check the addresses and lengths against the program's own map.";
constexpr std::string_view UPDATE_AGAIN = "Run the update again.";
constexpr std::string_view START_MODULE = "Check the path; vesk module makes both files, DPRAM and lines.";
constexpr std::string_view PLANT_LOG = "Look at what its application says.";
constexpr std::string_view PLANTS = "See which plants there are: vesk plants.";

constexpr std::array TABLE{
    // where the module is
    Outcome{OWN, "* does not exist, so there is no `vesk module` with *",
            "No module in software plays on these files.", START_MODULE,
            "Start vesk module with the same two files."},
    Outcome{OWN, "* does not exist, so there is no device of that name", "The DPRAM's device is not there.",
            "Check the name of the device, and that its driver is loaded.", ""},
    Outcome{OWN, "this vesk was built without libgpiod, which --gpio needs",
            "The program has no way to a GPIO chip.", "Check which package of vesk is installed.",
            "Build it with libgpiod, 1.6 or later."},
    Outcome{OWN, "cannot be used: *", "The system does not give a file, a device or a line of a GPIO chip.",
            "Check the path, or the chip and its numbers, and who may use it.",
            "docs/hardware.md says how a group gets the right to devices."},
    Outcome{OWN, "* is in use by *", "A module has one host at a time, and its files serve one module.",
            "Look at the process that is named, and end it first.",
            "vesk dump --dpram shows the DPRAM without disturbing it."},
    // a module in software on D-Bus
    Outcome{OWN, "this vesk was built without sdbus-c++, which --publish needs",
            "The program has no way to D-Bus.", "Check which package of vesk is installed.",
            "Build it with sdbus-c++ 1.2, its xml2cpp included."},
    Outcome{OWN, "cannot publish * on the bus *: another program has this name",
            "A name on D-Bus is one program's.", "Look who has it: busctl list.",
            "End that program, or publish under another name."},
    Outcome{
        OWN, "cannot publish * on the bus *", "The bus is not there, or its policy does not give the name.",
        "Check the bus: --bus, VESK_BUS, DBUS_SESSION_BUS_ADDRESS.",
        "The session bus gives every name; the system bus those that a file in /etc/dbus-1/system.d allows."},
    Outcome{OWN, "the connection to D-Bus is lost: *", "The bus has ended, or has sent this program away.",
            "Check whether the bus runs.", "Start the module again; its flash file has what it held."},
    // a plant
    Outcome{OWN, "No plant is published as *", "No application publishes its module under that name.",
            "See which there are: vesk plants.",
            "Check that the application runs, and on which bus it is: --bus session."},
    Outcome{OWN, "More than one plant is published; name one with --plant", "The monitor shows one plant.",
            PLANTS, "Name it with --plant."},
    Outcome{OWN, "There is no terminal for the monitor; vesk monitor --once prints it",
            "The monitor draws on the terminal of its standard output.", "Check where the output goes.",
            "vesk monitor --once prints the same as text."},
    Outcome{OWN, "The monitor cannot draw on this terminal; vesk monitor --once prints it",
            "TERM names no terminal that is known here.", "Check TERM, which the terminal sets.",
            "vesk monitor --once prints the same as text."},
    Outcome{OWN, "this vesk was built without sdbus-c++, which plants need",
            "The program has no way to D-Bus.", "Check which package of vesk is installed.",
            "Build it with sdbus-c++ 1.2 or a later 1.x."},
    Outcome{OWN, "this vesk was built without ncurses, which the monitor needs",
            "The program cannot draw on the screen.", "Check which package of vesk is installed.",
            "See the same once: vesk monitor --once. Or build it with ncurses."},
    Outcome{OWN, "Plant * has left the bus",
            "Its application has ended, or does not publish its module any more.", PLANT_LOG, PLANTS},
    Outcome{OWN, "Plant * is not on the bus",
            "Its application has ended, or does not publish its module any more.", PLANT_LOG, PLANTS},
    Outcome{OWN, "Plant * does not answer",
            "Its application is stopped or busy, or does not call Update any more.", PLANT_LOG, PLANTS},
    Outcome{OWN, "Plant * lets nobody change anything: *",
            "Its application publishes the module for those who only look.",
            "Check that nothing is meant to stay as it is.",
            "Let the application offer org.libvesk.Control1, if others may change something."},
    Outcome{OWN, "Plant * does not let this user do that: *",
            "The policy of the bus forbids it to this user.",
            "Check who may, in the policy of the bus for org.libvesk.", "Ask as one of those."},
    Outcome{OWN, "Plant * cannot be used: *", "Its application has answered with an error of its own.",
            PLANT_LOG, ""},
    Outcome{OWN, "The * bus cannot be used: *", "The D-Bus of the plants is not there.",
            "Check that it runs, and that --bus or VESK_BUS names the right one.", ""},
    Outcome{OWN, "The bus* cannot be used: *", "The D-Bus of the plants is not there.",
            "Check that it runs, and that --bus or VESK_BUS names the right one.", ""},
    Outcome{OWN, "The module of plant * is in *, and not yet as far as *",
            "Its application brings the module up, or has not got further.", PLANT_LOG,
            "See each step: vesk status --watch."},
    Outcome{OWN, "Plant * has not read yet which database its module holds",
            "Its application brings the module up, or has not got further.", PLANT_LOG,
            "See each step: vesk status --watch."},
    Outcome{OWN, "The module is that of plant *, and this is only for the program that has the module",
            "It would change what the application relies on.",
            "Check that the application is meant to go on.", "End it, and then try again."},
    // its life
    Outcome{OWN, "The module holds no database, so it cannot go onto a bus",
            "Nothing was downloaded into the module, or a download was not ended.",
            "Check what the module holds: vesk database.", "Download one: vesk download CONFIG.ddb."},
    Outcome{OWN, "Timeout waiting for the answer to *", "The module has not answered for 15 s.",
            "Check the interrupt line and the module's supply.", "See what is not right: vesk status."},
    Outcome{OWN, "Timeout waiting for the operation mode *",
            "The master has not reported the mode that it was told to take.", BUS, ""},
    Outcome{OWN, "Timeout waiting for *", "The module has not come that far in 15 s.",
            "Check the interrupt line and the module's supply.", "See what is not right: vesk status."},
    Outcome{OWN, "The life of the module has ended, so nothing can be asked of it",
            "An earlier failure has ended it, and the module is in reset.",
            "Look at that failure, and at what it says.", "restart begins another life."},
    // slaves
    Outcome{OWN, "Only a bus description says what a slave or a signal is called; name it with --config",
            "Neither the module nor a slave knows names; a bus description (.toml) does.",
            "Check which description the module's database was made of.",
            "Name it, or give the station address instead of the name."},
    Outcome{OWN, "The module does not say at which rate its bus runs; name it with --rate",
            "A bus description needs the data rate, and the module's own database cannot be read back.",
            "Check the rate in the configuration of the bus.",
            "Give it, --rate 1.5M say, or with --config the configuration that the module holds."},
    Outcome{OWN, "Only a configuration says which bytes of the module a slave has; name it with --config",
            "The module sends bytes of an area, and does not tell whose they are.",
            "Check which configuration the module was given: vesk database.",
            "Name it; in a shell when it is started: vesk shell --config CONFIG.ddb."},
    Outcome{OWN,
            "The module holds the database * instead of *, so nobody knows where its slaves have their bytes",
            "The configuration that is named is not the one in the module.",
            "See where they differ: vesk verify CONFIG.ddb.",
            "Name the other one, or bring the module in line: vesk download CONFIG.ddb."},
    Outcome{OWN, "Slave # is not in the configuration, so it has no input data",
            "Only a slave that is configured has bytes in the module.", SLAVES, ""},
    Outcome{OWN, "Slave # has # bytes of input data, so # from byte # on do not fit",
            "The slave takes no more bytes than the configuration gives it.",
            "See its lengths, IN to the bus and OUT from it: vesk slaves.", ""},
    Outcome{"Refusal", "The module refused the * record * of slave #, which exchanges data: *",
            "The slave is there, so it is the record that it does not have, or not with that length or at "
            "the moment.",
            "Check slot, index and length in the slave's manual.",
            "vesk read ADDRESS 0 INDEX shows whether it has any record."},
    Outcome{OWN, "Slave # is not in the module's database, which has *",
            "A slave that is not configured cannot be started or stopped.", SLAVES, ""},
    Outcome{OWN, "Slave # does not exchange data: *", "The master does not reach it, or does not take it in.",
            DIAG, ""},
    Outcome{OWN, "Slaves * do not exchange data; slave #: *",
            "The master does not reach them, or does not take them in.", DIAG, ""},
    // vesk run
    Outcome{OWN, "the real-time priority # is refused: the limit (RLIMIT_RTPRIO) is #",
            "The user has no right to that priority, and the process has no CAP_SYS_NICE.",
            "Check ulimit -r, or LimitRTPRIO= of the service.",
            "Give the group the right, with a line @vesk - rtprio 99 in /etc/security/limits.d, or run it as "
            "root."},
    Outcome{
        OWN,
        "the memory cannot be locked, and a disk would stop the cycle: the limit (RLIMIT_MEMLOCK) is # KiB",
        "The user may not lock as much memory as the process has.",
        "Check ulimit -l, or LimitMEMLOCK= of the service.",
        "Give the group the right, with a line @vesk - memlock unlimited in /etc/security/limits.d, or run "
        "it "
        "as root."},
    Outcome{OWN, "The second life downloaded the configuration # times instead of 0",
            "The module does not keep the database that was written into it.",
            "Check whether it comes back after another start.",
            "If it does, the module's flash is worn out."},
    Outcome{OWN, "Cycle # does not come back: *",
            "The slaves of a virtual module send back what they get; this byte has not come back in 5 s.",
            "Check that the module is a virtual one: on a machine vesk run proves nothing.", BUS},
    Outcome{OWN, "Cycle #: *", "A byte came back that was never sent.", DPRAM, ""},
    Outcome{OWN, "* returned * instead of *", "A record is not what was written into it a moment before.",
            "Check that the module is a virtual one: on a machine vesk run proves nothing.", DPRAM},
    Outcome{OWN, "The module saw the host break the protocol: *",
            "The host did what a module must never see.", "Keep the message.",
            "Report it: it is a fault of the library or of this program."},
    // vesk flash, vesk set-address
    Outcome{OWN, "There is no terminal to ask at; give --yes to write without being asked",
            "Something is to be written that cannot be taken back, and nobody can be asked.",
            "Check that it is what you want; vesk flash has --dry-run.", "Then give --yes."},
    Outcome{OWN, "Nothing was written", "The question was not answered with y.",
            "Answer y, or give --yes, to go on.", ""},
    Outcome{OWN, "*: holds *, and the * is to be replaced",
            "The file's program is of another type than the one that is to be replaced.",
            "Check the file; --bootloader replaces the bootloader, and without it the application.",
            "If only the file's own word is wrong: --force=type."},
    Outcome{OWN, "*: holds no program", "The file is a header alone.", RIGHT_FILE, FETCH},
    Outcome{OWN, "*: its checksum is # and that of its program #, so it is damaged",
            "The program is not the one that the checksum was made of; the module would refuse it after its "
            "own was erased.",
            RIGHT_FILE, "Get the file again from where it came; --force=checksum writes it all the same."},
    Outcome{OWN, "*: is for module #, and this one is #", "The program was made for another module.",
            RIGHT_FILE, "If only the file's own word is wrong: --force=module-id."},
    Outcome{OWN, "*: takes the place of version * or newer, and the module's * is *",
            "The program cannot follow the one that is in the module.",
            "Check which versions lie in between, with whoever made the file.",
            "Bring one of them into the module first; --force=version writes it all the same."},
    Outcome{OWN, "request # of # (*) was refused, so the program did not pass the module's check: *",
            "The module has taken the program and does not run it.", "Look at the file: vesk firmware show.",
            UPDATE_AGAIN},
    Outcome{OWN, "request # of # (*) was refused by the module: *",
            "The module does not take the program, or not at that place.",
            "Look at the addresses of the file: vesk firmware show.", UPDATE_AGAIN},
    Outcome{OWN, "request # of # (*) was not answered: *", "The module has stopped answering.",
            "Check the module's supply and the interrupt line.", UPDATE_AGAIN},
    Outcome{OWN, "request # of # (*) failed: *", "The update was cut off.", DPRAM, UPDATE_AGAIN},
    Outcome{OWN, "The download is complete, but the module does not start as the master: *",
            "The new program does not run.",
            "Check that it is a program for this module: vesk firmware show.",
            "Run the update again, or bring the version before back."},
    // what a file holds
    Outcome{OWN, "*: no slave is called *", "The bus description has no slave of that name.",
            "See its names in the text, or with vesk slaves --config FILE.", ""},
    Outcome{OWN, "*: has no names, so no slave is called *",
            "A configuration database has station addresses alone.",
            "Check whether there is a bus description of it (.toml).",
            "Name that one, or give the station address instead of the name."},
    Outcome{OWN, "*: byte # is #, where a database file has its checksum, *",
            "The file is no configuration database.", RIGHT_FILE, EXPORT},
    Outcome{OWN, "*: ends at byte #, where a database file has its checksum, *",
            "The file is cut short, or no configuration database.", RIGHT_FILE, EXPORT},
    Outcome{OWN, "*: ends at byte #, in the middle of message #, *",
            "The file is cut short, or was changed by an editor or on its way.", RIGHT_FILE, EXPORT},
    Outcome{OWN, "*: message #, from byte # on: it has the message type or the error code #, *",
            "The file was changed by an editor or on its way.", RIGHT_FILE, EXPORT},
    Outcome{OWN, "*: ends behind its first line, without any message", "The file is cut short.", RIGHT_FILE,
            EXPORT},
    Outcome{OWN, "*: has more than # bytes, the most that a * can have*", "The file is none of that kind.",
            RIGHT_FILE, ""},
    Outcome{OWN, "*: its first line says the checksum #, and its records have #",
            "The records do not have the checksum of the first line.",
            "Check whether the file was edited or damaged: vesk config show --force.", EXPORT},
    Outcome{OWN, "*: bytes 64 and 65 are #, where a firmware file has 0xa55a*",
            "The file is no firmware file.", RIGHT_FILE, FETCH},
    Outcome{OWN, "*: ends at byte #, in the header of a firmware file, *",
            "The file is cut short, or no firmware file.", RIGHT_FILE, FETCH},
    Outcome{OWN, "*: ends at byte #, and its header says a program of *", "The file is cut short.",
            RIGHT_FILE, FETCH},
    Outcome{OWN, "*: its header says a program of # bytes, and a program has up to #",
            "The file is damaged: no module has room for that.", RIGHT_FILE, FETCH},
    Outcome{OWN, "*: bytes 66 and 67 are the type #, *", "The file is damaged, or of a newer kind.",
            RIGHT_FILE, FETCH},
    Outcome{OWN, "*: byte # is #, where the header of a firmware file has zero",
            "The file is damaged, or of a newer kind.", RIGHT_FILE, FETCH},
    Outcome{OWN, "*; # error* in the device description file",
            "The file does not say what has to be known of the device.",
            "See all that is wrong: vesk gsd check FILE.", "Get the file from the device's manufacturer."},
    Outcome{OWN, "*: has * bytes, and a dump of the DPRAM has #*", "The file is no dump, or half of one.",
            RIGHT_FILE, ""},
    Outcome{OWN, "*: # bytes, so no DPRAM can be in it up to byte #", "The file is too short for the DPRAM.",
            "Check the path, and the offset at which the DPRAM begins.", ""},
    Outcome{OWN, "*: is empty, and a program has *", "The file is no program.", RIGHT_FILE, ""},
    Outcome{OWN, "*: a program of # bytes at # does not fit: *",
            "The program would end behind the last flash address.", BUILD, ""},
    Outcome{OWN, "The checksum's range, *, is not inside the program, *",
            "A firmware file's checksum covers bytes of its program and no others.", BUILD, ""},
    // whether it can be read and written
    Outcome{OWN, "*: is a folder, where a file is needed", "A folder was given for a file.",
            "Check the path.", ""},
    Outcome{OWN, "*: is a device, where a file is needed", "A device may have no end.", "Check the path.",
            ""},
    Outcome{OWN, "*: is no regular file, so it is not replaced",
            "A folder, a device or a pipe must not give way to a file.", "Check the path.", ""},
    Outcome{OWN, "*: is there already, so no draft takes its place",
            "A draft knows less than a description that was written by hand.", "Look at what is there.",
            "Give another name, or take the file away first."},
    Outcome{OWN, "*: is the image itself, so it is not replaced", "The image and the file have one path.",
            "Check the path.", "Give the file another name."},
    Outcome{OWN, "*: is the description itself, so it is not replaced",
            "The description and the file have one path.", "Check the path.", "Give the file another name."},
    Outcome{OWN, "*: is the database itself, so it is not replaced",
            "The database and the file have one path.", "Check the path.", "Give the file another name."},
    Outcome{OWN, "*: has *, so nothing is made of it",
            "The bus description, or a device description file, is wrong.",
            "Look at the lines above: each says where, and what was expected.",
            "Correct them; docs/configuration.md has every key."},
    Outcome{OWN, "*: cannot be read: *", "The system does not give the file.",
            "Check the path, and who may read it.", ""},
    Outcome{OWN, "standard output: *", "What the command prints cannot be written.",
            "Check the disk or the program that the output goes to.", ""},
    // vesk module
    Outcome{OWN, "* has # bytes instead of #, so it is something else",
            "The file was not made by vesk module, and it is left alone.", "Check the path.",
            "Give a path at which there is nothing yet."},
    Outcome{OWN, "* is not a regular file", "A module in software needs files of its own.", "Check the path.",
            ""},
    Outcome{OWN, "flash file *: *", "The file is not the flash of a module in software, or it is damaged.",
            "Check the path.", "Give a path at which there is nothing yet; a module makes its flash itself."},
    Outcome{OWN, "*", "The command cannot go on; the message says why.", "Check what the message names.", ""},
};

} // namespace

const std::vector<const Outcome*>& ToolFailures() {
    static const std::vector<const Outcome*> all = [] {
        std::vector<const Outcome*> made;
        made.reserve(std::size(TABLE));
        for (const Outcome& outcome : TABLE)
            made.push_back(&outcome);
        return made;
    }();
    return all;
}

} // namespace Failures
