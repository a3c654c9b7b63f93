// SPDX-License-Identifier: MIT
#include "tests/modules/dpvm/config/RecordStreams.h"
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ExpectFailure.h"

#include "vesk/modules/dpvm/config/BusConfig.h"
#include "vesk/modules/dpvm/config/MasterRecord.h"
#include "vesk/modules/dpvm/config/SlaveRecord.h"

using namespace Vesk::Modules::DPVM::Config;

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
    const auto builder = WithMaster()->Slave(7, small);
    const auto first = builder->Build();
    EXPECT_EQ(builder->Slave(3, large)->Build()->Checksum(), 0x955197E3u);
    EXPECT_EQ(WithMaster()->Slave(3, large)->Slave(7, small)->Build()->Checksum(), 0x6E353EC2u);
    EXPECT_EQ(WithMaster()->Slave(3, small)->Slave(7, large)->Build()->Checksum(), 0xD2A84E15u);
    EXPECT_EQ(first->Checksum(), 0x628E0ADFu);
    EXPECT_EQ(first->SlaveAddresses()->Count(), 1) << "out of the builder's reach";
}

TEST_F(BusConfigTest, KeepsAndPrintsTheSlavesInTheirOrder) {
    const auto config = WithMaster()->Slave(7, small)->Slave(3, large)->Build();
    EXPECT_EQ(config->Slave(3), large);
    ExpectFailure<System::Collections::Generic::KeyNotFoundException>("10", [&] { config->Slave(10); });
    EXPECT_EQ(config->ToString().Value(), "BusConfig{\nChecksum: 955197e3\n\nMaster{\n" +
                                              config->Master()->ToString().Value() + "}\n\nSlave @ 7{\n" +
                                              small->ToString().Value() + "}\n\nSlave @ 3{\n" +
                                              large->ToString().Value() + "}\n}\n");
}

TEST_F(BusConfigTest, TakesTheLastMasterAndNoAddressTwice) {
    const auto builder =
        BusConfig::Builder::Create()->Master(Read<MasterRecord>(DatabaseFileBuilder::MasterRecord(9)));
    builder->Slave(7, small);
    ExpectFailure<System::ArgumentException>("Key already exists", [&] { builder->Slave(7, large); });
    const auto config = builder->Master(WithMaster()->Build()->Master())->Build();
    EXPECT_EQ(config->Slave(7), small);
    EXPECT_EQ(config->Checksum(), 0x628E0ADFu);
}
