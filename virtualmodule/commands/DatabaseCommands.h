// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/commands/Answer.h"
#include "virtualmodule/flash/Flash.h"

namespace VirtualModule {

/// The master's commands that read and write its configuration database. A download comes in one order:
/// StartDatabaseDownload, DeleteDatabase, the master record, the slave records (each in fragments of 256
/// bytes, in order), EndDatabaseDownload. A command out of its order answers COMMAND; a record that is not
/// one answers FLASH_CONFIG_ERROR. Nothing of it works once the module is initialised, except reading.
class DatabaseCommands {
public:
    static constexpr std::uint16_t END_DATABASE_DOWNLOAD = 0x11;
    static constexpr std::uint16_t GET_DATABASE_INFO = 0x17;

    /// The description's place in the flash, at the least; what the text leaves over of it reads as erased.
    static constexpr std::size_t DESCRIPTION_SIZE = 32;
    static constexpr std::uint8_t ERASED = 0xFF;

    DatabaseCommands(Flash& flash, Watch& watch);

    /// Nothing if the command is none of these. `initialised`: the database is in use.
    std::optional<Answer> Handle(const Message& request, bool initialised);

    /// The answer to whatever needs a database where there is none.
    static Answer NoDatabase();

private:
    static const std::array<Command<DatabaseCommands>, 6> COMMANDS;

    Answer StartDatabaseDownload(const Message& request);
    Answer EndDatabaseDownload(const Message& request);
    Answer MasterRecordDownload(const Message& request);
    Answer SlaveRecordDownload(const Message& request);
    Answer DeleteDatabase(const Message& request);
    Answer GetDatabaseInfo(const Message& request);

    ErrorCode CheckFragment(const Message& request) const;
    ErrorCode StoreSlave();
    Database& Write();

    Flash& _flash;
    Watch& _watch;
    bool _initialised = false;
    bool _started = false; // StartDatabaseDownload came
    bool _deleted = false; // and DeleteDatabase after it: records may come
    // The slave record that is coming in.
    std::uint8_t _address = 0;
    std::uint8_t _fragments = 0; // how many it has
    std::uint8_t _fragment = 0;  // the last one that came; 0 between records
    Bytes _record;
};

} // namespace VirtualModule
