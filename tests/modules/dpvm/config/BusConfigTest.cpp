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

TEST_F(BusConfigTest, KeepsAndPrintsTheSlavesInTheirOrder) {
    const auto builder = WithMaster()->Slave(7, small);
    const auto first = builder->Build();
    const auto config = builder->Slave(3, large)->Build();
    EXPECT_EQ(first->SlaveAddresses()->Count(), 1) << "out of the builder's reach";
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
