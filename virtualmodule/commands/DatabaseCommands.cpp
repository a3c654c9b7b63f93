// SPDX-License-Identifier: MIT
#include "virtualmodule/commands/DatabaseCommands.h"

#include <algorithm>

namespace VirtualModule {

namespace {

constexpr std::uint16_t FRAGMENT_SIZE = Vesk::HostInterface::MailboxDpRam::MAX_DATA_SIZE;
// The extended word that says why a database command failed, and what it says when there is no database.
constexpr std::size_t REASON_WORD = 7;
constexpr std::uint16_t NO_DATABASE = 1;

} // namespace

const std::array<Command<DatabaseCommands>, 6> DatabaseCommands::COMMANDS{{
    {0x10, "StartDatabaseDownload", 0, 0, &DatabaseCommands::StartDatabaseDownload},
    {END_DATABASE_DOWNLOAD, "EndDatabaseDownload", 0, FRAGMENT_SIZE, &DatabaseCommands::EndDatabaseDownload},
    {0x12, "MasterRecordDownload", 0, FRAGMENT_SIZE, &DatabaseCommands::MasterRecordDownload},
    {0x14, "SlaveRecordDownload", 1, FRAGMENT_SIZE, &DatabaseCommands::SlaveRecordDownload},
    {0x16, "DeleteDatabase", 0, 0, &DatabaseCommands::DeleteDatabase},
    {GET_DATABASE_INFO, "GetDatabaseInfo", 0, 0, &DatabaseCommands::GetDatabaseInfo},
}};

DatabaseCommands::DatabaseCommands(Flash& flash, Watch& watch) : _flash(flash), _watch(watch) {}

std::optional<Answer> DatabaseCommands::Handle(const Message& request, bool initialised) {
    _initialised = initialised;
    return Dispatch(*this, COMMANDS, request, _watch);
}

Answer DatabaseCommands::NoDatabase() {
    Answer answer(ErrorCode::INVALID_OTHER);
    answer.extended[REASON_WORD] = NO_DATABASE;
    return answer;
}

Answer DatabaseCommands::StartDatabaseDownload(const Message& request) {
    if (_initialised)
        return ErrorCode::COMMAND;
    _started = true;
    _deleted = false;
    return Answer(request);
}

Answer DatabaseCommands::DeleteDatabase(const Message& request) {
    if (!_started || _initialised)
        return ErrorCode::COMMAND;
    Write() = {};
    _deleted = true;
    _fragment = 0;
    return Answer(request);
}

Answer DatabaseCommands::MasterRecordDownload(const Message& request) {
    if (!_deleted || _initialised || !_flash.database.master.empty())
        return ErrorCode::COMMAND;
    if (!IsMasterRecord(request.data))
        return ErrorCode::FLASH_CONFIG_ERROR;
    Database& database = Write();
    database.state = Database::State::WRITING;
    database.master = request.data;
    return Answer(request);
}

Answer DatabaseCommands::SlaveRecordDownload(const Message& request) {
    if (!_deleted || _initialised || _flash.database.master.empty())
        return ErrorCode::COMMAND;
    const ErrorCode error = CheckFragment(request);
    if (error != ErrorCode::NO_ERROR)
        return error;
    if (_fragment == 0) {
        _address = High(request.extended[0]);
        _fragments = High(request.extended[1]);
        _record.clear();
    }
    Append(_record, request.data);
    ++_fragment;
    if (_fragment == _fragments) {
        _fragment = 0;
        const ErrorCode stored = StoreSlave();
        return stored == ErrorCode::NO_ERROR ? Answer(request) : Answer(stored);
    }
    return Answer(request);
}

ErrorCode DatabaseCommands::CheckFragment(const Message& request) const {
    const std::uint8_t address = High(request.extended[0]);
    const std::uint8_t fragment = Low(request.extended[0]);
    const std::uint8_t fragments = High(request.extended[1]);
    const bool first = _fragment == 0;
    if (address > Database::HIGHEST_SLAVE || address == MasterAddress(_flash.database.master) ||
        (first ? _flash.database.slaves.contains(address) : address != _address))
        return ErrorCode::ADDRESS;
    if (fragments == 0 || (!first && fragments != _fragments))
        return ErrorCode::TOTAL_FRAME_COUNT;
    if (fragment != _fragment + 1)
        return ErrorCode::FRAME_NUMBER;
    const bool whole = request.data.size() == FRAGMENT_SIZE;
    return whole || fragment == fragments ? ErrorCode::NO_ERROR : ErrorCode::DATA_SIZE;
}

ErrorCode DatabaseCommands::StoreSlave() {
    if (!SlaveRecord::Decode(_record))
        return ErrorCode::FLASH_CONFIG_ERROR;
    Write().slaves[_address] = _record;
    return ErrorCode::NO_ERROR;
}

Answer DatabaseCommands::EndDatabaseDownload(const Message& request) {
    if (!_deleted || _initialised || _flash.database.master.empty() || _fragment != 0)
        return ErrorCode::COMMAND;
    Database& database = Write();
    database.description = request.data;
    database.state = Database::State::COMPLETE;
    _started = _deleted = false;
    return Answer(request);
}

// NOLINTNEXTLINE(readability-make-member-function-const): it stands in the table with those that write
Answer DatabaseCommands::GetDatabaseInfo(const Message& request) {
    const Database& database = _flash.database;
    if (!database.Complete())
        return NoDatabase();
    const Database::Lengths lengths = database.GetLengths();
    Bytes text = database.description;
    text.resize(std::max(text.size(), DESCRIPTION_SIZE), ERASED);
    Answer answer(request, std::move(text));
    answer.extended = {lengths.totalOutput, lengths.totalInput, lengths.initOutput, lengths.initInput,
                       Word(static_cast<unsigned>(database.slaves.size()), 0)};
    return answer;
}

Database& DatabaseCommands::Write() {
    ++_flash.writes;
    return _flash.database;
}

} // namespace VirtualModule
