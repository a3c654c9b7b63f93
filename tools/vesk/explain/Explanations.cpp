// SPDX-License-Identifier: MIT
#include "tools/vesk/explain/Explanations.h"

#include "tools/vesk/explain/Diagnosis.h"
#include "tools/vesk/explain/Parameters.h"
#include "tools/vesk/explain/Requests.h"
#include "tools/vesk/session/Session.h"
#include "tools/vesk/text/Failure.h"
#include "tools/vesk/text/Text.h"
#include "vesk/hostinterface/BootloaderDpRam.h"
#include "vesk/hostinterface/MasterDpRam.h"
#include "vesk/mailbox/ErrorCode.h"

#include <array>

namespace VeskTool {

using Vesk::Mailbox::ErrorCode;
using Vesk::Mailbox::MessageType;
using Vesk::Modules::DPVM::OperationMode_e;
using All = std::vector<Explanation>;

Explanation ExplanationOf(const Failures::Outcome& failure) {
    const std::string type(failure.type);
    Explanation explanation{
        "message", "", {}, std::string(failure.means), std::string(failure.check), std::string(failure.next)};
    for (const char character : OneLine(failure.message))
        explanation.name += character == '*' ? "…" : std::string(1, character);
    if (failure.message == "#")
        explanation.name = type + ": #";
    if (failure.message == "*" || failure.message.empty()) {
        explanation.kind = "exception";
        explanation.name = type + (failure.message.empty() ? ", without a message" : "");
        explanation.otherNames = {type, type.substr(type.rfind('.') + 1)};
    }
    return explanation;
}

static void AddErrorCodes(All& all) {
    struct Row {
        const ErrorCode& code;
        const char* constant;
        const char* meaning;
        const char* check;
    };

    const std::array rows{
        Row{*ErrorCode::NO_ERROR, "NO_ERROR", "The module did what it was asked to.", ""},
        Row{*ErrorCode::MESSAGE_ID, "MESSAGE_ID", "The module does not accept the message's id.",
            "Check whether another program drives the same module."},
        Row{*ErrorCode::MESSAGE_TYPE, "MESSAGE_TYPE", "The module has no part that handles such messages.",
            "Check that the module runs what the request is for, the master or its bootloader: vesk "
            "identify."},
        Row{*ErrorCode::COMMAND, "COMMAND", "The module does not know the command, or not in this state.",
            "Compare the module's firmware version, vesk identify, and see where it stands: vesk status."},
        Row{*ErrorCode::DATA_SIZE, "DATA_SIZE", "The request has more or less data than the command takes.",
            "Check the length of the data, and try fewer bytes."},
        Row{*ErrorCode::TOTAL_FRAME_COUNT, "TOTAL_FRAME_COUNT",
            "The number of frames is not the one of the transfer that runs.",
            "Begin the download again from its start."},
        Row{*ErrorCode::FRAME_NUMBER, "FRAME_NUMBER", "A frame is missing, or came twice.",
            "Begin the download again from its start."},
        Row{*ErrorCode::OFFSET, "OFFSET", "The frame's place is outside the flash or not the next one.",
            "Check the addresses of the firmware file: vesk firmware show."},
        Row{*ErrorCode::ADDRESS, "ADDRESS",
            "Nothing has that address, or nothing is there under that slot and index.",
            "See who is there, vesk livelist, and who is configured: vesk slaves."},
        Row{*ErrorCode::RESPONSE, "RESPONSE", "The slave did not answer on the bus, or it refused.",
            "Check its supply, its address and the cable, and that it has such a record: vesk livelist, vesk "
            "slaves."},
        Row{*ErrorCode::FLASH_CONFIG_ERROR, "FLASH_CONFIG_ERROR",
            "The module's flash holds no configuration database, or a damaged one.",
            "See first that answers arrive whole: vesk identify says the same twice; otherwise check the "
            "data "
            "lines of the DPRAM. Then download the configuration again: vesk download CONFIG.ddb."},
        Row{*ErrorCode::INVALID_OTHER, "INVALID_OTHER",
            "The module or the slave cannot do that in the state that it is in.",
            "Check the request's parameters, and see what is not right: vesk status."},
    };
    for (const Row& row : rows)
        all.push_back(
            {"error code",
             row.code.Name.Value(),
             {row.constant, Hex(row.code.Id), row.code.Name.Value() + " (" + Hex(row.code.Id) + ")"},
             row.meaning,
             row.check,
             ""});
}

static void AddOperationModes(All& all) {
    struct Row {
        OperationMode_e mode;
        const char* meaning;
        const char* check;
    };

    for (const Row& row : {
             Row{OperationMode_e::OFFLINE, "The master takes no part in the bus.",
                 "Ask for another mode: vesk mode operate."},
             Row{OperationMode_e::STOP, "The master holds its token but talks to no slave.",
                 "Ask for OPERATE: vesk mode operate."},
             Row{OperationMode_e::CLEAR, "The master exchanges with its slaves, and sends them zero.",
                 "Ask for OPERATE: vesk mode operate. A master goes to CLEAR by itself when a slave fails "
                 "and the "
                 "bus parameters say so."},
             Row{OperationMode_e::OPERATE, "The master exchanges process data with its slaves: normal use.",
                 ""},
         })
        all.push_back({"operation mode",
                       ModeName(row.mode),
                       {Hex(static_cast<unsigned int>(row.mode))},
                       row.meaning,
                       row.check,
                       ""});
}

/// The bits of a register, each with its meaning, in the order of the labels.
template <class Register>
static void AddRegister(All& all, const std::string& layout, const std::string& name,
                        const std::array<const char*, Register::LABELS.size()>& meanings) {
    const std::string prefix = name + ".";
    for (std::size_t bit = 0; bit < meanings.size(); ++bit) {
        const std::string label = Register::LABELS[bit];
        all.push_back({"register bit",
                       prefix + label,
                       {label},
                       "Bit " + std::to_string(bit) + " of the " + layout + ": " + meanings[bit],
                       "See its value in a dump of the DPRAM: vesk dump.",
                       ""});
    }
}

static void AddRegisterBits(All& all) {
    using namespace Vesk::Modules::DPVM;
    namespace Handshake = Vesk::Handshake;
    AddRegister<Vt22VelmoIndication_t>(
        all, "master's module indication register", "velmoIndication",
        {"the output area is handed to the host.", "the input area is handed to the host.",
         "mailbox-out holds a new message.", "the message in mailbox-in was taken.", "the module has booted.",
         "the fatal-event block says why the module stopped.", "the module has log data.",
         "without a meaning."});
    AddRegister<Vt22ApplicationIndication_t>(
        all, "master's application indication register", "applicationIndication",
        {"the output area goes back to the module.", "the input area goes back to the module.",
         "the message in mailbox-out was taken.", "mailbox-in holds a new message.",
         "the log area goes back to the module."});
    AddRegister<OutAreaIndication_t>(
        all, "master's out-area indication register", "outArea.indication",
        {"the module status is new.", "the fieldbus status is new.", "the output process data is new."});
    AddRegister<ModuleStatus_t>(all, "master's module status register", "outArea.moduleStatus",
                                {"the module went off the bus.", "the module is on the bus."});
    AddRegister<FieldbusChange_t>(
        all, "master's fieldbus status change register", "fieldbusStatus.change",
        {"the list of configured slaves is new.", "the list of slaves that exchange data is new.",
         "the list of slaves with diagnosis is new.", "the master's status is new, the operation mode in it.",
         "the list of DP-V1 connections is new."});
    AddRegister<Handshake::VelmoIndication_t>(
        all, "bootloader's module indication register", "velmoIndication",
        {"level, the fieldbus-control area is granted to the host.",
         "level, the output area is granted to the host.", "level, the input area is granted to the host.",
         "level, no event.", "level, the module is initialised; it never falls back.",
         "toggle, the module reports an event.", "toggle, mailbox-out holds a new message.",
         "toggle, the message in mailbox-in was taken."});
    AddRegister<Handshake::ApplicationIndication_t>(
        all, "bootloader's application indication register", "applicationIndication",
        {"operand of an area command, fieldbus-control.", "operand of an area command, output.",
         "operand of an area command, input.", "set in every write that carries an area command.",
         "with lock: 1 requests the areas, 0 releases them.", "toggle, the module's event was seen.",
         "toggle, the message in mailbox-out was taken.", "toggle, mailbox-in holds a new message."});
}

/// The registers themselves, under their names in a dump and in a trace.
static void AddRegisters(All& all) {
    struct Row {
        const char* name;
        std::vector<std::string> otherNames;
        const char* meaning;
    };

    for (const Row& row : {
             Row{"velmoIndication",
                 {"VelmoInd", "indication register"},
                 "The module's indication register: what the module has done. The host reads it at an "
                 "interrupt."},
             Row{"applicationIndication",
                 {"ApplicationInd"},
                 "The host's indication register: what the host has done, in answer to an interrupt."},
             Row{"outArea.indication", {}, "Which parts of the output area are new."},
             Row{"outArea.moduleStatus",
                 {"module status register"},
                 "Whether the module has gone on or off the bus."},
             Row{"fieldbusStatus.change",
                 {"change", "fieldbus status change register"},
                 "Which of the lists of slaves are new."},
             Row{"applicationCompanion", {}, "The byte that is written with the host's indication register."},
             Row{"velmoCompanion", {}, "The byte that is read with the module's indication register."},
         })
        all.push_back({"register", row.name, row.otherNames, row.meaning,
                       "See its bits in a dump of the DPRAM: vesk dump.", ""});
}

/// What else a dump and the lists of slaves show.
static void AddFields(All& all) {
    struct Row {
        const char* name;
        const char* meaning;
    };

    for (const Row& row : {
             Row{"snapshot",
                 "Whether the DPRAM was read while the module ran, so that it may have moved meanwhile."},
             Row{"identity", "The block that says what the module is."},
             Row{"bootloader", "The version of the module's bootloader."},
             Row{"software", "The version of the module's firmware, the master."},
             Row{"serial", "The module's serial number."},
             Row{"moduleType", "0x201 for a VT22 as the master, 0x101 for its bootloader."},
             Row{"vendorId", "The number of the module's vendor."},
             Row{"fieldbusType", "5 for a PROFIBUS DP master."},
             Row{"unused", "Bytes that nobody uses."},
             Row{"unused1", "Bytes of the identity that nobody uses."},
             Row{"unused2", "Bytes of the identity that nobody uses."},
             Row{"fatalEvent", "The block in which a module leaves the reason why it has stopped."},
             Row{"reported", "Whether the module says that the fatal-event block holds."},
             Row{"errorCode", "The firmware's number for what stopped it."},
             Row{"errorCause", "The firmware's number for why."},
             Row{"taskId", "The firmware's task that has stopped."},
             Row{"timeStamp", "The firmware's own clock then, in milliseconds."},
             Row{"additionalInfo", "Bytes for the vendor."},
             Row{"sourceLine", "The line of the firmware's source that has stopped."},
             Row{"sourceFile", "The file of the firmware's source."},
             Row{"mailboxIn", "The area for messages to the module."},
             Row{"mailboxOut", "The area for messages from the module."},
             Row{"message", "The message in a mailbox, in words."},
             Row{"kind", "Whether a message is a request or a response."},
             Row{"messageId", "The number of a request, which its answer repeats."},
             Row{"type", "To which part of the module a message goes: Application, Fieldbus and others."},
             Row{"error", "The error code of an answer."},
             Row{"command", "The number of what a message asks for."},
             Row{"dataSize", "How many bytes of data a message has, 0 to 256."},
             Row{"totalFrameCount", "How many messages a transfer takes."},
             Row{"frameNumber", "Which message of a transfer it is, from 1 on."},
             Row{"dataOffset", "Where the data of a message belong in the whole transfer."},
             Row{"extended", "Eight words with the parameters of a message."},
             Row{"data", "The bytes of a message or an area."},
             Row{"inputArea", "The process data to the bus."},
             Row{"outputArea", "The process data from the bus."},
             Row{"outArea", "What the module hands to the host: status, and the process data from the bus."},
             Row{"fieldbusStatus", "The lists of slaves and the master's status."},
             Row{"slaveConfigured", "The list of slaves in the module's database."},
             Row{"dataTransfer", "The list of slaves that exchange data."},
             Row{"slaveDiagnostic", "The list of slaves that have a diagnosis to tell."},
             Row{"dpv1Connection", "The list of slaves with an open connection for acyclic services."},
             Row{"operationMode", "The master's operation mode: OFFLINE, STOP, CLEAR or OPERATE."},
             Row{"masterStatus", "Bytes of the master about itself; the first is the operation mode."},
             Row{"bootloaderCtrl", "The block that says what the module is while it runs its bootloader."},
             Row{"handshake", "The registers with which host and module hand areas to each other."},
         })
        all.push_back(
            {"field", row.name, {}, row.meaning, "See its value in a dump of the DPRAM: vesk dump.", ""});
}

static void AddDiagnosisFlags(All& all) {
    for (const DiagnosisFlag& flag : DiagnosisFlags())
        all.push_back({"diagnosis flag",
                       flag.name,
                       {},
                       std::string("Of a slave: ") + flag.meaning + "." +
                           (flag.cause ? std::string(" Then it exchanges no data: ") + flag.cause + "." : ""),
                       "See the whole diagnosis: vesk diag ADDRESS.",
                       ""});
}

static void AddConfigParameters(All& all) {
    for (const ConfigParameter& parameter : ConfigParameters()) {
        const std::string path = parameter.path;
        const std::string below = path.substr(path.find('.') + 1);
        all.push_back({"bus parameter",
                       path,
                       {below, path.substr(path.rfind('.') + 1)},
                       parameter.meaning,
                       "The configuration tool sets it; see its value: vesk config show FILE.",
                       ""});
    }
}

static const char* CheckOf(const MessageType& type) {
    if (&type == MessageType::FIELDBUS.get())
        return "If it is refused, look at the error in the answer, and whether the slave that it names is "
               "there and "
               "exchanges data: vesk slaves.";
    if (&type == MessageType::APPLICATION.get())
        return "If it is refused, check that the module holds a database: vesk database.";
    return "If it is refused, check that the module runs its bootloader, and what the firmware file says: "
           "vesk "
           "firmware show.";
}

static void AddCommands(All& all) {
    for (const auto& [command, parameters, meaning] : RequestKinds()) {
        const std::string type = command.type->Name.Value();
        const std::string number = Hex(command.number);
        all.push_back({"command",
                       command.name,
                       {type + " " + number},
                       std::string(meaning) + " Command " + number + " of type " + type + ".",
                       CheckOf(*command.type),
                       ""});
    }
}

static void AddStates(All& all) {
    struct Row {
        Session::State state;
        const char* meaning;
        const char* check;
    };

    constexpr auto* UPDATE = "If it stays there, check that Update is called, and what vesk status says.";
    for (const Row& row : {
             Row{Session::State::POWER_OFF, "The module is held in reset, for 0.5 ms.", UPDATE},
             Row{Session::State::POWER_ON,
                 "The module is out of reset; its first interrupt is due within 2 s.",
                 "If it stays there, check the module's supply and the interrupt line."},
             Row{Session::State::BOOTED, "The module runs and is the expected one.", UPDATE},
             Row{Session::State::DOWNLOADING,
                 "The module's database is compared with the configuration and, where it differs, written.",
                 "It has 10 s. If it comes again after each start, the flash does not keep the database."},
             Row{Session::State::DOWNLOAD_COMPLETE, "The module's database is that of the configuration.",
                 "The next step is the application's: BeginInitialization."},
             Row{Session::State::INITIALIZING, "The initialisation runs; it has 10 s.", UPDATE},
             Row{Session::State::INITIALIZED, "Process data and services are in normal use.",
                 "See the operation mode and the slaves: vesk status."},
         })
        all.push_back({"state",
                       Vesk::Modules::DPVM::Vt22Module::StateToString(row.state).Value(),
                       {},
                       row.meaning,
                       row.check,
                       ""});
}

const All& Explanations() {
    static const All all = [] {
        All made;
        for (const Failures::Outcome* failure : Failures::AllFailures())
            made.push_back(ExplanationOf(*failure));
        for (const Failures::Outcome* failure : Failures::ToolFailures())
            if (failure->message != "*")
                made.push_back(ExplanationOf(*failure));
        AddErrorCodes(made);
        AddOperationModes(made);
        AddRegisterBits(made);
        AddRegisters(made);
        AddFields(made);
        AddDiagnosisFlags(made);
        AddConfigParameters(made);
        AddCommands(made);
        AddStates(made);
        return made;
    }();
    return all;
}

} // namespace VeskTool
