// SPDX-License-Identifier: MIT
// The database information, from the mailbox message that carries it: a header and its data.
#include "fuzz/Properties.h"

#include "vesk/core/VeskException.h"
#include "vesk/mailbox/Header.h"
#include "vesk/mailbox/Response.h"
#include "vesk/modules/dpvm/DatabaseInfo.h"
#include "vesk/system/io/IOException.h"

#include <algorithm>

using Fuzz::Bytes;
using Fuzz::Require;
using Vesk::Mailbox::Header;
using Vesk::Mailbox::Response;
using Vesk::Modules::DPVM::DatabaseInfo;

namespace {

constexpr std::size_t HEADER_SIZE = 32;

void Check(const DatabaseInfo& info, const Bytes& message, std::size_t dataSize) {
    const auto word = [&message](std::size_t index) {
        return message[16 + 2 * index] << 8 | message[17 + 2 * index];
    };
    Require(info.TotalOutputLength == word(0) && info.TotalInputLength == word(1) &&
                info.InitOutputLength == word(2) && info.InitInputLength == word(3) &&
                info.NoOfSlaves == word(4) >> 8,
            "the lengths are the message's", info.ToString().Value());
    const std::string& description = info.Description.Value();
    const auto begin = message.begin() + HEADER_SIZE;
    Require(std::equal(description.begin(), description.end(), begin,
                       [](char c, unsigned char byte) { return static_cast<unsigned char>(c) == byte; }),
            "the description is the data's beginning");
    if (description.size() < dataSize) {
        const unsigned char end = message[HEADER_SIZE + description.size()];
        Require(end == 0x00 || end == 0xFF, "the description ends where the text does", description);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes message(data, data + size);
    std::shared_ptr<DatabaseInfo> info;
    std::size_t dataSize = 0;
    const auto array = Fuzz::ToArray(message);
    {
        const Fuzz::AllocationBudget budget(8192 + 16 * size);
        Fuzz::FailureOf<System::ArgumentException, System::IO::EndOfStreamException, Vesk::VeskException>(
            [&] {
                const auto header = Header::FromArray(array, 0, true);
                dataSize = header->DataSize;
                const auto body =
                    System::ArraySegment<unsigned char>::Create(array, HEADER_SIZE, header->DataSize);
                info = DatabaseInfo::FromMailboxResponse(
                    Response::Create(header->Error, header->Extended, body));
            });
    }
    if (info)
        Check(*info, message, dataSize);
    return 0;
}
