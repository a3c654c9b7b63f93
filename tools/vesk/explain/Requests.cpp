// SPDX-License-Identifier: MIT
#include "tools/vesk/explain/Requests.h"

#include "tools/vesk/session/Session.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Text.h"

#include <algorithm>
#include <string_view>

namespace VeskTool {

using Vesk::Mailbox::Header;
using Vesk::Mailbox::MessageType;

const std::vector<RequestKind>& RequestKinds() {
    static const MessageType& application = *MessageType::APPLICATION;
    static const MessageType& fieldbus = *MessageType::FIELDBUS;
    static const MessageType& bootloader = *MessageType::BOOTLOADER;
    static const MessageType& production = *MessageType::PRODUCTION;
    static const std::vector<RequestKind> kinds{
        {application, 0x01, "StartInit", "", "Begins the initialisation."},
        {application, 0x02, "VelmoInit", "", "Tells the module how much of each process data area is used."},
        {application, 0x03, "EndInit", "", "Ends the initialisation; the module goes to the bus."},

        {fieldbus, 0x02, "SetOperationMode", "mode {0m}", "Puts the DP master into an operation mode."},
        {fieldbus, 0x04, "GetSlaveDiag", "slave {0h}, type {0l}", "Asks for the diagnosis of a slave."},
        {fieldbus, 0x05, "GetSlaveConfig", "slave {0h}", "Reads the configuration from a slave."},
        {fieldbus, 0x06, "SetSlaveAddress", "slave {0h}, new address {0l}, ident number {1w}",
         "Gives a slave another station address."},
        {fieldbus, 0x09, "ReadSlaveInput", "slave {0h}", "Reads the input data of a slave."},
        {fieldbus, 0x0A, "ReadSlaveOutput", "slave {0h}", "Reads the output data of a slave."},
        {fieldbus, 0x0B, "StartSlave", "", "Starts the exchange with the listed slaves."},
        {fieldbus, 0x0C, "StopSlave", "", "Stops the exchange with the listed slaves."},
        {fieldbus, 0x10, "StartDatabaseDownload", "", "Begins the download of a configuration database."},
        {fieldbus, 0x11, "EndDatabaseDownload", "description {d}",
         "Ends the download; the description is the database's checksum in hexadecimal."},
        {fieldbus, 0x12, "MasterRecordDownload", "", "Stores the master's parameter set."},
        {fieldbus, 0x14, "SlaveRecordDownload", "slave {0h}, fragment {0l} of {1h}",
         "Stores 256 bytes of a slave's parameter set."},
        {fieldbus, 0x16, "DeleteDatabase", "", "Deletes the configuration database in the module's flash."},
        {fieldbus, 0x17, "GetDatabaseInfo", "", "Asks for the lengths and the checksum of the database."},
        {fieldbus, 0x18, "GetLiveList", "", "Looks which stations answer on the bus."},
        {fieldbus, 0x20, "Class1Read", "slave {0h}, slot {0l}, index {1h}, length {1l}",
         "Reads a record of a slave over its cyclic connection."},
        {fieldbus, 0x21, "Class1Write", "slave {0h}, slot {0l}, index {1h}, length {1l}",
         "Writes a record of a slave over its cyclic connection."},
        {fieldbus, 0x25, "Class2InitiateNormal", "slave {1h}, reference {0w}",
         "Opens a Class 2 connection to a slave."},
        {fieldbus, 0x26, "Class2Abort", "reference {0w}, subnet {1h}, reason {1l}",
         "Closes a Class 2 connection."},
        {fieldbus, 0x27, "Class2Read", "reference {0w}, slot {1h}, index {1l}, length {2h}",
         "Reads a record of a slave over a Class 2 connection."},
        {fieldbus, 0x28, "Class2Write", "reference {0w}, slot {1h}, index {1l}, length {2h}",
         "Writes a record of a slave over a Class 2 connection."},

        {bootloader, 1, "FwDownloadInit", "", "Begins the download of an application into erased flash."},
        {bootloader, 2, "FwDownloadData", "frame {f} of {t} at {o}", "Burns 256 bytes of the application."},
        {bootloader, 3, "FwDownloadLast", "",
         "Ends the download of an application; the bootloader checks the CRC-16 that it carries."},
        {bootloader, 4, "BlDownloadInit", "", "Begins the download of another bootloader."},
        {bootloader, 5, "BlDownloadData", "frame {f} of {t} at {o}",
         "Hands over 256 bytes of the bootloader."},
        {bootloader, 6, "BlDownloadLast", "",
         "Ends the download of a bootloader, which is checked and takes the place of the old one."},

        {production, 1, "Enable", "", "Opens the production commands."},
        {production, 2, "FlashWriteEnable", "", "Allows the flash to be written."},
        {production, 3, "FlashErase", "", "Erases the application in the flash; takes seconds."},
    };
    return kinds;
}

const RequestKind* FindRequestKind(const MessageType& type, unsigned short command) {
    const auto& kinds = RequestKinds();
    const auto found = std::find_if(kinds.begin(), kinds.end(), [&](const RequestKind& kind) {
        return &kind.type == &type && kind.command == command;
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
    return place[1] == 'm' ? ModeName(static_cast<Session::OperationMode>(word >> 8))
                           : std::to_string(word >> 8);
}

std::string Describe(const Header& header, std::span<const unsigned char> data) {
    const RequestKind* const kind = FindRequestKind(*header.MessageType, header.Command);
    if (!kind)
        return "unknown command " + Hex(header.Command) + " of type " + header.MessageType->Name.Value();
    std::string text = kind->name;
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
