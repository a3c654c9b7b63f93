// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/config/SlaveBlocks.h"

#include "vesk/core/ErrorStrings.h"
#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/config/Block.h"

namespace Vesk::Modules::DPVM::Config {

using System::MakeShared;
using System::String;
using System::IO::Stream;

// Parameter data

static constexpr auto PARAMETER_DATA_LENGTH = BlockLength::Between(9, 246);

std::shared_ptr<ISlaveParameterData> SlaveParameterData::FromStream(const std::shared_ptr<Stream>& stream) {
    return MakeShared<SlaveParameterData>(stream);
}

SlaveParameterData::SlaveParameterData(const std::shared_ptr<Stream>& stream) {
    BlockReader block(stream, PARAMETER_DATA_LENGTH);
    Layout(block, *this);
    block.Finish();
}

void SlaveParameterData::ToStream(const std::shared_ptr<Stream>& stream) const {
    BlockWriter block(stream, PARAMETER_DATA_LENGTH);
    Layout(block, *this);
    block.Finish();
}

String SlaveParameterData::ToString() const {
    BlockText block;
    Layout(block, *this);
    return block.ToString();
}

// Configuration data

static constexpr auto CONFIGURATION_DATA_LENGTH = BlockLength::Between(3, 246);

std::shared_ptr<ISlaveConfigurationData>
SlaveConfigurationData::FromStream(const std::shared_ptr<Stream>& stream) {
    return MakeShared<SlaveConfigurationData>(stream);
}

SlaveConfigurationData::SlaveConfigurationData(const std::shared_ptr<Stream>& stream) {
    BlockReader block(stream, CONFIGURATION_DATA_LENGTH);
    Layout(block, *this);
    block.Finish();
}

void SlaveConfigurationData::ToStream(const std::shared_ptr<Stream>& stream) const {
    BlockWriter block(stream, CONFIGURATION_DATA_LENGTH);
    Layout(block, *this);
    block.Finish();
}

String SlaveConfigurationData::ToString() const {
    BlockText block;
    Layout(block, *this);
    return block.ToString();
}

// Address table

static constexpr auto ADDRESS_TABLE_LENGTH = BlockLength::Between(6, 980);

static void CheckTableLength(const char* name, unsigned int count) {
    if (count > 244)
        System::_env_throw(ConfigException::Create(ErrorStrings::NotInRange(name, count, 0, 244)));
}

std::shared_ptr<ISlaveAddressTable> SlaveAddressTable::FromStream(const std::shared_ptr<Stream>& stream) {
    return MakeShared<SlaveAddressTable>(stream);
}

SlaveAddressTable::SlaveAddressTable(const std::shared_ptr<Stream>& stream) {
    BlockReader block(stream, ADDRESS_TABLE_LENGTH);
    unsigned char inputs = 0;
    unsigned char outputs = 0;
    block.Field("input table length", inputs);
    block.Field("output table length", outputs);
    CheckTableLength("input table length", inputs);
    CheckTableLength("output table length", outputs);
    _inputOffsetTable = block.Words(inputs);
    _outputOffsetTable = block.Words(outputs);
    block.Finish();
}

void SlaveAddressTable::ToStream(const std::shared_ptr<Stream>& stream) const {
    BlockWriter block(stream, ADDRESS_TABLE_LENGTH);
    block.Field("input table length", static_cast<unsigned char>(_inputOffsetTable->Count()));
    block.Field("output table length", static_cast<unsigned char>(_outputOffsetTable->Count()));
    block.Words(_inputOffsetTable);
    block.Words(_outputOffsetTable);
    block.Finish();
}

String SlaveAddressTable::ToString() const {
    BlockText block;
    Layout(block, *this);
    return block.ToString();
}

// User data

static constexpr auto USER_DATA_LENGTH = BlockLength::Between(6, 6);

std::shared_ptr<ISlaveUserData> SlaveUserData::FromStream(const std::shared_ptr<Stream>& stream) {
    return MakeShared<SlaveUserData>(stream);
}

SlaveUserData::SlaveUserData(const std::shared_ptr<Stream>& stream) {
    BlockReader block(stream, USER_DATA_LENGTH);
    Layout(block, *this);
    block.Finish();
}

void SlaveUserData::ToStream(const std::shared_ptr<Stream>& stream) const {
    BlockWriter block(stream, USER_DATA_LENGTH);
    Layout(block, *this);
    block.Finish();
}

String SlaveUserData::ToString() const {
    BlockText block;
    block.Field("inputDataLength", _inputDataLength);
    block.Field("outputDataLength", _outputDataLength);
    return block.ToString();
}

// Extended user parameter data

static constexpr auto EXTENDED_LENGTH = BlockLength::Between(2, 246);

std::shared_ptr<ISlaveExtendedUserParameterData>
SlaveExtendedUserParameterData::FromStream(const std::shared_ptr<Stream>& stream) {
    return MakeShared<SlaveExtendedUserParameterData>(stream);
}

SlaveExtendedUserParameterData::SlaveExtendedUserParameterData(const std::shared_ptr<Stream>& stream) {
    BlockReader block(stream, EXTENDED_LENGTH);
    block.EveryByte("extUsrPrmData", _extUsrPrmData);
    block.Finish();
}

void SlaveExtendedUserParameterData::ToStream(const std::shared_ptr<Stream>& stream) const {
    BlockWriter block(stream, EXTENDED_LENGTH);
    Layout(block, *this);
    block.Finish();
}

String SlaveExtendedUserParameterData::ToString() const {
    BlockText block;
    Layout(block, *this);
    return block.ToString();
}

} // namespace Vesk::Modules::DPVM::Config
