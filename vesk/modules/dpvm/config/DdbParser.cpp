// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/config/DdbParser.h"

#include "vesk/core/ErrorStrings.h"
#include "vesk/core/VeskException.h"
#include "vesk/hostinterface/MailboxDpRam.h"
#include "vesk/mailbox/Commands.h"
#include "vesk/mailbox/Header.h"
#include "vesk/modules/dpvm/config/Block.h"
#include "vesk/modules/dpvm/config/BusConfig.h"
#include "vesk/modules/dpvm/config/MasterRecord.h"
#include "vesk/modules/dpvm/config/SlaveRecord.h"
#include "vesk/system/Convert.h"
#include "vesk/system/io/FileStream.h"
#include "vesk/system/io/IOException.h"
#include "vesk/system/io/MemoryStream.h"
#include "vesk/system/text/Encoding.h"

#include <utility>

namespace Vesk::Modules::DPVM::Config {

using HostInterface::MailboxDpRam::AREA_SIZE;
using HostInterface::MailboxDpRam::HEADER_SIZE;
using HostInterface::MailboxDpRam::MAX_DATA_SIZE;
using Mailbox::Header;
using Mailbox::MailboxCommand;
namespace Commands = Mailbox::Commands;
using System::Array;
using System::ArraySegment;
using System::String;
using System::IO::MemoryStream;
using System::IO::SeekOrigin;
using System::IO::Stream;

static constexpr int CHECKSUM_DIGITS = 8;
static constexpr int MAX_FRAGMENTS = 255; // of one record

static void Require(bool condition, const char* name, unsigned int value, const char* otherName,
                    unsigned int other) {
    if (!condition)
        System::_env_throw(ConfigException::Create(ErrorStrings::NotEqual(name, value, otherName, other)));
}

/// Reads the line that stands before the messages.
static unsigned int ReadChecksum(const std::shared_ptr<Stream>& stream) {
    const auto digits = Array<unsigned char>::Create(CHECKSUM_DIGITS);
    ReadExactly(stream, digits, 0, CHECKSUM_DIGITS);
    const auto text = System::Text::Encoding::ASCII::GetString(digits, 0, CHECKSUM_DIGITS);
    const auto checksum = static_cast<unsigned int>(System::Convert::ToUInt64(text, 16));

    const int lineEnd = stream->ReadByte();
    if (lineEnd < 0)
        System::_env_throw(System::IO::EndOfStreamException::Create("Stream ends after the checksum"));
    if (lineEnd != '\n')
        System::_env_throw(System::FormatException::Create(
            System::Convert::ToString(static_cast<unsigned int>(lineEnd), 16)));
    return checksum;
}

namespace {

/// Reads recorded messages: a header, its numbers least significant byte first, and an area of 256 bytes of
/// which the data takes as many as it needs. Puts the data of one record together.
class MessageReader {
public:
    /// FormatException unless the rest of the stream is made of whole messages.
    explicit MessageReader(std::shared_ptr<Stream> stream);

    bool AtEnd() const { return _stream->Position() >= _stream->Length(); }

    /// The next message's header, which has to carry `command`.
    std::shared_ptr<Header> ReadHeader(const char* commandName, const MailboxCommand& command);
    /// Appends the message's data to the record and goes on to the next message.
    void ReadData(const Header& header);
    /// The record, good until the next ReadData, which begins another.
    std::shared_ptr<Stream> TakeRecord();

private:
    std::shared_ptr<Stream> _stream;
    std::shared_ptr<Array<unsigned char>> _header = Array<unsigned char>::Create(HEADER_SIZE);
    std::shared_ptr<Array<unsigned char>> _record =
        Array<unsigned char>::Create(MAX_FRAGMENTS * MAX_DATA_SIZE);
    int _recordSize = 0;
};

MessageReader::MessageReader(std::shared_ptr<Stream> stream) : _stream(std::move(stream)) {
    const auto rest = static_cast<std::uint64_t>(_stream->Length() - _stream->Position());
    if (rest % AREA_SIZE != 0)
        System::_env_throw(System::FormatException::Create(System::Convert::ToString(rest, 16)));
}

std::shared_ptr<Header> MessageReader::ReadHeader(const char* commandName, const MailboxCommand& command) {
    ReadExactly(_stream, _header, 0, HEADER_SIZE);
    auto header = Header::FromArray(_header, 0, false);
    Require(header->Command == command.number, "command", header->Command, commandName, command.number);
    return header;
}

void MessageReader::ReadData(const Header& header) {
    const unsigned short size = header.DataSize;
    if (size > MAX_DATA_SIZE)
        System::_env_throw(
            ConfigException::Create(ErrorStrings::GreaterThan("data size", size, MAX_DATA_SIZE)));
    ReadExactly(_stream, _record, _recordSize, size);
    _recordSize += size;
    if (size < MAX_DATA_SIZE)
        _stream->Seek(MAX_DATA_SIZE - size, SeekOrigin::CURRENT);
}

std::shared_ptr<Stream> MessageReader::TakeRecord() {
    const int size = std::exchange(_recordSize, 0);
    return MemoryStream::Create(ArraySegment<unsigned char>::Create(_record, 0, size));
}

} // namespace

static void ReadMaster(MessageReader& messages, BusConfig::Builder& builder) {
    const auto header = messages.ReadHeader("MASTER_RECORD_DOWNLOAD", Commands::MASTER_RECORD_DOWNLOAD);
    messages.ReadData(*header);
    builder.Master(MasterRecord::FromStream(messages.TakeRecord()));
}

/// Reads the fragments of one slave record after the other. What the file's end cuts off is dropped.
static void ReadSlaves(MessageReader& messages, BusConfig::Builder& builder) {
    unsigned int previousNumber = 0; // 0 before the first fragment of a record
    unsigned int currentAddress = 0;
    while (!messages.AtEnd()) {
        const auto header = messages.ReadHeader("SLAVE_RECORD_DOWNLOAD", Commands::SLAVE_RECORD_DOWNLOAD);
        const auto address = static_cast<unsigned char>(header->Extended->Get(0) >> 8);
        const unsigned int number = header->Extended->Get(0) & 0xFF;
        const unsigned int lastNumber = header->Extended->Get(1) >> 8;
        if (number == 0)
            System::_env_throw(ConfigException::Create(ErrorStrings::Invalid("fragmentNumber", number)));
        Require(number == previousNumber + 1, "fragmentNumber", number, "next fragment", previousNumber + 1);
        Require(number == 1 || address == currentAddress, "fragment node address", address,
                "current node address", currentAddress);

        messages.ReadData(*header);
        previousNumber = number;
        currentAddress = address;
        if (number != lastNumber)
            continue;
        builder.Slave(address, SlaveRecord::FromStream(messages.TakeRecord()));
        previousNumber = 0;
    }
}

std::shared_ptr<IBusConfig> DdbParser::FromPath(const String& path) {
    using System::IO::FileAccess;
    using System::IO::FileMode;
    return FromStream(System::IO::FileStream::Create(path, FileMode::OPEN, FileAccess::READ));
}

std::shared_ptr<IBusConfig> DdbParser::FromStream(const std::shared_ptr<Stream>& stream) {
    if (!stream)
        System::_throw_argument_null_exception("stream");
    const auto builder = BusConfig::Builder::Create();
    const unsigned int expected = ReadChecksum(stream);
    MessageReader messages(stream);
    ReadMaster(messages, *builder);
    ReadSlaves(messages, *builder);

    auto config = builder->Build();
    Require(config->Checksum() == expected, "calculated CRC", config->Checksum(), "expected CRC", expected);
    return config;
}

} // namespace Vesk::Modules::DPVM::Config
