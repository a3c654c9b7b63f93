// SPDX-License-Identifier: MIT
#include "tests/modules/dpvm/config/RecordStreams.h"
#include "tests/support/ExpectFailure.h"

#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/config/MasterRecord.h"
#include "vesk/modules/dpvm/config/MasterUserData.h"
#include "vesk/system/io/IOException.h"

using namespace Vesk;
using namespace Vesk::Modules::DPVM::Config;

static const Bytes MASTER = {
    0x00, 0x60, 0x02, 0x06, 0x01, 0x2C, 0x00, 0x0B,
    0x03, 0x84, 0x05, 0x07, // length .. setupTime
    0x00, 0x01, 0x86, 0xA0, 0x0A, 0x7E, 0x03, 0x80,
    0x00, 0x14, 0x03, 0xE8,                         // targetRotationTime .. pollTimeout
    0x00, 0x78, 0x08, 0x09, 0x00, 0x00, 0x00, 0x00, // dataControlTime .. reserved
    0x00, 0x40, 'C',  '2',  'M',  0,    0,    0,
    0,    0,    0,    0, // length, class2Name
    0,    0,    0,    0,    0,    0,    0,    0,
    0,    0,    0,    0, //
    0,    0,    0,    0,    0,    0,    0,    0,
    0,    0,    0x01, 0x02, // .. idleTime1
    0x03, 0x04, 0x00, 0x00, 0x05, 0x06, 0x07, 0x08,
    0x00, 0x00, 0x00, 0x00, // idleTime2 .. reserved
    0x09, 0x0A, 0x0B, 0x0C, 0x12, 0x34, 0x0D, 0x0E,
    0x0F, 0x10, 0x11, 0x12, // repeater .. t_CT
    0x13, 0x00, 0x00, 0x00, // maxT_SH, reserved
};

static const std::string USER_DATA_LINES = "idleTime1: 258\n"
                                           "idleTime2: 772\n"
                                           "deltaT_TR: 84281096\n"
                                           "repeater: 2314\n"
                                           "groupSync: 11\n"
                                           "groupFreeze: 12\n"
                                           "identNr: 4660\n"
                                           "addressingMode: 13\n"
                                           "storageFormat: 14\n"
                                           "t_CT: 252711186\n"
                                           "maxT_SH: 19\n";

TEST(MasterRecord, OffersEveryFieldUnderItsName) {
    const auto master = Read<MasterRecord>(MASTER);
    EXPECT_EQ(master->StationAddress(), 2);
    EXPECT_EQ(master->DataRate(), 6);
    EXPECT_EQ(master->SlotTime(), 300);
    EXPECT_EQ(master->MinStationDelayTime(), 11);
    EXPECT_EQ(master->MaxStationDelayTime(), 900);
    EXPECT_EQ(master->QuietTime(), 5);
    EXPECT_EQ(master->SetupTime(), 7);
    EXPECT_EQ(master->TargetRotationTime(), 100000u);
    EXPECT_EQ(master->GapUpdateFactor(), 10);
    EXPECT_EQ(master->HighestStationAddress(), 126);
    EXPECT_EQ(master->MaxRetryLimit(), 3);
    EXPECT_EQ(master->BpFlag(), 0x80);
    EXPECT_EQ(master->MinSlaveInterval(), 20);
    EXPECT_EQ(master->PollTimeout(), 1000);
    EXPECT_EQ(master->DataControlTime(), 120);
    EXPECT_EQ(master->AlarmMax(), 8);
    EXPECT_EQ(master->MaxUserGlobalControl(), 9);

    const auto user = master->UserData();
    EXPECT_EQ(user->Class2Name().Value(), "C2M" + std::string(29, '\0'));
    EXPECT_EQ(user->IdleTime1(), 0x0102);
    EXPECT_EQ(user->IdleTime2(), 0x0304);
    EXPECT_EQ(user->DeltaT_TR(), 0x05060708u);
    EXPECT_EQ(user->Repeater(), 0x090A);
    EXPECT_EQ(user->GroupSync(), 0x0B);
    EXPECT_EQ(user->GroupFreeze(), 0x0C);
    EXPECT_EQ(user->IdentNr(), 0x1234);
    EXPECT_EQ(user->AddressingMode(), 0x0D);
    EXPECT_EQ(user->StorageFormat(), 0x0E);
    EXPECT_EQ(user->T_CT(), 0x0F101112u);
    EXPECT_EQ(user->MaxT_SH(), 0x13);
}

TEST(MasterRecord, PrintsALinePerField) {
    EXPECT_EQ(Read<MasterRecord>(MASTER)->ToString().Value(), "stationAddress: 2\n"
                                                              "dataRate: 6\n"
                                                              "slotTime: 300\n"
                                                              "minStationDelayTime: 11\n"
                                                              "maxStationDelayTime: 900\n"
                                                              "quietTime: 5\n"
                                                              "setupTime: 7\n"
                                                              "targetRotationTime: 100000\n"
                                                              "gapUpdateFactor: 10\n"
                                                              "highestStationAddress: 126\n"
                                                              "maxRetryLimit: 3\n"
                                                              "bpFlag: 128\n"
                                                              "minSlaveInterval: 20\n"
                                                              "pollTimeout: 1000\n"
                                                              "dataControlTime: 120\n"
                                                              "alarmMax: 8\n"
                                                              "maxUserGlobalControl: 9\n"
                                                              "\n"
                                                              "User data{\n"
                                                              "class2Name: C2M" +
                                                                  std::string(29, '\0') + "\n" +
                                                                  USER_DATA_LINES + "}\n");
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

TEST(MasterRecord, StandsAnywhereInAStream) {
    Bytes around(3, 0xAA);
    around.insert(around.end(), MASTER.begin(), MASTER.end());
    around.resize(around.size() + 2, 0xBB);

    const auto source = StreamOf(around);
    source->Seek(3, System::IO::SeekOrigin::BEGIN);
    const auto master = MasterRecord::FromStream(source);
    EXPECT_EQ(source->Position(), 99);

    const auto array = System::Array<unsigned char>::Create(Bytes(101, 0xEE));
    const auto target = System::IO::MemoryStream::Create(array);
    target->Seek(3, System::IO::SeekOrigin::BEGIN);
    master->ToStream(target);
    EXPECT_EQ(target->Position(), 99);
    Bytes expected(3, 0xEE);
    expected.insert(expected.end(), MASTER.begin(), MASTER.end());
    expected.resize(101, 0xEE);
    EXPECT_EQ(Bytes(array->Data(), array->Data() + 101), expected);
}

TEST(MasterRecord, RefusesAWrongLengthAtOnce) {
    const struct {
        Bytes bytes;
        const char* message;
        int position;
    } cases[] = {
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
