// SPDX-License-Identifier: MIT
#include "tools/vesk/files/DatabaseFile.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Console.h"
#include "tools/vesk/text/Elements.h"
#include "tools/vesk/text/Interruption.h"
#include "tools/vesk/text/Progress.h"
#include "tools/vesk/text/Text.h"
#include "tools/vesk/verbs/Verb.h"
#include "tools/vesk/verbs/Verbs.h"
#include "vesk/modules/dpvm/DPVMMessages.h"

#include <numeric>

namespace VeskTool {

using namespace Vesk::Modules::DPVM;

namespace {

Json DatabaseToJson(const DatabaseInfo& info) {
    return {{"description", info.Description.Value()}, {"slaves", info.NoOfSlaves},
            {"inputLength", info.TotalInputLength},    {"outputLength", info.TotalOutputLength},
            {"inputAreaLength", info.InitInputLength}, {"outputAreaLength", info.InitOutputLength}};
}

/// What a module that holds this configuration says, as far as the file can tell.
Json ConfigToJson(const Config::IBusConfig& config) {
    int input = 0;
    int output = 0;
    const auto addresses = Elements(*config.SlaveAddresses());
    for (const unsigned char address : addresses) {
        const auto table = config.Slave(address)->AddressTable();
        input += table->InputOffsetTable()->Count();
        output += table->OutputOffsetTable()->Count();
    }
    return {{"description", ChecksumText(config.Checksum())},
            {"slaves", addresses.size()},
            {"inputLength", input},
            {"outputLength", output}};
}

std::string ContentText(const Json& database) {
    return std::to_string(database["slaves"].get<int>()) + " slaves, " +
           std::to_string(database["inputLength"].get<int>()) + " bytes in, " +
           std::to_string(database["outputLength"].get<int>()) + " bytes out";
}

// ---- vesk database

Json AnswerDatabase(Session& session, const Json&) {
    const auto info = session.AskForDatabase();
    return {{"present", info != nullptr}, {"database", info ? DatabaseToJson(*info) : Json()}};
}

std::string DatabaseText(const Json& facts, const Paint&) {
    if (!facts["present"])
        return "The module holds no database.\n";
    const Json& database = facts["database"];
    const auto number = [&database](const char* key) { return std::to_string(database[key].get<int>()); };
    return "Database  " + Printable(database["description"].get<std::string>()) + "\n" + //
           "Slaves    " + number("slaves") + "\n" +                                      //
           "Input     " + number("inputLength") + " bytes in an area of " + number("inputAreaLength") +
           " (to the bus)\n" + //
           "Output    " + number("outputLength") + " bytes in an area of " + number("outputAreaLength") +
           " (from the bus)\n";
}

// ---- vesk verify

Json AnswerVerify(Session& session, const Json& arguments) {
    const auto info = session.AskForDatabase();
    const Json& file = arguments["database"];
    const Json module = info ? DatabaseToJson(*info) : Json();
    Json differences = Json::array();
    for (const auto& [field, value] : file.items())
        if (info && module[field] != value)
            differences.push_back(field);
    // The checksum decides, as it does for a download.
    const bool same = info && module["description"] == file["description"];
    return {{"ok", same}, {"file", file}, {"module", module}, {"differences", differences}};
}

std::string VerifyText(const Json& facts, const Paint& paint) {
    if (facts["module"].is_null())
        return paint.Bad("The module holds no database.") + "\n";
    std::string text;
    for (const auto& difference : facts["differences"]) {
        const auto field = difference.get<std::string>();
        text += "  " + Padded(field, 14) + facts["module"][field].dump() + " in the module, " +
                facts["file"][field].dump() + " in the file\n";
    }
    return facts["ok"] ? "Same: " + facts["file"]["description"].get<std::string>() + ", " +
                             ContentText(facts["file"]) + "\n" + text
                       : paint.Bad("The module holds another database:") + "\n" + text;
}

// ---- vesk download

Json AnswerDownload(Session& session, const Json&) {
    return {{"downloaded", session.Downloads() > 0},
            {"database", DatabaseToJson(*session.Module().GetDatabaseInfo())}};
}

std::string DownloadText(const Json& facts, const Paint&) {
    const Json& database = facts["database"];
    return (facts["downloaded"] ? "Downloaded: " : "Already there: ") +
           Printable(database["description"].get<std::string>()) + ", " + ContentText(database) + "\n";
}

/// What a download is made of: bytes that each of its records has, in the order in which they are sent.
std::vector<int> RecordSizes(const Config::IBusConfig& config) {
    std::vector<int> sizes{DPVMMessages::MasterRecordDownload(config.Master())->Data()->Count()};
    for (const unsigned char address : Elements(*config.SlaveAddresses())) {
        const auto fragments = DPVMMessages::SlaveRecordDownload(address, config.Slave(address));
        for (int fragment = 0; fragment < fragments->Count(); ++fragment)
            sizes.push_back(fragments->Get(fragment)->Data()->Count());
    }
    return sizes;
}

/// How far a session's download is, which shows in how many of its records are still to be sent.
class DownloadProgress {
public:
    DownloadProgress(Session& session, const Config::IBusConfig& config)
        : _session(session),
          _sizes(RecordSizes(config)),
          _progress(Console::Standard(), "requests", static_cast<std::int64_t>(_sizes.size()),
                    std::accumulate(_sizes.begin(), _sizes.end(), 0)) {}

    /// To be called after each Update.
    void Note(bool show) {
        const auto left = static_cast<std::size_t>(_session.Own().RecordsToDownload());
        _begun = _begun || left > 0;
        bool moved = false;
        for (; _begun && _sent < _sizes.size() - left; moved = true)
            _bytes += _sizes[_sent++];
        if (moved && show)
            _progress.Show(static_cast<std::int64_t>(_sent), _bytes, SecondsSince(_start));
    }

    /// What the module would be left with if the download ended now; see CarefulWork.
    std::string LeftBehind() {
        if (!_begun || _session.ModuleState() != Vt22Module::ModuleState_e::DOWNLOADING)
            return "";
        _progress.End();
        return "with " + std::to_string(_sent) + " of " + std::to_string(_sizes.size()) +
               " requests sent. The module's database is not complete, and it cannot go onto its bus until a "
               "download has ended.";
    }

private:
    Session& _session;
    std::vector<int> _sizes;
    Progress _progress;
    System::DateTime _start = System::DateTime::Now();
    bool _begun = false;
    std::size_t _sent = 0;
    std::int64_t _bytes = 0;
};

} // namespace

Action AddDatabase(CLI::App& app) {
    static constexpr Verb DATABASE{Need::BOOTED, AnswerDatabase, DatabaseText};
    const auto command = std::make_shared<VerbCommand>(app, DATABASE);
    return [command] { return command->Execute(); };
}

Action AddVerify(CLI::App& app) {
    static constexpr Verb VERIFY{Need::BOOTED, AnswerVerify, VerifyText};
    const auto command = std::make_shared<VerbCommand>(app, VERIFY);
    command->AddFile([self = command.get()](const std::string& path) {
        self->arguments["database"] = ConfigToJson(*LoadDatabaseFile(path));
    });
    return [command] { return command->Execute(); };
}

Action AddDownload(CLI::App& app) {
    static constexpr Verb DOWNLOAD{Need::CONFIGURED, AnswerDownload, DownloadText, true};
    const auto command = std::make_shared<VerbCommand>(app, DOWNLOAD);
    VerbCommand* const self = command.get();
    self->AddFile([self](const std::string& path) { self->config = LoadDatabaseFile(path); });
    self->run = [self, run = self->run](Session& session) {
        const auto progress = std::make_shared<DownloadProgress>(session, *self->config);
        const CarefulWork work(Console::Standard(), [progress] { return progress->LeftBehind(); });
        session.OnUpdate([progress, show = !self->PrintsJson()] { progress->Note(show); });
        return run(session);
    };
    return [command] { return command->Execute(); };
}

} // namespace VeskTool
