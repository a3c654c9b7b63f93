// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/config/IMasterRecord.h"
#include "vesk/modules/dpvm/config/ISlaveRecord.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace BusDescription {

using Vesk::Modules::DPVM::Config::IMasterRecord;
using Vesk::Modules::DPVM::Config::ISlaveRecord;

using Bytes = std::vector<std::uint8_t>;
using Places = std::vector<std::uint16_t>; // offsets of data bytes in the master's area

/// The value of a record's field: a number, a text of one byte for each character, bytes, or the places of
/// data bytes.
using FieldValue = std::variant<std::uint32_t, std::string, Bytes, Places>;

/// The fields of a record and of its blocks, by the names that the records themselves give them
/// ("slotTime"), without the blocks' names: none occurs twice in one record.
using FieldValues = std::map<std::string, FieldValue, std::less<>>;

/// A record of these values; std::out_of_range where a field is missing, and for a text of more bytes than
/// its field has. Numbers are cut to the width of their field.
std::shared_ptr<IMasterRecord> MakeMasterRecord(const FieldValues& values);
std::shared_ptr<ISlaveRecord> MakeSlaveRecord(const FieldValues& values);

/// A record's fields in the order of its bytes.
using FieldList = std::vector<std::pair<std::string, FieldValue>>;
FieldList FieldsOf(const IMasterRecord& record);
FieldList FieldsOf(const ISlaveRecord& record);

} // namespace BusDescription
