// SPDX-License-Identifier: MIT
#include "tools/vesk/files/DpRamMap.h"

#include "tools/vesk/explain/Requests.h"
#include "tools/vesk/session/OperationModes.h"
#include "tools/vesk/session/StationLists.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Failure.h"
#include "tools/vesk/text/Text.h"
#include "vesk/hostinterface/BootloaderDpRam.h"
#include "vesk/hostinterface/MasterDpRam.h"
#include "vesk/system/TimeSpan.h"

#include <algorithm>
#include <sstream>

namespace VeskTool {

using namespace Vesk::HostInterface;
using nlohmann::ordered_json;
using System::Array;

static_assert(DpRamMap::SIZE == MasterDpRam::SIZE && DpRamMap::SIZE == BootloaderDpRam::SIZE);

// ---- the blocks of both layouts

DpRamMap DpRamMap::Master(Bytes dpRam, Source source) {
    DpRamMap map("master", dpRam, source);
    map.AddIdentity();
    map.AddFatalEvent();
    map.AddMailbox("mailboxIn", MasterDpRam::MAILBOX_IN);
    map.AddMailbox("mailboxOut", MasterDpRam::MAILBOX_OUT);
    map.AddHexBlock("inputArea", MasterDpRam::INPUT_AREA,
                    MasterDpRam::INPUT_AREA + MasterDpRam::INPUT_AREA_SIZE);
    map.AddBlock("outArea", MasterDpRam::OutArea::OFFSET);
    map.AddRegister<Vesk::Modules::DPVM::OutAreaIndication_t>("indication", MasterDpRam::OutArea::INDICATION);
    map.AddRegister<Vesk::Modules::DPVM::ModuleStatus_t>("moduleStatus", MasterDpRam::OutArea::MODULE_STATUS);
    map.AddFieldbusStatus();
    constexpr int end = MasterDpRam::OUTPUT_AREA + MasterDpRam::OUTPUT_AREA_SIZE;
    map.AddHexBlock("outputArea", MasterDpRam::OUTPUT_AREA, end);
    map.AddHexBlock("unused", end, MasterDpRam::APPLICATION_INDICATION);
    if (!map._snapshot)
        map.AddMasterHandshake();
    return map;
}

DpRamMap DpRamMap::Bootloader(Bytes dpRam, Source source) {
    DpRamMap map("bootloader", dpRam, source);
    map.AddHexBlock("unused", 0, BootloaderDpRam::MAILBOX_IN);
    map.AddMailbox("mailboxIn", BootloaderDpRam::MAILBOX_IN);
    map.AddMailbox("mailboxOut", BootloaderDpRam::MAILBOX_OUT);
    map.AddBootloaderCtrl();
    if (!map._snapshot)
        map.AddBootloaderHandshake();
    return map;
}

void DpRamMap::AddIdentity() {
    namespace Identity = MasterDpRam::Identity;
    AddBlock("identity", Identity::OFFSET);
    AddVersion("bootloader", Identity::BOOTLOADER_VERSION, 2);
    AddNumber("unused1", Identity::UNUSED_1, 2);
    AddNumber("unused2", Identity::UNUSED_2, 2);
    AddNumber("serial", Identity::SERIAL, 4);
    AddNumber("moduleType", Identity::MODULE_TYPE, 2);
    AddNumber("vendorId", Identity::VENDOR_ID, 2);
    AddNumber("fieldbusType", Identity::FIELDBUS_TYPE, 2);
    AddVersion("software", Identity::SOFTWARE_VERSION, 3);
}

void DpRamMap::AddFatalEvent() {
    namespace Event = MasterDpRam::FatalEvent;
    AddBlock("fatalEvent", Event::OFFSET);
    const bool reported =
        Number(MasterDpRam::VELMO_INDICATION, 1) & Vesk::Modules::DPVM::Vt22VelmoIndication_t::FATAL;
    if (_snapshot)
        AddField("reported", "not known, the module indication was not read", nullptr);
    else
        AddField("reported", reported ? "yes" : "no, the module indication's bit fatal is not set", reported);
    AddNumber("errorCode", Event::ERROR_CODE, 2);
    AddNumber("errorCause", Event::ERROR_CAUSE, 2);
    AddNumber("taskId", Event::TASK_ID, 2);
    const std::uint64_t high = Number(Event::OFFSET + Event::TIME_STAMP_HIGH, 4);
    const std::uint64_t stamp = high << 32 | Number(Event::OFFSET + Event::TIME_STAMP_LOW, 4);
    AddField("timeStamp", std::to_string(stamp) + " ms", stamp);
    AddBytes("additionalInfo", Event::ADDITIONAL_INFO, Event::ADDITIONAL_INFO_SIZE);
    AddNumber("sourceLine", Event::SOURCE_LINE, 2);
    const auto file = At(Event::OFFSET + Event::SOURCE_FILE, Event::SOURCE_FILE_SIZE);
    const std::string name = Printable(std::string(file.begin(), std::find(file.begin(), file.end(), 0)));
    AddField("sourceFile", '"' + name + '"', name);
}

/// The area holds one message; behind its data may be what is left of the one before.
void DpRamMap::AddMailbox(const std::string& name, int offset) {
    AddBlock(name, offset);
    const auto area = At(offset, MailboxDpRam::AREA_SIZE);
    try {
        AddMessage(*Vesk::Mailbox::Header::FromArray(
            Array<unsigned char>::Create(std::vector<unsigned char>(area.begin(), area.end())), 0, true));
    } catch (const System::Thrown& undefined) {
        const bool empty =
            std::all_of(area.begin(), area.end(), [](unsigned char byte) { return byte == 0; });
        const std::string what = empty ? "none"
                                       : "not a message: its error code or message type is not defined (" +
                                             OneLine(undefined) + ")";
        AddField("message", what, empty ? ordered_json() : ordered_json(what));
        AddBytes("data", 0, MailboxDpRam::AREA_SIZE);
    }
}

void DpRamMap::AddMessage(const Vesk::Mailbox::Header& header) {
    const auto addText = [this](const std::string& name, const std::string& text) {
        AddField(name, text, text);
    };
    const int size = std::min<int>(header.DataSize, MailboxDpRam::MAX_DATA_SIZE);
    addText("message", Describe(header, At(_blocks.back().offset + MailboxDpRam::HEADER_SIZE, size)));
    addText("kind", header.IsRequest ? "request" : "response");
    AddField("messageId", std::to_string(header.MessageId), header.MessageId);
    addText("type", header.MessageType->Name.Value());
    const std::string error = header.Error->Name.Value();
    AddField("error", error + (header.Error->Id ? " (" + Hex(header.Error->Id) + ")" : ""), error);
    AddField("command", Hex(header.Command), header.Command);
    AddField(
        "dataSize",
        std::to_string(header.DataSize) +
            (header.DataSize > size ? " (more than a message can have: " + std::to_string(size) + ")" : ""),
        header.DataSize);
    AddField("totalFrameCount", std::to_string(header.TotalFrameCount), header.TotalFrameCount);
    AddField("frameNumber", std::to_string(header.FrameNumber), header.FrameNumber);
    AddField("dataOffset", Hex(header.Offset), header.Offset);
    std::string words;
    ordered_json values = ordered_json::array();
    for (int i = 0; i < MailboxDpRam::EXTENDED_WORDS; ++i) {
        words += (i ? " " : "") + Hex(header.Extended->Get(i));
        values.push_back(header.Extended->Get(i));
    }
    AddField("extended", words, values);
    AddBytes("data", MailboxDpRam::HEADER_SIZE, size);
}

void DpRamMap::AddFieldbusStatus() {
    namespace Status = MasterDpRam::FieldbusStatus;
    AddBlock("fieldbusStatus", Status::OFFSET);
    AddRegister<Vesk::Modules::DPVM::FieldbusChange_t>("change", Status::CHANGE);
    AddStations("slaveConfigured", Status::SLAVE_CONFIGURED_LIST);
    AddStations("dataTransfer", Status::DATA_TRANSFER_LIST);
    AddStations("slaveDiagnostic", Status::SLAVE_DIAGNOSTIC_LIST);
    const unsigned int mode = Number(Status::OFFSET + Status::MASTER_STATUS, 1);
    const std::string name = ModeName(static_cast<Vesk::Modules::DPVM::OperationMode_e>(mode));
    AddField("operationMode", name, name);
    AddBytes("masterStatus", Status::MASTER_STATUS, Status::MASTER_STATUS_SIZE);
    AddStations("dpv1Connection", Status::DPV1_CONNECTION_LIST);
}

void DpRamMap::AddMasterHandshake() {
    using namespace Vesk::Modules::DPVM;
    constexpr int start = MasterDpRam::APPLICATION_INDICATION;
    AddBlock("handshake", start);
    AddRegister<Vt22ApplicationIndication_t>("applicationIndication", 0);
    AddRegister<Vt22VelmoIndication_t>("velmoIndication", MasterDpRam::VELMO_INDICATION - start);
    AddNumber("applicationCompanion", MasterDpRam::APPLICATION_INDICATION_COMPANION - start, 1);
    AddNumber("velmoCompanion", MasterDpRam::VELMO_INDICATION_COMPANION - start, 1);
}

void DpRamMap::AddBootloaderHandshake() {
    using namespace Vesk::Handshake;
    constexpr int start = BootloaderDpRam::APPLICATION_INDICATION;
    AddBlock("handshake", start);
    AddRegister<ApplicationIndication_t>("applicationIndication", 0);
    AddRegister<VelmoIndication_t>("velmoIndication", BootloaderDpRam::VELMO_INDICATION - start);
}

void DpRamMap::AddBootloaderCtrl() {
    namespace Ctrl = BootloaderDpRam::Ctrl;
    AddBlock("bootloaderCtrl", Ctrl::OFFSET);
    AddVersion("bootloader", Ctrl::BOOTLOADER_MAJOR, 2);
    AddNumber("serial", Ctrl::SERIAL, 4);
    AddNumber("vendorId", Ctrl::VENDOR_ID, 2);
    AddNumber("fieldbusType", Ctrl::FIELDBUS_TYPE, 2);
    AddNumber("moduleType", Ctrl::MODULE_TYPE, 2);
}

// ---- one field

unsigned int DpRamMap::Number(int offset, int bytes) const {
    unsigned int value = 0;
    for (const unsigned char byte : At(offset, bytes))
        value = value << 8 | byte;
    return value;
}

void DpRamMap::AddNumber(const std::string& name, int offset, int bytes) {
    const unsigned int value = Number(_blocks.back().offset + offset, bytes);
    AddField(name, Hex(value) + (value > 9 ? " (" + std::to_string(value) + ")" : ""), value);
}

void DpRamMap::AddVersion(const std::string& name, int offset, int parts) {
    std::string version;
    for (const unsigned char part : At(_blocks.back().offset + offset, parts))
        version += (version.empty() ? "" : ".") + std::to_string(part);
    AddField(name, version, version);
}

void DpRamMap::AddStations(const std::string& name, int offset) {
    const auto bytes = At(_blocks.back().offset + offset, MasterDpRam::FieldbusStatus::LIST_SIZE);
    const auto list = Array<unsigned char>::Create(std::vector<unsigned char>(bytes.begin(), bytes.end()));
    const std::vector<int> stations = ListedStations(*list);
    AddField(name, Addresses(stations), stations);
}

void DpRamMap::AddBytes(const std::string& name, int offset, int count) {
    const int start = _blocks.back().offset + offset;
    const auto bytes = At(start, count);
    AddField(name, bytes.empty() ? "none" : "\n" + HexLines(bytes, start), HexDigits(bytes));
}

/// The set bits by name; set bits without one in a number of their own.
template <class Register>
void DpRamMap::AddRegister(const std::string& name, int offset) {
    const unsigned int value = Number(_blocks.back().offset + offset, sizeof(Register));
    std::vector<std::string> bits;
    for (std::size_t bit = 0; bit < Register::LABELS.size(); ++bit)
        if (value >> bit & 1)
            bits.emplace_back(Register::LABELS[bit]);
    const unsigned int nameless = value >> Register::LABELS.size() << Register::LABELS.size();
    std::string text = Hex(value);
    for (const std::string& bit : bits)
        text += " " + bit;
    if (nameless)
        text += " reserved:" + Hex(nameless);
    AddField(name, text, {{"value", value}, {"bits", bits}, {"reserved", nameless}});
}

void DpRamMap::AddHexBlock(const std::string& name, int offset, int end) {
    AddBlock(name, offset);
    AddBytes("data", 0, end - offset);
}

// ---- the whole map

std::string DpRamMap::ToText() const {
    std::string text = "DPRAM of the module as the " + _layout + "\n";
    if (_snapshot)
        text +=
            "A snapshot of something that moves: its bytes were read one after the other, and may not "
            "belong\n"
            "together. The handshake registers were not read, which would take an interrupt from the host.\n";
    for (const Block& block : _blocks) {
        text += "\n" + HexOffset(block.offset) + "  " + block.name + "\n";
        for (const Field& field : block.fields) {
            if (field.text.front() != '\n') {
                text += "  " + Padded(field.name, 22) + field.text + "\n";
                continue;
            }
            text += "  " + field.name + "\n";
            std::istringstream lines(field.text.substr(1));
            for (std::string line; std::getline(lines, line);)
                text += "    " + line + "\n";
        }
    }
    return text;
}

ordered_json DpRamMap::ToJson() const {
    ordered_json map{{"layout", _layout}, {"snapshot", _snapshot}};
    for (const Block& block : _blocks) {
        ordered_json& object = map[block.name];
        object["offset"] = block.offset;
        for (const Field& field : block.fields)
            object[field.name] = field.value;
    }
    return map;
}

} // namespace VeskTool
