// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/Commands.h"
#include "vesk/mailbox/Header.h"

#include <span>
#include <string>
#include <vector>

namespace VeskTool {

/// One kind of mailbox request: what the host may ask the module for.
struct RequestKind {
    const Vesk::Mailbox::MailboxCommand& command;
    /// What its parameters are, with places in braces: {0h} and {0l} the high and the low byte of extended
    /// word 0, {0w} the word, {0m} its high byte as an operation mode, {f}, {t} and {o} the header's frame
    /// number, total frame count and offset, {d} the data as text.
    const char* parameters;
    const char* meaning;
};

/// Every request of the library, in the order of its list of commands.
const std::vector<RequestKind>& RequestKinds();

/// The kind with that type and command; null when there is none.
const RequestKind* FindRequestKind(const Vesk::Mailbox::MessageType& type, unsigned short command);

/// A request in one line: "SlaveRecordDownload, slave 40, fragment 2 of 3". A response has only the name.
std::string Describe(const Vesk::Mailbox::Header& header, std::span<const unsigned char> data);

} // namespace VeskTool
