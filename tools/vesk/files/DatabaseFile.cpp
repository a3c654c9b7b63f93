// SPDX-License-Identifier: MIT
#include "tools/vesk/files/DatabaseFile.h"

#include "tools/vesk/explain/Advice.h"
#include "tools/vesk/files/DescriptionFile.h"
#include "tools/vesk/files/FileBytes.h"
#include "tools/vesk/text/Text.h"
#include "vesk/core/VeskException.h"
#include "vesk/hostinterface/MailboxDpRam.h"
#include "vesk/modules/dpvm/config/DdbParser.h"
#include "vesk/system/io/MemoryStream.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <optional>

namespace VeskTool {

using Vesk::Modules::DPVM::Config::DdbParser;
using FileContent = std::vector<unsigned char>;

namespace {

constexpr std::size_t DIGITS = 8;
constexpr std::size_t LINE = DIGITS + 1;
constexpr std::size_t MESSAGE = Vesk::HostInterface::MailboxDpRam::AREA_SIZE;
// A master record, and 126 slave records of 255 fragments.
constexpr std::size_t MOST = LINE + MESSAGE * (1 + 126 * 255);

std::shared_ptr<System::IO::MemoryStream> StreamOf(const FileContent& bytes) {
    return System::IO::MemoryStream::Create(System::Array<unsigned char>::Create(bytes));
}

/// Whether it is the form of a database file that does not hold, and how; or nothing.
std::string WrongDatabase(const FileContent& bytes) {
    constexpr auto* first =
        ", where a database file has its checksum, eight hexadecimal digits and a line feed";
    if (bytes.size() > MOST)
        return "has more than " + std::to_string(MOST) + " bytes, the most that a database file can have";
    for (std::size_t at = 0; at < std::min(bytes.size(), LINE); ++at)
        if (at < DIGITS ? std::isxdigit(bytes[at]) == 0 : bytes[at] != '\n')
            return "byte " + std::to_string(at) + " is " + ByteText(bytes[at]) + first + LooksLike(bytes);
    if (bytes.size() < LINE)
        return "ends at byte " + std::to_string(bytes.size()) + first + LooksLike(bytes);
    const std::size_t messages = (bytes.size() - LINE) / MESSAGE;
    const std::size_t start = LINE + messages * MESSAGE;
    if (bytes.size() > start)
        return "ends at byte " + std::to_string(bytes.size()) + ", in the middle of message " +
               std::to_string(messages + 1) + ", which begins at byte " + std::to_string(start) +
               " and has " + std::to_string(MESSAGE);
    return messages == 0 ? "ends behind its first line, without any message" : "";
}

/// Which message the parser has stopped at; `position` is behind what it has read of it.
std::string MessageAt(std::int64_t position) {
    const std::size_t index = (static_cast<std::size_t>(position) - LINE - 1) / MESSAGE;
    return "message " + std::to_string(index + 1) + ", from byte " + std::to_string(LINE + index * MESSAGE) +
           " on: ";
}

/// The number that the parser gives for a message type or an error code that does not exist; or nothing.
std::string UnknownNumber(const std::exception& exception) {
    const std::string message = RawMessageOf(exception);
    const bool number =
        std::all_of(message.begin(), message.end(), [](char c) { return c >= '0' && c <= '9'; });
    return number ? message : "";
}

/// The checksum of the records, from what the parser says where the first line has another one.
std::optional<std::string> CalculatedChecksum(const std::exception& exception) {
    unsigned int calculated = 0;
    if (std::sscanf(RawMessageOf(exception).c_str(), "calculated CRC (%u)", &calculated) != 1)
        return std::nullopt;
    return ChecksumText(calculated);
}

} // namespace

bool DatabaseFile::Damaged() const {
    return checksum != ChecksumText(config->Checksum());
}

std::string DatabaseFile::Damage(const std::string& path) const {
    return path + ": its first line says the checksum " + checksum + ", and its records have " +
           ChecksumText(config->Checksum());
}

DatabaseFile ReadDatabaseFile(const std::string& path) {
    if (IsDescription(path)) {
        const auto config = CompileDescription(path).bus.config;
        return {config, ChecksumText(config->Checksum())};
    }
    FileContent bytes = ReadFile(path, MOST);
    if (const std::string wrong = WrongDatabase(bytes); !wrong.empty())
        throw Failure(path + ": " + wrong);
    const std::string checksum = Lower(std::string(bytes.begin(), bytes.begin() + DIGITS));
    const auto stream = StreamOf(bytes);
    try {
        return {DdbParser::FromStream(stream), checksum};
    } catch (const std::exception& exception) {
        const auto calculated = CalculatedChecksum(exception);
        if (const std::string number = UnknownNumber(exception); !number.empty())
            throw Failure(path + ": " + MessageAt(stream->Position()) +
                          "it has the message type or the error code " + number +
                          ", and there is none of that number");
        if (!calculated)
            throw FileFailure(path, MessageAt(stream->Position()), exception);
        std::copy(calculated->begin(), calculated->end(), bytes.begin());
    }
    return {DdbParser::FromStream(StreamOf(bytes)), checksum};
}

std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> LoadDatabaseFile(const std::string& path) {
    const DatabaseFile file = ReadDatabaseFile(path);
    if (file.Damaged())
        throw Failure(file.Damage(path));
    return file.config;
}

std::shared_ptr<const DescribedBus> LoadDescribedBus(const std::string& path) {
    if (!IsDescription(path))
        return std::make_shared<DescribedBus>(DescribedBus{path, "", LoadDatabaseFile(path), {}});
    CompiledDescription compiled = CompileDescription(path);
    return std::make_shared<DescribedBus>(DescribedBus{path,
                                                       std::filesystem::path(path).parent_path().string(),
                                                       compiled.bus.config, std::move(compiled.description)});
}

} // namespace VeskTool
