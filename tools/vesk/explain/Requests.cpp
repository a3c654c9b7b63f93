// SPDX-License-Identifier: MIT
#include "tools/vesk/explain/Requests.h"

#include "tools/vesk/session/OperationModes.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Text.h"

#include <algorithm>
#include <string_view>

namespace VeskTool {

using Vesk::Mailbox::Header;
using Vesk::Mailbox::MessageType;
namespace Commands = Vesk::Mailbox::Commands;

const std::vector<RequestKind>& RequestKinds() {
    static const std::vector<RequestKind> kinds{
        {Commands::START_INIT, "", "Begins the initialisation."},
        {Commands::VELMO_INIT, "", "Tells the module how much of each process data area is used."},
        {Commands::END_INIT, "", "Ends the initialisation; the module goes to the bus."},

        {Commands::SET_OPERATION_MODE, "mode {0m}", "Puts the DP master into an operation mode."},
        {Commands::GET_SLAVE_DIAG, "slave {0h}, type {0l}", "Asks for the diagnosis of a slave."},
        {Commands::GET_SLAVE_CONFIG, "slave {0h}", "Reads the configuration from a slave."},
        {Commands::SET_SLAVE_ADDRESS, "slave {0h}, new address {0l}, ident number {1w}",
         "Gives a slave another station address."},
        {Commands::READ_SLAVE_INPUT, "slave {0h}", "Reads the input data of a slave."},
        {Commands::READ_SLAVE_OUTPUT, "slave {0h}", "Reads the output data of a slave."},
        {Commands::START_SLAVE, "", "Starts the exchange with the listed slaves."},
        {Commands::STOP_SLAVE, "", "Stops the exchange with the listed slaves."},
        {Commands::START_DATABASE_DOWNLOAD, "", "Begins the download of a configuration database."},
        {Commands::END_DATABASE_DOWNLOAD, "description {d}",
         "Ends the download; the description is the database's checksum in hexadecimal."},
        {Commands::MASTER_RECORD_DOWNLOAD, "", "Stores the master's parameter set."},
        {Commands::SLAVE_RECORD_DOWNLOAD, "slave {0h}, fragment {0l} of {1h}",
         "Stores 256 bytes of a slave's parameter set."},
        {Commands::DELETE_DATABASE, "", "Deletes the configuration database in the module's flash."},
        {Commands::GET_DATABASE_INFO, "", "Asks for the lengths and the checksum of the database."},
        {Commands::GET_LIVE_LIST, "", "Looks which stations answer on the bus."},
        {Commands::CLASS1_READ, "slave {0h}, slot {0l}, index {1h}, length {1l}",
         "Reads a record of a slave over its cyclic connection."},
        {Commands::CLASS1_WRITE, "slave {0h}, slot {0l}, index {1h}, length {1l}",
         "Writes a record of a slave over its cyclic connection."},
        {Commands::CLASS2_INITIATE_NORMAL, "slave {1h}, reference {0w}",
         "Opens a Class 2 connection to a slave."},
        {Commands::CLASS2_ABORT, "reference {0w}, subnet {1h}, reason {1l}", "Closes a Class 2 connection."},
        {Commands::CLASS2_READ, "reference {0w}, slot {1h}, index {1l}, length {2h}",
         "Reads a record of a slave over a Class 2 connection."},
        {Commands::CLASS2_WRITE, "reference {0w}, slot {1h}, index {1l}, length {2h}",
         "Writes a record of a slave over a Class 2 connection."},

        {Commands::FW_DOWNLOAD_INIT, "", "Begins the download of an application into erased flash."},
        {Commands::FW_DOWNLOAD_DATA, "frame {f} of {t} at {o}", "Burns 256 bytes of the application."},
        {Commands::FW_DOWNLOAD_LAST, "",
         "Ends the download of an application; the bootloader checks the CRC-16 that it carries."},
        {Commands::BL_DOWNLOAD_INIT, "", "Begins the download of another bootloader."},
        {Commands::BL_DOWNLOAD_DATA, "frame {f} of {t} at {o}", "Hands over 256 bytes of the bootloader."},
        {Commands::BL_DOWNLOAD_LAST, "",
         "Ends the download of a bootloader, which is checked and takes the place of the old one."},

        {Commands::ENABLE, "", "Opens the production commands."},
        {Commands::FLASH_WRITE_ENABLE, "", "Allows the flash to be written."},
        {Commands::FLASH_ERASE, "", "Erases the application in the flash; takes seconds."},
    };
    return kinds;
}

const RequestKind* FindRequestKind(const MessageType& type, unsigned short command) {
    const auto& kinds = RequestKinds();
    const auto found = std::find_if(kinds.begin(), kinds.end(), [&](const RequestKind& kind) {
        return kind.command.type.get() == &type && kind.command.number == command;
    });
    return found == kinds.end() ? nullptr : &*found;
}

/// What stands at one place of a RequestKind's parameters.
static std::string Parameter(std::string_view place, const Header& header,
                             std::span<const unsigned char> data) {
    if (place == "f")
        return std::to_string(header.FrameNumber);
    if (place == "t")
        return std::to_string(header.TotalFrameCount);
    if (place == "o")
        return Hex(header.Offset);
    if (place == "d")
        return '"' + Printable(std::string(data.begin(), data.end())) + '"';
    const unsigned int word = header.Extended->Get(place[0] - '0');
    if (place[1] == 'w')
        return Hex(word);
    if (place[1] == 'l')
        return std::to_string(word & 0xFF);
    return place[1] == 'm' ? ModeName(static_cast<Vesk::Modules::DPVM::OperationMode_e>(word >> 8))
                           : std::to_string(word >> 8);
}

std::string Describe(const Header& header, std::span<const unsigned char> data) {
    const RequestKind* const kind = FindRequestKind(*header.MessageType, header.Command);
    if (!kind)
        return "unknown command " + Hex(header.Command) + " of type " + header.MessageType->Name.Value();
    std::string text = kind->command.name;
    std::string_view rest = header.IsRequest ? kind->parameters : "";
    if (!rest.empty())
        text += ", ";
    for (auto open = rest.find('{'); open != rest.npos; open = rest.find('{')) {
        const auto close = rest.find('}');
        text += rest.substr(0, open);
        text += Parameter(rest.substr(open + 1, close - open - 1), header, data);
        rest.remove_prefix(close + 1);
    }
    return text;
}

} // namespace VeskTool
