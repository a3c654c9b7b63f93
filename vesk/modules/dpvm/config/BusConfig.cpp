// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/config/BusConfig.h"

#include "vesk/modules/dpvm/config/CRC32.h"
#include "vesk/system/io/MemoryStream.h"
#include "vesk/system/text/StringBuilder.h"

namespace Vesk::Modules::DPVM::Config {

using System::MakeShared;
using System::Collections::Generic::ReadOnlyCollection;

BusConfig::BusConfig(unsigned int checksum, std::shared_ptr<IMasterRecord> master,
                     std::shared_ptr<SlaveTable> slaves)
    : _checksum(checksum), _master(std::move(master)), _slaves(std::move(slaves)) {}

unsigned int BusConfig::Checksum() const {
    return _checksum;
}

std::shared_ptr<IMasterRecord> BusConfig::Master() const {
    return _master;
}

std::shared_ptr<ReadOnlyCollection<unsigned char>> BusConfig::SlaveAddresses() const {
    return ReadOnlyCollection<unsigned char>::Create(_slaves->Keys());
}

std::shared_ptr<ISlaveRecord> BusConfig::Slave(unsigned char address) const {
    return _slaves->Get(address);
}

System::String BusConfig::ToString() const {
    System::Text::StringBuilder text;
    text.AppendLine("BusConfig{");
    text.Append("Checksum: ").AppendHex(_checksum).AppendLine();
    text.AppendLine().AppendLine("Master{").Append(_master->ToString()).AppendLine("}");
    for (const unsigned char address : *_slaves->Keys()) {
        text.AppendLine().Append("Slave @ ").Append(address).AppendLine("{");
        text.Append(_slaves->Get(address)->ToString()).AppendLine("}");
    }
    return text.AppendLine("}").ToString();
}

std::shared_ptr<BusConfig::Builder> BusConfig::Builder::Create() {
    return MakeShared<Builder>();
}

std::shared_ptr<BusConfig::Builder> BusConfig::Builder::Master(std::shared_ptr<IMasterRecord> record) {
    _master = std::move(record);
    return shared_from_this();
}

std::shared_ptr<BusConfig::Builder> BusConfig::Builder::Slave(unsigned char address,
                                                              std::shared_ptr<ISlaveRecord> record) {
    if (!record)
        System::_throw_argument_null_exception("record");
    _slaves->Add(address, std::move(record));
    return shared_from_this();
}

std::shared_ptr<IBusConfig> BusConfig::Builder::Build() {
    if (!_master)
        System::_throw_argument_null_exception("master");
    // One buffer for every record in turn; the longest, with its pad bytes, fits.
    const auto buffer = System::Array<unsigned char>::Create(2000);
    const auto stream = System::IO::MemoryStream::Create(buffer);
    const auto crc = CRC32::Create();
    const auto digestRecord = [&](const auto& record) {
        stream->Seek(0, System::IO::SeekOrigin::BEGIN);
        record->ToStream(stream);
        crc->Digest(buffer, 0, static_cast<int>(stream->Position()));
        crc->Value = ~crc->Value;
    };

    digestRecord(_master);
    const auto slaves = SlaveTable::Create();
    auto slave = _slaves->Values()->begin();
    for (const unsigned char address : *_slaves->Keys()) {
        digestRecord(*slave);
        crc->Digest(address);
        crc->Value = ~crc->Value;
        slaves->Add(address, *slave++);
    }
    return MakeShared<BusConfig>(crc->Value, _master, slaves);
}

} // namespace Vesk::Modules::DPVM::Config
