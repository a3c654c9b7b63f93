// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/config/IBusConfig.h"

#include <optional>
#include <string>
#include <vector>

/// Composes a configuration database file byte by byte, on its own, so that a mistake of the library shows.
class DatabaseFileBuilder {
public:
    using Bytes = std::vector<unsigned char>;

    /// Records the master record's message; without an argument, MasterRecord().
    DatabaseFileBuilder& Master(const Bytes& record);

    DatabaseFileBuilder& Master() { return Master(MasterRecord()); }

    /// Records a slave record in fragments of 256 bytes.
    DatabaseFileBuilder& Slave(int address, const Bytes& record);
    /// Records any one message. `size` is what its header says; the data area is always 256 bytes.
    DatabaseFileBuilder& Message(int command, int word0, int word1, const Bytes& data, int size);
    /// Writes `text` where the checksum of the records would stand.
    DatabaseFileBuilder& Checksum(const std::string& text);
    /// The file.
    Bytes Build() const;

    std::string Content() const;

    /// What the library reads out of the file.
    std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> Read() const;

    /// The checksum of the records so far.
    unsigned int Checksum() const { return _checksum; }

    /// A master record for a bus at 1.5 Mbit/s.
    static Bytes MasterRecord(int stationAddress = 1);

    struct SlaveContent {
        std::vector<int> inputs;  // offset table; a byte of input data for each entry
        std::vector<int> outputs; // the same for output data
        Bytes parameters = {0x80, 0x00, 0x00};
        Bytes identifiers = {0xC0};
        Bytes extended = {};
    };

    /// A slave record with these blocks and its pad bytes.
    static Bytes SlaveRecord(const SlaveContent& content);

    /// The complement of the CRC-32 register, `start` before `data`; CRC-32/BZIP2 for the default.
    static unsigned int Crc(const Bytes& data, unsigned int start = 0xFFFFFFFF);

private:
    Bytes _messages;
    unsigned int _checksum = 0;
    std::optional<std::string> _checksumText;
};
