// SPDX-License-Identifier: MIT
#include "tests/support/DatabaseFileBuilder.h"

#include "vesk/modules/dpvm/config/DdbParser.h"
#include "vesk/system/io/MemoryStream.h"

#include <algorithm>
#include <cstdio>

using Bytes = DatabaseFileBuilder::Bytes;

static void Append(Bytes& to, const Bytes& bytes) {
    to.insert(to.end(), bytes.begin(), bytes.end());
}

static void AppendByte(Bytes& to, int value) {
    to.push_back(static_cast<unsigned char>(value));
}

static void AppendHigh(Bytes& to, std::size_t word) {
    AppendByte(to, static_cast<int>(word >> 8));
    AppendByte(to, static_cast<int>(word & 0xFF));
}

DatabaseFileBuilder& DatabaseFileBuilder::Master(const Bytes& record) {
    _checksum = Crc(record);
    return Message(0x12, 0, 0, record, static_cast<int>(record.size()));
}

DatabaseFileBuilder& DatabaseFileBuilder::Slave(int address, const Bytes& record) {
    _checksum = Crc(record, _checksum);
    _checksum = Crc({static_cast<unsigned char>(address)}, _checksum);
    const int size = static_cast<int>(record.size());
    const int last = (size + 255) / 256;
    for (int fragment = 1, offset = 0; fragment <= last; ++fragment, offset += 256) {
        const Bytes data(record.begin() + offset, record.begin() + std::min(offset + 256, size));
        Message(0x14, address << 8 | fragment, last << 8, data, static_cast<int>(data.size()));
    }
    return *this;
}

DatabaseFileBuilder& DatabaseFileBuilder::Message(int command, int word0, int word1, const Bytes& data,
                                                  int size) {
    const std::size_t start = _messages.size();
    for (const int word : {0, 0x4002 /* a fieldbus request */, command, size, 1, 1, 0, 0, word0, word1})
        Append(_messages, {static_cast<unsigned char>(word & 0xFF), static_cast<unsigned char>(word >> 8)});
    _messages.resize(start + 32);
    Append(_messages, data);
    _messages.resize(start + 288, 0xEE);
    return *this;
}

DatabaseFileBuilder& DatabaseFileBuilder::Checksum(const std::string& text) {
    _checksumText = text;
    return *this;
}

Bytes DatabaseFileBuilder::Build() const {
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08x", _checksum);
    const std::string line = _checksumText.value_or(digits) + "\n";
    Bytes file(line.begin(), line.end());
    Append(file, _messages);
    return file;
}

std::string DatabaseFileBuilder::Content() const {
    const Bytes file = Build();
    return {file.begin(), file.end()};
}

std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> DatabaseFileBuilder::Read() const {
    return Vesk::Modules::DPVM::Config::DdbParser::FromStream(
        System::IO::MemoryStream::Create(System::Array<unsigned char>::Create(Build())));
}

Bytes DatabaseFileBuilder::MasterRecord(int stationAddress) {
    Bytes record = {
        0x00, 0x60, 0x01, 0x06, 0x01, 0x2C, 0x00, 0x0B, 0x00, 0x96, 0x00, 0x01, // up to setupTime
        0x00, 0x00, 0xC3, 0x50, 0x0A, 0x7E, 0x01, 0x00, 0x00, 0x0A, 0x03, 0xE8, // up to pollTimeout
        0x00, 0x64, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,                         // up to the user data
        0x00, 0x40, 'V',  'T',  '2',  '2',
    };
    record[2] = static_cast<unsigned char>(stationAddress);
    record.resize(96);
    return record;
}

Bytes DatabaseFileBuilder::SlaveRecord(const SlaveContent& content) {
    const std::size_t parameters = 9 + content.parameters.size();
    const std::size_t configuration = 2 + content.identifiers.size();
    const std::size_t table = 4 + 2 * (content.inputs.size() + content.outputs.size());
    const std::size_t extended = 2 + content.extended.size();

    Bytes record;
    AppendHigh(record, 16 + parameters + configuration + table + 6 + extended);
    Append(record, {0x80, 0x00, 0xF4, 0x00, 0xF4, 0x00, 0x00, 0x00, 0x00, 0x64, 0x00, 0x00, 0x00, 0x00});

    AppendHigh(record, parameters);
    Append(record, {0x88, 0x01, 0x0A, 0x0B, 0x12, 0x34, 0x00});
    Append(record, content.parameters);
    record.resize(record.size() + parameters % 2);

    AppendHigh(record, configuration);
    Append(record, content.identifiers);
    record.resize(record.size() + configuration % 2);

    AppendHigh(record, table);
    AppendByte(record, static_cast<int>(content.inputs.size()));
    AppendByte(record, static_cast<int>(content.outputs.size()));
    for (const std::vector<int>* const offsets : {&content.inputs, &content.outputs})
        for (const int offset : *offsets)
            AppendHigh(record, static_cast<std::size_t>(offset));

    AppendHigh(record, 6);
    AppendByte(record, static_cast<int>(content.outputs.size()));
    AppendByte(record, static_cast<int>(content.inputs.size()));
    AppendHigh(record, 0);

    AppendHigh(record, extended);
    Append(record, content.extended);
    return record;
}

unsigned int DatabaseFileBuilder::Crc(const Bytes& data, unsigned int start) {
    unsigned int remainder = start;
    for (const unsigned char byte : data) {
        remainder ^= static_cast<unsigned int>(byte) << 24;
        for (int bit = 0; bit < 8; ++bit)
            remainder = (remainder & 0x80000000u) ? remainder << 1 ^ 0x04C11DB7u : remainder << 1;
    }
    return ~remainder;
}
