// SPDX-License-Identifier: MIT
// The verbs for acyclic records of slaves: read and write.
#include "tools/vesk/files/FileBytes.h"
#include "tools/vesk/session/StationLists.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Elements.h"
#include "tools/vesk/text/Numbers.h"
#include "tools/vesk/text/Text.h"
#include "tools/vesk/verbs/Stations.h"
#include "tools/vesk/verbs/Verb.h"
#include "tools/vesk/verbs/Verbs.h"

namespace VeskTool {

using ResponseAction = Vesk::Modules::DPVM::IDPVMModule::ResponseAction;
using Bytes = std::vector<unsigned char>;

namespace {

/// A record of a slave, as the arguments name it.
struct Place {
    explicit Place(const Json& arguments)
        : address(arguments["address"]), slot(arguments["slot"]), index(arguments["index"]) {}

    unsigned char address;
    unsigned char slot;
    unsigned char index;

    std::string Text() const {
        return "record " + std::to_string(slot) + "/" + std::to_string(index) + " of slave " +
               std::to_string(address);
    }
};

void Abort(Session& session, const Place& place) {
    session.Ask([&](ResponseAction action) { session.Module().Class2Abort(place.address, 0, 0, action); },
                "the abort of the connection to slave " + std::to_string(place.address));
}

/// Asks for it; a refusal says whether the slave is there, for then it is the record that is not.
Session::Response AskForRecord(Session& session, const Place& place, const Session::Service& transfer,
                               const std::string& what) {
    using Vesk::Mailbox::ErrorCode;
    const auto answer = session.TryAsk(transfer, what);
    const auto error = answer->Error();
    if (error == ErrorCode::NO_ERROR)
        return answer;
    const bool ofTheSlave = error == ErrorCode::ADDRESS || error == ErrorCode::RESPONSE;
    const bool there =
        ofTheSlave && Lists(ListedStations(*session.Module().GetDataTransferList()), place.address);
    throw Refusal(what + (there ? ", which exchanges data" : ""), *error);
}

/// Asks for `transfer` on a Class 2 connection of its own.
Session::Response AskClass2(Session& session, const Place& place, const Session::Service& transfer,
                            const std::string& what) {
    session.Ask([&](ResponseAction action) { session.Module().Class2Initiate(place.address, action); },
                "the connection to slave " + std::to_string(place.address));
    Session::Response answer;
    try {
        answer = AskForRecord(session, place, transfer, what);
    } catch (...) {
        try {
            Abort(session, place);
        } catch (...) {
            // the slave may have ended the connection itself; why the transfer failed is worth more
        }
        throw;
    }
    Abort(session, place);
    return answer;
}

Session::Response Transfer(Session& session, const Json& arguments, const Session::Service& class1,
                           const Session::Service& class2, const std::string& what) {
    const Place place(arguments);
    return arguments["class"] == 2 ? AskClass2(session, place, class2, what + place.Text())
                                   : AskForRecord(session, place, class1, what + place.Text());
}

Json RecordToJson(const Json& arguments, const Bytes& bytes) {
    return {{"address", arguments["address"]}, {"slot", arguments["slot"]}, {"index", arguments["index"]},
            {"class", arguments["class"]},     {"length", bytes.size()},    {"data", HexDigits(bytes)}};
}

std::string PlaceText(const Json& facts) {
    return Place(facts).Text() + ", " + facts["length"].dump() + " bytes, Class " + facts["class"].dump();
}

Json AnswerRead(Session& session, const Json& arguments) {
    const Place place(arguments);
    const auto length = arguments["length"].get<unsigned char>();
    auto& module = session.Module();
    const auto answer = Transfer(
        session, arguments,
        [&](ResponseAction a) { module.Class1Read(place.address, place.slot, place.index, length, a); },
        [&](ResponseAction a) { module.Class2Read(place.address, place.slot, place.index, length, a); },
        "the read of ");
    return RecordToJson(arguments, Elements(*answer->Data()));
}

std::string ReadText(const Json& facts, const Paint&) {
    return PlaceText(facts) + "\n" + HexDump(ParseHex("data", facts["data"].get<std::string>()));
}

Json AnswerWrite(Session& session, const Json& arguments) {
    const Place place(arguments);
    const Bytes bytes = ParseHex("data", arguments["data"].get<std::string>());
    const auto data = System::Array<unsigned char>::Create(bytes);
    auto& module = session.Module();
    Transfer(
        session, arguments,
        [&](ResponseAction a) { module.Class1Write(place.address, place.slot, place.index, data, a); },
        [&](ResponseAction a) { module.Class2Write(place.address, place.slot, place.index, data, a); },
        "the write to ");
    return RecordToJson(arguments, bytes);
}

std::string WriteText(const Json& facts, const Paint&) {
    return "Written: " + PlaceText(facts) + "\n";
}

/// The arguments that read and write share.
void AddPlace(VerbCommand& command) {
    command.AddAddress();
    command.AddNumber("SLOT", "slot", 0, 254, "Slot of the record, 0 to 254")->required();
    command.AddNumber("INDEX", "index", 0, 255, "Index of the record, 0 to 255")->required();
    command.arguments["class"] = 1;
    command.App().add_flag_callback(
        "--class2", [&command] { command.arguments["class"] = 2; },
        "Over a Class 2 connection: initiate, transfer, abort");
}

void CheckLength(const std::string& name, std::int64_t length) {
    if (length < 1 || length > MAX_RECORD_SIZE)
        throw CLI::ValidationError(
            name, (length > MAX_RECORD_SIZE ? "more than " + std::to_string(MAX_RECORD_SIZE)
                                            : std::to_string(length)) +
                      " bytes are not a length from 1 to " + std::to_string(MAX_RECORD_SIZE));
}

Bytes Content(const std::string& path) {
    return ReadFile(path, MAX_RECORD_SIZE);
}

} // namespace

Action AddRead(CLI::App& app) {
    static constexpr Verb READ{Need::OPERATING, AnswerRead, ReadText};
    const auto command = std::make_shared<VerbCommand>(app, READ);
    AddPlace(*command);
    command->arguments["length"] = MAX_RECORD_SIZE;
    command->AddNumber("LENGTH", "length", 1, MAX_RECORD_SIZE, "Most bytes to read, 1 to 240 (240)");
    return [command] { return command->Execute(); };
}

Action AddWrite(CLI::App& app) {
    static constexpr Verb WRITE{Need::OPERATING, AnswerWrite, WriteText, true};
    const auto command = std::make_shared<VerbCommand>(app, WRITE);
    AddPlace(*command);
    CLI::Option_group* const data = app.add_option_group("data", "What to write, 1 to 240 bytes");
    data->require_option(1);
    const auto add = [&](const std::string& name, const char* type, auto bytesOf, const char* text) {
        const auto take = [self = command.get(), name, bytesOf](const std::string& value) {
            const Bytes bytes = bytesOf(value);
            CheckLength(name, static_cast<std::int64_t>(bytes.size()));
            self->arguments["data"] = HexDigits(bytes);
        };
        data->add_option_function<std::string>(name, take, text)->type_name(type);
    };
    add(
        "DATA", "", [](const std::string& text) { return ParseHex("DATA", text); },
        "Hexadecimal digits, two for each byte, 0x before them or not; blanks between bytes are allowed");
    add(
        "--text", "TEXT", [](const std::string& text) { return Bytes(text.begin(), text.end()); },
        "The text's own bytes");
    add("--file", "FILE", Content, "The file's bytes");
    return [command] { return command->Execute(); };
}

} // namespace VeskTool
