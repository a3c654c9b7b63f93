// SPDX-License-Identifier: MIT
#include "virtualmodule/commands/InitCommands.h"

#include "virtualmodule/commands/DatabaseCommands.h"

namespace VirtualModule {

const std::array<Command<InitCommands>, 3> InitCommands::COMMANDS{{
    {0x01, "StartInit", 0, 0, &InitCommands::StartInit},
    {0x02, "VelmoInit", 12, 12, &InitCommands::VelmoInit},
    {0x03, "EndInit", 0, 0, &InitCommands::EndInit},
}};

InitCommands::InitCommands(const Flash& flash, Bus& bus, Watch& watch)
    : _flash(flash), _bus(bus), _watch(watch) {}

std::optional<Answer> InitCommands::Handle(const Message& request) {
    return Dispatch(*this, COMMANDS, request, _watch);
}

Answer InitCommands::StartInit(const Message& request) {
    if (_bus.Running())
        return ErrorCode::COMMAND;
    if (!_flash.database.Complete())
        return DatabaseCommands::NoDatabase();
    _step = Step::STARTED;
    return Answer(request);
}

Answer InitCommands::VelmoInit(const Message& request) {
    if (_step != Step::STARTED || !_flash.database.Complete())
        return ErrorCode::COMMAND;
    const Database::Lengths lengths = _flash.database.GetLengths();
    for (std::size_t i = 0; i < 3; ++i)
        if (Get16(request.data, 2 * i) != lengths.initInput ||
            Get16(request.data, 6 + 2 * i) != lengths.initOutput)
            return ErrorCode::INVALID_OTHER;
    _step = Step::LENGTHS_KNOWN;
    return Answer(request);
}

Answer InitCommands::EndInit(const Message& request) {
    if (_step != Step::LENGTHS_KNOWN || !_flash.database.Complete())
        return ErrorCode::COMMAND;
    _step = Step::IDLE;
    _bus.Start(_flash.database);
    return Answer(request);
}

} // namespace VirtualModule
