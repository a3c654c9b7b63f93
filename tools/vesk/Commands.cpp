// SPDX-License-Identifier: MIT
#include "tools/vesk/Commands.h"

#include "tools/vesk/documents/Generate.h"
#include "tools/vesk/explain/Explain.h"
#include "tools/vesk/files/FileCommands.h"
#include "tools/vesk/jobs/Jobs.h"
#include "tools/vesk/monitor/Monitor.h"
#include "tools/vesk/session/PublishedPlants.h"
#include "tools/vesk/shell/Shell.h"
#include "tools/vesk/verbs/Verb.h"
#include "tools/vesk/verbs/Verbs.h"

namespace VeskTool {

const std::vector<Command>& Commands() {
    static const std::string MODULE = "The module";
    static const std::string BUS = "The bus";
    static const std::string SLAVE = "One slave";
    static const std::string TRIAL = "Trying it out";
    static const std::string FILES = "Files and words";
    static const std::string HIDDEN;
    constexpr bool ALONE = true;
    static const std::string ON_THE_BUS =
        "\nResets the module and takes it onto the bus, in OPERATE with all inputs 0.";
    static const std::string WHETHER_IT_WORKS =
        ON_THE_BUS.substr(0, ON_THE_BUS.size() - 1) +
        "; when the command ends the module goes back into reset, so what it shows is whether it works.";

    static const std::vector<Command> COMMANDS{
        {"identify", MODULE,
         "Show what the module is: type, fieldbus, vendor, serial number, versions.\n"
         "Resets the module.\n"
         "Example: vesk identify --json",
         AddIdentify},
        {"status", MODULE,
         "Show where the module stands on its way onto the bus, step by step, and the first thing that is "
         "not right, with its cause and the next step; exit status 3 if there is one." +
             ON_THE_BUS +
             " --watch does that once.\n"
             "Example: vesk status --config examples/plant.ddb --watch",
         AddStatus},
        {"database", MODULE,
         "Show what the module holds: the checksum that describes its database, slaves, lengths.\n"
         "Resets the module.\n"
         "Example: vesk database",
         AddDatabase},
        {"download", MODULE,
         "Bring the module's database in line with a configuration; nothing is sent where it is already.\n"
         "Resets the module, once more after a download. It goes on without its terminal; in the middle "
         "Ctrl-C "
         "stops it the second time.\n"
         "Example: vesk download examples/plant.ddb",
         AddDownload, FAILED, ALONE},
        {"verify", MODULE,
         "Compare the module's database with a configuration and change nothing; exit status 3 where they "
         "differ.\n"
         "Resets the module.\n"
         "Example: vesk verify examples/plant.ddb",
         AddVerify},
        {"flash", MODULE,
         "Replace the application of the module, or with --bootloader its bootloader, by the program in the "
         "file FIRMWARE, and show which version runs then.\n"
         "The module is reset and its bus stands still. An update that was cut off can always be run again. "
         "It goes "
         "on without its terminal; in the middle Ctrl-C stops it the second time.\n"
         "Example: vesk flash examples/firmware/vt22-1.5.0.fw --yes",
         AddFlash, FAILED, ALONE},
        {"shell", MODULE,
         "Keep one life with the module and take the commands that can share it, one in a line, from a "
         "person "
         "or from a pipe or file. What is set stays set from line to line.\n"
         "Words are split as by a shell, with quotes; what follows # is a comment. help shows the commands, "
         "restart begins another life, quit or the end of the input leaves the module in reset. Ctrl-C stops "
         "a "
         "command of a person's, and the life goes on.\n"
         "From a pipe or file the exit status is 0, or the worst of those of the lines: 2 before 1 before 3. "
         "With --json each object is a line, with the number and the text of the line that it answers.\n"
         "Resets the module.\n"
         "Example: vesk shell\n"
         "Example: vesk shell --json < script",
         [](CLI::App& app) { return AddShell(app, AddSharingCommands); }, FAILED, ALONE},
        {"plants", MODULE,
         "List the plants: modules that applications have and publish on D-Bus.\n"
         "With --plant NAME the commands that talk to a module ask the application, which goes on "
         "undisturbed: "
         "nothing is reset. So they do by themselves where the lines file of --lines is in use by such an "
         "application, which publishes one module; over GPIO lines --plant has to be given.\n"
         "write, mode, start, stop and set need an application that lets others change something.\n"
         "Example: vesk plants\n"
         "Example: vesk --plant press status",
         AddPlants},
        {"monitor", MODULE,
         "Show a plant on the whole terminal: state, operation mode, times of its cycle, all stations in a "
         "grid, "
         "the data of a slave with what has changed, and a line for whatever happens. The keys stand at the "
         "bottom. It is the plant of --plant, or the only one; nothing is reset.\n"
         "Example: vesk monitor --plant press\n"
         "Example: vesk monitor --once --slave 5",
         AddMonitor, FAILED, ALONE},

        {"slaves", BUS,
         "Show each slave in a line, with the lengths of its input (to the bus) and output (from the bus), "
         "and all 128 stations in a grid." +
             ON_THE_BUS + "\nExample: vesk slaves -v --config examples/plant.ddb",
         AddSlaves},
        {"livelist", BUS,
         "Show every station that answers on the bus, configured or not." + ON_THE_BUS +
             "\nExample: vesk livelist",
         AddLiveList},
        {"start", BUS, "Take slaves into the data exchange." + WHETHER_IT_WORKS + "\nExample: vesk start 5 8",
         AddStart},
        {"stop", BUS, "Take slaves out of the data exchange." + WHETHER_IT_WORKS + "\nExample: vesk stop 5 8",
         AddStop},
        {"mode", BUS,
         "Take the master into an operation mode, and wait until it reports it.\n"
         "Resets the module and takes it onto the bus; when the command ends the module goes back into "
         "reset, so what it shows is whether the mode can be reached.\n"
         "Example: vesk mode clear",
         AddMode},
        {"set-address", BUS,
         "Give a slave another station address. The slave must be the one with that ident number and must "
         "not exchange data, so the bus stands in STOP meanwhile.\n"
         "Resets the module and takes it onto the bus.\n"
         "Example: vesk set-address 126 12 0x2a10",
         AddSetAddress},

        {"diag", SLAVE,
         "Show a slave's diagnosis, the standard bytes bit by bit and what follows block by block; or with "
         "--all "
         "those of all slaves in a table. Where --config names a bus description, the device description "
         "files of its "
         "slaves have texts for the device's own bytes." +
             ON_THE_BUS + "\nExample: vesk diag 5\nExample: vesk diag --all",
         AddDiag},
        {"slave-config", SLAVE,
         "Show the modules that a slave is made of, as it says itself." + ON_THE_BUS +
             "\nExample: vesk slave-config 33",
         AddSlaveConfig},
        {"input", SLAVE,
         "Show the input data that the master sends to a slave; with --watch each change of them." +
             ON_THE_BUS + "\nExample: vesk input 5\nExample: vesk input pump.setpoint",
         AddInput},
        {"output", SLAVE,
         "Show the output data that the master gets from a slave; with --watch each change of them." +
             ON_THE_BUS +
             "\nExample: vesk output 5 --json\nExample: vesk output 5 --watch --seconds 60\n"
             "Example: vesk output pump.speed",
         AddOutput},
        {"set", SLAVE,
         "Set input data of a slave, which the master sends to it, and wait until the master has them; exit "
         "status 3 if it does not take them. They last as long as the life of the module: in `vesk shell` "
         "until "
         "it ends. With --plant they go out in place of the application's own until Ctrl-C, or for "
         "--seconds. "
         "Otherwise the module goes back into reset at once, so what it shows is whether it works.\n"
         "Where a slave has its bytes, only the configuration of the module says: --config. A virtual module "
         "has that of examples/plant.ddb." +
             ON_THE_BUS +
             "\nExample: vesk set 5 0a0b0c\nExample: vesk set 5 4 \"0a 0b\"\n"
             "Example: vesk set pump.setpoint 120",
         AddSet},
        {"read", SLAVE, "Read a record of a slave." + ON_THE_BUS + "\nExample: vesk read 5 0 1 64", AddRead},
        {"write", SLAVE,
         "Write a record of a slave." + ON_THE_BUS + "\nExample: vesk write 5 1 200 \"0a 0b 0c\"", AddWrite},

        {"run", TRIAL,
         "Power the module up, bring its database in line with CONFIG, exchange and check process data with "
         "every slave, use each kind of service, and do the start once more on the same flash.\n"
         "The check expects the slaves of the virtual module, which send back what they get. At any other it "
         "replaces the database, drives every output of every slave with a test pattern and overwrites a "
         "record of the first slave; so it asks first where the lines are on a GPIO chip: do not run it on a "
         "machine.\n"
         "Example: vesk run examples/plant.ddb --cycles 5000",
         AddRun, FAILED, ALONE},
        {"module", TRIAL,
         "Play a module in software, for a host in another process: any command or application that is "
         "given the same two files. The files are made where they are missing. Ends at Ctrl-C.\n"
         "What the host does that a module must never see is reported on standard error.\n"
         "A host in another terminal, like that of the second example, then works with it.\n"
         "Example: vesk module --dpram /tmp/dpram --lines /tmp/lines --flash /tmp/flash --log\n"
         "Example: vesk run examples/plant.ddb --dpram /tmp/dpram --lines /tmp/lines",
         AddModule, FAILED, ALONE},

        {"config", FILES, "Make, show and compare configuration database files.", nullptr},
        {"config show", FILES,
         "Show every field of a configuration database, or of the one that a bus description makes, and what "
         "it "
         "means.\n"
         "Example: vesk config show examples/plant.ddb",
         AddConfigShow},
        {"config diff", FILES,
         "Show the fields in which two configurations differ, databases or bus descriptions, a line each. "
         "The "
         "exit status is "
         "diff's: 0 the same, 1 different, 2 trouble.\n"
         "Example: vesk config diff old.ddb new.ddb",
         AddConfigDiff, DIFF_FAILED},
        {"config build", FILES,
         "Make a configuration database file of a bus description, which docs/configuration.md explains, and "
         "show where the data of each slave lies. Everything that is wrong is shown at once, with file, line "
         "and column.\n"
         "Example: vesk config build examples/plant.toml -o /tmp/plant.ddb",
         AddConfigBuild},
        {"config decompile", FILES,
         "Make a bus description of a configuration database file, of which config build makes the same "
         "database again.\n"
         "Example: vesk config decompile examples/plant.ddb",
         AddConfigDecompile, FAILED, ALONE},
        {"config header", FILES,
         "Make a C++ header of a bus description, with which an application maps the data of each slave, and "
         "reads and writes its signals by name.\n"
         "Example: vesk config header examples/plant.toml",
         AddConfigHeader, FAILED, ALONE},
        {"config scan", FILES,
         "Ask the bus who is there, and make a draft of a bus description: a table for each slave that "
         "answers, with its ident number and its modules, by their names where a device description file in "
         "the folder --gsd has them.\n"
         "A module without a database cannot go onto a bus; one made of a [bus] table alone will do." +
             ON_THE_BUS + "\nExample: vesk config scan --gsd examples --rate 1.5M",
         AddConfigScan},
        {"config check", FILES,
         "Compare the slaves that answer on the bus with a bus description or configuration database: who is "
         "missing, who is not described, who is another device or has other modules, and what to do; exit "
         "status 3 if there is anything." +
             ON_THE_BUS + "\nExample: vesk config check examples/plant.toml",
         AddConfigCheck},
        {"firmware", FILES, "Make and show firmware files.", nullptr},
        {"firmware show", FILES,
         "Show what a firmware file says about its program, and whether its checksum fits.\n"
         "Example: vesk firmware show examples/firmware/vt22-1.5.0.fw",
         AddFirmwareShow},
        {"firmware build", FILES,
         "Make a firmware file of a program image. Numbers are decimal, or hexadecimal after 0x.\n"
         "Example: vesk firmware build image.bin -o vt22.fw --type application --module-id 0x201 --address "
         "0x20000",
         AddFirmwareBuild, FAILED, ALONE},
        {"gsd", FILES, "Show and check device description files (GSD) of slaves.", nullptr},
        {"gsd show", FILES,
         "Show what a device description file says: the device, data rates, modules with the bytes that they "
         "send to the bus and get from it, parameters with types, ranges, texts and defaults, diagnosis "
         "texts.\n"
         "Example: vesk gsd show examples/drive.gsd",
         AddGsdShow},
        {"gsd check", FILES,
         "Say what is wrong or unusual in device description files, a line each; exit status 1 if one of "
         "them cannot be used.\n"
         "Example: vesk gsd check examples/drive.gsd",
         AddGsdCheck},
        {"dump", FILES,
         "Show a dump of the dual-port RAM, such as an application leaves behind, as a readable map: every "
         "block and register with its bits, both mailbox messages, the process data.\n"
         "--dpram shows the DPRAM of a module in use instead: a snapshot, without a reset and without a "
         "write, "
         "also beside a running host.\n"
         "Example: vesk dump /tmp/hostinterface.bin\n"
         "Example: vesk dump --dpram /tmp/dpram",
         AddDump},
        {"explain", FILES,
         "Say what a word means and what to check: an exception type, a message or its beginning, an error "
         "code, an operation mode, a state, a register or one of its bits, a flag of a diagnosis, a bus "
         "parameter, a command.\n"
         "Example: vesk explain 0x87\n"
         "Example: vesk explain Timeout waiting for initial IRQ",
         AddExplain},
        {"generate", HIDDEN,
         "Print a document that is made by the program, for the installation or for docs/.", AddGenerate,
         FAILED, ALONE},
    };
    return COMMANDS;
}

/// Whether it can be told which module is meant, if it needs one at all.
static bool AsksModule(const CLI::App& command) {
    return SharedLife::Current() || command.get_name() == "monitor" ||
           command.get_option_no_throw("--virtual");
}

/// Lets what is wrong with the arguments be said in the order in which they stand.
static void TakeInOrder(CLI::App& command) {
    for (CLI::Option* const option : command.get_options())
        option->trigger_on_parse(option->get_items_expected_max() == 1);
    for (CLI::App* const group :
         command.get_subcommands([](const CLI::App* app) { return app->get_name().empty(); }))
        TakeInOrder(*group);
}

/// Adds the row's command, below the one that stands before it.
static CLI::App& AddRow(CLI::App& program, const Command& row) {
    const auto blank = row.name.find(' ');
    const bool top = blank == std::string::npos;
    CLI::App& above = top ? program : *program.get_subcommand(row.name.substr(0, blank));
    CLI::App& command = *above.add_subcommand(row.name.substr(top ? 0 : blank + 1), row.help);
    command.group(top ? row.group : "Subcommands");
    return command;
}

static void AddCommand(CLI::App& program, const Command& row, int& status, int& failed) {
    CLI::App& command = AddRow(program, row);
    if (!row.add) {
        command.require_subcommand(1);
        return;
    }
    command.callback([act = row.add(command), name = row.name, asks = AsksModule(command),
                      whenFailed = row.failed, &status, &failed] {
        if (!asks && !PublishedPlants::Named().empty())
            throw CLI::ValidationError("--plant", name + " asks no module");
        failed = whenFailed;
        status = act();
    });
    TakeInOrder(command);
}

/// Adds a command that only says where it is.
static void AddRefusal(CLI::App& program, const Command& row) {
    AddRow(program, row).group("")->allow_extras()->callback([name = row.name] {
        throw CLI::ValidationError(name + " is no command of a shell: quit, and then vesk " + name,
                                   CLI::ExitCodes::ValidationError);
    });
}

void AddCommands(CLI::App& program, int& status, int& failed) {
    for (const Command& row : Commands())
        AddCommand(program, row, status, failed);
}

void AddSharingCommands(CLI::App& program, int& status, int& failed) {
    for (const Command& row : Commands())
        if (row.alone)
            AddRefusal(program, row);
        else
            AddCommand(program, row, status, failed);
}

} // namespace VeskTool
