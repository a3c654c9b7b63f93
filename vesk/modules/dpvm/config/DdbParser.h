// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/config/IBusConfig.h"
#include "vesk/system/io/Stream.h"

namespace Vesk::Modules::DPVM::Config {

/// Reads a configuration database file: the expected checksum as a line of eight hexadecimal digits, then the
/// recorded mailbox messages that download the master record and the slave records.
class DdbParser {
public:
    /// Reads the file at `path`. IOException where it cannot be opened, otherwise as FromStream.
    static std::shared_ptr<IBusConfig> FromPath(const System::String& path);

    /// Reads from the stream's position to its end. FormatException for another form, ConfigException for
    /// messages that are not those of a download or do not have the expected checksum, ArgumentException for
    /// an unknown message type or error code or a second slave with the same address, EndOfStreamException
    /// where something is missing. The stream is left where the failure happened.
    static std::shared_ptr<IBusConfig> FromStream(const std::shared_ptr<System::IO::Stream>& stream);
};

} // namespace Vesk::Modules::DPVM::Config
