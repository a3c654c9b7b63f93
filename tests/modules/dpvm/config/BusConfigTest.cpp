// SPDX-License-Identifier: MIT
#include "tests/modules/dpvm/config/RecordStreams.h"
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ExpectFailure.h"

#include "vesk/modules/dpvm/config/BusConfig.h"
#include "vesk/modules/dpvm/config/CRC32.h"
#include "vesk/modules/dpvm/config/MasterRecord.h"
#include "vesk/modules/dpvm/config/SlaveRecord.h"

using namespace Vesk::Modules::DPVM::Config;

static std::shared_ptr<System::IArray<unsigned char>> Text(const char* text) {
    const std::string characters = text;
    return System::Array<unsigned char>::Create(Bytes(characters.begin(), characters.end()));
}

TEST(CRC32, LeavesTheKnownRegister) {
    const auto crc = CRC32::Create();
    EXPECT_EQ(crc->Value, 0xFFFFFFFF);
    crc->Digest(Text("xx123456789x"), 2, 9);
    EXPECT_EQ(crc->Value, 0x0376E6E7u);
}

TEST(CRC32, GoesOnFromTheRegisterByteByByte) {
    const auto crc = CRC32::Create();
    crc->Value = 0;
    crc->Digest(0x01);
    EXPECT_EQ(crc->Value, 0x04C11DB7u);
    crc->Value = 0xFFFFFFFF;
    for (const char digit : {'1', '2', '3', '4', '5', '6', '7', '8'})
        crc->Digest(static_cast<unsigned char>(digit));
    crc->Digest(Text("9"), 0, 1);
    EXPECT_EQ(crc->Value, 0x0376E6E7u);
}

TEST(CRC32, DigestsOnlyWhatIsInTheArray) {
    const auto crc = CRC32::Create();
    crc->Digest(Text("abc"), 7, 0);
    crc->Digest(nullptr, 0, -1);
    ExpectFailure<System::ArgumentNullException>("array must not be null",
                                                 [&] { crc->Digest(nullptr, 0, 1); });
    EXPECT_THROW(crc->Digest(Text("abc"), 1, 3), std::shared_ptr<System::Exception>);
    EXPECT_EQ(crc->Value, 0xFFFFFFFF);
}

class BusConfigTest : public testing::Test {
protected:
    std::shared_ptr<BusConfig::Builder> WithMaster() {
        return BusConfig::Builder::Create()->Master(Read<MasterRecord>(DatabaseFileBuilder::MasterRecord()));
    }

    std::shared_ptr<ISlaveRecord> small = Read<SlaveRecord>(DatabaseFileBuilder::SlaveRecord({{0}, {}}));
    std::shared_ptr<ISlaveRecord> large = Read<SlaveRecord>(DatabaseFileBuilder::SlaveRecord({{1, 2}, {0}}));
};

TEST_F(BusConfigTest, ChecksumCoversRecordsAddressesAndTheirOrder) {
    EXPECT_EQ(WithMaster()->Build()->Checksum(), 0x23AA6E71u); // CRC-32/BZIP2 of the master record
    EXPECT_EQ(WithMaster()->Slave(7, small)->Build()->Checksum(), 0x628E0ADFu);
    EXPECT_EQ(WithMaster()->Slave(7, small)->Slave(3, large)->Build()->Checksum(), 0x955197E3u);
    EXPECT_EQ(WithMaster()->Slave(3, large)->Slave(7, small)->Build()->Checksum(), 0x6E353EC2u);
    EXPECT_EQ(WithMaster()->Slave(3, small)->Slave(7, large)->Build()->Checksum(), 0xD2A84E15u);
}

TEST_F(BusConfigTest, KeepsTheSlavesInTheirOrder) {
    const auto config = WithMaster()->Slave(255, small)->Slave(0, large)->Slave(9, small)->Build();
    const auto addresses = config->SlaveAddresses();
    ASSERT_EQ(addresses->Count(), 3);
    EXPECT_EQ((std::vector<int>{addresses->Get(0), addresses->Get(1), addresses->Get(2)}),
              (std::vector<int>{255, 0, 9}));
    EXPECT_EQ(config->Slave(0), large);
    EXPECT_EQ(config->Slave(9), small);
    ExpectFailure<System::Collections::Generic::KeyNotFoundException>("10", [&] { config->Slave(10); });
}

TEST_F(BusConfigTest, PrintsMasterAndSlavesInTheirOrder) {
    const auto config = WithMaster()->Slave(7, small)->Slave(3, large)->Build();
    EXPECT_EQ(config->ToString().Value(), "BusConfig{\nChecksum: 955197e3\n\nMaster{\n" +
                                              config->Master()->ToString().Value() + "}\n\nSlave @ 7{\n" +
                                              small->ToString().Value() + "}\n\nSlave @ 3{\n" +
                                              large->ToString().Value() + "}\n}\n");
}

TEST_F(BusConfigTest, BuilderRefusesWhatIsMissingOrTwice) {
    const auto builder = BusConfig::Builder::Create();
    ExpectFailure<System::ArgumentNullException>("master must not be null", [&] { builder->Build(); });
    ExpectFailure<System::ArgumentNullException>("record must not be null",
                                                 [&] { builder->Slave(7, nullptr); });

    builder->Slave(7, small);
    ExpectFailure<System::ArgumentException>("Key already exists", [&] { builder->Slave(7, large); });
    const auto config = builder->Master(Read<MasterRecord>(DatabaseFileBuilder::MasterRecord(9)))
                            ->Master(Read<MasterRecord>(DatabaseFileBuilder::MasterRecord(1)))
                            ->Build();
    EXPECT_EQ(config->Slave(7), small);
    EXPECT_EQ(config->Checksum(), 0x628E0ADFu);
}

TEST_F(BusConfigTest, IsOutOfTheBuildersReach) {
    const auto builder = WithMaster()->Slave(7, small);
    const auto first = builder->Build();
    EXPECT_EQ(builder->Slave(3, large)->Build()->Checksum(), 0x955197E3u);
    EXPECT_EQ(first->SlaveAddresses()->Count(), 1);
    EXPECT_EQ(first->Checksum(), 0x628E0ADFu);
}
