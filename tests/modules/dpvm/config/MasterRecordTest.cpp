// SPDX-License-Identifier: MIT
#include "tests/modules/dpvm/config/RecordStreams.h"
#include "tests/support/ExpectFailure.h"

#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/config/MasterRecord.h"
#include "vesk/modules/dpvm/config/MasterUserData.h"
#include "vesk/system/io/IOException.h"

#include <tuple>

using namespace Vesk;
using namespace Vesk::Modules::DPVM::Config;

static const Bytes MASTER = {
    0x00, 0x60, 0x02, 0x06, 0x01, 0x2C, 0x00, 0x0B, 0x03, 0x84, 0x05, 0x07,       // length to setupTime
    0x00, 0x01, 0x86, 0xA0, 0x0A, 0x7E, 0x03, 0x80, 0x00, 0x14, 0x03, 0xE8,       // up to pollTimeout
    0x00, 0x78, 0x08, 0x09, 0x00, 0x00, 0x00, 0x00,                               // up to reserved
    0x00, 0x40, 'C',  '2',  'M',  0,    0,    0,    0,    0,    0,    0,    0, 0, // length, class2Name
    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0, 0,
    0,    0,    0,    0,    0,    0,                                        // its 32 bytes
    0x01, 0x02, 0x03, 0x04, 0x00, 0x00, 0x05, 0x06, 0x07, 0x08,             // idleTime1 to deltaT_TR
    0x00, 0x00, 0x00, 0x00, 0x09, 0x0A, 0x0B, 0x0C, 0x12, 0x34, 0x0D, 0x0E, // up to storageFormat
    0x0F, 0x10, 0x11, 0x12, 0x13, 0x00, 0x00, 0x00,                         // t_CT, maxT_SH, reserved
};

TEST(MasterRecord, OffersEveryFieldUnderItsName) {
    const auto master = Read<MasterRecord>(MASTER);
    const auto user = master->UserData();
    EXPECT_EQ(
        (std::vector<unsigned int>{
            master->StationAddress(), master->DataRate(), master->SlotTime(), master->MinStationDelayTime(),
            master->MaxStationDelayTime(), master->QuietTime(), master->SetupTime(),
            master->TargetRotationTime(), master->GapUpdateFactor(), master->HighestStationAddress(),
            master->MaxRetryLimit(), master->BpFlag(), master->MinSlaveInterval(), master->PollTimeout(),
            master->DataControlTime(), master->AlarmMax(), master->MaxUserGlobalControl()}),
        (std::vector<unsigned int>{2, 6, 300, 11, 900, 5, 7, 100000, 10, 126, 3, 0x80, 20, 1000, 120, 8, 9}));
    EXPECT_EQ((std::vector<unsigned int>{user->IdleTime1(), user->IdleTime2(), user->DeltaT_TR(),
                                         user->Repeater(), user->GroupSync(), user->GroupFreeze(),
                                         user->IdentNr(), user->AddressingMode(), user->StorageFormat(),
                                         user->T_CT(), user->MaxT_SH()}),
              (std::vector<unsigned int>{0x0102, 0x0304, 0x05060708, 0x090A, 0x0B, 0x0C, 0x1234, 0x0D, 0x0E,
                                         0x0F101112, 0x13}));
}

TEST(MasterRecord, PrintsALinePerField) {
    EXPECT_EQ(Read<MasterRecord>(MASTER)->ToString().Value(),
              "stationAddress: 2\ndataRate: 6\nslotTime: 300\nminStationDelayTime: 11\n"
              "maxStationDelayTime: 900\nquietTime: 5\nsetupTime: 7\ntargetRotationTime: 100000\n"
              "gapUpdateFactor: 10\nhighestStationAddress: 126\nmaxRetryLimit: 3\nbpFlag: 128\n"
              "minSlaveInterval: 20\npollTimeout: 1000\ndataControlTime: 120\nalarmMax: 8\n"
              "maxUserGlobalControl: 9\n\nUser data{\nclass2Name: C2M" +
                  std::string(29, '\0') +
                  "\nidleTime1: 258\nidleTime2: 772\ndeltaT_TR: 84281096\nrepeater: 2314\ngroupSync: 11\n"
                  "groupFreeze: 12\nidentNr: 4660\naddressingMode: 13\nstorageFormat: 14\nt_CT: 252711186\n"
                  "maxT_SH: 19\n}\n");
}

TEST(MasterRecord, WritesWhatItReadWithReservedBytesZero) {
    Bytes dirty = MASTER;
    for (const int offset : {28, 31, 70, 71, 76, 79, 93, 95})
        dirty = With(dirty, offset, 0xEE);
    const auto master = Read<MasterRecord>(dirty);
    EXPECT_EQ(Written(master), MASTER);
    EXPECT_EQ(Written(master->UserData()), Bytes(MASTER.begin() + 32, MASTER.end()));
}

TEST(MasterRecord, KeepsEveryByteOfAFullName) {
    Bytes bytes = MASTER;
    std::fill(bytes.begin() + 34, bytes.begin() + 66, static_cast<unsigned char>(0xC4));
    const auto master = Read<MasterRecord>(bytes);
    EXPECT_EQ(master->UserData()->Class2Name().Value(), std::string(32, '\xC4'));
    EXPECT_EQ(Written(master), bytes);
}

TEST(MasterRecord, RefusesAWrongLengthAtOnce) {
    const std::tuple<Bytes, const char*, int> cases[] = {
        {With(MASTER, 1, 0x5F), "block length (95) != expected (96)", 2},
        {With(MASTER, 1, 0x5A), "block length (90) != expected (96)", 2},
        {With(MASTER, 0, 1), "block length (352) != expected (96)", 2},
        {With(MASTER, 33, 0x3F), "block length (63) != expected (64)", 34},
        {With(MASTER, 33, 0x41), "block length (65) != expected (64)", 34},
    };
    for (const auto& [bytes, message, position] : cases) {
        const auto stream = StreamOf(bytes);
        ExpectFailure<ConfigException>(message, [&] { return MasterRecord::FromStream(stream); });
        EXPECT_EQ(stream->Position(), position) << message;
    }
}

TEST(MasterRecord, NeedsEveryByteThatItLooksAt) {
    for (int length = 0; length < 96; ++length) {
        const Bytes start(MASTER.begin(), MASTER.begin() + length);
        if (length >= 93) // only reserved bytes are missing
            EXPECT_EQ(Written(Read<MasterRecord>(start)), MASTER);
        else
            EXPECT_THROW(Read<MasterRecord>(start), std::shared_ptr<System::Exception>) << length;
    }
    ExpectFailure<System::IO::EndOfStreamException>(
        "Stream ends at byte 92", [] { Read<MasterRecord>(Bytes(MASTER.begin(), MASTER.begin() + 92)); });
}
