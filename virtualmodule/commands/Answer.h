// SPDX-License-Identifier: MIT
#pragma once

#include "virtualmodule/wires/Message.h"
#include "virtualmodule/wires/Watch.h"

#include <functional>
#include <optional>

namespace VirtualModule {

/// What a command answers; the mailbox adds the header's other fields from the request.
struct Answer {
    /// A bare error, or a bare success.
    Answer(ErrorCode code) : error(code) {}

    /// A success with `bytes`; the extended words are the request's own unless the command changes them.
    explicit Answer(const Message& request, Bytes bytes = {})
        : extended(request.extended), data(std::move(bytes)) {}

    ErrorCode error = ErrorCode::NO_ERROR;
    ExtendedWords extended{};
    Bytes data;
    /// Nanoseconds from taking the request to answering it.
    std::int64_t delay = 0;
    /// Done when the answer goes out; a reset before that leaves it undone.
    std::function<void()> finish;
};

/// One command of a group: its number and name, how many data bytes it carries, what carries it out.
template <class Group>
struct Command {
    std::uint16_t number;
    const char* name;
    std::uint16_t minData;
    std::uint16_t maxData;
    Answer (Group::*handle)(const Message&);
    /// The command checks the frame fields itself; all others come in one frame.
    bool framed = false;
};

/// An error if the request is not whole in one frame.
inline ErrorCode CheckSingleFrame(const Message& request) {
    if (request.totalFrameCount != 1)
        return ErrorCode::TOTAL_FRAME_COUNT;
    if (request.frameNumber != 1)
        return ErrorCode::FRAME_NUMBER;
    return request.offset == 0 ? ErrorCode::NO_ERROR : ErrorCode::OFFSET;
}

/// Lets `group` carry out the request by its table; nothing if the table does not know the command.
template <class Group, class Table>
std::optional<Answer> Dispatch(Group& group, const Table& table, const Message& request, const Watch& watch) {
    for (const Command<Group>& command : table) {
        if (command.number != request.command)
            continue;
        watch.Log([&] { return std::string("command ") + command.name; });
        if (request.data.size() < command.minData || request.data.size() > command.maxData)
            return ErrorCode::DATA_SIZE;
        const ErrorCode frames = command.framed ? ErrorCode::NO_ERROR : CheckSingleFrame(request);
        return frames == ErrorCode::NO_ERROR ? (group.*command.handle)(request) : frames;
    }
    return std::nullopt;
}

} // namespace VirtualModule
