// SPDX-License-Identifier: MIT
#include "tests/virtualmodule/RawHost.h"

namespace {

using testing::ElementsAre;
using VirtualModule::Bytes;

constexpr unsigned DATA_SIZE = 0x83, ADDRESS = 0x87, RESPONSE = 0x88, OTHER = 0x8F;

struct ServicesTest : testing::Test, RawHost {
    ServicesTest() {
        Configure();
        Initialise();
        Turn(OUT);
    }

    void Stop(std::size_t address) { StopOrStart(0x0C, address); }
};

TEST_F(ServicesTest, TellAboutASlave) {
    ram[0x0296] = 0xA1;
    ram[0x0298] = 0xA2;
    Turn(IN);
    EXPECT_THAT(Fieldbus(0x09, {0x0500}).data, ElementsAre(0xA1, 0xA2, 0));
    EXPECT_THAT(Fieldbus(0x0A, {0x0500}).data, ElementsAre(0xA1, 0xA2));
    EXPECT_THAT(Fieldbus(0x05, {0x0500}).data, ElementsAre(0x31));
    EXPECT_THAT(Fieldbus(0x04, {0x0501}).data, ElementsAre(0, 4, 0, 1, 0x12, 0x34));

    const Bytes live = Fieldbus(0x18).data;
    ASSERT_EQ(live.size(), 127u);
    EXPECT_EQ(live[1], 3) << "the master itself";
    EXPECT_EQ(live[5], 0);
    EXPECT_EQ(live[6], 4) << "nobody";

    module.SetSlavePresent(5, false);
    EXPECT_THAT(Fieldbus(0x04, {0x0501}).data, ElementsAre(1, 0, 0, 0xFF, 0, 0));
    EXPECT_EQ(Fieldbus(0x18).data[5], 4);
    Stop(9);
    EXPECT_THAT(Fieldbus(0x04, {0x0901}).data, ElementsAre(2, 5, 0, 0xFF, 0, 0x99));
    for (const unsigned command : {0x05u, 0x09u, 0x0Au}) {
        EXPECT_EQ(Fieldbus(command, {0x0500}).error, RESPONSE) << command;
        EXPECT_EQ(Fieldbus(command, {0x0600}).error, ADDRESS) << command;
        EXPECT_EQ(Fieldbus(command, {0x7F00}).error, ADDRESS) << command;
    }
    EXPECT_EQ(Fieldbus(0x04, {0x0502}).error, OTHER) << "request type";
    EXPECT_EQ(Fieldbus(0x02, {0x4100}).error, OTHER) << "no mode";
    EXPECT_EQ(Fieldbus(0x0B, {}, Bytes(125)).error, DATA_SIZE);
}

TEST_F(ServicesTest, ChangeASlavesAddress) {
    EXPECT_EQ(Fieldbus(0x06, {0x050A, 0x1234}).error, OTHER) << "in data exchange";
    Stop(5);
    EXPECT_EQ(Fieldbus(0x06, {0x050A, 0x1235}).error, OTHER) << "another device";
    module.SetSlavePresent(20, false);
    for (const unsigned taken : {9u, 1u, 20u, 126u})
        EXPECT_EQ(Fieldbus(0x06, {VirtualModule::Word(5, taken), 0x1234}).error, ADDRESS) << taken;
    EXPECT_TRUE(Fieldbus(0x06, {0x050A, 0x1234, 0x0100}).Ok());
    EXPECT_EQ(Fieldbus(0x05, {0x0500}).error, RESPONSE) << "gone from where it should be";
    EXPECT_THAT(Fieldbus(0x05, {0x0A00}).data, ElementsAre(0x31));
    EXPECT_EQ(Fieldbus(0x06, {0x0A05, 0x1234}).error, OTHER) << "told to keep its address";
}

TEST_F(ServicesTest, Class1NeedsTheExchange) {
    EXPECT_TRUE(Fieldbus(0x21, {0x0501, 0x0203}, {7, 8, 9}).Ok());
    Reply read = Fieldbus(0x20, {0x0501, 0x02F0});
    EXPECT_THAT(read.data, ElementsAre(7, 8, 9));
    EXPECT_EQ(read.extended[1], 0x0203) << "the length that was read";
    EXPECT_THAT(Fieldbus(0x20, {0x0501, 0x0202}).data, ElementsAre(7, 8));
    const Bytes name = Fieldbus(0x20, {0x0500, 0x0307}).data;
    EXPECT_EQ(std::string(name.begin(), name.end()), "Virtual");

    EXPECT_EQ(Fieldbus(0x20, {0x0501, 0x0302}).error, ADDRESS) << "never written";
    EXPECT_EQ(Fieldbus(0x20, {0x0901, 0x0202}).error, ADDRESS) << "each slave has its own";
    EXPECT_EQ(Fieldbus(0x20, {0x0501, 0x02F1}).error, DATA_SIZE);
    EXPECT_EQ(Fieldbus(0x21, {0x0501, 0x0202}, {7, 8, 9}).error, DATA_SIZE);
    EXPECT_EQ(Fieldbus(0x21, {0x0501, 0x0200}, Bytes(256)).error, DATA_SIZE);
    EXPECT_EQ(Fieldbus(0x20, {0x0600, 0x0007}).error, ADDRESS);
    Stop(5);
    EXPECT_EQ(Fieldbus(0x20, {0x0501, 0x0203}).error, OTHER);
    module.SetSlavePresent(5, false);
    EXPECT_EQ(Fieldbus(0x20, {0x0501, 0x0203}).error, RESPONSE);
}

TEST_F(ServicesTest, Class2NeedsAConnection) {
    EXPECT_EQ(Fieldbus(0x27, {6, 0x0102, 0x0300}).error, ADDRESS) << "not open";
    Stop(5);
    Turn(OUT);
    EXPECT_TRUE(Fieldbus(0x25, {6, 0x0500}).Ok());
    EXPECT_EQ(ram[0x1086], 0x20) << "the connection list";
    EXPECT_EQ(Fieldbus(0x25, {6, 0x0900}).error, OTHER) << "the reference is in use";
    EXPECT_TRUE(Fieldbus(0x28, {6, 0x0102, 0x0300}, {1, 2, 3}).Ok());
    const Reply read = Fieldbus(0x27, {6, 0x0102, 0xF000});
    EXPECT_THAT(read.data, ElementsAre(1, 2, 3));
    EXPECT_EQ(read.extended[2], 0x0300);
    EXPECT_TRUE(Fieldbus(0x26, {6, 0x0001}).Ok());
    EXPECT_EQ(Fieldbus(0x26, {6, 0x0001}).error, ADDRESS);
    EXPECT_EQ(Fieldbus(0x28, {6, 0x0102, 0x0300}, {1, 2, 3}).error, ADDRESS);

    EXPECT_TRUE(Fieldbus(0x25, {6, 0x0500}).Ok());
    module.SetSlavePresent(5, false);
    EXPECT_EQ(Fieldbus(0x25, {7, 0x0500}).error, RESPONSE);
    module.SetSlavePresent(5, true);
    EXPECT_EQ(Fieldbus(0x27, {6, 0x0102, 0x0300}).error, ADDRESS) << "it went with the slave";

    EXPECT_TRUE(Fieldbus(0x25, {6, 0x0500}).Ok());
    EXPECT_TRUE(Fieldbus(0x02, {0x0000}).Ok());
    EXPECT_EQ(Fieldbus(0x25, {7, 0x0500}).error, OTHER) << "off the bus";
    EXPECT_TRUE(Fieldbus(0x02, {0xC000}).Ok());
    EXPECT_EQ(Fieldbus(0x26, {6}).error, ADDRESS) << "it went with the bus";
}

} // namespace
