// SPDX-License-Identifier: MIT
// Each configuration record: the first byte of the input chooses which, the rest is the record.
#include "fuzz/Properties.h"

#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/config/MasterRecord.h"
#include "vesk/modules/dpvm/config/MasterUserData.h"
#include "vesk/modules/dpvm/config/SlaveBlocks.h"
#include "vesk/modules/dpvm/config/SlaveRecord.h"
#include "vesk/system/io/IOException.h"

using namespace Vesk::Modules::DPVM::Config;
using Fuzz::Bytes;
using Fuzz::Require;

namespace {

/// Bytes that are skipped when they are read, and written as zero.
struct Reserved {
    std::size_t offset;
    std::size_t count;
};

std::vector<Reserved> PlainReserved(const Bytes&) {
    return {};
}

std::vector<Reserved> MasterUserDataReserved(const Bytes&) {
    return {{38, 2}, {44, 4}, {61, 3}};
}

std::vector<Reserved> MasterRecordReserved(const Bytes&) {
    return {{28, 4}, {32 + 38, 2}, {32 + 44, 4}, {32 + 61, 3}};
}

std::vector<Reserved> SlaveUserDataReserved(const Bytes&) {
    return {{4, 2}};
}

std::vector<Reserved> SlaveRecordReserved(const Bytes& record) {
    std::vector<Reserved> reserved{{5, 1}, {12, 4}};
    std::size_t block = 16;
    for (int i = 0; i < 3; ++i) { // the parameters, the configuration, the address table
        const std::size_t length = static_cast<std::size_t>(record[block] << 8 | record[block + 1]);
        if (length % 2)
            reserved.push_back({block + length, 1});
        block += length + length % 2;
    }
    reserved.push_back({block + 4, 2}); // of the user data
    return reserved;
}

template <class Record>
void Check(const Bytes& input, std::vector<Reserved> (*reservedOf)(const Bytes&)) {
    decltype(Record::FromStream(nullptr)) record;
    const auto stream = Fuzz::ToStream(input);
    {
        const Fuzz::AllocationBudget budget(8192 + 4 * input.size());
        Fuzz::FailureOf<System::ArgumentException, System::IO::EndOfStreamException, Vesk::ConfigException>(
            [&] { record = Record::FromStream(stream); });
    }
    if (!record)
        return;
    const Bytes written = Fuzz::Written(*record);
    Bytes expected = input;
    expected.resize(written.size()); // reserved bytes at the end may be missing
    for (const Reserved& reserved : reservedOf(written))
        for (std::size_t i = 0; i < reserved.count; ++i)
            expected[reserved.offset + i] = 0;
    Require(written == expected, "what was read writes back to the same bytes", *record);
    Require(stream->Position() == static_cast<std::int64_t>(written.size()), "the stream stands behind it");
    const auto again = Record::FromStream(Fuzz::ToStream(written));
    Require(again->ToString() == record->ToString(), "what was written reads as what was read");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const Bytes input(data + 1, data + size);
    switch (data[0] % 8) {
    case 0:
        Check<MasterRecord>(input, MasterRecordReserved);
        break;
    case 1:
        Check<MasterUserData>(input, MasterUserDataReserved);
        break;
    case 2:
        Check<SlaveRecord>(input, SlaveRecordReserved);
        break;
    case 3:
        Check<SlaveParameterData>(input, PlainReserved);
        break;
    case 4:
        Check<SlaveConfigurationData>(input, PlainReserved);
        break;
    case 5:
        Check<SlaveAddressTable>(input, PlainReserved);
        break;
    case 6:
        Check<SlaveUserData>(input, SlaveUserDataReserved);
        break;
    case 7:
        Check<SlaveExtendedUserParameterData>(input, PlainReserved);
        break;
    }
    return 0;
}
